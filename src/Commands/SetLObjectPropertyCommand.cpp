#include "Commands/SetLObjectPropertyCommand.h"

#include <cctype>

#include "Commands/MainMenuTags.h"
#include "LObjects/LObject.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {
namespace {

// "reconcileStatus" -> "Reconcile Status": a property key as words in title case.
std::string titleCaseWords(std::string_view key) {
  std::string words;
  for (size_t i = 0; i < key.size(); ++i) {
    const char c = key[i];
    if (i > 0 && std::isupper(static_cast<unsigned char>(c)) &&
        !std::isupper(static_cast<unsigned char>(key[i - 1]))) {
      words += ' ';
    }
    words += (i == 0 || words.back() == ' ')
                 ? static_cast<char>(std::toupper(static_cast<unsigned char>(c)))
                 : c;
  }
  return words;
}

}  // namespace

SetLObjectPropertyCommand::SetLObjectPropertyCommand(LObject& entity, EditDict dictionary,
                                                     std::shared_ptr<LCommandDocument> document)
    : KVSetCommand(std::move(document)),
      editDict_(std::move(dictionary)),
      undoEditDict_(entity.undoEditDictForDictionary(editDict_)) {
  setSourceArray({&entity});
  setObjectClass(entity.className());
  setCommandTag(kMainMenuTagChange);
}

bool SetLObjectPropertyCommand::doit() { return apply(editDict_); }

void SetLObjectPropertyCommand::undoit() { (void)apply(undoEditDict_); }

bool SetLObjectPropertyCommand::apply(const EditDict& dictionary) {
  LObject* entity = firstSource();
  if (!entity) return false;
  ScopedStoreTransaction transaction(requireDocument());
  entity->editEntityWithData(dictionary);
  return transaction.end().ok();
}

std::string SetLObjectPropertyCommand::commandNoun() {
  LObject* entity = firstSource();
  return entity ? entity->singularNoun() : std::string();
}

std::string SetLObjectPropertyCommand::undoNoun() {
  if (!savedUndoNoun().empty()) return savedUndoNoun();
  if (editDict_.empty()) return KVSetCommand::undoNoun();
  return stringWithFormat("%@ %@ %@", commandVerb(), titleCaseWords(editDict_.begin()->first),
                          titleCaseWords(commandNoun()));
}

EditDict SetLObjectPropertyCommand::defaultClearRelationshipsCommandDictionaryForEntity(
    LObject& entity) {
  EditDict dictionary;
  for (const std::string& key : entity.toManyLObjectRelationshipKeys()) {
    dictionary.set(key, Value(ToManyEdit::replacing({})));
  }
  for (const std::string& key : entity.toOneLObjectRelationshipKeys()) {
    dictionary.set(key, Value());
  }
  return dictionary;
}

}  // namespace ledgeon
