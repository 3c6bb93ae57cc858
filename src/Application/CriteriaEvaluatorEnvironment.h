#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Utilities/Date.h"
#include "Utilities/Result.h"

namespace ledgeon {

// One crash of the application: when it happened and the version that crashed.
struct CrashRecord {
  Date time;
  std::string version;
};

// The facts about this installation that targeting rules are evaluated against, gathered by the
// caller beforehand. A plain value; only the bucket strings change during an evaluation.
struct CriteriaEvaluatorEnvironment {
  // The preferences key under which the bucket strings are remembered across launches.
  static constexpr const char* kBucketStringsPreferencesKey = "CriteriaEvaluatorBucketStrings";

  std::string systemVersion;
  std::string version;
  std::string build;
  Date currentDate;       // today, as a calendar date
  Date currentTimestamp;  // now
  std::string SKUType;
  std::string bundleIdentifier;
  bool isInternal = false;
  bool testMode = false;
  bool TSMsEnabled = false;
  bool isDocumentOpen = false;
  std::vector<CrashRecord> allCrashes;
  std::optional<Date> firstLaunchTimestamp;  // none: unknown, so no time stamp rule matches it
  std::string firstLaunchVersion;
  int64_t daysSinceFirstLaunch = 0;
  std::set<std::string> directBIDs;
  std::set<std::string> fernBIDs;
  std::string userId;
  std::string email;
  std::map<std::string, std::string> bucketStrings;
  std::string entitlementId;
  std::string entitlementId_US;
  std::string entitlementId_CA;
  std::string autoRenewStatus;
  std::string autoRenewStatus_US;
  std::string autoRenewStatus_CA;
  std::string primaryProductLine;
  int64_t daysUntilExpiration = 0;
  int64_t daysUntilExpiration_US = 0;
  int64_t daysUntilExpiration_CA = 0;
  int64_t daysSinceExpiration = 0;
  int64_t daysSinceExpiration_US = 0;
  int64_t daysSinceExpiration_CA = 0;

  // Remembers bucketStrings in the user's preferences (Services), so that an installation stays
  // in the same bucket across launches.
  void saveBucketStrings() const;

  // What the running program knows about itself: its version, today and now, the operating
  // system's version and the remembered bucket strings; everything else keeps its default.
  static CriteriaEvaluatorEnvironment currentEnvironment();

  // `base` with the fields a JSON object names replaced: keys are the field names above, dates
  // and time stamps are ISO 8601 texts, the BID sets are lists of strings, bucketStrings an object
  // of strings, allCrashes a list of {"time": ISO 8601, "version": text}. An unknown field or a
  // value of the wrong type is an error naming the field.
  static Result<CriteriaEvaluatorEnvironment> environmentWithJSON(
      const nlohmann::json& object, CriteriaEvaluatorEnvironment base);
};

}  // namespace ledgeon
