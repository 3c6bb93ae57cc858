#pragma once

#include <memory>
#include <string>

#include "Commands/CreationRetraction.h"
#include "Commands/KVCommand.h"
#include "LObjects/Value.h"

namespace ledgeon {

// The keys that say where a sub-command puts the entity it makes: the relationship of the parent
// ("entries"), the new entity's properties and its class.
inline constexpr const char* kLEditTransactionRelationshipKey = "LEditTransaction_RelationshipKey";
inline constexpr const char* kLEditTransactionProperties = "LEditTransaction_Properties";
inline constexpr const char* kLEditTransactionEntityClass = "LEditTransaction_EntityClass";

// The base of the commands that change one split line of a transaction.
class EditCashFlowTransactionEntryCommand : public KVCommand {
 public:
  using KVCommand::KVCommand;
  LEDGEON_COMMAND_CLASS(EditCashFlowTransactionEntryCommand, KVCommand)
  std::string commandNoun() override;
};

// Adds a new split line to a transaction: an entity of `entityClass` made from `properties` and
// added to the transaction's to-many `relationshipKey`. Run as a sub-command of a transaction's
// creation; undo retracts the line, redo restores the very same line.
class CreateCashFlowTransactionEntryCommand : public EditCashFlowTransactionEntryCommand {
 public:
  CreateCashFlowTransactionEntryCommand(LObject& transaction, std::string relationshipKey,
                                        std::string entityClass, EditDict properties,
                                        std::shared_ptr<LCommandDocument> document = nullptr);
  LEDGEON_COMMAND_CLASS(CreateCashFlowTransactionEntryCommand, EditCashFlowTransactionEntryCommand)

  bool doit() override;
  void undoit() override;
  void redoit() override;

  LObject* createdEntry() const { return entry_; }

 private:
  LObject& transaction_;
  std::string relationshipKey_;
  EditDict properties_;
  LObject* entry_ = nullptr;
  CreationRetraction retraction_;
};

}  // namespace ledgeon
