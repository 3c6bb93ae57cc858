#include "Documents/LFileLockInfo.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <vector>

#include <fmt/format.h>
#include <pwd.h>
#include <sys/types.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "Documents/internal/UUID.h"
#include "Utilities/Clock.h"
#include "Utilities/FileContents.h"

namespace ledgeon {

namespace {

// The application that holds locks made by this program.
constexpr const char* kBundleIdentifier = "org.ledgeon.Ledgeon";
constexpr const char* kBundleName = "Ledgeon";

std::string firstLine(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  while (!line.empty() && (line.back() == '\n' || line.back() == ' ' || line.back() == '\r')) {
    line.pop_back();
  }
  return line;
}

struct UserNames {
  std::string userName;
  std::string fullUserName;
};

UserNames userNames(uid_t uid) {
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  UserNames names;
  if (getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found) == 0 && found) {
    names.userName = found->pw_name ? found->pw_name : "";
    std::string gecos = found->pw_gecos ? found->pw_gecos : "";
    names.fullUserName = gecos.substr(0, gecos.find(','));
  }
  if (names.userName.empty()) {
    const char* login = std::getenv("USER");
    names.userName = login ? login : std::to_string(uid);
  }
  if (names.fullUserName.empty()) names.fullUserName = names.userName;
  return names;
}

}  // namespace

namespace host {

Date bootTime() {
  std::ifstream in("/proc/stat");
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind("btime ", 0) == 0) {
      try {
        return Date::fromUnixTime(static_cast<double>(std::stoll(line.substr(6))));
      } catch (const std::exception&) {
        break;
      }
    }
  }
  return Date();
}

std::string hardwareAddress() {
  namespace fs = std::filesystem;
  std::error_code ec;
  std::vector<fs::path> interfaces;
  for (const auto& entry : fs::directory_iterator("/sys/class/net", ec)) {
    interfaces.push_back(entry.path());
  }
  std::sort(interfaces.begin(), interfaces.end());
  for (const auto& interface : interfaces) {
    if (interface.filename() == "lo") continue;
    std::string address = firstLine(interface / "address");
    if (!address.empty() && address != "00:00:00:00:00:00") return address;
  }
  return "";
}

std::string hostName() {
  std::array<char, 256> name{};
  if (gethostname(name.data(), name.size() - 1) != 0) return "";
  return name.data();
}

std::string systemVersion() {
  utsname system{};
  if (uname(&system) != 0) return "";
  return std::string(system.sysname) + " " + system.release;
}

std::string deviceModel() { return firstLine("/sys/class/dmi/id/product_name"); }

bool processIsAlive(int64_t pid) {
  if (pid <= 0 || pid > std::numeric_limits<pid_t>::max()) return false;
  if (::kill(static_cast<pid_t>(pid), 0) == 0) return true;
  return errno == EPERM;  // alive, but someone else's
}

}  // namespace host

LFileLockInfo LFileLockInfo::currentProcess() {
  LFileLockInfo info;
  info.updateFromCurrentProcess();
  return info;
}

void LFileLockInfo::updateFromCurrentProcess() {
  lockId = documents_internal::newUUIDString();
  pidNumber = ::getpid();
  uidNumber = ::getuid();
  bootTimestamp = host::bootTime();
  macAddress = host::hardwareAddress();
  createdAt = Clock::now();
  bundleIdentifier = kBundleIdentifier;
  bundleName = kBundleName;
  bundleVersion = LEDGEON_VERSION;
  bundleShortVersionString = LEDGEON_VERSION;
  hostName = host::hostName();
  systemVersion = host::systemVersion();
  deviceModel = host::deviceModel();
  const UserNames names = userNames(::getuid());
  userName = names.userName;
  fullUserName = names.fullUserName;
  owner = LockOwner::kCurrentProcess;
}

Result<LFileLockInfo> LFileLockInfo::readFromFile(const std::string& path) {
  auto text = readFileContents(path);
  if (!text) return Error::make(kLErrorDomain, 1, path + ": cannot be read");
  return readFromData(*text, path);
}

