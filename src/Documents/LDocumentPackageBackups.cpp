#include <algorithm>
#include <array>
#include <fstream>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

#include "Documents/LDocumentPackage.h"
#include "Documents/internal/LocalTime.h"
#include "Platform/ApplicationPaths.h"
#include "Utilities/Clock.h"
#include "Utilities/DateFormatter.h"
#include "Utilities/Log.h"

namespace ledgeon {

namespace fs = std::filesystem;

namespace {

constexpr const char* kZipCreationError = "Error creating zip archive";
// The information file is small; anything bigger is not one of ours.
constexpr zip_uint64_t kMaximumInfoSize = 1 << 20;

struct ZipCloser {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ZipPointer = std::unique_ptr<zip_t, ZipCloser>;

struct ZipFileCloser {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using ZipFilePointer = std::unique_ptr<zip_file_t, ZipFileCloser>;

Error backupError(const fs::path& path, const std::string& what) {
  Error error = Error::make(kLErrorDomain, 1, what + ": " + path.string());
  error.userInfo[kFilePathErrorKey] = path.string();
  return error;
}

Result<ZipPointer> openForReading(const fs::path& path) {
  int code = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_RDONLY, &code);
  if (!archive) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    std::string message = zip_error_strerror(&error);
    zip_error_fini(&error);
    return backupError(path, "Not a readable backup (" + message + ")");
  }
  return ZipPointer(archive);
}

std::string today() {
  const DateFormatter format("yyyy-MM-dd", "en_US_POSIX",
                             documents_internal::localTimeZoneIdentifier());
  return format.stringFromDate(Clock::now());
}

// `directory`/`base`.ledgeonbackup, or with " (n)" after the base when that is taken.
fs::path uniqueBackupPath(const fs::path& directory, const std::string& base) {
  std::error_code ec;
  fs::path path = directory / stringWithFormat("%@.%@", base, kBackupExtension);
  for (long n = 1; fs::exists(fs::symlink_status(path, ec)); ++n) {
    path = directory / stringWithFormat("%@ (%ld).%@", base, n, kBackupExtension);
  }
  return path;
}

struct FoundBackup {
  fs::path path;
  LBackupInfo info;
};

std::vector<FoundBackup> matchingBackups(const fs::path& directory, const std::string& prefix,
                                         const std::string& UID, BackupReason reason) {
  std::vector<FoundBackup> found;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(directory, ec)) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() != std::string(".") + kBackupExtension) continue;
    if (name.rfind(prefix, 0) != 0 || !entry.is_regular_file(ec)) continue;
    auto info = LDocumentPackage::backupInfoForBackupPath(entry.path());
    if (!info || info->UID != UID || info->reason != reason) continue;
    found.push_back({entry.path(), std::move(info.value())});
  }
  std::sort(found.begin(), found.end(), [](const FoundBackup& a, const FoundBackup& b) {
    return a.info.dateCreated < b.info.dateCreated;
  });
  return found;
}

// Adds the package below `root` in the archive, as "<root>/<relative path>". Lock records are
// left out: they belong to the openers of the original, not to the copy.
bool addPackageEntries(zip_t* archive, const fs::path& packagePath, const std::string& root) {
  std::error_code ec;
  if (zip_dir_add(archive, root.c_str(), ZIP_FL_ENC_UTF_8) < 0) return false;
  fs::recursive_directory_iterator it(packagePath, ec);
  for (; !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
    const fs::path relative = it->path().lexically_relative(packagePath);
    const std::string name = root + "/" + relative.generic_string();
    if (relative.parent_path() == "locks" || relative == kBackupInfoFileName) continue;
    struct stat info {};
    if (::lstat(it->path().c_str(), &info) != 0) return false;
    zip_int64_t index = -1;
    if (S_ISDIR(info.st_mode)) {
      index = zip_dir_add(archive, name.c_str(), ZIP_FL_ENC_UTF_8);
    } else if (S_ISREG(info.st_mode)) {
      zip_source_t* source = zip_source_file(archive, it->path().c_str(), 0, -1);
      if (!source) return false;
      index = zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8);
      if (index < 0) {
        zip_source_free(source);
        return false;
      }
      // The level `zip` uses by default: the usual balance of size and speed.
      zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, 6);
    } else {
      continue;  // sockets, links and the like are not part of a document
    }
    if (index < 0) return false;
    const auto mode = static_cast<zip_uint32_t>(info.st_mode);
    zip_file_set_external_attributes(archive, static_cast<zip_uint64_t>(index), 0, ZIP_OPSYS_UNIX,
                                     mode << 16);
  }
  return !ec;
}

