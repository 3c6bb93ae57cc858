#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Commands/CreateLObjectCommand.h"

namespace ledgeon {

// The base of the commands that create transactions.
class CreateTransactionCommand : public CreateLObjectCommand {
 public:
  using CreateLObjectCommand::CreateLObjectCommand;
  LEDGEON_COMMAND_CLASS(CreateTransactionCommand, CreateLObjectCommand)

  // The transaction class an account's register holds: investment accounts hold
  // "InvestmentTransaction", every other kind "CashFlowTransaction".
  static std::string transactionClassForAccount(LObject& account);
};

// Creates a cash-flow transaction with its split lines. Each line dictionary becomes a
// CashFlowTransactionEntry (its `sequenceNumber` the line's position) made by a sub-command, so
// that undo and redo replay the very same objects.
class CreateCashFlowTransactionCommand : public CreateTransactionCommand {
 public:
  CreateCashFlowTransactionCommand(EditDict properties, std::vector<EditDict> creationLines,
                                   std::shared_ptr<LCommandDocument> document = nullptr);
  LEDGEON_COMMAND_CLASS(CreateCashFlowTransactionCommand, CreateTransactionCommand)
  std::string commandNoun() override;  // "UndoNoun_CreateCashFlowTransaction"

  // A duplicate is a new object for the cloud service: its syncID is dropped.
  void setDuplicating(bool duplicating) { duplicating_ = duplicating; }
  const std::vector<EditDict>& creationLines() const { return creationLines_; }
  std::vector<LObject*> createdObjects() const override;  // the transaction, then its lines
  const std::vector<std::shared_ptr<KVCommand>>& creationCommands() const {
    return creationCommands_;
  }

 protected:
  // For the commands that create a kind of cash-flow transaction (scheduled ones).
  CreateCashFlowTransactionCommand(std::string entityClass, EditDict properties,
                                   std::vector<EditDict> creationLines,
                                   std::shared_ptr<LCommandDocument> document);
  LObject* createObject(EditDict properties) override;
  void undoCreation() override;
  void redoCreation() override;

 private:
  std::vector<EditDict> creationLines_;
  std::vector<std::shared_ptr<KVCommand>> creationCommands_;
  bool duplicating_ = false;
};

}  // namespace ledgeon
