#include "Commands/CreationRetraction.h"

#include "Commands/SetLObjectPropertyCommand.h"
#include "LObjects/LObject.h"

namespace ledgeon {

void CreationRetraction::retract(LObject& entity,
                                 const std::shared_ptr<LCommandDocument>& document) {
  clearRelationships_ = KVCommand::defaultClearRelationshipsCommandForEntity(entity, document);
  (void)clearRelationships_->doit();
  entity.deleteLObject();
}

void CreationRetraction::restore(LObject& entity) {
  entity.undeleteLObject();
  if (clearRelationships_) clearRelationships_->undoit();
}

}  // namespace ledgeon
