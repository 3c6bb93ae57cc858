#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Commands/KVCommand.h"

namespace ledgeon {

// Runs a list of commands as one undo step inside one store transaction. The commands that fail
// are left out; the batch succeeds when at least one succeeds. Undo undoes the succeeded commands
// last first; redo redoes them in their order. Imports and downloads gather their creations in
// one. Its menu name is the one it is given, else that of its first succeeded command.
class GenericBatchCommand : public KVCommand {
 public:
  LEDGEON_COMMAND_CLASS(GenericBatchCommand, KVCommand)
  explicit GenericBatchCommand(std::vector<std::shared_ptr<KVCommand>> commands,
                               std::shared_ptr<LCommandDocument> document = nullptr);

  bool doit() override;
  void undoit() override;
  void redoit() override;
  std::string undoNoun() override;

  void setBatchUndoNoun(std::string noun) { batchUndoNoun_ = std::move(noun); }
  const std::vector<std::shared_ptr<KVCommand>>& commands() const { return commands_; }
  const std::vector<std::shared_ptr<KVCommand>>& succeededCommands() const { return succeeded_; }

 private:
  std::vector<std::shared_ptr<KVCommand>> commands_;
  std::vector<std::shared_ptr<KVCommand>> succeeded_;
  std::string batchUndoNoun_;
};

}  // namespace ledgeon