Result<LFileLockInfo> LFileLockInfo::readFromData(std::string_view data,
                                                  const std::string& origin) {
  auto plist = LPropertyList::fromData(data, origin);
  if (!plist) return plist.error();
  if (!plist->isDictionary()) {
    return Error::make(kLErrorDomain, 1, origin + ": a lock record must be a dictionary");
  }
  LFileLockInfo info;
  auto lockId = plist->string("lockId");
  auto pid = plist->integer("pidNumber");
  if (!lockId || lockId->empty()) {
    return Error::make(kLErrorDomain, 1, origin + ": lock record without lockId");
  }
  if (!pid) return Error::make(kLErrorDomain, 1, origin + ": lock record without pidNumber");
  info.lockId = *lockId;
  info.pidNumber = *pid;
  info.uidNumber = plist->integer("uidNumber").value_or(-1);
  info.bootTimestamp = plist->date("bootTimestamp").value_or(Date());
  info.macAddress = plist->string("macAddress").value_or("");
  info.createdAt = plist->date("createdAt").value_or(Date());
  info.bundleIdentifier = plist->string("bundleIdentifier").value_or("");
  info.bundleName = plist->string("bundleName").value_or("");
  info.bundleVersion = plist->string("bundleVersion").value_or("");
  info.bundleShortVersionString = plist->string("bundleShortVersionString").value_or("");
  info.hostName = plist->string("hostName").value_or("");
  info.systemVersion = plist->string("systemVersion").value_or("");
  info.deviceModel = plist->string("deviceModel").value_or("");
  info.userName = plist->string("userName").value_or("");
  info.fullUserName = plist->string("fullUserName").value_or("");
  return info;
}

LPropertyList LFileLockInfo::propertyList() const {
  LPropertyList plist = LPropertyList::dictionary();
  plist.setString("lockId", lockId);
  plist.setInteger("pidNumber", pidNumber);
  plist.setInteger("uidNumber", uidNumber);
  plist.setDate("bootTimestamp", bootTimestamp);
  plist.setString("macAddress", macAddress);
  plist.setDate("createdAt", createdAt);
  plist.setString("bundleIdentifier", bundleIdentifier);
  plist.setString("bundleName", bundleName);
  plist.setString("bundleVersion", bundleVersion);
  plist.setString("bundleShortVersionString", bundleShortVersionString);
  plist.setString("hostName", hostName);
  plist.setString("systemVersion", systemVersion);
  plist.setString("deviceModel", deviceModel);
  plist.setString("userName", userName);
  plist.setString("fullUserName", fullUserName);
  return plist;
}

Result<void> LFileLockInfo::writeToFile(const std::string& path) const {
  return propertyList().writeToFile(path);
}

bool LFileLockInfo::isSameComputer(const LFileLockInfo& other) const {
  // Without a hardware address (no network interface) the computer's name is all there is.
  if (macAddress.empty() || other.macAddress.empty()) {
    return macAddress.empty() && other.macAddress.empty() && hostName == other.hostName;
  }
  return macAddress == other.macAddress;
}

bool LFileLockInfo::isSameBoot(const LFileLockInfo& other) const {
  // Boot times are whole seconds; allow for rounding in the record.
  return std::fabs(bootTimestamp.timeIntervalSinceDate(other.bootTimestamp)) < 1.0;
}

LockOwner LFileLockInfo::currentOwner(const LFileLockInfo& current) {
  if (!isSameComputer(current)) {
    owner = LockOwner::kOtherComputer;
  } else if (!isSameBoot(current) || !host::processIsAlive(pidNumber)) {
    owner = LockOwner::kStale;
  } else if (pidNumber == current.pidNumber) {
    owner = LockOwner::kCurrentProcess;
  } else if (uidNumber == current.uidNumber) {
    owner = LockOwner::kOtherApplication;
  } else {
    owner = LockOwner::kOtherUser;
  }
  return owner;
}

}  // namespace ledgeon
