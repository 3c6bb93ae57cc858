#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace ledgeon {

// The undo and redo stacks of one document. Actions are registered inside explicit groups; a
// group is one Undo menu item with its action name. Undoing a group runs its actions last first,
// and whatever they register lands on the redo stack (and the other way round), so a command
// that registers its own inverse is undoable and redoable any number of times. Each action names
// the target it belongs to, so that a closing window can drop its actions. Main thread only.
class UndoManager final {
 public:
  using Action = std::function<void()>;
  using Target = const void*;

  // The platform grouped by event by default; ours only groups when asked, and this records the
  // setting for code that checks it.
  void setGroupsByEvent(bool groupsByEvent) { groupsByEvent_ = groupsByEvent; }
  bool groupsByEvent() const { return groupsByEvent_; }
  // The most groups the undo stack keeps; the oldest are forgotten beyond it. 0 is no limit.
  void setLevelsOfUndo(size_t levels);
  size_t levelsOfUndo() const { return levelsOfUndo_; }

  void beginUndoGrouping();
  void endUndoGrouping();  // an empty group is dropped
  size_t groupingLevel() const { return openGroups_.size(); }

  // Records an action in the open group (a registration outside a group gets a group of its
  // own). A registration that is neither an undo nor a redo clears the redo stack.
  void registerUndoWithTarget(Target target, Action action);
  void setActionName(std::string name);  // names the open group

  bool canUndo() const { return !undoStack_.empty(); }
  bool canRedo() const { return !redoStack_.empty(); }
  void undo();
  void redo();
  bool isUndoing() const { return undoing_; }
  bool isRedoing() const { return redoing_; }

  std::string undoActionName() const;
  std::string redoActionName() const;
  // "Undo Create Transaction", or "Undo" alone when the group has no name.
  std::string undoMenuItemTitle() const;
  std::string redoMenuItemTitle() const;
  size_t undoLevelCount() const { return undoStack_.size(); }
  size_t redoLevelCount() const { return redoStack_.size(); }

  void removeAllActions();
  // Drops every action of the target; groups left empty disappear.
  void removeAllActionsWithTarget(Target target);

 private:
  struct Entry {
    Target target;
    Action action;
  };
  struct Group {
    std::string actionName;
    std::vector<Entry> entries;
  };

  void runTopGroup(std::deque<Group>& from, bool& flag);
  void pushGroup(Group group);
  void trimToLevels();

  bool groupsByEvent_ = true;
  size_t levelsOfUndo_ = 0;
  bool undoing_ = false;
  bool redoing_ = false;
  std::vector<Group> openGroups_;
  std::deque<Group> undoStack_;  // newest at the back
  std::deque<Group> redoStack_;
};

}  // namespace ledgeon
