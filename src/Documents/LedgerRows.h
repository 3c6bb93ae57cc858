#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

class LObject;

// The ledger as listings show it, in plain records that LedgerQueries fills. Amounts are exact;
// rounding to the currency's digits is the printer's choice.

// One security an investment account holds.
struct HoldingRow {
  std::string security;
  std::string ticker;
  Amount units;
  std::optional<Amount> price;  // the security's latest closing price, when it has one
  std::optional<Date> priceDate;
  std::optional<Amount> value;  // units at that price
};

struct AccountRow {
  LObject* account = nullptr;
  std::string name;
  std::string type;  // the account type class: "Checking", "CreditCard" ...
  std::string currency;
  int fractionDigits = 2;  // the currency's
  // What the account's transactions move; for an investment account, its cash alone.
  Amount balance;
  bool investment = false;
  std::vector<HoldingRow> holdings;  // investment accounts only, by security name
};

struct EntryRow {
  std::string category;  // full name, "Food:Groceries"
  std::vector<std::string> tags;
  Amount amount;
  std::string transfer;
  std::string note;
};

// What an investment transaction does besides moving cash.
struct InvestmentRow {
  int64_t type = 0;
  std::string action;  // "Buy", "Dividend" ...
  std::string security;
  Amount units;
  std::optional<Amount> price;  // per unit, from the cost basis; none when no units moved
  Amount commission;
};

struct TransactionRow {
  int64_t id = 0;  // the ledgeonId
  std::string account;
  std::optional<Date> date;  // none when the transaction has no date
  Amount amount;
  std::string payee;
  std::string note;
  std::string checkNumber;
  int64_t reconcileStatus = 0;
  std::string transferAccount;
  std::vector<EntryRow> entries;
  int fractionDigits = 2;  // of the account's currency
  std::optional<InvestmentRow> investment;
};

}  // namespace ledgeon
