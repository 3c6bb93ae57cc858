#include "Commands/GenericBatchCommand.h"

namespace ledgeon {

GenericBatchCommand::GenericBatchCommand(std::vector<std::shared_ptr<KVCommand>> commands,
                                         std::shared_ptr<LCommandDocument> document)
    : KVCommand(std::move(document)), commands_(std::move(commands)) {}

bool GenericBatchCommand::doit() {
  ScopedStoreTransaction transaction(requireDocument());
  succeeded_.clear();
  for (const auto& command : commands_) {
    if (command && command->execute()) succeeded_.push_back(command);
  }
  const bool committed = transaction.end().ok();
  return committed && !succeeded_.empty();
}

void GenericBatchCommand::undoit() {
  ScopedStoreTransaction transaction(requireDocument());
  for (auto command = succeeded_.rbegin(); command != succeeded_.rend(); ++command) {
    (*command)->undoit();
    (*command)->setDone(false);
  }
  (void)transaction.end();
}

void GenericBatchCommand::redoit() {
  ScopedStoreTransaction transaction(requireDocument());
  for (const auto& command : succeeded_) {
    command->redoit();
    command->setDone(true);
  }
  (void)transaction.end();
}

std::string GenericBatchCommand::undoNoun() {
  if (!savedUndoNoun().empty()) return savedUndoNoun();
  if (!batchUndoNoun_.empty()) return batchUndoNoun_;
  return succeeded_.empty() ? KVCommand::undoNoun() : succeeded_.front()->undoNoun();
}

}  // namespace ledgeon
