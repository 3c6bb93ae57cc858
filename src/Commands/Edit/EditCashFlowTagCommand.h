#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Commands/CommandFamilyEntity.h"
#include "Commands/KVCommand.h"
#include "LObjects/LObject.h"

namespace ledgeon {

class SetLObjectPropertyCommand;

// Edits a category or tag: checks the changes against the rules of the tag's kind, then applies
// them as one property-setting step. A refused edit is logged and leaves the tag as it was; the
// reason stays available for the user.
class EditCashFlowTagCommand : public KVCommand {
 public:
  LEDGEON_COMMAND_CLASS(EditCashFlowTagCommand, KVCommand)
  static constexpr const char* kEntityClass = "CashFlowTag";
  EditCashFlowTagCommand(LObject& tag, EditDict changes,
                         std::shared_ptr<LCommandDocument> document = nullptr);

  bool doit() override;
  void undoit() override;
  void redoit() override;
  std::string commandNoun() override;  // the tag's noun: "Category", "Tag"

  const EditDict& changes() const { return changes_; }
  const std::string& failureReason() const { return failureReason_; }

 protected:
  // Adds what is wrong with `changes` for `tag`; the entity's own checks come first.
  virtual void validateChanges(LObject& tag, const EditDict& changes, ErrorDictionary& errors);
  // The other live tags of the same class as `tag` that share its name space.
  std::vector<LObject*> tagsOfSameClass(LObject& tag) const;

 private:
  EditDict changes_;
  std::shared_ptr<SetLObjectPropertyCommand> edit_;
  std::string failureReason_;
};

// A category's name is unique among the categories of the same parent, and a category is never
// its own ancestor.
class EditCategoryTagCommand : public EditCashFlowTagCommand {
 public:
  LEDGEON_COMMAND_CLASS(EditCategoryTagCommand, EditCashFlowTagCommand)
  static constexpr const char* kEntityClass = "CategoryTag";
  EditCategoryTagCommand(LObject& category, EditDict changes,
                         std::shared_ptr<LCommandDocument> document = nullptr)
      : EditCashFlowTagCommand(requireEntityOfClass(category, kEntityClass, kClassName),
                               std::move(changes), std::move(document)) {}

 protected:
  void validateChanges(LObject& tag, const EditDict& changes, ErrorDictionary& errors) override;
};

// A user tag has a name, unique among the user tags.
class EditUserTagCommand : public EditCashFlowTagCommand {
 public:
  LEDGEON_COMMAND_CLASS(EditUserTagCommand, EditCashFlowTagCommand)
  static constexpr const char* kEntityClass = "UserTag";
  EditUserTagCommand(LObject& tag, EditDict changes,
                     std::shared_ptr<LCommandDocument> document = nullptr)
      : EditCashFlowTagCommand(requireEntityOfClass(tag, kEntityClass, kClassName),
                               std::move(changes), std::move(document)) {}

 protected:
  void validateChanges(LObject& tag, const EditDict& changes, ErrorDictionary& errors) override;
};

}  // namespace ledgeon
