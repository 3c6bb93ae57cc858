#include "Commands/LCommandManager.h"

namespace ledgeon {

namespace {
constexpr size_t kLevelsOfUndo = 25;
}  // namespace

LCommandManager::LCommandManager(LCommandDocument& document, UndoManager& undoManager)
    : document_(document), undoManager_(undoManager) {}

std::unique_ptr<UndoManager> LCommandManager::createUndoManager() {
  auto undoManager = std::make_unique<UndoManager>();
  undoManager->setGroupsByEvent(false);
  undoManager->setLevelsOfUndo(kLevelsOfUndo);
  return undoManager;
}

bool LCommandManager::executeCommand(const std::shared_ptr<KVCommand>& command) {
  return runCommand(command, Mode::Do);
}

bool LCommandManager::undoCommand(const std::shared_ptr<KVCommand>& command) {
  return runCommand(command, Mode::Undo);
}

bool LCommandManager::redoCommand(const std::shared_ptr<KVCommand>& command) {
  return runCommand(command, Mode::Redo);
}

bool LCommandManager::runCommand(const std::shared_ptr<KVCommand>& command, Mode mode) {
  if (!command) return false;
  const std::string className = command->className();
  commandStack_.push_back(command);
  KVCommand::drainDeferredExecutionQueue();
  KVCommand::enablePrivateState(className);
  // Whatever happens, the command leaves the stack and its class's running count drops.
  struct Unwind {
    LCommandManager& manager;
    const std::string& className;
    ~Unwind() {
      KVCommand::disablePrivateState(className);
      manager.commandStack_.pop_back();
    }
  } unwind{*this, className};

  bool succeeded = true;
  switch (mode) {
    case Mode::Undo:
      command->undoit();
      break;
    case Mode::Redo:
      command->redoit();
      break;
    case Mode::Do:
      succeeded = command->doit();
      break;
  }
  if (!succeeded) return false;

  command->setDone(mode != Mode::Undo);
  if (!command->doesntDirtyDoc()) document_.commandDirtiedDocument();
  const int64_t behavior = command->undoBehavior();
  if (behavior == kUndoBehaviorClearsHistory) {
    undoManager_.removeAllActions();
  } else if (behavior == kUndoBehaviorUndoable && commandStack_.size() == 1) {
    registerWithUndoManager(command, mode);
  }
  return true;
}

void LCommandManager::registerWithUndoManager(const std::shared_ptr<KVCommand>& command,
                                              Mode mode) {
  undoManager_.beginUndoGrouping();
  LCommandTarget* target = &documentTarget_;
  if (auto window = command->commandWindow();
      window && command->invalidateWhenCommandWindowCloses()) {
    target = commandTargetForWindow(window, true);
  }
  std::string noun;
  if (mode == Mode::Undo) {
    undoManager_.registerUndoWithTarget(target, [this, command] { redoCommand(command); });
    command->setSavedRedoNoun(command->redoNoun());
    noun = command->savedRedoNoun();
  } else {
    undoManager_.registerUndoWithTarget(target, [this, command] { undoCommand(command); });
    command->setSavedUndoNoun(command->undoNoun());
    noun = command->savedUndoNoun();
  }
  undoManager_.setActionName(noun);
  undoManager_.endUndoGrouping();
}

LCommandTarget* LCommandManager::commandTargetForWindow(
    const std::shared_ptr<LCommandWindow>& window, bool create) {
  if (!window) return nullptr;
  const auto found = targetsByWindow_.find(window.get());
  if (found != targetsByWindow_.end()) return found->second.get();
  if (!create) return nullptr;
  auto target = std::make_unique<LCommandTarget>(LCommandTarget{window});
  return targetsByWindow_.emplace(window.get(), std::move(target)).first->second.get();
}

void LCommandManager::windowWillClose(const LCommandWindow& window) {
  const auto found = targetsByWindow_.find(&window);
  if (found == targetsByWindow_.end()) return;
  undoManager_.removeAllActionsWithTarget(found->second.get());
  targetsByWindow_.erase(found);
}

void LCommandManager::clear() {
  undoManager_.removeAllActions();
  targetsByWindow_.clear();
}

}  // namespace ledgeon
