#include "Commands/Edit/EditCashFlowTagCommand.h"

#include "Commands/Edit/SetPropertyCommands.h"
#include "Commands/MainMenuTags.h"
#include "DataBase/DataBase.h"
#include "Utilities/Log.h"

namespace ledgeon {
namespace {

// The name the changes give the tag, or its present one.
std::string nameAfter(LObject& tag, const EditDict& changes) {
  const Value* name = changes.find("name");
  if (!name) return tag.stringForKey("name");
  return name->kind() == Value::Kind::String ? name->asString() : std::string();
}

}  // namespace

EditCashFlowTagCommand::EditCashFlowTagCommand(LObject& tag, EditDict changes,
                                               std::shared_ptr<LCommandDocument> document)
    : KVCommand(std::move(document)), changes_(std::move(changes)) {
  setSourceArray({&requireEntityOfClass(tag, kEntityClass, "EditCashFlowTagCommand")});
  setObjectClass(tag.className());
  setCommandTag(kMainMenuTagEdit);
}

bool EditCashFlowTagCommand::doit() {
  LObject* tag = firstSource();
  if (!tag || tag->isLObjectDeleted()) return false;
  ErrorDictionary errors;
  if (tag->validateEditData(changes_, errors)) validateChanges(*tag, changes_, errors);
  if (!errors.empty()) {
    failureReason_ = LObject::errorStringForErrorDictionary(errors);
    LLog("ERROR: %@ refused to edit %@: %@", className(), tag->shortDescription(), failureReason_);
    return false;
  }
  failureReason_.clear();
  edit_ = std::make_shared<SetCashFlowTagPropertyCommand>(*tag, changes_, document());
  return edit_->doit();
}

void EditCashFlowTagCommand::undoit() {
  if (edit_) edit_->undoit();
}

void EditCashFlowTagCommand::redoit() {
  if (edit_) (void)edit_->doit();
}

std::string EditCashFlowTagCommand::commandNoun() {
  LObject* tag = firstSource();
  return tag ? tag->singularNoun() : std::string();
}

void EditCashFlowTagCommand::validateChanges(LObject&, const EditDict&, ErrorDictionary&) {}

std::vector<LObject*> EditCashFlowTagCommand::tagsOfSameClass(LObject& tag) const {
  std::vector<LObject*> others;
  for (LObject* other : requireDocument().dataBase().instancesOfClass(tag.className())) {
    if (other != &tag && other->className() == tag.className()) others.push_back(other);
  }
  return others;
}

void EditCategoryTagCommand::validateChanges(LObject& tag, const EditDict& changes,
                                             ErrorDictionary& errors) {
  LObject* parent = tag.objectForKey("parentCategory");
  if (const Value* newParent = changes.find("parentCategory")) {
    parent = newParent->kind() == Value::Kind::Object ? newParent->asObject() : nullptr;
    for (LObject* ancestor = parent; ancestor;
         ancestor = ancestor->objectForKey("parentCategory")) {
      if (ancestor == &tag) {
        errors["parentCategory"].push_back("would make the category its own parent");
        return;
      }
    }
  }
  const std::string name = nameAfter(tag, changes);
  if (name.empty()) {
    errors["name"].push_back("must not be empty");
    return;
  }
  for (LObject* other : tagsOfSameClass(tag)) {
    if (other->objectForKey("parentCategory") == parent && other->stringForKey("name") == name) {
      errors["name"].push_back("is already used by another category with the same parent");
      return;
    }
  }
}

void EditUserTagCommand::validateChanges(LObject& tag, const EditDict& changes,
                                         ErrorDictionary& errors) {
  const std::string name = nameAfter(tag, changes);
  if (name.empty()) {
    errors["name"].push_back("must not be empty");
    return;
  }
  for (LObject* other : tagsOfSameClass(tag)) {
    if (other->stringForKey("name") == name) {
      errors["name"].push_back("is already used by another tag");
      return;
    }
  }
}

}  // namespace ledgeon
