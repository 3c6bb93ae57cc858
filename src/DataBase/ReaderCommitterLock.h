#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace ledgeon {

// Keeps background readers and the committer apart: a commit waits until no reader holds a read
// lock, and readers wait while a commit is under way, so no reader sees half a commit.
// lockForCommit belongs to the main thread (the one given at construction); the rest may be
// called from any thread.
class ReaderCommitterLock final {
 public:
  explicit ReaderCommitterLock(std::thread::id mainThread) : mainThread_(mainThread) {}

  void lockForCommit();
  void unlockForCommit();
  void lockForBackgroundReading();
  void unlockForBackgroundReading();
  bool isCurrentThreadLockedForBackgroundReading() const;

 private:
  std::thread::id mainThread_;
  mutable std::mutex committingAndReadersLock_;
  std::condition_variable changed_;
  bool committing_ = false;
  std::vector<std::thread::id> readers_;
};

}  // namespace ledgeon
