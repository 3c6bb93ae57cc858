#include "Commands/LCommandClasses.h"

#include <algorithm>

#include "Commands/Create/CreateCommands.h"
#include "Commands/Delete/DeleteTransactionCommand.h"
#include "Commands/Duplicate/DuplicateLObjectCommand.h"
#include "Commands/Edit/EditCashFlowTagCommand.h"
#include "Commands/Edit/SetPropertyCommands.h"
#include "Commands/EditCashFlowTransactionEntryCommand.h"
#include "Commands/GenericBatchCommand.h"
#include "LObjects/Model.h"

namespace ledgeon {
namespace {

#define LEDGEON_CREATE_INFO(Name, Base, Entity) {#Name, #Base, Entity, LCommandFamily::Create},
#define LEDGEON_DELETE_INFO(Name, Base, Entity) {#Name, #Base, Entity, LCommandFamily::Delete},
#define LEDGEON_SET_INFO(Name, Base, Entity) {#Name, #Base, Entity, LCommandFamily::Set},

std::vector<LCommandClassInfo> buildTable() {
  std::vector<LCommandClassInfo> table = {
      {"KVSetCommand", "KVCommand", "", LCommandFamily::Other},
      {"CreateLObjectCommand", "KVCommand", "", LCommandFamily::Create},
      {"DeleteLObjectCommand", "KVCommand", "", LCommandFamily::Delete},
      {"SetLObjectPropertyCommand", "KVSetCommand", "", LCommandFamily::Set},
      {"DuplicateLObjectCommand", "KVCommand", "", LCommandFamily::Duplicate},
      {"GenericBatchCommand", "KVCommand", "", LCommandFamily::Other},
      {"EditCashFlowTagCommand", "KVCommand", "CashFlowTag", LCommandFamily::Edit},
      {"EditCategoryTagCommand", "EditCashFlowTagCommand", "CategoryTag", LCommandFamily::Edit},
      {"EditUserTagCommand", "EditCashFlowTagCommand", "UserTag", LCommandFamily::Edit},
      {"EditCashFlowTransactionEntryCommand", "KVCommand", "CashFlowTransactionEntry",
       LCommandFamily::Other},
      {"CreateCashFlowTransactionEntryCommand", "EditCashFlowTransactionEntryCommand",
       "CashFlowTransactionEntry", LCommandFamily::Other},
      {"CreateTransactionCommand", "CreateLObjectCommand", "Transaction", LCommandFamily::Create},
      {"CreateCashFlowTransactionCommand", "CreateTransactionCommand", "CashFlowTransaction",
       LCommandFamily::Create},
      {"CreateSmartCashFlowTransactionCommand", "CreateCashFlowTransactionCommand",
       "SmartCashFlowTransaction", LCommandFamily::Create},
      {"DeleteTransactionCommand", "DeleteLObjectCommand", "Transaction", LCommandFamily::Delete},
      {"DeleteCashFlowTransactionCommand", "DeleteTransactionCommand", "CashFlowTransaction",
       LCommandFamily::Delete},
      {"DeleteSmartCashFlowTransactionCommand", "DeleteCashFlowTransactionCommand",
       "SmartCashFlowTransaction", LCommandFamily::Delete},
      {"DeleteInvestmentTransactionCommand", "DeleteTransactionCommand", "InvestmentTransaction",
       LCommandFamily::Delete},
      {"DuplicateBudgetCommand", "DuplicateLObjectCommand", "Budget", LCommandFamily::Duplicate},
      {"DuplicateCashFlowTransactionCommand", "DuplicateLObjectCommand", "CashFlowTransaction",
       LCommandFamily::Duplicate},
      LEDGEON_CREATE_COMMANDS(LEDGEON_CREATE_INFO)  //
      LEDGEON_DELETE_COMMANDS(LEDGEON_DELETE_INFO)  //
      LEDGEON_SET_COMMANDS(LEDGEON_SET_INFO)};
  return table;
}

// The first class of `family` for the entity class or its nearest parent. Private deletions are
// sub-commands of other deletions, never chosen for an entity.
std::string classForEntity(LCommandFamily family, std::string_view entityClass) {
  for (const EntityDescription* entity = Model::shared().entity(entityClass); entity;
       entity = entity->parent) {
    for (const LCommandClassInfo& info : LCommandClasses::all()) {
      if (info.family == family && info.entityClass == entity->name &&
          !info.className.starts_with("Private_")) {
        return std::string(info.className);
      }
    }
  }
  return {};
}

}  // namespace

const std::vector<LCommandClassInfo>& LCommandClasses::all() {
  static const std::vector<LCommandClassInfo> table = buildTable();
  return table;
}

const LCommandClassInfo* LCommandClasses::info(std::string_view className) {
  const auto& table = all();
  const auto found = std::find_if(table.begin(), table.end(), [&](const LCommandClassInfo& info) {
    return info.className == className;
  });
  return found == table.end() ? nullptr : &*found;
}

bool LCommandClasses::isKindOfClass(std::string_view className, std::string_view baseName) {
  while (className != baseName) {
    const LCommandClassInfo* entry = info(className);
    if (!entry) return false;
    className = entry->baseClassName;
  }
  return true;
}

std::string LCommandClasses::createCommandObjectClass(std::string_view entityClass) {
  return classForEntity(LCommandFamily::Create, entityClass);
}

std::string LCommandClasses::deleteCommandObjectClass(std::string_view entityClass) {
  return classForEntity(LCommandFamily::Delete, entityClass);
}

std::string LCommandClasses::setCommandObjectClass(std::string_view entityClass) {
  return classForEntity(LCommandFamily::Set, entityClass);
}

std::string LCommandClasses::editCommandObjectClass(std::string_view entityClass) {
  std::string edit = classForEntity(LCommandFamily::Edit, entityClass);
  return edit.empty() ? setCommandObjectClass(entityClass) : edit;
}

std::shared_ptr<CreateLObjectCommand> LCommandClasses::makeCreateCommand(
    std::string_view className, EditDict properties, std::shared_ptr<LCommandDocument> document) {
#define LEDGEON_MAKE_CREATE(Name, Base, Entity) \
  if (className == #Name) return std::make_shared<Name>(std::move(properties), std::move(document));
  LEDGEON_CREATE_COMMANDS(LEDGEON_MAKE_CREATE)
#undef LEDGEON_MAKE_CREATE
  if (className == CreateCashFlowTransactionCommand::kClassName) {
    return std::make_shared<CreateCashFlowTransactionCommand>(
        std::move(properties), std::vector<EditDict>{}, std::move(document));
  }
  if (className == CreateSmartCashFlowTransactionCommand::kClassName) {
    return std::make_shared<CreateSmartCashFlowTransactionCommand>(
        std::move(properties), std::vector<EditDict>{}, std::move(document));
  }
  return nullptr;
}

std::shared_ptr<DeleteLObjectCommand> LCommandClasses::makeDeleteCommand(
    std::string_view className, LObject& entity, std::shared_ptr<LCommandDocument> document) {
#define LEDGEON_MAKE_DELETE(Name, Base, Entity) \
  if (className == #Name) return std::make_shared<Name>(entity, std::move(document));
  LEDGEON_DELETE_COMMANDS(LEDGEON_MAKE_DELETE)
  LEDGEON_MAKE_DELETE(DeleteTransactionCommand, , )
  LEDGEON_MAKE_DELETE(DeleteCashFlowTransactionCommand, , )
  LEDGEON_MAKE_DELETE(DeleteSmartCashFlowTransactionCommand, , )
  LEDGEON_MAKE_DELETE(DeleteInvestmentTransactionCommand, , )
#undef LEDGEON_MAKE_DELETE
  return nullptr;
}

std::shared_ptr<SetLObjectPropertyCommand> LCommandClasses::makeSetCommand(
    std::string_view className, LObject& entity, EditDict dictionary,
    std::shared_ptr<LCommandDocument> document) {
#define LEDGEON_MAKE_SET(Name, Base, Entity) \
  if (className == #Name)                    \
    return std::make_shared<Name>(entity, std::move(dictionary), std::move(document));
  LEDGEON_SET_COMMANDS(LEDGEON_MAKE_SET)
#undef LEDGEON_MAKE_SET
  return nullptr;
}

std::shared_ptr<CreateLObjectCommand> LCommandClasses::createCommandForEntity(
    std::string_view entityClass, EditDict properties, std::shared_ptr<LCommandDocument> document) {
  const std::string className = createCommandObjectClass(entityClass);
  auto command = makeCreateCommand(className, std::move(properties), std::move(document));
  // A parent's command (CreateTagCommand for an AccountTag) creates the entity asked for.
  if (command && command->objectClass() != entityClass)
    command->setObjectClass(std::string(entityClass));
  return command;
}

std::shared_ptr<DeleteLObjectCommand> LCommandClasses::deleteCommandForEntity(
    LObject& entity, std::shared_ptr<LCommandDocument> document) {
  return makeDeleteCommand(deleteCommandObjectClass(entity.className()), entity,
                           std::move(document));
}

std::shared_ptr<SetLObjectPropertyCommand> LCommandClasses::setCommandForEntity(
    LObject& entity, EditDict dictionary, std::shared_ptr<LCommandDocument> document) {
  return makeSetCommand(setCommandObjectClass(entity.className()), entity, std::move(dictionary),
                        std::move(document));
}

}  // namespace ledgeon
