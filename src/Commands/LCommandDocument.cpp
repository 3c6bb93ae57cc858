#include "Commands/LCommandDocument.h"

#include "Commands/KVCommand.h"
#include "Commands/LCommandManager.h"
#include "DataBase/DataBase.h"

namespace ledgeon {
namespace {

constexpr std::string_view kSecurityDataUpdateDue = "securityDataUpdateDue";

std::weak_ptr<LCommandDocument>& currentDocumentSlot() {
  static std::weak_ptr<LCommandDocument> current;
  return current;
}

}  // namespace

void LCommandDocument::noteShouldUpdateSecurityDataAfterImporting() {
  dataBase().setValueForDocumentProperty(Value("1"), kSecurityDataUpdateDue);
}

bool LCommandDocument::securityDataUpdateDue() {
  const Value due = dataBase().valueForDocumentPropertyNamed(kSecurityDataUpdateDue);
  return due.kind() == Value::Kind::String && due.asString() == "1";
}

bool LCommandDocument::executeCommand(const std::shared_ptr<KVCommand>& command) {
  if (auto* manager = commandManager()) return manager->executeCommand(command);
  // A closing document has no undo history left to keep.
  command->setDone(command->doit());
  return command->done();
}

std::shared_ptr<LCommandDocument> LCommandDocument::currentDocument() {
  return currentDocumentSlot().lock();
}

void LCommandDocument::setCurrentDocument(const std::shared_ptr<LCommandDocument>& document) {
  currentDocumentSlot() = document;
}

}  // namespace ledgeon
