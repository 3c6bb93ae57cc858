#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Commands/CreationRetraction.h"
#include "Commands/KVCommand.h"
#include "LObjects/Value.h"

namespace ledgeon {

// Creates one entity of `objectClass` from a property dictionary. Undo clears the new entity's
// relationships and soft-deletes it; redo undeletes it and restores the links, so redo brings back
// the very same object with its identifiers.
class CreateLObjectCommand : public KVCommand {
 public:
  CreateLObjectCommand(std::string objectClass, EditDict properties,
                       std::shared_ptr<LCommandDocument> document = nullptr);
  LEDGEON_COMMAND_CLASS(CreateLObjectCommand, KVCommand)

  bool doit() override;
  void undoit() override;
  void redoit() override;
  // The localised noun of the created class ("UndoNoun_<class>").
  std::string commandNoun() override;

  LObject* createdObject() const { return firstSource(); }
  // Every object the command made, in the order it made them.
  virtual std::vector<LObject*> createdObjects() const;
  const EditDict& properties() const { return properties_; }

 protected:
  // Creates the entity inside the command's store transaction; properties that don't fit the
  // entity are logged and nothing is created (null). Subclasses that build more than one object
  // override it (and undo what they built in undoCreation/redoCreation).
  virtual LObject* createObject(EditDict properties);
  virtual void undoCreation() {}
  virtual void redoCreation() {}

 private:
  EditDict properties_;
  CreationRetraction retraction_;
};

}  // namespace ledgeon