// The path below the package of an archive member "<root>/<relative>", or nothing when the name
// could escape the target folder.
std::optional<fs::path> memberPath(const std::string& name) {
  const auto slash = name.find('/');
  if (name.empty() || name[0] == '/' || slash == std::string::npos || slash == 0) {
    return std::nullopt;
  }
  fs::path relative = fs::path(name.substr(slash + 1)).lexically_normal();
  for (const auto& part : relative) {
    if (part == "..") return std::nullopt;
  }
  return relative;
}

Result<void> extractMember(zip_t* archive, zip_uint64_t index, const fs::path& target,
                           const zip_stat_t& stat) {
  std::error_code ec;
  zip_uint8_t system = 0;
  zip_uint32_t attributes = 0;
  zip_file_get_external_attributes(archive, index, 0, &system, &attributes);
  const bool isDirectory = stat.name[std::string_view(stat.name).size() - 1] == '/';
  if (isDirectory) {
    fs::create_directories(target, ec);
    if (ec) return backupError(target, "Cannot create folder");
  } else {
    fs::create_directories(target.parent_path(), ec);
    ZipFilePointer file(zip_fopen_index(archive, index, 0));
    std::ofstream out(target, std::ios::binary | std::ios::trunc);
    if (!file || !out) return backupError(target, "Cannot restore file");
    std::array<char, 1 << 16> buffer{};
    for (;;) {
      const zip_int64_t read = zip_fread(file.get(), buffer.data(), buffer.size());
      if (read < 0) return backupError(target, "Damaged backup member");
      if (read == 0) break;
      out.write(buffer.data(), static_cast<std::streamsize>(read));
    }
    if (!out.flush()) return backupError(target, "Cannot restore file");
  }
  if (system == ZIP_OPSYS_UNIX && (attributes >> 16) != 0) {
    const auto mode = static_cast<fs::perms>((attributes >> 16) & 07777);
    // The owner always keeps access to a restored document.
    const fs::perms owner =
        isDirectory ? fs::perms::owner_all : fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(target, mode | owner, ec);
  }
  if ((stat.valid & ZIP_STAT_MTIME) != 0 && !isDirectory) {
    const auto when = std::chrono::system_clock::from_time_t(stat.mtime);
    fs::last_write_time(target, fs::file_time_type::clock::from_sys(when), ec);
  }
  return {};
}

}  // namespace

fs::path LDocumentPackage::defaultBackupsDirectory() { return ApplicationPaths::backupsFolder(); }

fs::path LDocumentPackage::suggestedBackupPathForPackage(const Path& packagePath,
                                                         const Path& backupsDirectory) {
  const std::string stem = LDocumentPackage(packagePath).absoluteURL().stem().string();
  const fs::path plain =
      backupsDirectory / stringWithFormat("%@ %@.%@", stem, today(), kBackupExtension);
  std::error_code ec;
  if (!fs::exists(fs::symlink_status(plain, ec))) return plain;
  return uniqueBackupPath(backupsDirectory, stringWithFormat("%@ %@", stem, today()));
}

std::string LDocumentPackage::backupPrefixForReason(BackupReason reason) {
  switch (reason) {
    case BackupReason::kAutomatic:
      return "BACKUP (Automatic) - ";
    case BackupReason::kPreUpdate:
      return "BACKUP (Pre-Update) - ";
    default:
      return "";
  }
}

fs::path LDocumentPackage::backupPath(const Path& backupsDirectory, const std::string& documentName,
                                      BackupReason reason) {
  const std::string stem = fs::path(documentName).stem().string();
  return uniqueBackupPath(backupsDirectory,
                          stringWithFormat("%@%@", backupPrefixForReason(reason), stem));
}

std::size_t LDocumentPackage::numberOfBackupsInDirectory(const Path& directory) {
  std::size_t count = 0;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(directory, ec)) {
    if (entry.path().extension() == std::string(".") + kBackupExtension) ++count;
  }
  return count;
}

std::size_t LDocumentPackage::numberOfBackupsInDirectory(const Path& directory,
                                                         const std::string& prefix,
                                                         const std::string& UID,
                                                         BackupReason reason) {
  return matchingBackups(directory, prefix, UID, reason).size();
}

std::size_t LDocumentPackage::remove(std::size_t count, const Path& directory,
                                     const std::string& prefix, const std::string& UID,
                                     BackupReason reason) {
  std::size_t removed = 0;
  for (const auto& backup : matchingBackups(directory, prefix, UID, reason)) {
    if (removed == count) break;
    std::error_code ec;
    if (fs::remove(backup.path, ec)) {
      ++removed;
    } else {
      LLog("ERROR: Could not remove old backup %@: %@", backup.path.string(), ec.message());
    }
  }
  return removed;
}

