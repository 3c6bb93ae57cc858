#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Commands/LCommandDocument.h"
#include "Utilities/Date.h"

// Names a command class inside its definition: its className() and its place in the class tree.
#define LEDGEON_COMMAND_CLASS(Name, Base)                       \
  static constexpr const char* kClassName = #Name;              \
  std::string className() const override { return kClassName; } \
  bool isKindOfClass(std::string_view name) const override {    \
    return name == kClassName || Base::isKindOfClass(name);     \
  }

namespace ledgeon {

class LObject;
class SetLObjectPropertyCommand;

// A window (or sheet) in which commands are made. Commands tied to one die with it.
struct LCommandWindow {
  std::string title;
};

// The undo behaviours of a command.
enum : int64_t {
  kUndoBehaviorUndoable = 0,       // registered with the undo manager
  kUndoBehaviorClearsHistory = 1,  // not undoable; success empties the undo history
};

// One change the user can undo: how to do, undo and redo it and how to name it in the Undo and
// Redo menu items. Commands are shared objects: the undo manager keeps them alive while they are
// on its stacks. Run them with execute(); nested commands run inside another command's doit are
// part of their parent's undo step.
class KVCommand : public std::enable_shared_from_this<KVCommand> {
 public:
  // On the given document, or the current one when none is given; the class's default undo
  // behaviour, recordable, dirtying the document, no menu tag.
  explicit KVCommand(std::shared_ptr<LCommandDocument> document = nullptr);
  KVCommand(std::shared_ptr<LCommandDocument> document, int64_t undoBehavior, bool recordable,
            bool dirtiesDoc, uint32_t commandTag);
  virtual ~KVCommand() = default;
  KVCommand(const KVCommand&) = delete;
  KVCommand& operator=(const KVCommand&) = delete;

  // The command's class name ("CreateAccountCommand"): menus, private state and logs use it.
  virtual std::string className() const { return "KVCommand"; }
  // Whether the command is of the named class or of a class derived from it.
  virtual bool isKindOfClass(std::string_view name) const { return name == "KVCommand"; }

  // Through the document's command manager, or doit directly without a document. Returns done().
  bool execute();

  // What subclasses override. The base doit fails; the base undoit does nothing; the base redoit
  // does it again.
  virtual bool doit() { return false; }
  virtual void undoit() {}
  virtual void redoit() { (void)doit(); }

  // Menu names. The undo noun is fixed once the command is registered.
  virtual std::string undoNoun();
  virtual std::string pluralUndoNoun();
  virtual std::string redoNoun();
  virtual std::string commandVerb();  // the title of the main-menu item of commandTag
  virtual std::string commandNoun();  // a fixed localised text per class; the base has none

  // A command that detaches `entity` from everything it points to; undoing it restores the links.
  static std::shared_ptr<SetLObjectPropertyCommand> defaultClearRelationshipsCommandForEntity(
      LObject& entity, std::shared_ptr<LCommandDocument> document);

