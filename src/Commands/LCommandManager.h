#pragma once

#include <map>
#include <memory>
#include <vector>

#include "Commands/KVCommand.h"
#include "Commands/UndoManager.h"

namespace ledgeon {

// The object undo and redo actions are registered on; one per window, so that a closing window
// drops all of its actions together, and one for the document itself.
struct LCommandTarget {
  std::weak_ptr<LCommandWindow> window;
};

// Runs the commands of one document: keeps the stack of running commands (outermost first) and
// registers each outermost undoable command with the document's undo manager. Main thread only.
class LCommandManager final {
 public:
  LCommandManager(LCommandDocument& document, UndoManager& undoManager);
  LCommandManager(const LCommandManager&) = delete;
  LCommandManager& operator=(const LCommandManager&) = delete;

  // The undo manager a document starts with: explicit groups, 25 levels.
  static std::unique_ptr<UndoManager> createUndoManager();

  // Each returns the command's done() afterwards.
  bool executeCommand(const std::shared_ptr<KVCommand>& command);
  bool undoCommand(const std::shared_ptr<KVCommand>& command);
  bool redoCommand(const std::shared_ptr<KVCommand>& command);

  LCommandTarget* commandTargetForWindow(const std::shared_ptr<LCommandWindow>& window,
                                         bool create);
  // Drops every undo action registered on the window's target, and the target.
  void windowWillClose(const LCommandWindow& window);
  // Removes every undo action and every window target.
  void clear();

  UndoManager& undoManager() { return undoManager_; }
  LCommandDocument& document() { return document_; }
  const std::vector<std::shared_ptr<KVCommand>>& commandStack() const { return commandStack_; }
  LCommandTarget& documentTarget() { return documentTarget_; }

 private:
  enum class Mode { Do, Undo, Redo };
  bool runCommand(const std::shared_ptr<KVCommand>& command, Mode mode);
  void registerWithUndoManager(const std::shared_ptr<KVCommand>& command, Mode mode);

  LCommandDocument& document_;
  UndoManager& undoManager_;
  std::vector<std::shared_ptr<KVCommand>> commandStack_;
  std::map<const LCommandWindow*, std::unique_ptr<LCommandTarget>> targetsByWindow_;
  LCommandTarget documentTarget_;
};

}  // namespace ledgeon
