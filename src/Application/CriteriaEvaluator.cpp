#include "Application/CriteriaEvaluator.h"

#include <algorithm>
#include <functional>
#include <unordered_map>

#include "Application/internal/CriteriaValues.h"

namespace ledgeon {

namespace {

using Environment = CriteriaEvaluatorEnvironment;
using criteria::integerValue;
using criteria::ValueKind;

// Decides one key: its value, the key's operator and the whole dictionary (for options). Nothing
// when the value is not of a kind the key takes.
using KeyTest = std::function<std::optional<bool>(CriteriaEvaluator&, const CriteriaJSON& value,
                                                  CriteriaOperatorType, const CriteriaJSON&)>;

struct KeyRule {
  bool ordered;  // takes the "_lt", "_lte", "_gt", "_gte" suffixes
  KeyTest test;
};

KeyRule versionKey(std::string Environment::*field) {
  return {true,
          [field](CriteriaEvaluator& evaluator, const CriteriaJSON& value, CriteriaOperatorType op,
                  const CriteriaJSON&) -> std::optional<bool> {
            if (!value.is_string()) return std::nullopt;
            return CriteriaEvaluator::version(evaluator.environment().*field,
                                              value.get_ref<const std::string&>(), op);
          }};
}

KeyRule timestampKey(std::optional<Date> (*field)(const Environment&)) {
  return {true,
          [field](CriteriaEvaluator& evaluator, const CriteriaJSON& value, CriteriaOperatorType op,
                  const CriteriaJSON&) -> std::optional<bool> {
            if (!value.is_string()) return std::nullopt;
            return evaluator.timestamp(field(evaluator.environment()),
                                       value.get_ref<const std::string&>(), op);
          }};
}

KeyRule bidKey(int connectionType) {
  return {false,
          [connectionType](CriteriaEvaluator& evaluator, const CriteriaJSON& value,
                           CriteriaOperatorType, const CriteriaJSON&) -> std::optional<bool> {
            if (value.is_string()) {
              return evaluator.environmentSatisfiesBIDString(value.get_ref<const std::string&>(),
                                                             connectionType);
            }
            if (criteria::isNumber(value)) {
              return evaluator.environmentSatisfiesBIDString(std::to_string(integerValue(value)),
                                                             connectionType);
            }
            return std::nullopt;
          }};
}

KeyRule containsKey(std::string Environment::*field) {
  return {false,
          [field](CriteriaEvaluator& evaluator, const CriteriaJSON& value, CriteriaOperatorType,
                  const CriteriaJSON&) -> std::optional<bool> {
            if (!value.is_string()) return std::nullopt;
            return CriteriaEvaluator::stringContainsString(evaluator.environment().*field,
                                                           value.get_ref<const std::string&>());
          }};
}

KeyRule flagKey(bool Environment::*field) {
  return {false,
          [field](CriteriaEvaluator& evaluator, const CriteriaJSON& value, CriteriaOperatorType,
                  const CriteriaJSON&) -> std::optional<bool> {
            if (!criteria::isNumber(value)) return std::nullopt;
            return evaluator.environment().*field == criteria::truth(value);
          }};
}

KeyRule equalsKey(std::string Environment::*field) {
  return {false,
          [field](CriteriaEvaluator& evaluator, const CriteriaJSON& value, CriteriaOperatorType,
                  const CriteriaJSON&) -> std::optional<bool> {
            if (!value.is_string()) return std::nullopt;
            return CriteriaEvaluator::stringEqualsString(evaluator.environment().*field,
                                                         value.get_ref<const std::string&>());
          }};
}

KeyRule rangeKey(int64_t Environment::*field) {
  return {false,
          [field](CriteriaEvaluator& evaluator, const CriteriaJSON& value, CriteriaOperatorType,
                  const CriteriaJSON&) -> std::optional<bool> {
            const auto text = criteria::rangeText(value);
            if (!text) return std::nullopt;
            return CriteriaEvaluator::rangeString(*text, evaluator.environment().*field);
          }};
}

std::optional<bool> userIdTest(CriteriaEvaluator& evaluator, const CriteriaJSON& value,
                               CriteriaOperatorType, const CriteriaJSON&) {
  const std::string& userId = evaluator.environment().userId;
  if (value.is_string()) return !userId.empty() && value.get_ref<const std::string&>() == userId;
  if (!value.is_array()) return std::nullopt;
  if (userId.empty()) return false;
  return std::any_of(value.begin(), value.end(), [&](const CriteriaJSON& item) {
    return item.is_string() && item.get_ref<const std::string&>() == userId;
  });
}

const std::unordered_map<std::string_view, KeyRule>& keyRules() {
  using E = Environment;
  using Op = CriteriaOperatorType;
  using J = CriteriaJSON;
  static const std::unordered_map<std::string_view, KeyRule> rules = {
      {"supports_criteria",
       {false,
        [](CriteriaEvaluator&, const J& value, Op, const J&) -> std::optional<bool> {
          if (!value.is_string()) return std::nullopt;
          return CriteriaEvaluator::supportsCriteria(value.get_ref<const std::string&>());
        }}},
      {"and",
       {false,
        [](CriteriaEvaluator& evaluator, const J& value, Op, const J&) -> std::optional<bool> {
          if (!value.is_array()) return std::nullopt;
          return evaluator.environmentSatisfiesAnd(value);
        }}},
      {"or",
       {false,
        [](CriteriaEvaluator& evaluator, const J& value, Op, const J&) -> std::optional<bool> {
          if (!value.is_array()) return std::nullopt;
          return evaluator.environmentSatisfiesOr(value);
        }}},
      {"not",
       {false,
        [](CriteriaEvaluator& evaluator, const J& value, Op, const J&) -> std::optional<bool> {
          return evaluator.environmentSatisfiesNot(value);
        }}},
      {"system_version", versionKey(&E::systemVersion)},
      {"version", versionKey(&E::version)},
      {"build", versionKey(&E::build)},
      {"first_launch_version", versionKey(&E::firstLaunchVersion)},
      {"sku_type",
       {false,
        [](CriteriaEvaluator& evaluator, const J& value, Op, const J&) -> std::optional<bool> {
          if (!value.is_string()) return std::nullopt;
          return evaluator.environmentSatisfiesSKUType(value.get_ref<const std::string&>());
        }}},
      {"date",
       {true,
        [](CriteriaEvaluator& evaluator, const J& value, Op op, const J&) -> std::optional<bool> {
          if (!value.is_string()) return std::nullopt;
          return evaluator.environmentSatisfiesDateString(value.get_ref<const std::string&>(), op);
        }}},
      {"timestamp",
       timestampKey([](const E& e) -> std::optional<Date> { return e.currentTimestamp; })},
      {"first_launch_timestamp", timestampKey([](const E& e) { return e.firstLaunchTimestamp; })},
      {"days_since_first_launch",
       {true,
        [](CriteriaEvaluator& evaluator, const J& value, Op op, const J&) -> std::optional<bool> {
          if (!criteria::isNumber(value)) return std::nullopt;
          return CriteriaEvaluator::comparisonResult(
              criteria::compare(evaluator.environment().daysSinceFirstLaunch, integerValue(value)),
              op);
        }}},
      {"bid", bidKey(0)},
      {"bid_direct", bidKey(1)},
      {"bid_fern", bidKey(2)},
      {"bundle_identifier_contains", containsKey(&E::bundleIdentifier)},
      {"email_contains", containsKey(&E::email)},
      {"is_internal", flagKey(&E::isInternal)},
      {"test_mode", flagKey(&E::testMode)},
      {"tsms_enabled", flagKey(&E::TSMsEnabled)},
      {"is_document_open", flagKey(&E::isDocumentOpen)},
      {"bucket",
       {true,
        [](CriteriaEvaluator& evaluator, const J& value, Op op,
           const J& dictionary) -> std::optional<bool> {
          if (!criteria::isNumber(value)) return std::nullopt;
          return evaluator.environmentSatisfiesBucket(integerValue(value), op, dictionary);
        }}},
      {"crash_count",
       {true,
        [](CriteriaEvaluator& evaluator, const J& value, Op op,
           const J& dictionary) -> std::optional<bool> {
          if (!criteria::isNumber(value)) return std::nullopt;
          return evaluator.environmentSatisfiesCrashCount(integerValue(value), op, dictionary);
        }}},
      {"primary_product_line", equalsKey(&E::primaryProductLine)},
      {"entitlement_id", equalsKey(&E::entitlementId)},
      {"entitlement_id_us", equalsKey(&E::entitlementId_US)},
      {"entitlement_id_ca", equalsKey(&E::entitlementId_CA)},
      {"auto_renew_status", equalsKey(&E::autoRenewStatus)},
      {"auto_renew_status_us", equalsKey(&E::autoRenewStatus_US)},
      {"auto_renew_status_ca", equalsKey(&E::autoRenewStatus_CA)},
      {"user_id", {false, userIdTest}},
      {"days_since_expiration_range", rangeKey(&E::daysSinceExpiration)},
      {"days_since_expiration_range_us", rangeKey(&E::daysSinceExpiration_US)},
      {"days_since_expiration_range_ca", rangeKey(&E::daysSinceExpiration_CA)},
      {"days_until_expiration_range", rangeKey(&E::daysUntilExpiration)},
      {"days_until_expiration_range_us", rangeKey(&E::daysUntilExpiration_US)},
      {"days_until_expiration_range_ca", rangeKey(&E::daysUntilExpiration_CA)},
  };
  return rules;
}

struct OperatorSuffix {
  std::string_view suffix;
  CriteriaOperatorType type;
};
constexpr OperatorSuffix kOperatorSuffixes[] = {
    {"_gte", CriteriaOperatorType::GreaterThanOrEqual},
    {"_gt", CriteriaOperatorType::GreaterThan},
    {"_lte", CriteriaOperatorType::LessThanOrEqual},
    {"_lt", CriteriaOperatorType::LessThan},
};

// The rule of a key and the operator its suffix asks for; nothing for an unrecognised key.
std::optional<std::pair<const KeyRule*, CriteriaOperatorType>> ruleForKey(std::string_view key) {
  const auto& rules = keyRules();
  if (const auto plain = rules.find(key); plain != rules.end()) {
    return std::make_pair(&plain->second, CriteriaOperatorType::Equal);
  }
  for (const auto& [suffix, type] : kOperatorSuffixes) {
    if (key.size() <= suffix.size() || key.substr(key.size() - suffix.size()) != suffix) continue;
    const auto base = rules.find(key.substr(0, key.size() - suffix.size()));
    if (base != rules.end() && base->second.ordered) return std::make_pair(&base->second, type);
  }
  return std::nullopt;
}

}  // namespace

CriteriaEvaluator::CriteriaEvaluator(CriteriaJSON criteria,
                                     CriteriaEvaluatorEnvironment environment)
    : criteria_(std::move(criteria)), environment_(std::move(environment)) {}

bool CriteriaEvaluator::environmentSatisfiesCriteria() {
  mutableTimestampsEncountered_.clear();
  depth_ = 0;
  const bool satisfied = environmentSatisfiesDictionary(criteria_, true);
  environment_.saveBucketStrings();
  return satisfied;
}

bool CriteriaEvaluator::environmentSatisfiesDictionary(const CriteriaJSON& dictionary,
                                                       bool defaultValue) {
  if (!dictionary.is_object() || depth_ >= kMaximumNesting) return defaultValue;
  ++depth_;
  const bool result = satisfiesDictionaryAtDepth(dictionary, defaultValue);
  --depth_;
  return result;
}

bool CriteriaEvaluator::satisfiesDictionaryAtDepth(const CriteriaJSON& dictionary,
                                                   bool defaultValue) {
  for (const auto& [key, value] : dictionary.items()) {
    if (!criteria::kindOf(value)) return defaultValue;
    if (const auto decided = evaluateKey(key, value, dictionary)) return *decided;
  }
  return defaultValue;
}

std::optional<bool> CriteriaEvaluator::evaluateKey(const std::string& key,
                                                   const CriteriaJSON& value,
                                                   const CriteriaJSON& dictionary) {
  const auto rule = ruleForKey(key);
  if (!rule) return std::nullopt;
  return rule->first->test(*this, value, rule->second, dictionary);
}

bool CriteriaEvaluator::environmentSatisfiesAnd(const CriteriaJSON& list) {
  for (const CriteriaJSON& element : list) {
    if (element.is_object() && !environmentSatisfiesDictionary(element, true)) return false;
  }
  return true;
}

bool CriteriaEvaluator::environmentSatisfiesOr(const CriteriaJSON& list) {
  for (const CriteriaJSON& element : list) {
    if (element.is_object() && environmentSatisfiesDictionary(element, false)) return true;
  }
  return false;
}

bool CriteriaEvaluator::environmentSatisfiesNot(const CriteriaJSON& value) {
  if (!value.is_object()) return true;
  return !environmentSatisfiesDictionary(value, false);
}

const std::vector<std::string>& CriteriaEvaluator::supportedCriteriaKeys() {
  static const std::vector<std::string> keys = [] {
    std::vector<std::string> result;
    for (const auto& [name, rule] : keyRules()) {
      result.emplace_back(name);
      if (!rule.ordered) continue;
      for (const auto& [suffix, type] : kOperatorSuffixes) {
        result.push_back(std::string(name) + std::string(suffix));
      }
    }
    for (const char* option : {"bucket_identifier", "bucket_num_digits", "bucket_offset",
                               "crash_count_days", "crash_count_version"}) {
      result.emplace_back(option);
    }
    std::sort(result.begin(), result.end());
    return result;
  }();
  return keys;
}

bool CriteriaEvaluator::supportsCriteria(std::string_view key) {
  const auto& keys = supportedCriteriaKeys();
  return std::binary_search(keys.begin(), keys.end(), key);
}

}  // namespace ledgeon
