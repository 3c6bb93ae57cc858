#pragma once

#include <cstdint>
#include <string>

#include "Documents/LPropertyList.h"
#include "Utilities/Date.h"
#include "Utilities/Result.h"

namespace ledgeon {

// Who holds a lock, relative to the current process.
enum class LockOwner : unsigned {
  kUnknown = 0,
  kStale = 1,             // this computer, but an earlier boot or a process that is gone
  kCurrentProcess = 2,    // this very process
  kOtherApplication = 3,  // same user and computer, another live process
  kOtherUser = 4,         // another user on this computer, a live process
  kOtherComputer = 5,     // another computer: cannot be checked, so it is respected
};

// The record of one opener of a document package, kept as a property list in the package's
// "locks" folder so that other processes (and other computers sharing the folder) can see who
// has the document open.
class LFileLockInfo final {
 public:
  // A record describing the current process, with a fresh lock id and now as `createdAt`.
  static LFileLockInfo currentProcess();
  void updateFromCurrentProcess();

  static Result<LFileLockInfo> readFromFile(const std::string& path);
  // Parses a lock record; `origin` names it in errors.
  static Result<LFileLockInfo> readFromData(std::string_view data, const std::string& origin);
  LPropertyList propertyList() const;
  Result<void> writeToFile(const std::string& path) const;

  // Compares this record with `current` (the current process) and stores the result in `owner`.
  LockOwner currentOwner(const LFileLockInfo& current);
  bool isSameComputer(const LFileLockInfo& other) const;
  bool isSameBoot(const LFileLockInfo& other) const;

  std::string lockId;
  int64_t pidNumber = 0;
  int64_t uidNumber = 0;
  Date bootTimestamp;
  std::string macAddress;
  Date createdAt;
  std::string bundleIdentifier;
  std::string bundleName;
  std::string bundleVersion;
  std::string bundleShortVersionString;
  std::string hostName;
  std::string systemVersion;
  std::string deviceModel;
  std::string userName;
  std::string fullUserName;
  LockOwner owner = LockOwner::kUnknown;
};

// Facts about this computer used by lock records; each is empty (or 0) when it cannot be read.
namespace host {
Date bootTime();                // from "btime" in /proc/stat
std::string hardwareAddress();  // first non-loopback interface with a real address
std::string hostName();
std::string systemVersion();       // uname: "Linux 6.1.0-18-amd64"
std::string deviceModel();         // DMI product name
bool processIsAlive(int64_t pid);  // signal-0 probe
}  // namespace host

}  // namespace ledgeon
