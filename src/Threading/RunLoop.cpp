#include "Threading/RunLoop.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "Platform/Services.h"

namespace ledgeon {

struct RunLoop::Waiter {
  std::mutex mutex;
  std::condition_variable finished;
  bool done = false;
  bool ran = false;
  std::exception_ptr failure;

  void finish(bool didRun, std::exception_ptr error) {
    std::lock_guard lock(mutex);
    done = true;
    ran = didRun;
    failure = std::move(error);
    finished.notify_all();
  }

  bool wait() {
    std::unique_lock lock(mutex);
    finished.wait(lock, [this] { return done; });
    if (failure) std::rethrow_exception(failure);
    return ran;
  }
};

namespace {

// The main run loop; guarded so that a loop cannot go away while another thread queues on it.
std::mutex& mainLoopMutex() {
  static std::mutex mutex;
  return mutex;
}
RunLoop* gMainLoop = nullptr;

// How asynchronous work below this layer (HTTP completions) reaches the main run loop; with no
// main loop the work runs on the calling thread.
void dispatchToMainRunLoop(std::function<void()> work) {
  std::unique_lock lock(mainLoopMutex());
  if (gMainLoop != nullptr && !gMainLoop->isOwnerThread()) {
    gMainLoop->perform(std::move(work), false);
    return;
  }
  lock.unlock();
  work();
}

RunLoop::Clock::duration delayFromSeconds(double seconds) {
  constexpr double kLongestDelay = 100.0 * 365 * 86400;  // keeps the due time representable
  const double clamped = std::clamp(seconds, 0.0, kLongestDelay);
  return std::chrono::duration_cast<RunLoop::Clock::duration>(
      std::chrono::duration<double>(clamped));
}

}  // namespace

RunLoop::RunLoop() : owner_(std::this_thread::get_id()) {
  std::lock_guard lock(mainLoopMutex());
  if (gMainLoop == nullptr) {
    gMainLoop = this;
    Services::shared().setMainThreadDispatcher(&dispatchToMainRunLoop);
  }
}

RunLoop::~RunLoop() {
  {
    std::lock_guard lock(mainLoopMutex());
    if (gMainLoop == this) {
      gMainLoop = nullptr;
      Services::shared().setMainThreadDispatcher(nullptr);
    }
  }
  std::deque<Entry> dropped;
  {
    std::lock_guard lock(mutex_);
    dropped.swap(queue_);
    delayed_.clear();
  }
  for (auto& entry : dropped) {
    if (entry.waiter) entry.waiter->finish(false, nullptr);
  }
}

RunLoop* RunLoop::main() {
  std::lock_guard lock(mainLoopMutex());
  return gMainLoop;
}

bool RunLoop::isMainThread() {
  std::lock_guard lock(mainLoopMutex());
  return gMainLoop != nullptr && gMainLoop->isOwnerThread();
}

void RunLoop::checkOwner(const char* operation) const {
  if (!isOwnerThread()) {
    throw std::logic_error(std::string("RunLoop::") + operation +
                           " called on a thread that does not own the loop");
  }
}

bool RunLoop::perform(Task fn, bool wait) {
  if (wait && isOwnerThread()) {
    fn();
    return true;
  }
  auto waiter = wait ? std::make_shared<Waiter>() : nullptr;
  enqueue({std::move(fn), waiter});
  return waiter ? waiter->wait() : true;
}

void RunLoop::enqueue(Entry entry) {
  {
    std::lock_guard lock(mutex_);
    queue_.push_back(std::move(entry));
    ++wakeUps_;
  }
  wake_.notify_all();
}

bool performOnMainThread(RunLoop::Task fn, bool wait) {
  std::unique_lock lock(mainLoopMutex());
  if (gMainLoop == nullptr)
    throw std::logic_error("performOnMainThread: there is no main run loop");
  if (!wait) return gMainLoop->perform(std::move(fn), false);
  if (gMainLoop->isOwnerThread()) {
    lock.unlock();
    fn();
    return true;
  }
  // Queue under the lock (the loop cannot go away meanwhile), wait outside it.
  auto waiter = std::make_shared<RunLoop::Waiter>();
  gMainLoop->enqueue({std::move(fn), waiter});
  lock.unlock();
  return waiter->wait();
}

RunLoop::DelayedCallID RunLoop::performAfterDelay(Task fn, double seconds, const void* target) {
  DelayedCallID id = 0;
  {
    std::lock_guard lock(mutex_);
    id = nextID_++;
    delayed_.emplace(std::make_pair(Clock::now() + delayFromSeconds(seconds), id),
                     Delayed{std::move(fn), target, id});
    ++wakeUps_;
  }
  wake_.notify_all();
  return id;
}

bool RunLoop::cancelPerformRequest(DelayedCallID id) {
  std::lock_guard lock(mutex_);
  for (auto it = delayed_.begin(); it != delayed_.end(); ++it) {
    if (it->second.id == id) {
      delayed_.erase(it);
      return true;
    }
  }
  return false;
}

size_t RunLoop::cancelPerformRequests(const void* target) {
  std::lock_guard lock(mutex_);
  return std::erase_if(delayed_,
                       [target](const auto& item) { return item.second.target == target; });
}

size_t RunLoop::pendingCount() const {
  std::lock_guard lock(mutex_);
  return queue_.size() + delayed_.size();
}

void RunLoop::wakeUp() {
  {
    std::lock_guard lock(mutex_);
    ++wakeUps_;
  }
  wake_.notify_all();
}

bool RunLoop::takeDueLocked(Entry& entry, Clock::time_point now) {
  if (!queue_.empty()) {
    entry = std::move(queue_.front());
    queue_.pop_front();
    return true;
  }
  if (!delayed_.empty() && delayed_.begin()->first.first <= now) {
    entry = Entry{std::move(delayed_.begin()->second.fn), nullptr};
    delayed_.erase(delayed_.begin());
    return true;
  }
  return false;
}

void RunLoop::runEntry(Entry& entry) {
  if (!entry.waiter) {
    entry.fn();
    return;
  }
  try {
    entry.fn();
    entry.waiter->finish(true, nullptr);
  } catch (...) {
    entry.waiter->finish(true, std::current_exception());
  }
}

void RunLoop::waitLocked(std::unique_lock<std::mutex>& lock, Clock::time_point until) {
  if (!delayed_.empty()) until = std::min(until, delayed_.begin()->first.first);
  const uint64_t seen = wakeUps_;
  auto changed = [&] { return wakeUps_ != seen; };
  if (until == Clock::time_point::max()) {
    wake_.wait(lock, changed);
  } else {
    wake_.wait_until(lock, until, changed);
  }
}

size_t RunLoop::runOnce(Clock::duration timeout) {
  checkOwner("runOnce");
  const auto deadline = Clock::now() + timeout;
  std::unique_lock lock(mutex_);
  // Only what is due once the wait ends runs now: calls queued by those calls wait for the
  // next turn, so a call that queues itself cannot hold the loop.
  size_t budget = 0;
  for (;;) {
    const auto now = Clock::now();
    budget = queue_.size();
    for (auto it = delayed_.begin(); it != delayed_.end() && it->first.first <= now; ++it) {
      ++budget;
    }
    if (budget > 0 || now >= deadline) break;
    waitLocked(lock, deadline);
  }
  size_t ran = 0;
  Entry entry;
  while (ran < budget && takeDueLocked(entry, Clock::now())) {
    lock.unlock();
    ++ran;
    runEntry(entry);
    entry = {};
    lock.lock();
  }
  return ran;
}

bool RunLoop::runUntil(const std::function<bool()>& done, Clock::time_point deadline) {
  checkOwner("runUntil");
  for (;;) {
    if (done && done()) return true;
    std::unique_lock lock(mutex_);
    const auto now = Clock::now();
    Entry entry;
    if (takeDueLocked(entry, now)) {
      lock.unlock();
      runEntry(entry);
      continue;
    }
    if (now >= deadline) return false;
    waitLocked(lock, deadline);
  }
}

bool RunLoop::runUntil(Clock::time_point deadline) { return runUntil(nullptr, deadline); }

}  // namespace ledgeon
