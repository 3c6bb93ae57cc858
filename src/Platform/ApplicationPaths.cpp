#include "Platform/ApplicationPaths.h"

#include <cstdlib>
#include <string>

namespace ledgeon {

namespace {

std::filesystem::path environmentPath(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::filesystem::path(value)
                                            : std::filesystem::path();
}

std::filesystem::path homeFolder() {
  auto home = environmentPath("HOME");
  return home.empty() ? std::filesystem::temp_directory_path() : home;
}

// $XDG_<kind>_HOME/ledgeon, or its default below the home folder.
std::filesystem::path xdgFolder(const char* variable, const char* fallbackBelowHome) {
  auto base = environmentPath(variable);
  if (base.empty()) base = homeFolder() / fallbackBelowHome;
  return base / "ledgeon";
}

std::filesystem::path ledgeonHome() { return environmentPath("LEDGEON_HOME"); }

std::filesystem::path folder(const char* belowLedgeonHome, const char* xdgVariable,
                             const char* xdgFallback, const char* belowXdg) {
  if (auto home = ledgeonHome(); !home.empty()) return home / belowLedgeonHome;
  auto base = xdgFolder(xdgVariable, xdgFallback);
  return *belowXdg != '\0' ? base / belowXdg : base;
}

}  // namespace

std::filesystem::path ApplicationPaths::supportFolder() {
  return folder("support", "XDG_DATA_HOME", ".local/share", "");
}
std::filesystem::path ApplicationPaths::logsFolder() {
  return folder("logs", "XDG_STATE_HOME", ".local/state", "logs");
}
std::filesystem::path ApplicationPaths::downloadsFolder() {
  return folder("downloads", "XDG_DATA_HOME", ".local/share", "downloads");
}
// Backups sit in the support folder, where earlier versions of the program put them too.
std::filesystem::path ApplicationPaths::backupsFolder() { return supportFolder() / "Backups"; }
std::filesystem::path ApplicationPaths::keychainFolder() {
  return folder("keychain", "XDG_DATA_HOME", ".local/share", "keychain");
}
std::filesystem::path ApplicationPaths::preferencesFile() {
  if (auto home = ledgeonHome(); !home.empty()) return home / "config" / "preferences.json";
  return xdgFolder("XDG_CONFIG_HOME", ".config") / "preferences.json";
}

std::filesystem::path ApplicationPaths::ensureFolder(const std::filesystem::path& path) {
  std::error_code ignored;
  std::filesystem::create_directories(path, ignored);
  return path;
}

}  // namespace ledgeon
