// Lookups and balances of LedgerQueries; the listing rows are in LedgerQueriesRows.cpp.
#include "Documents/LedgerQueries.h"

#include <algorithm>
#include <set>

#include "DataBase/DataBase.h"
#include "Documents/InvestmentTransactionType.h"
#include "LObjects/LObject.h"
#include "LObjects/Model.h"

namespace ledgeon {

namespace {

// What a transaction moves in its own account: its amount, unless it is an investment action
// that moves units alone (shares in and out, reinvestments, splits).
Amount ownMovement(LObject& transaction) {
  if (transaction.entity().isKindOf("InvestmentTransaction") &&
      !InvestmentTransactionType::forCode(transaction.integerForKey("type")).movesCash) {
    return Amount::zero();
  }
  return decimalNumberFrom(transaction, "amount");
}

}  // namespace

std::string LedgerQueries::categoryFullName(LObject* category) {
  std::string name;
  // A cycle in a damaged tree must not hang the lookup.
  size_t depth = 0;
  for (LObject* c = category; c && depth < 64; c = c->objectForKey("parentCategory"), ++depth) {
    name = name.empty() ? c->stringForKey("name") : c->stringForKey("name") + ":" + name;
  }
  return name;
}

void LedgerQueries::loadCategories() {
  if (categoriesLoaded_) return;
  std::vector<std::pair<std::string, LObject*>> named;
  for (LObject* category : dataBase_.instancesOfClass("CategoryTag")) {
    named.emplace_back(categoryFullName(category), category);
  }
  std::sort(named.begin(), named.end(), [](const auto& a, const auto& b) {
    return std::make_pair(a.first, a.second->primaryKey()) <
           std::make_pair(b.first, b.second->primaryKey());
  });
  for (const auto& [fullName, category] : named) {
    categoriesByFullName_.emplace(fullName, category);
    categoriesByOwnName_.emplace(category->stringForKey("name"), category);
  }
  categoriesLoaded_ = true;
}

LObject* LedgerQueries::categoryWithFullName(std::string_view fullName) {
  loadCategories();
  const auto found = categoriesByFullName_.find(fullName);
  return found == categoriesByFullName_.end() ? nullptr : found->second;
}

LObject* LedgerQueries::categoryNamed(std::string_view name) {
  if (LObject* category = categoryWithFullName(name)) return category;
  const auto found = categoriesByOwnName_.find(name);
  return found == categoriesByOwnName_.end() ? nullptr : found->second;
}

void LedgerQueries::noteCategoryAdded(LObject& category) {
  if (!categoriesLoaded_) return;
  const std::string fullName = categoryFullName(&category);
  categoriesByFullName_.emplace(fullName, &category);
  const std::string ownName = category.stringForKey("name");
  const auto own = categoriesByOwnName_.find(ownName);
  if (own == categoriesByOwnName_.end()) {
    categoriesByOwnName_.emplace(ownName, &category);
  } else if (fullName < categoryFullName(own->second)) {
    own->second = &category;
  }
}

LObject* LedgerQueries::accountTypeForClass(std::string_view className, std::string_view name) {
  const std::string key = std::string(className) + "/" + std::string(name);
  if (const auto found = accountTypes_.find(key); found != accountTypes_.end()) {
    return found->second;
  }
  const EntityDescription* entity = Model::shared().entity(className);
  if (!entity || !entity->isKindOf("AccountType")) return nullptr;
  for (LObject* type : dataBase_.instancesOfClass(className)) {
    if (type->className() != className) continue;
    if (!name.empty() && type->stringForKey("name") != name) continue;
    accountTypes_.emplace(key, type);
    return type;
  }
  return nullptr;
}

bool LedgerQueries::isAccountOfKind(LObject* account, std::string_view className) {
  LObject* type = account ? account->objectForKey("type") : nullptr;
  return type && type->entity().isKindOf(className);
}

bool LedgerQueries::isInvestmentAccount(LObject& account) {
  return isAccountOfKind(&account, "Brokerage");
}

LObject* LedgerQueries::accountNamed(std::string_view name) {
  const auto found = dataBase_.instancesOfClass(
      "Account", {.predicate = Predicate::withFormat("name == %@", std::string(name)),
                  .sortDescriptors = {{"ledgeonId"}},
                  .fetchLimit = 1});
  return found.empty() ? nullptr : found.front();
}

void LedgerQueries::clearCacheForClass(const std::string& className) {
  const EntityDescription* entity = Model::shared().entity(className);
  if (!entity) return;
  if (entity->isKindOf("AccountType")) accountTypes_.clear();
  if (entity->isKindOf("CategoryTag")) {
    categoriesByFullName_.clear();
    categoriesByOwnName_.clear();
    categoriesLoaded_ = false;
  }
}

bool LedgerQueries::isRealTransaction(LObject& transaction) {
  return !transaction.isLObjectDeleted() &&
         !transaction.entity().isKindOf("SmartCashFlowTransaction");
}

LedgerQueries::AccountsByName LedgerQueries::accountsByName() {
  AccountsByName accounts;
  for (LObject* account :
       dataBase_.instancesOfClass("Account", {.sortDescriptors = {{"ledgeonId"}}})) {
    accounts.emplace(account->stringForKey("name"), account);
  }
  return accounts;
}

LedgerQueries::TransferLines LedgerQueries::transferLines() {
  TransferLines lines;
  for (LObject* line : dataBase_.instancesOfClass(
           "CashFlowTransactionEntry", {.predicate = Predicate::withFormat(
                                            "transfer != NULL AND transfer != %@", std::string()),
                                       .prefetchKeyPaths = {"parent"}})) {
    LObject* parent = line->objectForKey("parent");
    if (parent && isRealTransaction(*parent)) lines[parent].push_back(line);
  }
  for (auto& [transaction, ofTransaction] : lines) {
    sortBySequence(ofTransaction);
  }
  return lines;
}

LObject* LedgerQueries::receivingAccount(LObject& line, LObject& transaction,
                                         const AccountsByName& accounts) {
  const auto named = accounts.find(line.stringForKey("transfer"));
  LObject* into =
      named == accounts.end() ? transaction.objectForKey("targetAccount") : named->second;
  return into == transaction.objectForKey("account") ? nullptr : into;
}

std::vector<std::pair<LObject*, Amount>> LedgerQueries::movements(
    LObject& transaction, const std::vector<LObject*>& lines, const AccountsByName& accounts) {
  std::vector<std::pair<LObject*, Amount>> moved;
  LObject* own = transaction.objectForKey("account");
  LObject* target = transaction.objectForKey("targetAccount");
  if (own) moved.emplace_back(own, ownMovement(transaction));
  if (lines.empty()) {
    // No line says which part is the transfer: the whole of it is.
    if (target && target != own) {
      moved.emplace_back(target,
                         decimalNumberFrom(transaction, "amount").decimalNumberByNegating());
    }
    return moved;
  }
  for (LObject* line : lines) {
    if (LObject* into = receivingAccount(*line, transaction, accounts)) {
      moved.emplace_back(into, decimalNumberFrom(*line, "amount").decimalNumberByNegating());
    }
  }
  return moved;
}

void LedgerQueries::sortBySequence(std::vector<LObject*>& entries) {
  std::sort(entries.begin(), entries.end(), [](LObject* a, LObject* b) {
    return a->integerForKey("sequenceNumber") < b->integerForKey("sequenceNumber");
  });
}

std::vector<LObject*> LedgerQueries::transferLinesOf(LObject& transaction) {
  std::vector<LObject*> lines;
  if (!transaction.entity().isKindOf("CashFlowTransaction")) return lines;
  for (LObject* line : transaction.objectsForKey("entries")) {
    if (!line->isLObjectDeleted() && !line->stringForKey("transfer").empty()) {
      lines.push_back(line);
    }
  }
  sortBySequence(lines);
  return lines;
}

std::vector<LObject*> LedgerQueries::receivedTransactions(LObject& account) {
  std::set<LObject*> seen;
  std::vector<LObject*> found;
  auto add = [&](LObject* transaction) {
    if (transaction && isRealTransaction(*transaction) &&
        transaction->objectForKey("account") != &account && seen.insert(transaction).second) {
      found.push_back(transaction);
    }
  };
  for (LObject* transaction : account.objectsForKey("targetTransactions")) add(transaction);
  for (LObject* line : dataBase_.instancesOfClass(
           "CashFlowTransactionEntry",
           {.predicate = Predicate::withFormat("transfer == %@", account.stringForKey("name")),
           .prefetchKeyPaths = {"parent"}})) {
    add(line->objectForKey("parent"));
  }
  return found;
}

std::vector<LObject*> LedgerQueries::transactionsOfAccount(LObject& account) {
  std::vector<LObject*> found;
  for (LObject* transaction : account.objectsForKey("transactions")) {
    if (isRealTransaction(*transaction)) found.push_back(transaction);
  }
  const std::vector<LObject*> received = receivedTransactions(account);
  found.insert(found.end(), received.begin(), received.end());
  return found;
}

Amount LedgerQueries::balanceOfAccount(LObject& account) {
  Amount balance = Amount::zero();
  for (LObject* transaction : account.objectsForKey("transactions")) {
    if (isRealTransaction(*transaction)) {
      balance = balance.decimalNumberByAdding(ownMovement(*transaction));
    }
  }
  const AccountsByName accounts = accountsByName();
  for (LObject* transaction : receivedTransactions(account)) {
    for (const auto& [into, amount] :
         movements(*transaction, transferLinesOf(*transaction), accounts)) {
      if (into == &account) balance = balance.decimalNumberByAdding(amount);
    }
  }
  return balance;
}

Amount LedgerQueries::unitsForPosition(LObject& position, std::optional<Date> through) {
  Amount units = Amount::zero();
  for (LObject* transaction : position.objectsForKey("transactions")) {
    if (transaction->isLObjectDeleted()) continue;
    const Value entered = transaction->valueForKey("enteredDate");
    if (through && !entered.isNull() && entered.asDate() > *through) continue;
    const int direction =
        InvestmentTransactionType::forCode(transaction->integerForKey("type")).unitsDirection;
    const Amount moved = decimalNumberFrom(*transaction, "units").abs();
    if (direction > 0) units = units.decimalNumberByAdding(moved);
    if (direction < 0) units = units.decimalNumberBySubtracting(moved);
  }
  return units;
}

}  // namespace ledgeon
