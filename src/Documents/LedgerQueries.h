#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Documents/LedgerRows.h"
#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

class DataBase;
class LObject;

// What the listings, the shell and the imports ask of a ledger, each answered one way: balances,
// category full names, account types, and transactions with their entries as each account sees
// them. A transfer is one transaction in the paying account; each of its transfer lines moves
// the line's opposite into the account its `transfer` names (`targetAccount` names only one of
// them when a transaction pays into several). The category tree and the account types are cached
// until clearCacheForClass() names their class. Main thread only.
class LedgerQueries final {
 public:
  explicit LedgerQueries(DataBase& dataBase) : dataBase_(dataBase) {}
  LedgerQueries(const LedgerQueries&) = delete;
  LedgerQueries& operator=(const LedgerQueries&) = delete;

  // "Food:Groceries": the category's name after its parents' names.
  static std::string categoryFullName(LObject* category);
  // The category of that full name; null when there is none.
  LObject* categoryWithFullName(std::string_view fullName);
  // By full name, or else by its own name (interchange files name categories without their
  // parents): then the first such category in full-name order. Null when there is none.
  LObject* categoryNamed(std::string_view name);
  // A category made while the cache was in use.
  void noteCategoryAdded(LObject& category);

  // The document's object of an account-type class ("Checking"). Kinds with no class of their
  // own ("Cash", "Asset") are plain "AccountType" objects told apart by `name`.
  LObject* accountTypeForClass(std::string_view className, std::string_view name = {});
  // Whether the account's type is the class or one below it ("Brokerage" for a 401(k)).
  static bool isAccountOfKind(LObject* account, std::string_view className);
  static bool isInvestmentAccount(LObject& account);

  // Entries in the order their transaction lists them.
  static void sortBySequence(std::vector<LObject*>& entries);

  // The undeleted account of that name; null when there is none.
  LObject* accountNamed(std::string_view name);

  // What the account's undeleted transactions move into it: their own amounts (an investment
  // account's cash: actions that move only units count nothing) and the transfers it receives.
  Amount balanceOfAccount(LObject& account);
  // The units a position holds after its transactions; with `through`, after those dated on or
  // before it.
  static Amount unitsForPosition(LObject& position, std::optional<Date> through = std::nullopt);
  // Every account by name, with its balance and, for an investment account, its holdings.
  std::vector<AccountRow> accountRows();
  // Every transaction as its own account sees it, or those `account` sees (its own and the
  // transfers it receives); by date (undated first), then id.
  std::vector<TransactionRow> transactionRows(LObject* account = nullptr);
  // The transactions `account` owns or receives a transfer from.
  std::vector<LObject*> transactionsOfAccount(LObject& account);

  void clearCacheForClass(const std::string& className);

 private:
  using AccountsByName = std::map<std::string, LObject*, std::less<>>;
  using TransferLines = std::map<LObject*, std::vector<LObject*>>;

  // Undeleted, and not a schedule's template for transactions to come.
  static bool isRealTransaction(LObject& transaction);
  AccountsByName accountsByName();
  // The undeleted transfer lines of real transactions, by transaction.
  TransferLines transferLines();
  // One transaction's undeleted transfer lines, in order.
  static std::vector<LObject*> transferLinesOf(LObject& transaction);
  // The account a transfer line pays into: the one its `transfer` names, or, for a name no
  // account has any more, the transaction's target. Null for the transaction's own account.
  static LObject* receivingAccount(LObject& line, LObject& transaction,
                                   const AccountsByName& accounts);
  // What `transaction` moves into each account it touches.
  static std::vector<std::pair<LObject*, Amount>> movements(LObject& transaction,
                                                            const std::vector<LObject*>& lines,
                                                            const AccountsByName& accounts);
  // The real transactions of other accounts that name `account`: as their target, or in a
  // transfer line.
  std::vector<LObject*> receivedTransactions(LObject& account);
  std::vector<HoldingRow> holdings(LObject& account);
  TransactionRow receivedRow(LObject& transaction, LObject& account,
                             const std::vector<LObject*>& lines, const AccountsByName& accounts);
  void loadCategories();

  DataBase& dataBase_;
  bool categoriesLoaded_ = false;
  std::map<std::string, LObject*, std::less<>> categoriesByFullName_;
  std::map<std::string, LObject*, std::less<>> categoriesByOwnName_;  // first in full-name order
  std::map<std::string, LObject*, std::less<>> accountTypes_;         // "class/name"
};

}  // namespace ledgeon
