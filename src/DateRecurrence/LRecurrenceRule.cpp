#include "DateRecurrence/LRecurrenceRule.h"

#include <charconv>
#include <iterator>
#include <stdexcept>

#include "DateRecurrence/DateRecurrenceStrings.h"
#include "Utilities/DateFormatter.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

constexpr std::string_view kFrequencyNames[] = {"DAILY", "WEEKLY", "MONTHLY", "YEARLY"};
constexpr std::string_view kUntilPattern = "yyyyMMdd'T'HHmmss'Z'";

// The formatter is not thread-safe and costly to build: one per thread.
const DateFormatter& untilFormatter() {
  thread_local const DateFormatter formatter(kUntilPattern, "en_US_POSIX", "GMT");
  return formatter;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  size_t position = 0;
  while (true) {
    const size_t next = text.find(separator, position);
    parts.push_back(text.substr(position, next - position));
    if (next == std::string_view::npos) break;
    position = next + 1;
  }
  return parts;
}

std::string upperCased(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return result;
}

// A whole signed decimal number; a leading "+" is allowed.
std::optional<int64_t> integerFrom(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// The list's numbers when each is within ±maximum and not 0 (or within 1...maximum when
// `positiveOnly`).
std::optional<std::vector<int64_t>> numbersFrom(std::string_view text, int64_t maximum,
                                                bool positiveOnly = false) {
  std::vector<int64_t> numbers;
  for (std::string_view part : split(text, ',')) {
    const auto number = integerFrom(part);
    if (!number || *number == 0 || *number > maximum || *number < (positiveOnly ? 1 : -maximum)) {
      return std::nullopt;
    }
    numbers.push_back(*number);
  }
  return numbers;
}

std::optional<std::vector<NthWeekDay>> weekDaysFrom(std::string_view text) {
  std::vector<NthWeekDay> days;
  for (std::string_view part : split(text, ',')) {
    if (part.size() < 2) return std::nullopt;
    const std::string code = upperCased(part.substr(part.size() - 2));
    int32_t dayOfTheWeek = 0;
    for (int32_t day = 1; day <= 7; ++day) {
      if (recurrence::weekdayCode(day) == code) dayOfTheWeek = day;
    }
    int64_t weekNumber = 0;
    const std::string_view position = part.substr(0, part.size() - 2);
    if (!position.empty()) {
      const auto number = integerFrom(position);
      if (!number || *number == 0 || *number > 53 || *number < -53) return std::nullopt;
      weekNumber = *number;
    }
    if (dayOfTheWeek == 0) return std::nullopt;
    days.push_back({dayOfTheWeek, weekNumber});
  }
  return days;
}

std::optional<Date> untilFrom(std::string_view text) {
  if (auto date = untilFormatter().dateFromString(text)) return date;
  if (text.size() == 8) return LDateUtilities::dateFromISO8601String(text);
  return std::nullopt;
}

bool readComponent(const std::string& key, std::string_view value,
                   LRecurrenceRule::Properties& properties, bool& sawFrequency) {
  auto assign = [](std::vector<int64_t>& list, std::optional<std::vector<int64_t>> numbers) {
    if (numbers) list = std::move(*numbers);
    return numbers.has_value();
  };
  if (key == "FREQ") {
    for (size_t i = 0; i < std::size(kFrequencyNames); ++i) {
      if (upperCased(value) == kFrequencyNames[i]) {
        properties.frequency = static_cast<LRecurrenceFrequency>(i);
        sawFrequency = true;
        return true;
      }
    }
    return false;
  }
  if (key == "INTERVAL") {
    const auto interval = integerFrom(value);
    if (!interval || *interval < 1) return false;
    properties.interval = *interval;
    return true;
  }
  if (key == "UNTIL" || key == "COUNT") {
    if (properties.recurrenceEnd) return false;  // at most one end
    if (key == "UNTIL") {
      const auto until = untilFrom(value);
      if (until) properties.recurrenceEnd = RecurrenceEnd::recurrenceEndWithEndDate(*until);
      return until.has_value();
    }
    const auto count = integerFrom(value);
    if (!count || *count < 1) return false;
    properties.recurrenceEnd =
        RecurrenceEnd::recurrenceEndWithOccurrenceCount(static_cast<uint64_t>(*count));
    return true;
  }
  if (key == "BYDAY") {
    auto days = weekDaysFrom(value);
    if (days) properties.daysOfTheWeek = std::move(*days);
    return days.has_value();
  }
  if (key == "BYMONTHDAY") return assign(properties.daysOfTheMonth, numbersFrom(value, 31));
  if (key == "BYMONTH") return assign(properties.monthsOfTheYear, numbersFrom(value, 12, true));
  if (key == "BYWEEKNO") return assign(properties.weeksOfTheYear, numbersFrom(value, 53));
  if (key == "BYYEARDAY") return assign(properties.daysOfTheYear, numbersFrom(value, 366));
  if (key == "BYSETPOS") return assign(properties.setPositions, numbersFrom(value, 366));
  return true;
}

void appendList(std::string& text, std::string_view key, const std::vector<int64_t>& values) {
  if (values.empty()) return;
  text += ";";
  text += key;
  text += "=";
  for (size_t i = 0; i < values.size(); ++i) {
    if (i > 0) text += ",";
    text += std::to_string(values[i]);
  }
}

}  // namespace

std::optional<LRecurrenceRule> LRecurrenceRule::recurrenceRuleWithString(std::string_view text) {
  Properties properties;
  bool sawFrequency = false;
  for (std::string_view component : split(text, ';')) {
    if (component.empty()) continue;
    const size_t equals = component.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    if (!readComponent(upperCased(component.substr(0, equals)), component.substr(equals + 1),
                       properties, sawFrequency)) {
      return std::nullopt;
    }
  }
  if (!sawFrequency) return std::nullopt;
  return LRecurrenceRule(std::move(properties));
}

std::string LRecurrenceRule::rfc2445String() const {
  const Properties& p = properties_;
  const auto frequency = static_cast<size_t>(p.frequency);
  if (frequency >= std::size(kFrequencyNames)) {
    throw std::logic_error(
        stringWithFormat("Unknown recurrence frequency: %ld", static_cast<long>(p.frequency)));
  }
  std::string text =
      stringWithFormat("FREQ=%@;INTERVAL=%ld", kFrequencyNames[frequency], p.interval);
  if (p.recurrenceEnd && !p.recurrenceEnd->isInfinite()) {
    if (p.recurrenceEnd->usesEndDate()) {
      text += ";UNTIL=" + untilFormatter().stringFromDate(*p.recurrenceEnd->endDate());
    } else {
      text += stringWithFormat(";COUNT=%lu", p.recurrenceEnd->occurrenceCount());
    }
  }
  if (!p.daysOfTheWeek.empty()) {
    text += ";BYDAY=";
    for (size_t i = 0; i < p.daysOfTheWeek.size(); ++i) {
      const NthWeekDay& day = p.daysOfTheWeek[i];
      if (i > 0) text += ",";
      if (day.weekNumber != 0) text += std::to_string(day.weekNumber);
      text += recurrence::weekdayCode(day.dayOfTheWeek).value_or("");
    }
  }
  appendList(text, "BYMONTHDAY", p.daysOfTheMonth);
  appendList(text, "BYMONTH", p.monthsOfTheYear);
  appendList(text, "BYWEEKNO", p.weeksOfTheYear);
  appendList(text, "BYYEARDAY", p.daysOfTheYear);
  appendList(text, "BYSETPOS", p.setPositions);
  return text;
}

}  // namespace ledgeon
