#include "Commands/Delete/DeleteTransactionCommand.h"

#include <algorithm>

#include "LObjects/LObject.h"

namespace ledgeon {

std::string DeleteTransactionCommand::deleteTransactionCommandClassForTransaction(
    LObject& transaction) {
  const EntityDescription& entity = transaction.entity();
  if (entity.isKindOf(DeleteSmartCashFlowTransactionCommand::kEntityClass)) {
    return DeleteSmartCashFlowTransactionCommand::kClassName;
  }
  if (entity.isKindOf(DeleteCashFlowTransactionCommand::kEntityClass)) {
    return DeleteCashFlowTransactionCommand::kClassName;
  }
  if (entity.isKindOf(DeleteInvestmentTransactionCommand::kEntityClass)) {
    return DeleteInvestmentTransactionCommand::kClassName;
  }
  return kClassName;
}

std::shared_ptr<DeleteTransactionCommand>
DeleteTransactionCommand::deleteTransactionCommandForTransaction(
    LObject& transaction, std::shared_ptr<LCommandDocument> document) {
  const std::string name = deleteTransactionCommandClassForTransaction(transaction);
  if (name == DeleteSmartCashFlowTransactionCommand::kClassName) {
    return std::make_shared<DeleteSmartCashFlowTransactionCommand>(transaction, document);
  }
  if (name == DeleteCashFlowTransactionCommand::kClassName) {
    return std::make_shared<DeleteCashFlowTransactionCommand>(transaction, document);
  }
  if (name == DeleteInvestmentTransactionCommand::kClassName) {
    return std::make_shared<DeleteInvestmentTransactionCommand>(transaction, document);
  }
  return std::make_shared<DeleteTransactionCommand>(transaction, document);
}

bool DeleteCashFlowTransactionCommand::doit() {
  LObject* transaction = firstSource();
  if (!transaction || transaction->isLObjectDeleted()) return false;
  ScopedStoreTransaction storeTransaction(requireDocument());
  const ObjectSet entries = transaction->objectsForKey("entries");
  std::vector<LObject*> lines(entries.begin(), entries.end());
  std::sort(lines.begin(), lines.end(), [](LObject* a, LObject* b) {
    return a->integerForKey("sequenceNumber") < b->integerForKey("sequenceNumber");
  });
  lineCommands_.clear();
  for (LObject* line : lines) {
    auto lineCommand =
        std::make_shared<Private_DeleteCashFlowTransactionEntryCommand>(*line, document());
    if (lineCommand->execute()) lineCommands_.push_back(std::move(lineCommand));
  }
  const bool deleted = DeleteTransactionCommand::doit();
  return storeTransaction.end().ok() && deleted;
}

void DeleteCashFlowTransactionCommand::undoit() {
  ScopedStoreTransaction storeTransaction(requireDocument());
  DeleteTransactionCommand::undoit();
  for (auto line = lineCommands_.rbegin(); line != lineCommands_.rend(); ++line) {
    (*line)->undoit();
  }
  (void)storeTransaction.end();
}

}  // namespace ledgeon
