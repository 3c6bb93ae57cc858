#pragma once

#include <memory>
#include <string>

#include "Commands/CreationRetraction.h"
#include "Commands/KVCommand.h"

namespace ledgeon {

// Soft-deletes one entity after detaching it from everything it points to; undo undeletes it and
// restores every link.
class DeleteLObjectCommand : public KVCommand {
 public:
  explicit DeleteLObjectCommand(LObject& entity,
                                std::shared_ptr<LCommandDocument> document = nullptr);
  LEDGEON_COMMAND_CLASS(DeleteLObjectCommand, KVCommand)

  bool doit() override;
  void undoit() override;
  std::string commandNoun() override;

 private:
  CreationRetraction retraction_;
};

}  // namespace ledgeon
