#include "Application/CriteriaEvaluatorEnvironment.h"

#include <functional>

#include <fmt/format.h>
#include <sys/utsname.h>

#include "Platform/Preferences.h"
#include "Platform/Services.h"
#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/Log.h"

namespace ledgeon {

namespace {

using Json = nlohmann::json;
using Environment = CriteriaEvaluatorEnvironment;

// Reads one field's JSON value into the environment; false when the value has the wrong type.
using FieldReader = std::function<bool(const Json&, Environment&)>;

FieldReader text(std::string Environment::*field) {
  return [field](const Json& value, Environment& environment) {
    if (!value.is_string()) return false;
    environment.*field = value.get<std::string>();
    return true;
  };
}

FieldReader flag(bool Environment::*field) {
  return [field](const Json& value, Environment& environment) {
    if (!value.is_boolean()) return false;
    environment.*field = value.get<bool>();
    return true;
  };
}

FieldReader integer(int64_t Environment::*field) {
  return [field](const Json& value, Environment& environment) {
    if (!value.is_number_integer() ||
        (value.is_number_unsigned() && value.get<uint64_t>() > INT64_MAX)) {
      return false;
    }
    environment.*field = value.get<int64_t>();
    return true;
  };
}

std::optional<Date> timestampFrom(const Json& value) {
  if (!value.is_string()) return std::nullopt;
  return LDateUtilities::timestampFromISO8601String(value.get<std::string>());
}

FieldReader timestamp(Date Environment::*field) {
  return [field](const Json& value, Environment& environment) {
    const auto date = timestampFrom(value);
    if (date) environment.*field = *date;
    return date.has_value();
  };
}

FieldReader identifiers(std::set<std::string> Environment::*field) {
  return [field](const Json& value, Environment& environment) {
    if (!value.is_array()) return false;
    std::set<std::string> result;
    for (const Json& item : value) {
      if (!item.is_string()) return false;
      result.insert(item.get<std::string>());
    }
    environment.*field = std::move(result);
    return true;
  };
}

bool readCrashes(const Json& value, Environment& environment) {
  if (!value.is_array()) return false;
  std::vector<CrashRecord> crashes;
  for (const Json& item : value) {
    if (!item.is_object() || !item.contains("time") || !item.contains("version")) return false;
    const auto time = timestampFrom(item["time"]);
    if (!time || !item["version"].is_string()) return false;
    crashes.push_back({*time, item["version"].get<std::string>()});
  }
  environment.allCrashes = std::move(crashes);
  return true;
}

bool readBucketStrings(const Json& value, Environment& environment) {
  if (!value.is_object()) return false;
  std::map<std::string, std::string> strings;
  for (const auto& [key, item] : value.items()) {
    if (!item.is_string()) return false;
    strings[key] = item.get<std::string>();
  }
  environment.bucketStrings = std::move(strings);
  return true;
}

const std::map<std::string, std::pair<FieldReader, const char*>>& fieldReaders() {
  static const std::map<std::string, std::pair<FieldReader, const char*>> readers = {
      {"systemVersion", {text(&Environment::systemVersion), "a string"}},
      {"version", {text(&Environment::version), "a string"}},
      {"build", {text(&Environment::build), "a string"}},
      {"currentDate",
       {[](const Json& value, Environment& environment) {
          if (!value.is_string()) return false;
          const auto date = LDateUtilities::dateFromISO8601String(value.get<std::string>());
          if (date) environment.currentDate = *date;
          return date.has_value();
        },
        "an ISO 8601 date"}},
      {"currentTimestamp", {timestamp(&Environment::currentTimestamp), "an ISO 8601 time stamp"}},
      {"SKUType", {text(&Environment::SKUType), "a string"}},
      {"bundleIdentifier", {text(&Environment::bundleIdentifier), "a string"}},
      {"isInternal", {flag(&Environment::isInternal), "true or false"}},
      {"testMode", {flag(&Environment::testMode), "true or false"}},
      {"TSMsEnabled", {flag(&Environment::TSMsEnabled), "true or false"}},
      {"isDocumentOpen", {flag(&Environment::isDocumentOpen), "true or false"}},
      {"allCrashes", {readCrashes, "a list of {\"time\": ISO 8601, \"version\": string}"}},
      {"firstLaunchTimestamp",
       {[](const Json& value, Environment& environment) {
          environment.firstLaunchTimestamp = timestampFrom(value);
          return environment.firstLaunchTimestamp.has_value();
        },
        "an ISO 8601 time stamp"}},
      {"firstLaunchVersion", {text(&Environment::firstLaunchVersion), "a string"}},
      {"daysSinceFirstLaunch", {integer(&Environment::daysSinceFirstLaunch), "an integer"}},
      {"directBIDs", {identifiers(&Environment::directBIDs), "a list of strings"}},
      {"fernBIDs", {identifiers(&Environment::fernBIDs), "a list of strings"}},
      {"userId", {text(&Environment::userId), "a string"}},
      {"email", {text(&Environment::email), "a string"}},
      {"bucketStrings", {readBucketStrings, "an object of strings"}},
      {"entitlementId", {text(&Environment::entitlementId), "a string"}},
      {"entitlementId_US", {text(&Environment::entitlementId_US), "a string"}},
      {"entitlementId_CA", {text(&Environment::entitlementId_CA), "a string"}},
      {"autoRenewStatus", {text(&Environment::autoRenewStatus), "a string"}},
      {"autoRenewStatus_US", {text(&Environment::autoRenewStatus_US), "a string"}},
      {"autoRenewStatus_CA", {text(&Environment::autoRenewStatus_CA), "a string"}},
      {"primaryProductLine", {text(&Environment::primaryProductLine), "a string"}},
      {"daysUntilExpiration", {integer(&Environment::daysUntilExpiration), "an integer"}},
      {"daysUntilExpiration_US", {integer(&Environment::daysUntilExpiration_US), "an integer"}},
      {"daysUntilExpiration_CA", {integer(&Environment::daysUntilExpiration_CA), "an integer"}},
      {"daysSinceExpiration", {integer(&Environment::daysSinceExpiration), "an integer"}},
      {"daysSinceExpiration_US", {integer(&Environment::daysSinceExpiration_US), "an integer"}},
      {"daysSinceExpiration_CA", {integer(&Environment::daysSinceExpiration_CA), "an integer"}},
  };
  return readers;
}

std::string operatingSystemVersion() {
  utsname names{};
  if (uname(&names) != 0) return "";
  return names.release;
}

}  // namespace

void CriteriaEvaluatorEnvironment::saveBucketStrings() const {
  Preferences& preferences = Services::shared().preferences();
  preferences.setObject(kBucketStringsPreferencesKey, Json(bucketStrings));
  if (auto saved = preferences.synchronize(); !saved) {
    LLog("ERROR: bucket strings not saved: %@", saved.error().localizedDescription());
  }
}

CriteriaEvaluatorEnvironment CriteriaEvaluatorEnvironment::currentEnvironment() {
  CriteriaEvaluatorEnvironment environment;
  environment.systemVersion = operatingSystemVersion();
  environment.version = LEDGEON_VERSION;
  environment.build = LEDGEON_VERSION;
  environment.currentDate = LDateUtilities::currentDate();
  environment.currentTimestamp = Clock::now();
  environment.SKUType = "Standard";
  environment.bundleIdentifier = "org.ledgeon.ledgeon";
  if (auto stored = Services::shared().preferences().objectForKey(kBucketStringsPreferencesKey)) {
    if (!readBucketStrings(*stored, environment)) {
      LLog("ERROR: ignoring damaged %@ in the preferences", kBucketStringsPreferencesKey);
    }
  }
  return environment;
}

Result<CriteriaEvaluatorEnvironment> CriteriaEvaluatorEnvironment::environmentWithJSON(
    const nlohmann::json& object, CriteriaEvaluatorEnvironment base) {
  if (!object.is_object()) {
    return Error::make(kLErrorDomain, 1, "the environment must be a JSON object of fields");
  }
  for (const auto& [key, value] : object.items()) {
    const auto reader = fieldReaders().find(key);
    if (reader == fieldReaders().end()) {
      return Error::make(kLErrorDomain, 1, fmt::format("unknown field \"{}\"", key));
    }
    if (!reader->second.first(value, base)) {
      return Error::make(kLErrorDomain, 1,
                         fmt::format("field \"{}\" must be {}", key, reader->second.second));
    }
  }
  return base;
}

}  // namespace ledgeon
