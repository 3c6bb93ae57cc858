#pragma once

#include <memory>

#include "Commands/LCommandDocument.h"

namespace ledgeon {

class LObject;
class SetLObjectPropertyCommand;

// How commands take back an entity without removing it from the store: detach it from everything
// it points to (keeping what was detached) and soft-delete it; restoring undeletes it and puts
// every link back. The object keeps its identity, so a redo brings back the very same one.
class CreationRetraction final {
 public:
  void retract(LObject& entity, const std::shared_ptr<LCommandDocument>& document);
  void restore(LObject& entity);

 private:
  std::shared_ptr<SetLObjectPropertyCommand> clearRelationships_;
};

}  // namespace ledgeon
