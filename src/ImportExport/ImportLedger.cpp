#include "ImportExport/ImportLedger.h"

#include <utility>

#include "Commands/CreateCashFlowTransactionCommand.h"
#include "Commands/CreateLObjectCommand.h"
#include "Commands/KeptCreationsCommand.h"
#include "DataBase/DataBase.h"
#include "LObjects/LObject.h"

namespace ledgeon {
namespace {

// The account-type class each type name stands for. Cash and other assets have no class of their
// own: they are plain account types told apart by name.
struct AccountTypeClass {
  const char* className;
  const char* name;  // the name given to an object made for it
};
AccountTypeClass accountTypeClassFor(const std::string& typeName) {
  static const std::map<std::string, AccountTypeClass, std::less<>> classes = {
      {"CHECKING", {"Checking", "Checking"}},
      {"SAVINGS", {"Savings", "Savings"}},
      {"CREDITCARD", {"CreditCard", "Credit Card"}},
      {"CREDITLINE", {"LineOfCredit", "Line of Credit"}},
      {"BROKERAGENORMAL", {"BrokerageNormal", "Brokerage"}},
      {"DEFERREDCOMPRETIREMENT401K", {"DeferredCompRetirement401K", "401(k)"}},
      {"LIABILITY", {"GenericLoan", "Loan"}},
      {"CASH", {"AccountType", "Cash"}},
      {"ASSET", {"AccountType", "Asset"}}};
  const auto found = classes.find(typeName);
  return found == classes.end() ? AccountTypeClass{"AccountType", "Other"} : found->second;
}

// Money owed (cards, credit lines, loans) counts against the household.
int64_t implicitSignFor(const EntityDescription& entity) {
  return entity.isKindOf("CreditCard") || entity.isKindOf("GenericLoan") ? -1 : 1;
}

}  // namespace

ImportLedger::ImportLedger(std::shared_ptr<LCommandDocument> document, std::string dataSource,
                           std::vector<std::shared_ptr<KVCommand>>& keptCommands)
    : document_(document),
      dataSource_(std::move(dataSource)),
      keptCommands_(keptCommands),
      queries_(document->dataBase()) {}

bool ImportLedger::run(const std::shared_ptr<KVCommand>& command) {
  if (!command->execute()) return false;
  if (!KeptCreationsCommand::canKeep(*command)) {
    keptCommands_.push_back(command);
    return true;
  }
  // A file's thousands of creations are kept as their objects alone, in runs between the other
  // kept commands so that undo still goes back in order.
  auto* creations = keptCommands_.empty()
                        ? nullptr
                        : dynamic_cast<KeptCreationsCommand*>(keptCommands_.back().get());
  if (!creations) {
    auto kept = std::make_shared<KeptCreationsCommand>(sharedDocument());
    creations = kept.get();
    keptCommands_.push_back(std::move(kept));
  }
  creations->keep(static_cast<const CreateLObjectCommand&>(*command));
  return true;
}

bool ImportLedger::runUnkept(const std::shared_ptr<KVCommand>& command) {
  return command->execute();
}

LObject* ImportLedger::created(const std::shared_ptr<KVCommand>& command) {
  return run(command) ? command->firstSource() : nullptr;
}

template <typename Cache>
LObject* ImportLedger::lookup(Cache& cache, const char* entityName, const std::string& key,
                              const char* keyPath) {
  // Misses are cached too: only this import adds objects while it runs, and it fills the cache
  // with what it makes.
  if (const auto found = cache.find(key); found != cache.end()) return found->second;
  const auto objects = sharedDocument()->dataBase().instancesOfClass(
      entityName,
      {.predicate = Predicate::withFormat("%K == %@", std::string(keyPath), key), .fetchLimit = 1});
  LObject* object = objects.empty() ? nullptr : objects.front();
  cache.emplace(key, object);
  return object;
}

LObject* ImportLedger::accountNamed(const std::string& name) {
  return lookup(accounts_, "Account", name);
}
LObject* ImportLedger::categoryNamed(const std::string& name) {
  return queries_.categoryNamed(name);
}
LObject* ImportLedger::tagNamed(const std::string& name) { return lookup(tags_, "Tag", name); }
LObject* ImportLedger::securityNamed(const std::string& name) {
  return lookup(securities_, "Security", name);
}

std::vector<LObject*> ImportLedger::securitiesWithTicker(const std::string& ticker) {
  return sharedDocument()->dataBase().instancesOfClass(
      "Security", {.predicate = Predicate::withFormat("ticker == %@", ticker)});
}

LObject* ImportLedger::positionFor(LObject& account, LObject& security) {
  const auto key = std::make_pair(&account, &security);
  if (const auto found = positions_.find(key); found != positions_.end()) return found->second;
  LObject* position = nullptr;
  for (LObject* candidate : account.objectsForKey("positions")) {
    if (candidate->objectForKey("security") == &security && !candidate->isLObjectDeleted()) {
      position = candidate;
      break;
    }
  }
  positions_.emplace(key, position);
  return position;
}

LObject* ImportLedger::accountTypeNamed(const std::string& typeName) {
  if (const auto found = accountTypes_.find(typeName); found != accountTypes_.end()) {
    return found->second;
  }
  // A document holds one account type object per class; the plain ones are told by name.
  const AccountTypeClass wanted = accountTypeClassFor(typeName);
  const bool plain = std::string_view(wanted.className) == "AccountType";
  LObject* type = queries_.accountTypeForClass(wanted.className, plain ? wanted.name : "");
  if (!type) {
    const EntityDescription& entity =
        sharedDocument()->dataBase().entityDescriptionForName(wanted.className);
    type = created(std::make_shared<CreateLObjectCommand>(
        wanted.className,
        EditDict{{"name", Value(wanted.name)},
                 {"dataSource", dataSource_},
                 {"implicitSign", Value(implicitSignFor(entity))}},
        sharedDocument()));
  }
  accountTypes_[typeName] = type;
  return type;
}

LObject* ImportLedger::createAccount(EditDict properties) {
  const Value* name = properties.find("name");
  LObject* account = created(
      std::make_shared<CreateLObjectCommand>("Account", std::move(properties), sharedDocument()));
  if (account && name) accounts_[account->stringForKey("name")] = account;
  return account;
}

LObject* ImportLedger::createCategory(EditDict properties) {
  LObject* category = created(std::make_shared<CreateLObjectCommand>(
      "CategoryTag", std::move(properties), sharedDocument()));
  if (category) queries_.noteCategoryAdded(*category);
  return category;
}

LObject* ImportLedger::createUserTag(EditDict properties) {
  LObject* tag = created(
      std::make_shared<CreateLObjectCommand>("UserTag", std::move(properties), sharedDocument()));
  if (tag) tags_[tag->stringForKey("name")] = tag;
  return tag;
}

LObject* ImportLedger::createSecurity(EditDict properties) {
  LObject* security = created(
      std::make_shared<CreateLObjectCommand>("Security", std::move(properties), sharedDocument()));
  if (security) securities_[security->stringForKey("name")] = security;
  return security;
}

LObject* ImportLedger::createPosition(LObject& account, LObject& security) {
  LObject* position =
      created(std::make_shared<CreateLObjectCommand>("Position",
                                                     EditDict{{"dataSource", dataSource_},
                                                              {"account", Value(&account)},
                                                              {"security", Value(&security)}},
                                                     sharedDocument()));
  if (position) positions_[{&account, &security}] = position;
  return position;
}

LObject* ImportLedger::createInvestmentTransaction(EditDict properties) {
  LObject* account = properties.find("account") ? properties.find("account")->asObject() : nullptr;
  LObject* transaction = created(std::make_shared<CreateTransactionCommand>(
      "InvestmentTransaction", std::move(properties), sharedDocument()));
  if (transaction && account) ++transactionsCreated_[account];
  return transaction;
}

LObject* ImportLedger::payeeNamed(const std::string& name, const char* entityName, bool create) {
  auto& cache = std::string_view(entityName) == "UserPayee" ? userPayees_ : fiPayees_;
  LObject* payee = lookup(cache, entityName, name);
  if (payee || !create) return payee;
  payee = created(std::make_shared<CreateLObjectCommand>(
      entityName, EditDict{{"name", Value(name)}, {"dataSource", dataSource_}}, sharedDocument()));
  cache[name] = payee;
  return payee;
}

EditDict ImportLedger::lineProperties(const ImportSplit& line) {
  EditDict properties{{"amount", Value(line.amount)}};
  if (line.isTransfer()) {
    properties.set("transfer", Value(line.transfer));
  } else if (!line.category.empty()) {
    LObject* category = categoryNamed(line.category);
    if (!category) {
      category = createCategory({{"name", Value(line.category)},
                                 {"dataSource", dataSource_},
                                 {"type", Value(line.amount.isNegative() ? 1 : 2)},
                                 {"editable", Value(true)},
                                 {"userAssignable", Value(true)},
                                 {"budgetable", Value(true)},
                                 {"trendable", Value(true)}});
    }
    if (category) properties.set("categoryTag", Value(category));
  }
  ObjectSet tags;
  for (const std::string& name : line.tags) {
    if (name.empty()) continue;
    LObject* tag = tagNamed(name);
    if (tag && !tag->entity().isKindOf("UserTag")) tag = nullptr;
    if (!tag) tag = createUserTag({{"name", Value(name)}, {"dataSource", dataSource_}});
    if (tag) tags.push_back(tag);
  }
  if (!tags.empty()) properties.set("userTags", Value(std::move(tags)));
  if (!line.note.empty()) properties.set("note", Value(line.note));
  return properties;
}

LObject* ImportLedger::createCashFlowTransaction(const ImportTransaction& transaction) {
  EditDict properties{{"dataSource", dataSource_},
                      {"account", Value(transaction.account)},
                      {"amount", Value(transaction.amount)},
                      {"reconcileStatus", Value(transaction.reconcileStatus)}};
  if (transaction.date) properties.set("enteredDate", Value(*transaction.date));
  if (!transaction.checkNumber.empty()) {
    properties.set("checkNumber", Value(transaction.checkNumber));
  }
  if (!transaction.note.empty()) properties.set("note", Value(transaction.note));
  if (!transaction.reference.empty()) properties.set("reference", Value(transaction.reference));
  if (!transaction.payee.empty()) {
    properties.set("userPayee", Value(payeeNamed(transaction.payee, "UserPayee", true)));
  }
  if (!transaction.bankPayee.empty()) {
    properties.set("fiPayee", Value(payeeNamed(transaction.bankPayee, "FIPayee", true)));
  }
  // A transfer is one transaction naming both accounts.
  if (LObject* other = transaction.transferAccount.empty()
                           ? nullptr
                           : accountNamed(transaction.transferAccount)) {
    properties.set("sendAccount", Value(transaction.account));
    properties.set("targetAccount", Value(other));
  }
  std::vector<EditDict> lines;
  lines.reserve(transaction.lines.size());
  for (const ImportSplit& line : transaction.lines) lines.push_back(lineProperties(line));
  LObject* created = this->created(std::make_shared<CreateCashFlowTransactionCommand>(
      std::move(properties), std::move(lines), sharedDocument()));
  if (created) ++transactionsCreated_[transaction.account];
  return created;
}

}  // namespace ledgeon
