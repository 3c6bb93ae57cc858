#include "Commands/DeleteLObjectCommand.h"

#include "Commands/MainMenuTags.h"
#include "LObjects/LObject.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {

DeleteLObjectCommand::DeleteLObjectCommand(LObject& entity,
                                           std::shared_ptr<LCommandDocument> document)
    : KVCommand(std::move(document)) {
  setSourceArray({&entity});
  setObjectClass(entity.className());
  setCommandTag(kMainMenuTagDelete);
}

bool DeleteLObjectCommand::doit() {
  LObject* entity = firstSource();
  if (!entity || entity->isLObjectDeleted()) return false;
  ScopedStoreTransaction transaction(requireDocument());
  retraction_.retract(*entity, document());
  return transaction.end().ok();
}

void DeleteLObjectCommand::undoit() {
  LObject* entity = firstSource();
  if (!entity) return;
  ScopedStoreTransaction transaction(requireDocument());
  retraction_.restore(*entity);
  (void)transaction.end();
}

std::string DeleteLObjectCommand::commandNoun() {
  return LocalizedString("UndoNoun_" + objectClass());
}

}  // namespace ledgeon
