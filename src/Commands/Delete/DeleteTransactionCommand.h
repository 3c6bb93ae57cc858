#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Commands/CommandFamilyEntity.h"
#include "Commands/Delete/DeleteCommands.h"

namespace ledgeon {

// Deletes a transaction. Use deleteTransactionCommandForTransaction: the command class depends on
// the kind of transaction.
class DeleteTransactionCommand : public DeleteLObjectCommand {
 public:
  LEDGEON_COMMAND_CLASS(DeleteTransactionCommand, DeleteLObjectCommand)
  static constexpr const char* kEntityClass = "Transaction";
  explicit DeleteTransactionCommand(LObject& transaction,
                                    std::shared_ptr<LCommandDocument> document = nullptr)
      : DeleteLObjectCommand(requireEntityOfClass(transaction, kEntityClass, kClassName),
                             std::move(document)) {}

  // The class that deletes `transaction`: by its kind, cash-flow (scheduled or not) or investment.
  static std::string deleteTransactionCommandClassForTransaction(LObject& transaction);
  // A command of that class for the transaction.
  static std::shared_ptr<DeleteTransactionCommand> deleteTransactionCommandForTransaction(
      LObject& transaction, std::shared_ptr<LCommandDocument> document = nullptr);
};

// Deletes a cash-flow transaction together with its split lines; undo brings back the transaction
// and every line with their links.
class DeleteCashFlowTransactionCommand : public DeleteTransactionCommand {
 public:
  LEDGEON_COMMAND_CLASS(DeleteCashFlowTransactionCommand, DeleteTransactionCommand)
  static constexpr const char* kEntityClass = "CashFlowTransaction";
  explicit DeleteCashFlowTransactionCommand(LObject& transaction,
                                            std::shared_ptr<LCommandDocument> document = nullptr)
      : DeleteTransactionCommand(requireEntityOfClass(transaction, kEntityClass, kClassName),
                                 std::move(document)) {}

  bool doit() override;
  void undoit() override;

 private:
  std::vector<std::shared_ptr<KVCommand>> lineCommands_;
};

class DeleteSmartCashFlowTransactionCommand : public DeleteCashFlowTransactionCommand {
 public:
  LEDGEON_COMMAND_CLASS(DeleteSmartCashFlowTransactionCommand, DeleteCashFlowTransactionCommand)
  static constexpr const char* kEntityClass = "SmartCashFlowTransaction";
  explicit DeleteSmartCashFlowTransactionCommand(
      LObject& transaction, std::shared_ptr<LCommandDocument> document = nullptr)
      : DeleteCashFlowTransactionCommand(
            requireEntityOfClass(transaction, kEntityClass, kClassName), std::move(document)) {}
};

class DeleteInvestmentTransactionCommand : public DeleteTransactionCommand {
 public:
  LEDGEON_COMMAND_CLASS(DeleteInvestmentTransactionCommand, DeleteTransactionCommand)
  static constexpr const char* kEntityClass = "InvestmentTransaction";
  explicit DeleteInvestmentTransactionCommand(LObject& transaction,
                                              std::shared_ptr<LCommandDocument> document = nullptr)
      : DeleteTransactionCommand(requireEntityOfClass(transaction, kEntityClass, kClassName),
                                 std::move(document)) {}
};

}  // namespace ledgeon
