#include "Commands/KVCommand.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <stdexcept>

#include "Commands/LCommandManager.h"
#include "Commands/SetLObjectPropertyCommand.h"
#include "Utilities/Clock.h"
#include "Utilities/NotificationCenter.h"
#include "Utilities/StringWithFormat.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {
namespace {

// Class-wide state of the commands. Commands run on the main thread, except the deferred queue,
// which any thread may add to.
struct ClassWideState {
  std::map<std::string, int64_t, std::less<>> defaultUndoBehaviors;
  std::map<std::string, int, std::less<>> privateStates;
  bool recordingDisabled = false;
};

ClassWideState& classWideState() {
  static ClassWideState state;
  return state;
}

// One deferred message; kept in the queue sorted by the time it is due.
struct DeferredMessage {
  std::weak_ptr<KVCommand> target;
  std::function<void()> message;
  double time = 0;  // due, in seconds since the reference date
  uint64_t id = 0;
  bool executed = false;
};

// The queue's guard, the lock known as "KVCommandDeferredExecution Lock String".
std::mutex& deferredExecutionLock() {
  static std::mutex lock;
  return lock;
}

std::vector<DeferredMessage>& deferredQueue() {
  static std::vector<DeferredMessage> queue;
  return queue;
}

// Takes the messages due by `until` out of the queue (all of them when `until` is null).
std::vector<DeferredMessage> takeDeferredMessages(const double* until) {
  std::lock_guard guard(deferredExecutionLock());
  auto& queue = deferredQueue();
  const auto firstNotDue =
      until ? std::find_if(queue.begin(), queue.end(),
                           [until](const DeferredMessage& m) { return m.time > *until; })
            : queue.end();
  std::vector<DeferredMessage> due(std::make_move_iterator(queue.begin()),
                                   std::make_move_iterator(firstNotDue));
  queue.erase(queue.begin(), firstNotDue);
  for (auto& message : due) message.executed = true;
  return due;
}

void executeDeferredMessages(std::vector<DeferredMessage> messages) {
  for (auto& message : messages) {
    // A message whose command is gone has nothing left to act on.
    if (!message.target.expired()) message.message();
  }
}

}  // namespace

KVCommand::KVCommand(std::shared_ptr<LCommandDocument> document)
    : KVCommand(std::move(document), kUndoBehaviorUndoable, true, true, 0) {
  undoBehavior_.reset();  // the class's default, looked up once the class is known
}

int64_t KVCommand::undoBehavior() const {
  return undoBehavior_ ? *undoBehavior_ : defaultUndoBehavior(className());
}

KVCommand::KVCommand(std::shared_ptr<LCommandDocument> document, int64_t undoBehavior,
                     bool recordable, bool dirtiesDoc, uint32_t commandTag)
    : weakDocument_(document ? document : LCommandDocument::currentDocument()),
      undoBehavior_(undoBehavior),
      recordable_(recordable),
      doesntDirtyDoc_(!dirtiesDoc),
      commandTag_(commandTag),
      commandCreationTime_(Clock::now()) {
  NotificationCenter::defaultCenter().postNotificationName(kCreatedNotification, this);
}

bool KVCommand::execute() {
  if (auto document = this->document()) return document->executeCommand(shared_from_this());
  done_ = doit();
  return done_;
}

std::string KVCommand::commandVerb() {
  if (commandTag_ == 0) return {};
  const std::string key = std::to_string(commandTag_);
  const std::string title = LocalizedString(key, "MainMenuCommands");
  return title == key ? std::string() : title;
}

std::string KVCommand::commandNoun() { return {}; }

std::string KVCommand::undoNoun() {
  if (!savedUndoNoun_.empty()) return savedUndoNoun_;
  const std::string verb = commandVerb();
  const std::string noun = commandNoun();
  if (verb.empty() || noun.empty()) return verb.empty() ? noun : verb;
  return stringWithFormat("%@ %@", verb, noun);
}

std::string KVCommand::pluralUndoNoun() { return undoNoun(); }

std::string KVCommand::redoNoun() { return savedRedoNoun_.empty() ? undoNoun() : savedRedoNoun_; }

std::shared_ptr<SetLObjectPropertyCommand> KVCommand::defaultClearRelationshipsCommandForEntity(
    LObject& entity, std::shared_ptr<LCommandDocument> document) {
  return std::make_shared<SetLObjectPropertyCommand>(
      entity,
      SetLObjectPropertyCommand::defaultClearRelationshipsCommandDictionaryForEntity(entity),
      std::move(document));
}

LCommandDocument& KVCommand::requireDocument() const {
  auto document = weakDocument_.lock();
  if (!document) throw std::logic_error(className() + " has no open document");
  return *document;
}

void KVCommand::setDefaultUndoBehavior(const std::string& className, int64_t behavior) {
  classWideState().defaultUndoBehaviors[className] = behavior;
}

int64_t KVCommand::defaultUndoBehavior(const std::string& className) {
  const auto& behaviors = classWideState().defaultUndoBehaviors;
  const auto found = behaviors.find(className);
  return found == behaviors.end() ? kUndoBehaviorUndoable : found->second;
}

void KVCommand::enablePrivateState(const std::string& className) {
  ++classWideState().privateStates[className];
}

void KVCommand::disablePrivateState(const std::string& className) {
  auto& states = classWideState().privateStates;
  const auto found = states.find(className);
  if (found == states.end() || found->second == 0) {
    throw std::logic_error("disablePrivateState without enablePrivateState for " + className);
  }
  if (--found->second == 0) states.erase(found);
}

bool KVCommand::isPrivateStateEnabled(const std::string& className) {
  return classWideState().privateStates.contains(className);
}

bool KVCommand::disableRecording() {
  const bool before = classWideState().recordingDisabled;
  classWideState().recordingDisabled = true;
  return before;
}

void KVCommand::enableRecording() { classWideState().recordingDisabled = false; }

void KVCommand::restoreRecordingState(bool disabled) {
  classWideState().recordingDisabled = disabled;
}

bool KVCommand::isRecordingDisabled() { return classWideState().recordingDisabled; }

uint64_t KVCommand::performAfterDelay(std::function<void()> message, double delaySeconds) {
  static uint64_t nextId = 1;
  std::lock_guard guard(deferredExecutionLock());
  DeferredMessage entry{weak_from_this(), std::move(message),
                        Clock::now().timeIntervalSinceReferenceDate() + delaySeconds, nextId++,
                        false};
  auto& queue = deferredQueue();
  const auto position = std::upper_bound(
      queue.begin(), queue.end(), entry.time,
      [](double time, const DeferredMessage& queued) { return time < queued.time; });
  const uint64_t id = entry.id;
  queue.insert(position, std::move(entry));
  return id;
}

void KVCommand::drainDeferredExecutionQueue() {
  executeDeferredMessages(takeDeferredMessages(nullptr));
}

void KVCommand::executeDueDeferredMessages() {
  const double now = Clock::now().timeIntervalSinceReferenceDate();
  executeDeferredMessages(takeDeferredMessages(&now));
}

size_t KVCommand::pendingDeferredMessageCount() {
  std::lock_guard guard(deferredExecutionLock());
  return deferredQueue().size();
}

}  // namespace ledgeon
