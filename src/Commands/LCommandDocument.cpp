#include "Commands/LCommandDocument.h"

#include "Commands/KVCommand.h"
#include "Commands/LCommandManager.h"

namespace ledgeon {
namespace {

std::weak_ptr<LCommandDocument>& currentDocumentSlot() {
  static std::weak_ptr<LCommandDocument> current;
  return current;
}

}  // namespace

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
