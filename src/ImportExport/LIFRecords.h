#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

// The plain records read from a LIF file, in file order, before anything touches a ledger. Each
// carries `line`, the 1-based number of the line it starts on (for the import log). Amounts are
// decimals read from the file's text with thousands separators removed; text that does not read
// as a number gives NaN (and a log line). A `date` of std::nullopt means the date text did not
// read; a record without a "D" line is dated today.

// One "!Account" record.
struct LIFAccountRecord {
  size_t line = 0;
  std::string name;
  std::string typeText;     // as written after "T"
  std::string accountType;  // "CHECKING", "CREDITCARD", "CASH", "BROKERAGENORMAL", ...; "" when
                            // the record had no "T" line
  std::string description;
  std::optional<Amount> creditLimit;       // "L" with "," removed
  std::optional<Amount> statementBalance;  // "$" or "B"; "$", "," and ")" removed, "(" -> "-"
};

// One "!Account" section. The account of its last record is the current account of the
// transaction sections that follow.
struct LIFAccountList {
  size_t line = 0;
  std::vector<LIFAccountRecord> accounts;
};

// One line of a bank-style transaction ("S"/"E"/"$" group, or the transaction's own category).
struct LIFSplit {
  size_t line = 0;
  std::string category;  // "" for a transfer split; raw text (brackets kept) otherwise
  std::string tag;       // second "/"-piece of the category text
  std::string memo;
  Amount amount = Amount::zero();
  std::string transferAccount;  // other account's name when this line is a transfer, else ""

  bool isTransfer() const { return !transferAccount.empty(); }
};

// A bank-style record (bank, cash, card, other asset/liability sections, and the cash records of
// investment sections).
struct LIFBankTransaction {
  size_t line = 0;
  std::string account;  // the current account's name
  std::optional<Date> date;
  Amount amount = Amount::zero();
  std::string checkNumber;
  std::string payee;
  std::string memo;
  int reconcileStatus = 0;  // 0 not cleared, 1 cleared, 2 reconciled
  std::string category;
  std::string tag;
  std::string transferAccount;  // the record's own "L" transfer, else ""
  bool hasTransferSplit = false;
  std::string splitTransferAccount;  // the last split transfer's account when hasTransferSplit
  bool investmentCash = false;       // read from an investment section's cash record
  // Always at least one: without "S" lines, the one line made of the transaction's own fields.
  std::vector<LIFSplit> splits;

  bool isTransfer() const { return !transferAccount.empty(); }
};

// A category of "!Type:Cat" that does not exist yet (under its name, or its name with "*" read
// as "/").
struct LIFCategory {
  size_t line = 0;
  std::string name;
  std::string description;
  int type = 1;                     // 1 expense, 2 income
  std::optional<int64_t> taxRefUS;  // "R" number, or 9999 for a bare "T"
};

// A class or tag ("!Type:Class", "!Type:Tag") that does not exist yet.
struct LIFTag {
  size_t line = 0;
  std::string name;
  std::string description;
};

// A "!Type:Security" record.
struct LIFSecurity {
  size_t line = 0;
  std::string name;
  std::string ticker;
  int type = 0;  // 7 stock, 4 mutual fund, 2 bond, 3 market index, 1 CD, 6 other, 0 none given
};

// One price of "!Type:Prices": "ticker",price,"date".
struct LIFPrice {
  size_t line = 0;
  std::string ticker;
  Amount price = Amount::zero();
  std::optional<Date> date;
};

// How a stock split's "Q" reads.
enum class LIFStockSplitForm : int { kNone = 0, kNewSharesPerTen = 1, kAddedShares = 2 };

// A non-cash record of "!Type:Invst", with the type code, bond rewrites, reinvest rewrites and
// sign rules already applied.
struct LIFInvestmentTransaction {
  size_t line = 0;
  std::string account;
  std::optional<Date> date;
  std::string action;    // the "N" text
  int type = 1;          // investment-transaction type code
  std::string security;  // "Y"
  Amount price = Amount::zero();
  Amount quantity = Amount::zero();
  Amount amount = Amount::zero();
  Amount commission = Amount::zero();
  Amount costBasis = Amount::zero();  // price x quantity + commission
  int reconcileStatus = 0;
  std::string memo;
  std::string transferText;               // "L" as written
  std::optional<Amount> transferAmount;   // "$"
  std::string transferAccount;            // set when the record moves "$" to/from that account
  std::optional<int> userStatusOverride;  // 100 for splits and "CGLong"/"CGShort"
  LIFStockSplitForm splitForm = LIFStockSplitForm::kNone;
};

using LIFRecord = std::variant<LIFAccountList, LIFBankTransaction, LIFCategory, LIFTag, LIFSecurity,
                               LIFPrice, LIFInvestmentTransaction>;

}  // namespace ledgeon