  // Fields.
  std::shared_ptr<LCommandDocument> document() const { return weakDocument_.lock(); }
  bool done() const { return done_; }
  void setDone(bool done) { done_ = done; }
  // Set on the command, or else the default of its class.
  int64_t undoBehavior() const;
  void setUndoBehavior(int64_t behavior) { undoBehavior_ = behavior; }
  bool recordable() const { return recordable_; }
  void setRecordable(bool recordable) { recordable_ = recordable; }
  bool doesntDirtyDoc() const { return doesntDirtyDoc_; }
  void setDoesntDirtyDoc(bool value) { doesntDirtyDoc_ = value; }
  uint32_t commandTag() const { return commandTag_; }
  void setCommandTag(uint32_t tag) { commandTag_ = tag; }
  uint32_t commandActionId() const { return commandActionId_; }
  void setCommandActionId(uint32_t id) { commandActionId_ = id; }
  const std::string& savedUndoNoun() const { return savedUndoNoun_; }
  void setSavedUndoNoun(std::string noun) { savedUndoNoun_ = std::move(noun); }
  const std::string& savedRedoNoun() const { return savedRedoNoun_; }
  void setSavedRedoNoun(std::string noun) { savedRedoNoun_ = std::move(noun); }
  const std::any& owner() const { return owner_; }
  void setOwner(std::any owner) { owner_ = std::move(owner); }
  const std::vector<LObject*>& sourceArray() const { return sourceArray_; }
  void setSourceArray(std::vector<LObject*> objects) { sourceArray_ = std::move(objects); }
  LObject* firstSource() const { return sourceArray_.empty() ? nullptr : sourceArray_.front(); }
  const std::string& fileURL() const { return fileURL_; }
  void setFileURL(std::string url) { fileURL_ = std::move(url); }
  const std::string& objectClass() const { return objectClass_; }
  void setObjectClass(std::string name) { objectClass_ = std::move(name); }
  Date commandCreationTime() const { return commandCreationTime_; }
  Date executionTime() const { return executionTime_; }
  void setExecutionTime(Date time) { executionTime_ = time; }
  std::shared_ptr<LCommandWindow> commandWindow() const { return commandWindow_.lock(); }
  void setCommandWindow(const std::shared_ptr<LCommandWindow>& window) { commandWindow_ = window; }
  bool windowWasMain() const { return windowWasMain_; }
  void setWindowWasMain(bool value) { windowWasMain_ = value; }
  bool invalidateWhenCommandWindowCloses() const { return invalidateWhenCommandWindowCloses_; }
  void setInvalidateWhenCommandWindowCloses(bool value) {
    invalidateWhenCommandWindowCloses_ = value;
  }
  bool allowCoalescing() const { return allowCoalescing_; }
  void setAllowCoalescing(bool value) { allowCoalescing_ = value; }
  bool deferBeginEndUndoGroup() const { return deferBeginEndUndoGroup_; }
  void setDeferBeginEndUndoGroup(bool value) { deferBeginEndUndoGroup_ = value; }
  // Script support: the result and error a script request gets back.
  const std::any& appleScriptResult() const { return appleScriptResult_; }
  void setAppleScriptResult(std::any result) { appleScriptResult_ = std::move(result); }
  uint32_t appleScriptErrorNumber() const { return appleScriptErrorNumber_; }
  void setAppleScriptErrorNumber(uint32_t number) { appleScriptErrorNumber_ = number; }
  const std::string& appleScriptErrorStringKey() const { return appleScriptErrorStringKey_; }
  void setAppleScriptErrorStringKey(std::string key) {
    appleScriptErrorStringKey_ = std::move(key);
  }

  // The default undo behaviour of the commands of a class, by class name.
  static void setDefaultUndoBehavior(const std::string& className, int64_t behavior);
  static int64_t defaultUndoBehavior(const std::string& className);

  // Whether a command of a class is running, counted so that nesting balances.
  static void enablePrivateState(const std::string& className);
  static void disablePrivateState(const std::string& className);
  static bool isPrivateStateEnabled(const std::string& className);

  // Script recording, for all commands.
  static bool disableRecording();  // returns the state before
  static void enableRecording();
  static void restoreRecordingState(bool disabled);
  static bool isRecordingDisabled();

  // Deferred messages: `message` runs after `delaySeconds`, or at the latest before the next
  // command runs. Returns the entry's id.
  uint64_t performAfterDelay(std::function<void()> message, double delaySeconds);
  // Runs every pending deferred message now, in due order.
  static void drainDeferredExecutionQueue();
  // Runs the messages that are due by now (the run loop calls it).
  static void executeDueDeferredMessages();
  static size_t pendingDeferredMessageCount();

  // The command notification carries the new command as its object.
  static constexpr const char* kCreatedNotification = "KVCommandCreatedNotification";

 protected:
  // The store-transaction bracket of the command's document (which must be open).
  LCommandDocument& requireDocument() const;

 private:
  std::weak_ptr<LCommandDocument> weakDocument_;
  bool done_ = false;
  std::optional<int64_t> undoBehavior_;
  bool recordable_ = true;
  bool doesntDirtyDoc_ = false;
  uint32_t commandTag_ = 0;
  uint32_t commandActionId_ = 0;
  std::string savedUndoNoun_;
  std::string savedRedoNoun_;
  std::any owner_;
  std::vector<LObject*> sourceArray_;
  std::string fileURL_;
  std::string objectClass_;
  Date commandCreationTime_;
  Date executionTime_;
  std::weak_ptr<LCommandWindow> commandWindow_;
  bool windowWasMain_ = false;
  bool invalidateWhenCommandWindowCloses_ = false;
  bool allowCoalescing_ = false;
  bool deferBeginEndUndoGroup_ = false;
  std::any appleScriptResult_;
  uint32_t appleScriptErrorNumber_ = 0;
  std::string appleScriptErrorStringKey_;
};

}  // namespace ledgeon