Result<void> LDocumentPackage::backupPackage(const Path& packagePath, const Path& toPath,
                                             const BackupOptions& options) {
  std::error_code ec;
  if (!fs::is_directory(packagePath, ec)) {
    return backupError(packagePath, "Not a document package");
  }
  if (fs::exists(fs::symlink_status(toPath, ec))) {
    return backupError(toPath, "A file with this name already exists");
  }
  if (!toPath.parent_path().empty()) fs::create_directories(toPath.parent_path(), ec);
  int code = 0;
  ZipPointer archive(zip_open(toPath.c_str(), ZIP_CREATE | ZIP_EXCL, &code));
  if (!archive) return backupError(toPath, kZipCreationError);

  LBackupInfo info{Clock::now(), options.note, options.originalFilePath, options.reason,
                   options.UID};
  const std::string infoData = info.propertyList().binaryData();
  const std::string root = LDocumentPackage(packagePath).documentName();
  bool ok = addPackageEntries(archive.get(), packagePath, root);
  if (ok) {
    zip_source_t* source = zip_source_buffer(archive.get(), infoData.data(), infoData.size(), 0);
    const std::string name = root + "/" + kBackupInfoFileName;
    ok = source && zip_file_add(archive.get(), name.c_str(), source, ZIP_FL_ENC_UTF_8) >= 0;
    if (source && !ok) zip_source_free(source);
  }
  if (ok && zip_close(archive.get()) == 0) {
    archive.release();  // closed and written
    return {};
  }
  LLog("%@: %@ (%@)", kZipCreationError, toPath.string(), zip_strerror(archive.get()));
  return backupError(toPath, kZipCreationError);
}

Result<LBackupInfo> LDocumentPackage::backupInfoForBackupPath(const Path& backupPath) {
  auto archive = openForReading(backupPath);
  if (!archive) return archive.error();
  const std::string suffix = std::string("/") + kBackupInfoFileName;
  const zip_int64_t entries = zip_get_num_entries(archive->get(), 0);
  for (zip_int64_t i = 0; i < entries; ++i) {
    const auto index = static_cast<zip_uint64_t>(i);
    zip_stat_t stat;
    if (zip_stat_index(archive->get(), index, 0, &stat) != 0 || !stat.name) continue;
    const std::string name = stat.name;
    if (name.size() <= suffix.size() ||
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0) {
      continue;
    }
    if (stat.size > kMaximumInfoSize) break;
    ZipFilePointer file(zip_fopen_index(archive->get(), index, 0));
    std::string data(static_cast<std::size_t>(stat.size), '\0');
    if (!file ||
        zip_fread(file.get(), data.data(), stat.size) != static_cast<zip_int64_t>(stat.size)) {
      return backupError(backupPath, "Damaged backup information");
    }
    return LBackupInfo::readFromData(data, backupPath.string() + ":" + name);
  }
  return backupError(backupPath, stringWithFormat("No %@ in backup", kBackupInfoFileName));
}

Result<void> LDocumentPackage::restoreBackup(const Path& backupPath, const Path& toPath) {
  std::error_code ec;
  if (fs::exists(fs::symlink_status(toPath, ec))) {
    return backupError(toPath, "A file with this name already exists");
  }
  auto archive = openForReading(backupPath);
  if (!archive) return archive.error();
  // Unpacked next to the target and renamed at the end: a failed restore leaves nothing behind.
  const fs::path parent = fs::absolute(toPath).parent_path();
  fs::create_directories(parent, ec);
  const fs::path staging =
      parent / stringWithFormat(".%@.restoring-%@", toPath.filename().string(), ::getpid());
  fs::remove_all(staging, ec);
  fs::create_directory(staging, ec);
  if (ec) return backupError(staging, "Cannot create folder");
  auto fail = [&](Error error) -> Result<void> {
    fs::remove_all(staging, ec);
    return error;
  };
  const zip_int64_t entries = zip_get_num_entries(archive->get(), 0);
  for (zip_int64_t i = 0; i < entries; ++i) {
    const auto index = static_cast<zip_uint64_t>(i);
    zip_stat_t stat;
    if (zip_stat_index(archive->get(), index, 0, &stat) != 0 || !stat.name || !*stat.name) {
      return fail(backupError(backupPath, "Damaged backup"));
    }
    auto relative = memberPath(stat.name);
    if (!relative) return fail(backupError(backupPath, std::string("Unsafe member ") + stat.name));
    if (relative->empty() || *relative == "." || *relative == kBackupInfoFileName) continue;
    if (auto extracted = extractMember(archive->get(), index, staging / *relative, stat);
        !extracted) {
      return fail(extracted.error());
    }
  }
  fs::rename(staging, toPath, ec);
  if (ec) return fail(backupError(toPath, "Cannot restore to"));
  return {};
}

}  // namespace ledgeon
