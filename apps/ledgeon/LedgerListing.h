#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {
class DataBase;
class LObject;
}  // namespace ledgeon

namespace ledgeon::cli {

// What the ledger holds, read for printing: accounts with their balances and transactions with
// their splits. A transfer is one transaction in the paying account that names the receiving
// account (`targetAccount`, and each transfer line's `transfer`); the receiving account sees it
// with the opposite sign.

struct AccountRow {
  std::string name;
  std::string type;  // the account type class: "Checking", "CreditCard" ...
  std::string currency;
  Amount balance;
  int fractionDigits = 2;  // the currency's
};

struct SplitRow {
  std::string category;  // full name, "Food:Groceries"
  std::vector<std::string> tags;
  Amount amount;
  std::string transfer;
  std::string note;
};

struct TransactionRow {
  int64_t id = 0;  // the ledgeonId
  std::string account;
  std::optional<Date> date;  // none when the file it came from had no date that reads
  Amount amount;
  std::string payee;
  std::string note;
  std::string checkNumber;
  int64_t reconcileStatus = 0;
  std::string transferAccount;
  std::vector<SplitRow> splits;
  int fractionDigits = 2;  // of the account's currency
};

// "Food:Groceries": the category's name after its parents' names.
std::string categoryFullName(LObject* category);

std::vector<AccountRow> accountRows(DataBase& dataBase);
// Every transaction as its own account sees it, or those `account` sees (its own and the
// transfers it receives); by date, then id.
std::vector<TransactionRow> transactionRows(DataBase& dataBase, LObject* account = nullptr);

nlohmann::json accountsJson(const std::vector<AccountRow>& rows);
nlohmann::json transactionsJson(const std::vector<TransactionRow>& rows);
void printAccounts(std::ostream& out, const std::vector<AccountRow>& rows);
void printTransactions(std::ostream& out, const std::vector<TransactionRow>& rows);

// `value` exactly, with at least `minimumDigits` fraction digits ("-120" -> "-120.00"); digits
// beyond them are kept, never rounded away.
std::string exactMoneyText(const Amount& value, int minimumDigits);

// The reconcile status codes as words: "uncleared", "cleared", "reconciled".
std::string reconcileStatusName(int64_t status);

}  // namespace ledgeon::cli
