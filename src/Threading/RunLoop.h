#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace ledgeon {

// A queue of calls run by the thread that created the loop, when that thread turns it (runOnce,
// runUntil). Any thread may add calls; only the owner runs them. The first loop made in the
// process becomes the main run loop: the document, the commands and every completion of
// asynchronous work belong to it.
class RunLoop final {
 public:
  using Task = std::function<void()>;
  using Clock = std::chrono::steady_clock;
  using DelayedCallID = uint64_t;

  RunLoop();
  // On the owner thread only. Calls still queued are dropped, and threads waiting for one of
  // them are released.
  ~RunLoop();
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;

  // The main run loop, or null before one is made (or after it is gone).
  static RunLoop* main();
  static bool isMainThread();
  bool isOwnerThread() const { return std::this_thread::get_id() == owner_; }

  // Runs `fn` on the owner thread. With `wait`, returns once it has run, rethrowing what it
  // threw; from the owner thread itself it runs at once. Returns false when the loop went away
  // before running it.
  bool perform(Task fn, bool wait);
  // Runs `fn` on the owner thread once `seconds` have passed and the loop turns. `target` (any
  // address, usually the object the call works for) lets cancelPerformRequests drop the call
  // when that object goes away.
  DelayedCallID performAfterDelay(Task fn, double seconds, const void* target = nullptr);
  // Drops a delayed call that has not run yet; false when it already ran or was dropped.
  bool cancelPerformRequest(DelayedCallID id);
  // Drops every delayed call aimed at `target` that has not run yet; returns how many.
  size_t cancelPerformRequests(const void* target);

  // Runs the calls that are due, waiting up to `timeout` for the first one when none is.
  // Returns how many ran. Owner thread only.
  size_t runOnce(Clock::duration timeout = Clock::duration::zero());
  // Turns the loop until `done()` holds (checked before waiting and after each call) or the
  // deadline passes; true when `done()` held. Owner thread only; a call may run the loop again.
  bool runUntil(const std::function<bool()>& done,
                Clock::time_point deadline = Clock::time_point::max());
  bool runUntil(Clock::time_point deadline);
  // Makes a waiting runOnce/runUntil look at `done()` again.
  void wakeUp();

  // Calls queued or delayed and not yet run.
  size_t pendingCount() const;

 private:
  struct Waiter;
  struct Delayed {
    Task fn;
    const void* target = nullptr;
    DelayedCallID id = 0;
  };
  struct Entry {
    Task fn;
    std::shared_ptr<Waiter> waiter;
  };

  friend bool performOnMainThread(Task fn, bool wait);

  void enqueue(Entry entry);
  void checkOwner(const char* operation) const;
  // The next call to run, when one is due; under the lock.
  bool takeDueLocked(Entry& entry, Clock::time_point now);
  void runEntry(Entry& entry);
  // Waits until there may be work or `until`; under the lock.
  void waitLocked(std::unique_lock<std::mutex>& lock, Clock::time_point until);

  std::thread::id owner_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Entry> queue_;
  // Due time then order of arrival: delayed calls due at the same moment run in the order given.
  std::map<std::pair<Clock::time_point, DelayedCallID>, Delayed> delayed_;
  DelayedCallID nextID_ = 1;
  uint64_t wakeUps_ = 0;
};

// Runs `fn` on the main run loop (see RunLoop::perform). Throws std::logic_error when there is
// no main run loop.
bool performOnMainThread(RunLoop::Task fn, bool wait);

}  // namespace ledgeon
