#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Commands/CreationRetraction.h"
#include "Commands/KVCommand.h"

namespace ledgeon {

class CreateLObjectCommand;

// The undo record of many creations that are undone and redone together, such as the hundred
// thousand transactions of an imported file: only the objects made, in the order they were made,
// instead of a command object (with its dictionaries and sub-commands) per creation. Undo
// detaches and soft-deletes them last first, exactly as each creation's own undo would; redo
// brings the very same objects back. Run inside its parent's store transaction.
class KeptCreationsCommand final : public KVCommand {
 public:
  explicit KeptCreationsCommand(std::shared_ptr<LCommandDocument> document = nullptr);
  std::string className() const override { return "KeptCreationsCommand"; }

  // Whether a done command's undo is nothing but taking back what it made: then keeping its
  // objects here is as good as keeping the command.
  static bool canKeep(const KVCommand& command);
  // Records what a done creation made; canKeep(creation) must hold.
  void keep(const CreateLObjectCommand& creation);

  bool doit() override { return true; }
  void undoit() override;
  void redoit() override;

  size_t objectCount() const { return objects_.size(); }

 private:
  std::vector<LObject*> objects_;
  std::vector<CreationRetraction> retractions_;  // made by undo, used by redo
};

}  // namespace ledgeon
