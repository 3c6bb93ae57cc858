#include "Commands/UndoManager.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "Utilities/StringWithFormat.h"

namespace ledgeon {

void UndoManager::setLevelsOfUndo(size_t levels) {
  levelsOfUndo_ = levels;
  trimToLevels();
}

void UndoManager::beginUndoGrouping() { openGroups_.emplace_back(); }

void UndoManager::endUndoGrouping() {
  if (openGroups_.empty()) throw std::logic_error("endUndoGrouping without an open group");
  Group group = std::move(openGroups_.back());
  openGroups_.pop_back();
  if (group.entries.empty()) return;
  if (!openGroups_.empty()) {
    // A nested group is part of the enclosing one.
    auto& outer = openGroups_.back().entries;
    std::move(group.entries.begin(), group.entries.end(), std::back_inserter(outer));
    if (openGroups_.back().actionName.empty()) openGroups_.back().actionName = group.actionName;
    return;
  }
  pushGroup(std::move(group));
}

void UndoManager::registerUndoWithTarget(Target target, Action action) {
  const bool ownGroup = openGroups_.empty();
  if (ownGroup) beginUndoGrouping();
  openGroups_.back().entries.push_back({target, std::move(action)});
  if (ownGroup) endUndoGrouping();
}

void UndoManager::setActionName(std::string name) {
  if (!openGroups_.empty()) {
    openGroups_.back().actionName = std::move(name);
  } else if (undoing_ ? !redoStack_.empty() : !undoStack_.empty()) {
    // Named after the group closed: the newest group on the stack being filled.
    (undoing_ ? redoStack_ : undoStack_).back().actionName = std::move(name);
  }
}

void UndoManager::pushGroup(Group group) {
  if (undoing_) {
    redoStack_.push_back(std::move(group));
    return;
  }
  if (!redoing_) redoStack_.clear();  // a new change ends what could be redone
  undoStack_.push_back(std::move(group));
  trimToLevels();
}

void UndoManager::trimToLevels() {
  while (levelsOfUndo_ > 0 && undoStack_.size() > levelsOfUndo_) undoStack_.pop_front();
  while (levelsOfUndo_ > 0 && redoStack_.size() > levelsOfUndo_) redoStack_.pop_front();
}

void UndoManager::runTopGroup(std::deque<Group>& from, bool& flag) {
  if (!openGroups_.empty()) throw std::logic_error("undo or redo while a group is open");
  if (from.empty()) return;
  Group group = std::move(from.back());
  from.pop_back();
  flag = true;
  beginUndoGrouping();
  try {
    for (auto entry = group.entries.rbegin(); entry != group.entries.rend(); ++entry) {
      entry->action();
    }
  } catch (...) {
    openGroups_.clear();
    flag = false;
    throw;
  }
  // The inverse group keeps the name, unless its actions gave it another.
  if (openGroups_.back().actionName.empty()) openGroups_.back().actionName = group.actionName;
  endUndoGrouping();
  flag = false;
}

void UndoManager::undo() { runTopGroup(undoStack_, undoing_); }

void UndoManager::redo() { runTopGroup(redoStack_, redoing_); }

std::string UndoManager::undoActionName() const {
  return undoStack_.empty() ? std::string() : undoStack_.back().actionName;
}

std::string UndoManager::redoActionName() const {
  return redoStack_.empty() ? std::string() : redoStack_.back().actionName;
}

std::string UndoManager::undoMenuItemTitle() const {
  const std::string name = undoActionName();
  return name.empty() ? std::string("Undo") : stringWithFormat("Undo %@", name);
}

std::string UndoManager::redoMenuItemTitle() const {
  const std::string name = redoActionName();
  return name.empty() ? std::string("Redo") : stringWithFormat("Redo %@", name);
}

void UndoManager::removeAllActions() {
  undoStack_.clear();
  redoStack_.clear();
  for (auto& group : openGroups_) group.entries.clear();
}

void UndoManager::removeAllActionsWithTarget(Target target) {
  const auto dropTarget = [target](std::deque<Group>& stack) {
    for (auto& group : stack) {
      std::erase_if(group.entries, [target](const Entry& e) { return e.target == target; });
    }
    std::erase_if(stack, [](const Group& group) { return group.entries.empty(); });
  };
  dropTarget(undoStack_);
  dropTarget(redoStack_);
  for (auto& group : openGroups_) {
    std::erase_if(group.entries, [target](const Entry& e) { return e.target == target; });
  }
}

}  // namespace ledgeon
