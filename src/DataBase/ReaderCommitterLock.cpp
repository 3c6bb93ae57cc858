#include "DataBase/ReaderCommitterLock.h"

#include <algorithm>

#include "Utilities/Log.h"

namespace ledgeon {

void ReaderCommitterLock::lockForCommit() {
  if (std::this_thread::get_id() != mainThread_) {
    LLog("ERROR: Trying to call -lockForCommit on a thread other than the main thread");
    return;
  }
  std::unique_lock lock(committingAndReadersLock_);
  // Marking first keeps new readers out while the present ones finish.
  changed_.wait(lock, [this] { return !committing_; });
  committing_ = true;
  changed_.wait(lock, [this] { return readers_.empty(); });
}

void ReaderCommitterLock::unlockForCommit() {
  {
    std::lock_guard lock(committingAndReadersLock_);
    committing_ = false;
  }
  changed_.notify_all();
}

void ReaderCommitterLock::lockForBackgroundReading() {
  std::unique_lock lock(committingAndReadersLock_);
  changed_.wait(lock, [this] { return !committing_; });
  readers_.push_back(std::this_thread::get_id());
}

void ReaderCommitterLock::unlockForBackgroundReading() {
  {
    std::lock_guard lock(committingAndReadersLock_);
    const auto it = std::find(readers_.begin(), readers_.end(), std::this_thread::get_id());
    if (it == readers_.end()) {
      LLog("ERROR: Trying to call -unlockForBackgroundReader: when not locked");
      return;
    }
    readers_.erase(it);
  }
  changed_.notify_all();
}

bool ReaderCommitterLock::isCurrentThreadLockedForBackgroundReading() const {
  std::lock_guard lock(committingAndReadersLock_);
  return std::find(readers_.begin(), readers_.end(), std::this_thread::get_id()) != readers_.end();
}

}  // namespace ledgeon
