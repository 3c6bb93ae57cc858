#include <algorithm>
#include <chrono>
#include <thread>

#include "Documents/LDocumentPackage.h"
#include "Utilities/Log.h"

namespace ledgeon {

namespace fs = std::filesystem;

LDocumentPackage::Path LDocumentPackage::locksDirPathForDocumentPath(const Path& packagePath) {
  return packagePath / "locks";
}

void LDocumentPackage::deleteAllLocksForDocumentPath(const Path& packagePath) {
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(locksDirPathForDocumentPath(packagePath), ec)) {
    if (entry.path().extension() == ".plist") fs::remove(entry.path(), ec);
  }
}

LDocumentPackage::Path LDocumentPackage::pathForLockWithLockId(const std::string& lockId) const {
  return locksDirPathForDocumentPath(absoluteURL_) / (lockId + ".plist");
}

LDocumentPackage::Path LDocumentPackage::lockPath() const {
  return lockId_.empty() ? Path() : pathForLockWithLockId(lockId_);
}

std::vector<LFileLockInfo> LDocumentPackage::allLocks() const {
  std::vector<LFileLockInfo> locks;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(locksDirPathForDocumentPath(absoluteURL_), ec)) {
    if (entry.path().extension() != ".plist") continue;
    auto lock = LFileLockInfo::readFromFile(entry.path().string());
    if (!lock) {
      // A damaged record protects nothing; it is reported and otherwise ignored.
      LLog("ERROR: Unreadable lock file: %@", lock.error().localizedDescription());
      continue;
    }
    locks.push_back(std::move(lock.value()));
  }
  std::stable_sort(locks.begin(), locks.end(), [](const LFileLockInfo& a, const LFileLockInfo& b) {
    return a.createdAt < b.createdAt;
  });
  return locks;
}

bool LDocumentPackage::deleteLock(const LFileLockInfo& lock) const {
  return deleteLockWithLockId(lock.lockId);
}

bool LDocumentPackage::deleteLockWithLockId(const std::string& lockId) const {
  if (lockId.empty() || lockId.find('/') != std::string::npos) return false;
  std::error_code ec;
  return fs::remove(pathForLockWithLockId(lockId), ec);
}

Result<void> LDocumentPackage::createLock(LFileLockInfo lock) {
  std::error_code ec;
  const Path folder = locksDirPathForDocumentPath(absoluteURL_);
  fs::create_directories(folder, ec);
  if (ec) {
    return Error::make(kLErrorDomain, 1, folder.string() + ": cannot be created: " + ec.message());
  }
  if (auto written = lock.writeToFile(pathForLockWithLockId(lock.lockId).string()); !written) {
    return written;
  }
  if (!lockId_.empty() && lockId_ != lock.lockId) deleteLockWithLockId(lockId_);
  lockId_ = lock.lockId;
  return {};
}

namespace {

// Whether `a` was taken before `b`; ties go to the smaller lock id so both sides agree.
bool takenBefore(const LFileLockInfo& a, const LFileLockInfo& b) {
  if (a.createdAt != b.createdAt) return a.createdAt < b.createdAt;
  return a.lockId < b.lockId;
}

}  // namespace

Result<std::optional<LFileLockInfo>> LDocumentPackage::tryLockAndReturnConflictingLock() {
  const LFileLockInfo current = LFileLockInfo::currentProcess();
  auto oldestConflict = [&]() -> std::optional<LFileLockInfo> {
    for (LFileLockInfo& lock : allLocks()) {
      if (lock.lockId == lockId_ || lock.lockId == current.lockId) continue;
      if (lock.currentOwner(current) == LockOwner::kStale) {
        deleteLock(lock);
        continue;
      }
      return std::move(lock);
    }
    return std::nullopt;
  };
  if (auto conflict = oldestConflict()) return conflict;
  if (auto created = createLock(current); !created) return created.error();
  // Two openers can both find the folder empty and both write a record. Looking again after
  // writing settles it: the newer record gives way at once; the older one gives the newer a
  // moment to do so and gives way too if it is still there. At worst both give way (and the
  // user tries again); never do both keep the document.
  auto conflict = oldestConflict();
  if (conflict && !takenBefore(*conflict, current)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    conflict = oldestConflict();
  }
  if (conflict) {
    unlock();
    return conflict;
  }
  return std::optional<LFileLockInfo>();
}

void LDocumentPackage::unlock() {
  if (lockId_.empty()) return;
  deleteLockWithLockId(lockId_);
  lockId_.clear();
}

}  // namespace ledgeon
