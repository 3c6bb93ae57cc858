#pragma once

#include <memory>
#include <string>

#include "Commands/KVCommand.h"
#include "LObjects/Value.h"

namespace ledgeon {

// The base of commands that set values on entities.
class KVSetCommand : public KVCommand {
 public:
  using KVCommand::KVCommand;
  LEDGEON_COMMAND_CLASS(KVSetCommand, KVCommand)
};

// The generic edit: applies an edit dictionary to one entity inside a store transaction and
// undoes it with the inverse dictionary computed when the command was made.
class SetLObjectPropertyCommand : public KVSetCommand {
 public:
  SetLObjectPropertyCommand(LObject& entity, EditDict dictionary,
                            std::shared_ptr<LCommandDocument> document = nullptr);
  LEDGEON_COMMAND_CLASS(SetLObjectPropertyCommand, KVSetCommand)

  bool doit() override;
  void undoit() override;
  std::string commandNoun() override;
  // "%@ %@ %@": the verb, the property's name and the entity's noun, in title case.
  std::string undoNoun() override;

  const EditDict& editDict() const { return editDict_; }
  const EditDict& undoEditDict() const { return undoEditDict_; }

  // Every to-many relationship of the entity to the empty set, every to-one to null.
  static EditDict defaultClearRelationshipsCommandDictionaryForEntity(LObject& entity);

 private:
  bool apply(const EditDict& dictionary);

  EditDict editDict_;
  EditDict undoEditDict_;
};

}  // namespace ledgeon
