#include "Commands/CreateLObjectCommand.h"

#include "Commands/MainMenuTags.h"
#include "DataBase/DataBase.h"
#include "LObjects/LObject.h"
#include "Utilities/Log.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {

CreateLObjectCommand::CreateLObjectCommand(std::string objectClass, EditDict properties,
                                           std::shared_ptr<LCommandDocument> document)
    : KVCommand(std::move(document)), properties_(std::move(properties)) {
  setObjectClass(std::move(objectClass));
  setCommandTag(kMainMenuTagCreate);
}

bool CreateLObjectCommand::doit() {
  ScopedStoreTransaction transaction(requireDocument());
  LObject* created = createObject(properties_);
  if (!created) {
    (void)transaction.end();
    return false;
  }
  setSourceArray({created});
  return transaction.end().ok();
}

LObject* CreateLObjectCommand::createObject(EditDict properties) {
  DataBase& dataBase = requireDocument().dataBase();
  ErrorDictionary errors;
  if (!LObject::validateCreateData(properties, dataBase.entityDescriptionForName(objectClass()),
                                   errors)) {
    LLog("ERROR: %@ refused to create %@: %@", className(), objectClass(),
         LObject::errorStringForErrorDictionary(errors));
    return nullptr;
  }
  return &LObject::createEntityInManagedObjectContext(dataBase, objectClass(), properties);
}

void CreateLObjectCommand::undoit() {
  LObject* created = createdObject();
  if (!created) return;
  ScopedStoreTransaction transaction(requireDocument());
  undoCreation();
  retraction_.retract(*created, document());
  (void)transaction.end();
}

void CreateLObjectCommand::redoit() {
  LObject* created = createdObject();
  if (!created) return;
  ScopedStoreTransaction transaction(requireDocument());
  retraction_.restore(*created);
  redoCreation();
  (void)transaction.end();
}

std::vector<LObject*> CreateLObjectCommand::createdObjects() const {
  if (LObject* created = createdObject()) return {created};
  return {};
}

std::string CreateLObjectCommand::commandNoun() {
  return LocalizedString("UndoNoun_" + objectClass());
}

}  // namespace ledgeon
