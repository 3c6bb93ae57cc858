#include "Platform/Preferences.h"

#include <cmath>
#include <fstream>
#include <sstream>

#include <fmt/format.h>

namespace ledgeon {

Preferences::Preferences(std::filesystem::path file) : file_(std::move(file)) {}

Result<void> Preferences::load() {
  std::lock_guard lock(mutex_);
  if (file_.empty() || !std::filesystem::exists(file_)) return {};
  std::ifstream in(file_);
  std::stringstream text;
  text << in.rdbuf();
  auto parsed = nlohmann::json::parse(text.str(), nullptr, false);
  if (parsed.is_discarded() || !parsed.is_object()) {
    return Error::make(
        kLErrorDomain, 1,
        fmt::format("{}: the preferences file is not a JSON object", file_.string()));
  }
  values_ = std::move(parsed);
  return {};
}

Result<void> Preferences::synchronize() {
  std::lock_guard lock(mutex_);
  if (file_.empty()) return {};
  std::error_code ec;
  std::filesystem::create_directories(file_.parent_path(), ec);
  const auto temporary = std::filesystem::path(file_.string() + ".tmp");
  {
    std::ofstream out(temporary, std::ios::trunc);
    out << values_.dump(2) << '\n';
    if (!out.flush()) {
      return Error::make(kLErrorDomain, 2,
                         fmt::format("{}: cannot be written", temporary.string()));
    }
  }
  std::filesystem::rename(temporary, file_, ec);
  if (ec) {
    return Error::make(kLErrorDomain, 2,
                       fmt::format("{}: cannot be replaced: {}", file_.string(), ec.message()));
  }
  return {};
}

void Preferences::registerDefaults(const nlohmann::json& defaults) {
  std::lock_guard lock(mutex_);
  for (const auto& [key, value] : defaults.items()) defaults_[key] = value;
}

std::optional<nlohmann::json> Preferences::objectForKey(std::string_view key) const {
  std::lock_guard lock(mutex_);
  const std::string k(key);
  if (auto it = values_.find(k); it != values_.end()) return *it;
  if (auto it = defaults_.find(k); it != defaults_.end()) return *it;
  return std::nullopt;
}

bool Preferences::boolForKey(std::string_view key) const {
  auto value = objectForKey(key);
  if (!value) return false;
  if (value->is_boolean()) return value->get<bool>();
  if (value->is_number()) return std::fabs(value->get<double>()) > 0.0;
  if (value->is_string()) {
    const auto text = value->get<std::string>();
    return text == "YES" || text == "yes" || text == "true" || text == "1";
  }
  return false;
}

int64_t Preferences::integerForKey(std::string_view key) const {
  auto value = objectForKey(key);
  if (!value) return 0;
  if (value->is_number()) return static_cast<int64_t>(value->get<double>());
  if (value->is_boolean()) return value->get<bool>() ? 1 : 0;
  if (value->is_string()) return std::strtoll(value->get<std::string>().c_str(), nullptr, 10);
  return 0;
}

double Preferences::doubleForKey(std::string_view key) const {
  auto value = objectForKey(key);
  if (!value) return 0;
  if (value->is_number()) return value->get<double>();
  if (value->is_string()) return std::strtod(value->get<std::string>().c_str(), nullptr);
  return 0;
}

std::string Preferences::stringForKey(std::string_view key) const {
  auto value = objectForKey(key);
  if (!value) return {};
  if (value->is_string()) return value->get<std::string>();
  return value->is_null() ? std::string() : value->dump();
}

void Preferences::setObject(std::string_view key, nlohmann::json value) {
  std::lock_guard lock(mutex_);
  values_[std::string(key)] = std::move(value);
}

void Preferences::removeObjectForKey(std::string_view key) {
  std::lock_guard lock(mutex_);
  values_.erase(std::string(key));
}

}  // namespace ledgeon
