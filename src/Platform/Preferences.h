#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "Utilities/Result.h"

namespace ledgeon {

// The user's preferences: a JSON object of keys, over registered defaults. Backed by a file
// (written atomically by synchronize) or, with no file, held in memory. Thread-safe.
class Preferences final {
 public:
  Preferences() = default;  // in memory
  explicit Preferences(std::filesystem::path file);

  // Reads the file; a missing file is an empty set of preferences, a damaged one an error.
  Result<void> load();
  // Writes the changed preferences to the file, replacing it atomically.
  Result<void> synchronize();

  // Defaults are consulted when the user has not set a key; later registrations override.
  void registerDefaults(const nlohmann::json& defaults);

  std::optional<nlohmann::json> objectForKey(std::string_view key) const;
  bool boolForKey(std::string_view key) const;
  int64_t integerForKey(std::string_view key) const;
  double doubleForKey(std::string_view key) const;
  std::string stringForKey(std::string_view key) const;

  void setObject(std::string_view key, nlohmann::json value);
  void removeObjectForKey(std::string_view key);

  const std::filesystem::path& file() const { return file_; }

 private:
  mutable std::mutex mutex_;
  std::filesystem::path file_;
  nlohmann::json values_ = nlohmann::json::object();
  nlohmann::json defaults_ = nlohmann::json::object();
};

}  // namespace ledgeon
