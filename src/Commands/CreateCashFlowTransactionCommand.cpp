#include "Commands/CreateCashFlowTransactionCommand.h"

#include "Commands/EditCashFlowTransactionEntryCommand.h"
#include "DataBase/DataBase.h"
#include "LObjects/LObject.h"
#include "Platform/Preferences.h"
#include "Platform/Services.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {
namespace {

// A transaction created with a reconcile status keeps it as the user's own when this is on, so
// that later status computations don't undo what the user (or the imported file) said.
constexpr const char* kRecordReconcileStatusOverrideKey = "recordReconcileStatusOverride";

// The type code of a plain cash-flow transaction; investment transactions use their action codes.
constexpr int64_t kCashFlowTransactionTypeCode = 0;

// The texts that tell where a transaction came from; its lines carry them too.
constexpr const char* kSourceKeys[] = {"dataSource", "importSourceFileID", "importSourceID"};

}  // namespace

std::string CreateTransactionCommand::transactionClassForAccount(LObject& account) {
  LObject* type = account.objectForKey("type");
  for (const EntityDescription* entity = type ? &type->entity() : nullptr; entity;
       entity = entity->parent) {
    if (entity->name == "Brokerage") return "InvestmentTransaction";
  }
  return "CashFlowTransaction";
}

CreateCashFlowTransactionCommand::CreateCashFlowTransactionCommand(
    EditDict properties, std::vector<EditDict> creationLines,
    std::shared_ptr<LCommandDocument> document)
    : CreateCashFlowTransactionCommand("CashFlowTransaction", std::move(properties),
                                       std::move(creationLines), std::move(document)) {}

CreateCashFlowTransactionCommand::CreateCashFlowTransactionCommand(
    std::string entityClass, EditDict properties, std::vector<EditDict> creationLines,
    std::shared_ptr<LCommandDocument> document)
    : CreateTransactionCommand(std::move(entityClass), std::move(properties), std::move(document)),
      creationLines_(std::move(creationLines)) {}

std::string CreateCashFlowTransactionCommand::commandNoun() {
  return LocalizedString("UndoNoun_CreateCashFlowTransaction");
}

LObject* CreateCashFlowTransactionCommand::createObject(EditDict properties) {
  if (!properties.contains("amount")) properties.set("amount", Value(Amount()));
  if (!properties.contains("type")) properties.set("type", Value(kCashFlowTransactionTypeCode));
  if (duplicating_) properties.erase("syncID");
  if (const Value* status = properties.find("reconcileStatus");
      status && !status->isNull() &&
      Services::shared().preferences().boolForKey(kRecordReconcileStatusOverrideKey)) {
    properties.set("userStatusOverride", *status);
  }

  DataBase& dataBase = requireDocument().dataBase();
  const EntityDescription& entryEntity =
      dataBase.entityDescriptionForName("CashFlowTransactionEntry");
  LObject& transaction =
      LObject::createEntityInManagedObjectContext(dataBase, objectClass(), properties);
  // A transaction made this moment has no lines yet. Saying so spares the store a search through
  // every pending object when the first line is added (imports add hundreds of thousands).
  const int entriesSlot = transaction.entity().property("entries")->index;
  if (transaction.primitiveValue(entriesSlot).isNull()) {
    transaction.setPrimitiveValue(entriesSlot, Value(ObjectSet{}));
  }

  creationCommands_.clear();
  int64_t sequenceNumber = 0;
  for (EditDict line : creationLines_) {
    line.set("sequenceNumber", Value(sequenceNumber++));
    for (const char* key : kSourceKeys) {
      const Value* source = properties.find(key);
      if (source && source->kind() == Value::Kind::String && entryEntity.property(key)) {
        line.set(key, *source);
      }
    }
    auto lineCommand = std::make_shared<CreateCashFlowTransactionEntryCommand>(
        transaction, "entries", "CashFlowTransactionEntry", std::move(line), document());
    (void)lineCommand->execute();  // a nested store transaction: its end cannot fail
    creationCommands_.push_back(std::move(lineCommand));
  }
  return &transaction;
}

std::vector<LObject*> CreateCashFlowTransactionCommand::createdObjects() const {
  std::vector<LObject*> made = CreateTransactionCommand::createdObjects();
  for (const auto& line : creationCommands_) {
    if (LObject* entry = line->firstSource()) made.push_back(entry);
  }
  return made;
}

void CreateCashFlowTransactionCommand::undoCreation() {
  for (auto line = creationCommands_.rbegin(); line != creationCommands_.rend(); ++line) {
    (*line)->undoit();
  }
}

void CreateCashFlowTransactionCommand::redoCreation() {
  for (const auto& line : creationCommands_) line->redoit();
}

}  // namespace ledgeon
