#pragma once

#include <filesystem>

namespace ledgeon {

// Where the program keeps its own files. With $LEDGEON_HOME set everything lives below it (tests
// and demos never touch a real home folder); otherwise the XDG base directories are used.
class ApplicationPaths final {
 public:
  static std::filesystem::path supportFolder();    // application support data
  static std::filesystem::path logsFolder();       // log files, import logs
  static std::filesystem::path downloadsFolder();  // downloaded statements and files
  static std::filesystem::path backupsFolder();    // automatic and manual backups
  static std::filesystem::path preferencesFile();  // preferences.json
  static std::filesystem::path keychainFolder();   // the file keychain

  // Creates `folder` (and its parents) when missing; returns it.
  static std::filesystem::path ensureFolder(const std::filesystem::path& folder);
};

}  // namespace ledgeon
