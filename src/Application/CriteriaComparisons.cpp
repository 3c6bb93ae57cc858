// The comparisons the targeting keys are built from.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "Application/CriteriaEvaluator.h"
#include "Application/internal/CriteriaValues.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {

namespace criteria {

std::optional<ValueKind> kindOf(const CriteriaJSON& value) {
  if (value.is_array()) return ValueKind::List;
  if (value.is_object()) return ValueKind::Dictionary;
  if (value.is_string()) return ValueKind::String;
  if (value.is_number() || value.is_boolean()) return ValueKind::Number;
  return std::nullopt;
}

int64_t integerValue(const CriteriaJSON& number) {
  constexpr auto kMax = std::numeric_limits<int64_t>::max();
  constexpr auto kMin = std::numeric_limits<int64_t>::min();
  if (number.is_boolean()) return number.get<bool>() ? 1 : 0;
  if (number.is_number_unsigned()) {
    const auto value = number.get<uint64_t>();
    return value > static_cast<uint64_t>(kMax) ? kMax : static_cast<int64_t>(value);
  }
  if (number.is_number_integer()) return number.get<int64_t>();
  if (number.is_number_float()) {
    const double value = number.get<double>();
    if (std::isnan(value)) return 0;
    if (value >= 9.2233720368547758e18) return kMax;
    if (value <= -9.2233720368547758e18) return kMin;
    return static_cast<int64_t>(value);
  }
  return 0;
}

bool truth(const CriteriaJSON& number) {
  if (number.is_boolean()) return number.get<bool>();
  if (number.is_number_float()) {
    const double value = number.get<double>();
    return std::isless(value, 0.0) || std::isgreater(value, 0.0);
  }
  return integerValue(number) != 0;
}

int64_t integerValueOfText(std::string_view text) {
  size_t i = 0;
  while (i < text.size() &&
         (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r')) {
    ++i;
  }
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  // Accumulate as a negative number, which has room for the minimum.
  int64_t value = 0;
  constexpr auto kMin = std::numeric_limits<int64_t>::min();
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    const int digit = text[i] - '0';
    if (value < (kMin + digit) / 10) return negative ? kMin : std::numeric_limits<int64_t>::max();
    value = value * 10 - digit;
  }
  if (negative) return value;
  return value == kMin ? std::numeric_limits<int64_t>::max() : -value;
}

std::optional<std::string> rangeText(const CriteriaJSON& value) {
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_array()) return std::nullopt;
  std::string text;
  bool first = true;
  for (const CriteriaJSON& item : value) {
    std::string part;
    if (item.is_string()) {
      part = item.get<std::string>();
    } else if (kindOf(item) == ValueKind::Number) {
      part = std::to_string(integerValue(item));
    } else {
      continue;
    }
    if (!first) text += ",";
    text += part;
    first = false;
  }
  return text;
}

}  // namespace criteria

bool CriteriaEvaluator::comparisonResult(int result, CriteriaOperatorType operatorType) {
  using Op = CriteriaOperatorType;
  if (result < 0) return operatorType == Op::LessThan || operatorType == Op::LessThanOrEqual;
  if (result > 0) return operatorType == Op::GreaterThan || operatorType == Op::GreaterThanOrEqual;
  return operatorType == Op::LessThanOrEqual || operatorType == Op::GreaterThanOrEqual ||
         operatorType == Op::Equal;
}

void CriteriaEvaluator::getMajor(int64_t* major, int64_t* minor, int64_t* bugfix,
                                 std::string_view version) {
  int64_t* parts[] = {major, minor, bugfix};
  for (int64_t* part : parts) {
    if (part) *part = 0;
  }
  size_t start = 0;
  for (int64_t* part : parts) {
    if (start > version.size()) break;
    const size_t end = std::min(version.find('.', start), version.size());
    if (part) *part = criteria::integerValueOfText(version.substr(start, end - start));
    start = end + 1;
  }
}

