#include "Commands/KeptCreationsCommand.h"

#include <typeinfo>

#include "Commands/CreateCashFlowTransactionCommand.h"
#include "Commands/CreateLObjectCommand.h"

namespace ledgeon {

KeptCreationsCommand::KeptCreationsCommand(std::shared_ptr<LCommandDocument> document)
    : KVCommand(std::move(document)) {}

bool KeptCreationsCommand::canKeep(const KVCommand& command) {
  // Exactly these classes: a subclass may undo more than its objects.
  const std::type_info& type = typeid(command);
  return command.done() &&
         (type == typeid(CreateLObjectCommand) || type == typeid(CreateTransactionCommand) ||
          type == typeid(CreateCashFlowTransactionCommand));
}

void KeptCreationsCommand::keep(const CreateLObjectCommand& creation) {
  const std::vector<LObject*> made = creation.createdObjects();
  objects_.insert(objects_.end(), made.begin(), made.end());
}

void KeptCreationsCommand::undoit() {
  retractions_.assign(objects_.size(), CreationRetraction());
  auto doc = document();
  for (size_t i = objects_.size(); i-- > 0;) retractions_[i].retract(*objects_[i], doc);
}

void KeptCreationsCommand::redoit() {
  for (size_t i = 0; i < objects_.size(); ++i) retractions_[i].restore(*objects_[i]);
  retractions_.clear();
}

}  // namespace ledgeon
