#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "Application/CriteriaEvaluatorEnvironment.h"
#include "Utilities/Date.h"

namespace ledgeon {

// A targeting rule as decoded from JSON; keys keep the order the rule lists them in, which is the
// order they are visited in.
using CriteriaJSON = nlohmann::ordered_json;

// The stored codes of ordered comparisons: how the environment's value must compare with the
// rule's value. A key without a suffix asks for Equal; "_lt", "_lte", "_gt", "_gte" for the others.
enum class CriteriaOperatorType : int32_t {
  LessThan = 0,
  LessThanOrEqual = 1,
  GreaterThan = 2,
  GreaterThanOrEqual = 3,
  Equal = 4,
};

// Decides whether this installation (the environment) satisfies a targeting rule of remote
// settings, surveys or in-app notifications. Pure logic except that it makes and remembers random
// bucket numbers and collects the time stamps at which the answer could change. Made per
// evaluation; single-threaded.
class CriteriaEvaluator final {
 public:
  // Rules nested deeper than this evaluate to their default: a guard against hostile input.
  static constexpr int kMaximumNesting = 100;

  CriteriaEvaluator(CriteriaJSON criteria, CriteriaEvaluatorEnvironment environment);

  // Clears the time stamps, evaluates the rule (true when nothing in it decides) and saves the
  // environment's bucket strings.
  bool environmentSatisfiesCriteria();
  // The first key of `dictionary` that is recognised and has a value of the kind it needs decides;
  // otherwise `defaultValue`. A value that is none of list, dictionary, string or number (null)
  // ends the evaluation with `defaultValue` at once.
  bool environmentSatisfiesDictionary(const CriteriaJSON& dictionary, bool defaultValue);
  bool environmentSatisfiesAnd(const CriteriaJSON& list);
  bool environmentSatisfiesOr(const CriteriaJSON& list);
  bool environmentSatisfiesNot(const CriteriaJSON& value);

  // Every key the evaluator recognises, with the suffixed forms of ordered keys and the option
  // keys read beside "bucket" and "crash_count".
  static const std::vector<std::string>& supportedCriteriaKeys();
  static bool supportsCriteria(std::string_view key);

  // The rule time stamps read during the last evaluation, and the moments a crash-count window
  // moves on.
  const std::vector<Date>& timestampsEncountered() const { return mutableTimestampsEncountered_; }
  const CriteriaJSON& criteria() const { return criteria_; }
  const CriteriaEvaluatorEnvironment& environment() const { return environment_; }

  // Comparisons. `comparisonResult` is negative for "less", 0 for "equal", positive for
  // "greater" (the environment's value against the rule's).
  static bool comparisonResult(int comparisonResult, CriteriaOperatorType operatorType);
  static bool version(std::string_view environmentVersion, std::string_view ruleVersion,
                      CriteriaOperatorType operatorType);
  static int compareVersion(std::string_view version, std::string_view toVersion);
  // The first three "."-separated parts read as integers; missing parts are 0.
  static void getMajor(int64_t* major, int64_t* minor, int64_t* bugfix, std::string_view version);
  static bool stringContainsString(std::string_view string, std::string_view containsString);
  // Case-insensitive.
  static bool stringEqualsString(std::string_view string, std::string_view equalsString);
  // "15" holds 15 only; "10:20", "10,20" or "10;20" hold 10 to 20; "" holds nothing.
  static bool rangeString(std::string_view rangeString, int64_t containsInteger);
  // Bank identifiers without surrounding white space and leading zeros.
  static std::string standardizedBIDStringFromString(std::string_view string);

  // An unreadable date or time stamp satisfies no comparison.
  bool environmentSatisfiesDateString(std::string_view dateString,
                                      CriteriaOperatorType operatorType) const;
  // Records the rule's time stamp. An unknown environment time stamp satisfies nothing.
  bool timestamp(std::optional<Date> timestamp, std::string_view satisfiesTimestampString,
                 CriteriaOperatorType operatorType);
  // connectionType: 0 any connection, 1 direct, 2 the other aggregation service.
  bool environmentSatisfiesBIDString(std::string_view bidString, int connectionType) const;
  bool environmentSatisfiesSKUType(std::string_view skuType) const;
  bool environmentSatisfiesCrashCount(int64_t crashCount, CriteriaOperatorType operatorType,
                                      const CriteriaJSON& options);
  bool environmentSatisfiesBucket(int64_t bucket, CriteriaOperatorType operatorType,
                                  const CriteriaJSON& options);

 private:
  // The decision of one key, or nothing when the key is passed over.
  std::optional<bool> evaluateKey(const std::string& key, const CriteriaJSON& value,
                                  const CriteriaJSON& dictionary);
  bool satisfiesDictionaryAtDepth(const CriteriaJSON& dictionary, bool defaultValue);

  CriteriaJSON criteria_;
  CriteriaEvaluatorEnvironment environment_;
  std::vector<Date> mutableTimestampsEncountered_;
  int depth_ = 0;
};

}  // namespace ledgeon