int CriteriaEvaluator::compareVersion(std::string_view version, std::string_view toVersion) {
  int64_t a[3];
  int64_t b[3];
  getMajor(&a[0], &a[1], &a[2], version);
  getMajor(&b[0], &b[1], &b[2], toVersion);
  for (int i = 0; i < 3; ++i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return 0;
}

bool CriteriaEvaluator::version(std::string_view environmentVersion, std::string_view ruleVersion,
                                CriteriaOperatorType operatorType) {
  return comparisonResult(compareVersion(environmentVersion, ruleVersion), operatorType);
}

bool CriteriaEvaluator::stringContainsString(std::string_view string,
                                             std::string_view containsString) {
  return string.find(containsString) != std::string_view::npos;
}

bool CriteriaEvaluator::stringEqualsString(std::string_view string, std::string_view equalsString) {
  const auto a = icu::UnicodeString::fromUTF8(
      icu::StringPiece(string.data(), static_cast<int32_t>(string.size())));
  const auto b = icu::UnicodeString::fromUTF8(
      icu::StringPiece(equalsString.data(), static_cast<int32_t>(equalsString.size())));
  return a.caseCompare(b, U_FOLD_CASE_DEFAULT) == 0;
}

bool CriteriaEvaluator::rangeString(std::string_view text, int64_t integer) {
  if (text.empty()) return false;
  std::vector<int64_t> parts;
  size_t start = 0;
  while (parts.size() < 2) {
    const size_t end = std::min(text.find_first_of(",;:", start), text.size());
    parts.push_back(criteria::integerValueOfText(text.substr(start, end - start)));
    if (end == text.size()) break;
    start = end + 1;
  }
  if (parts.size() == 1) return integer == parts[0];
  return parts[0] <= integer && integer <= parts[1];
}

std::string CriteriaEvaluator::standardizedBIDStringFromString(std::string_view string) {
  const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
  while (!string.empty() && isSpace(string.front())) string.remove_prefix(1);
  while (!string.empty() && isSpace(string.back())) string.remove_suffix(1);
  while (string.size() > 1 && string.front() == '0') string.remove_prefix(1);
  return std::string(string);
}

bool CriteriaEvaluator::environmentSatisfiesDateString(std::string_view dateString,
                                                       CriteriaOperatorType operatorType) const {
  const auto date = LDateUtilities::dateFromISO8601String(dateString);
  if (!date) return false;
  const long days = LDateUtilities::numberOfDaysFromDate(*date, environment_.currentDate);
  return comparisonResult(criteria::compare(days, 0L), operatorType);
}

bool CriteriaEvaluator::timestamp(std::optional<Date> environmentTimestamp,
                                  std::string_view timestampString,
                                  CriteriaOperatorType operatorType) {
  const auto ruleTimestamp = LDateUtilities::timestampFromISO8601String(timestampString);
  if (!ruleTimestamp) return false;
  mutableTimestampsEncountered_.push_back(*ruleTimestamp);
  if (!environmentTimestamp) return false;
  return comparisonResult(criteria::compare(*environmentTimestamp, *ruleTimestamp), operatorType);
}

bool CriteriaEvaluator::environmentSatisfiesBIDString(std::string_view bidString,
                                                      int connectionType) const {
  const std::string bid = standardizedBIDStringFromString(bidString);
  const bool any = stringEqualsString(bid, "any");
  const auto holds = [&](const std::set<std::string>& identifiers) {
    if (any) return !identifiers.empty();
    return std::any_of(identifiers.begin(), identifiers.end(), [&](const std::string& identifier) {
      return standardizedBIDStringFromString(identifier) == bid;
    });
  };
  switch (connectionType) {
    case 1:
      return holds(environment_.directBIDs);
    case 2:
      return holds(environment_.fernBIDs);
    default:
      return holds(environment_.directBIDs) || holds(environment_.fernBIDs);
  }
}

bool CriteriaEvaluator::environmentSatisfiesSKUType(std::string_view skuType) const {
  return environment_.SKUType == skuType;
}

bool CriteriaEvaluator::environmentSatisfiesCrashCount(int64_t crashCount,
                                                       CriteriaOperatorType operatorType,
                                                       const CriteriaJSON& options) {
  std::vector<CrashRecord> crashes = environment_.allCrashes;
  const Date now = environment_.currentTimestamp;
  if (const auto days = options.find("crash_count_days");
      days != options.end() && criteria::kindOf(*days) == criteria::ValueKind::Number) {
    const int64_t n = criteria::integerValue(*days);
    if (n >= 1) {
      const Date since = now.dateByAddingTimeInterval(-LDateUtilities::timeIntervalForNumberOfDays(
          static_cast<long>(std::min<int64_t>(n, 1LL << 40))));
      std::erase_if(crashes, [&](const CrashRecord& crash) { return crash.time < since; });
      // The count changes when the oldest crash leaves the window; look again tomorrow.
      if (!environment_.allCrashes.empty()) {
        mutableTimestampsEncountered_.push_back(
            now.dateByAddingTimeInterval(LDateUtilities::timeIntervalForNumberOfDays(1)));
      }
    }
  }
  if (const auto version = options.find("crash_count_version"); version != options.end()) {
    if (const auto* text = version->get_ptr<const std::string*>()) {
      const std::string& wanted = *text == "current" ? environment_.version : *text;
      std::erase_if(crashes, [&](const CrashRecord& crash) { return crash.version != wanted; });
    }
  }
  return comparisonResult(criteria::compare(static_cast<int64_t>(crashes.size()), crashCount),
                          operatorType);
}

bool CriteriaEvaluator::environmentSatisfiesBucket(int64_t bucket,
                                                   CriteriaOperatorType operatorType,
                                                   const CriteriaJSON& options) {
  std::string source = environment_.userId;
  if (const auto identifier = options.find("bucket_identifier");
      identifier != options.end() && identifier->is_string()) {
    const std::string& name = identifier->get_ref<const std::string&>();
    auto remembered = environment_.bucketStrings.find(name);
    if (remembered == environment_.bucketStrings.end()) {
      std::random_device random;
      const uint64_t value =
          (static_cast<uint64_t>(random()) << 32) | static_cast<uint32_t>(random());
      remembered = environment_.bucketStrings.emplace(name, std::to_string(value)).first;
    }
    source = remembered->second;
  }
  std::string digits;
  std::copy_if(source.begin(), source.end(), std::back_inserter(digits),
               [](char c) { return c >= '0' && c <= '9'; });
  const auto option = [&](const char* key, int64_t fallback) {
    const auto found = options.find(key);
    if (found == options.end() || criteria::kindOf(*found) != criteria::ValueKind::Number) {
      return fallback;
    }
    const int64_t value = criteria::integerValue(*found);
    return value > 0 ? value : fallback;
  };
  const auto numDigits = static_cast<uint64_t>(option("bucket_num_digits", 2));
  const auto offset = static_cast<uint64_t>(option("bucket_offset", 0));
  int64_t number = -1;
  if (offset < digits.size()) {
    const uint64_t end = digits.size() - offset;
    const uint64_t start = end > numDigits ? end - numDigits : 0;
    number = criteria::integerValueOfText(std::string_view(digits).substr(start, end - start));
  }
  return comparisonResult(criteria::compare(number, bucket), operatorType);
}

}  // namespace ledgeon
