// The named lookups other subsystems use.
#include <algorithm>
#include <map>

#include "DataBase/DataBase.h"

namespace ledgeon {

namespace {

LObject* first(const std::vector<LObject*>& objects) {
  return objects.empty() ? nullptr : objects.front();
}

}  // namespace

LObject* DataBase::transactionWithSyncID(std::string_view syncID, LObject* account) {
  const Predicate predicate = account ? Predicate::withFormat("syncID == %@ AND account == %@",
                                                              std::string(syncID), account)
                                      : Predicate::withFormat("syncID == %@", std::string(syncID));
  return first(instancesOfClass("Transaction", {.predicate = predicate, .fetchLimit = 1}));
}

LObject* DataBase::categoryTagWithSyncID(std::string_view syncID) {
  return first(instancesOfClass(
      "CategoryTag",
      {.predicate = Predicate::withFormat("syncID == %@", std::string(syncID)), .fetchLimit = 1}));
}

LObject* DataBase::categoryTagWithCategoryID(int64_t categoryID) {
  return first(instancesOfClass(
      "CategoryTag",
      {.predicate = Predicate::withFormat("categoryID == %ld", categoryID), .fetchLimit = 1}));
}

LObject* DataBase::userTagWithSyncID(std::string_view syncID) {
  return first(instancesOfClass(
      "UserTag",
      {.predicate = Predicate::withFormat("syncID == %@", std::string(syncID)), .fetchLimit = 1}));
}

bool DataBase::transactionExistsInAccount(LObject* account, std::string_view fitid) {
  // A downloaded transaction keeps its FITID in the server identifier of the online record.
  const Predicate predicate = Predicate::withFormat(
      "account == %@ AND (onlineBankingServerID == %@ OR fiTransaction.fiTransactionID == %@)",
      account, std::string(fitid), std::string(fitid));
  return !instancesOfClass("Transaction",
                           {.predicate = predicate, .fetchLimit = 1, .includeDeleted = true})
              .empty();
}

LObject* DataBase::undeletedTransactionWithImportFileID(std::string_view fileID,
                                                        std::string_view sourceID) {
  return first(instancesOfClass(
      "Transaction",
      {.predicate = Predicate::withFormat("importSourceFileID == %@ AND importSourceID == %@",
                                          std::string(fileID), std::string(sourceID)),
       .fetchLimit = 1}));
}

LObject* DataBase::accountOfType(std::string_view typeName, std::string_view bid,
                                 std::string_view accountNumber) {
  const EntityDescription* type = Model::shared().entity(typeName);
  const auto candidates = instancesOfClass(
      "Account", {.predicate = Predicate::withFormat(
                      "bankRoutingNumber == %@ AND onlineBankingAccountNumber == %@",
                      std::string(bid), std::string(accountNumber))});
  for (LObject* account : candidates) {
    LObject* accountType = account->objectForKey("type");
    if (!type || !accountType) continue;
    accountType->valueForKey("implicitSign");  // a fault learns its class when fulfilled
    if (accountType->entity().isKindOf(*type)) return account;
  }
  return nullptr;
}

std::vector<LObject*> DataBase::recentCategoriesForPayee(LObject* payee, LObject* account,
                                                         size_t limit) {
  std::vector<LObject*> result;
  if (!payee) return result;
  const Predicate predicate =
      account ? Predicate::withFormat("userPayee == %@ AND account == %@", payee, account)
              : Predicate::withFormat("userPayee == %@", payee);
  const auto transactions = instancesOfClass(
      "CashFlowTransaction",
      {.predicate = predicate, .sortDescriptors = {{"enteredDate", false}}, .fetchLimit = 200});
  std::map<LObject*, std::pair<size_t, size_t>> uses;  // category -> (count, first seen)
  for (LObject* transaction : transactions) {
    for (LObject* entry : transaction->objectsForKey("entries")) {
      if (entry->isLObjectDeleted()) continue;
      LObject* category = entry->objectForKey("categoryTag");
      if (!category) continue;
      auto& use = uses.try_emplace(category, 0, uses.size()).first->second;
      ++use.first;
    }
  }
  for (const auto& entry : uses) result.push_back(entry.first);
  std::sort(result.begin(), result.end(), [&uses](LObject* a, LObject* b) {
    const auto& x = uses[a];
    const auto& y = uses[b];
    return x.first != y.first ? x.first > y.first : x.second < y.second;
  });
  if (result.size() > limit) result.resize(limit);
  return result;
}

}  // namespace ledgeon
