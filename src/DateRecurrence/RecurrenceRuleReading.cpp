// Reading iCalendar recurrence strings back into the structured rule the scheduling editors show.
#include <algorithm>
#include <tuple>

#include "DateRecurrence/DateRecurrenceStrings.h"
#include "DateRecurrence/RecurrenceRule.h"
#include "DateRecurrence/internal/ICalText.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/Log.h"

namespace ledgeon {

namespace {

using recurrence::byList;

struct ParsedStrings {
  std::vector<recurrence::ParsedRecurrence> recurrences;
  icalrecurrencetype_frequency frequency = ICAL_NO_RECURRENCE;
  long interval = 1;
  RecurrenceEnd recurrenceEnd = RecurrenceEnd::infiniteRecurrenceEnd();
};

// The end a parsed string carries: its UNTIL day, its COUNT, or nothing. False for an UNTIL
// outside the calendar (libical reads year 0).
bool readEnd(const icalrecurrencetype& rule, std::optional<RecurrenceEnd>& end) {
  if (!icaltime_is_null_time(rule.until)) {
    const auto date = recurrence::dateFromIcalTime(rule.until);
    if (!date) return false;
    end = RecurrenceEnd::recurrenceEndWithEndDate(*date);
  } else if (rule.count > 0) {
    end = RecurrenceEnd::recurrenceEndWithOccurrenceCount(static_cast<uint64_t>(rule.count));
  }
  return true;
}

bool parseIcalStrings(const std::vector<std::string>& strings, ParsedStrings& parsed) {
  if (strings.empty()) return false;
  std::optional<RecurrenceEnd> end;
  for (const std::string& string : strings) {
    auto parsedRule = recurrence::parseRecurrence(recurrence::trimmedRecurrenceText(string));
    std::optional<RecurrenceEnd> stringEnd;
    if (!parsedRule || !readEnd(parsedRule->rule(), stringEnd)) {
      LLog(recurrence::kInvalidRecurrenceFormat, string);
      return false;
    }
    const icalrecurrencetype* rule = &parsedRule->rule();
    if (parsed.recurrences.empty()) {
      parsed.frequency = rule->freq;
      parsed.interval = rule->interval;
    } else if (rule->freq != parsed.frequency) {
      LLog(recurrence::kMismatchingFrequenciesFormat, static_cast<long>(parsed.frequency),
           static_cast<long>(rule->freq));
      return false;
    } else if (rule->interval != parsed.interval) {
      LLog(recurrence::kMismatchingIntervalFormat, parsed.interval,
           static_cast<long>(rule->interval));
      return false;
    }
    if (!end) end = stringEnd;
    parsed.recurrences.push_back(std::move(*parsedRule));
  }
  if (end) parsed.recurrenceEnd = *end;
  return true;
}

// Logs why a pattern cannot be held by a structured rule; always gives nothing.
std::optional<RecurrenceRule> inexpressible(std::string_view reason,
                                            const icalrecurrencetype& rule) {
  char* text = icalrecurrencetype_as_string_r(const_cast<icalrecurrencetype*>(&rule));
  LLog(recurrence::kUnsupportedComponentFormat, reason, text ? text : "");
  free(text);  // NOLINT: libical hands out malloc'ed text
  return std::nullopt;
}

bool hasValues(const std::vector<int>& values) { return !values.empty(); }

template <typename T>
void appendUnique(std::vector<T>& values, const T& value) {
  if (std::find(values.begin(), values.end(), value) == values.end()) values.push_back(value);
}

std::optional<RecurrenceRule> readWeekly(const ParsedStrings& parsed, std::optional<Date> backup) {
  std::vector<int64_t> days;
  for (const auto& parsedRule : parsed.recurrences) {
    const icalrecurrencetype& rule = parsedRule.rule();
    if (auto other = recurrence::otherByListInUse(rule)) return inexpressible(*other, rule);
    if (hasValues(byList(rule.by_month_day))) return inexpressible("BYMONTHDAY", rule);
    if (hasValues(byList(rule.by_month))) return inexpressible("BYMONTH", rule);
    const auto items = byList(rule.by_day);
    if (items.empty() && backup)
      appendUnique<int64_t>(days, LDateUtilities::dayOfWeekForDate(*backup));
    for (int item : items) {
      const auto code = static_cast<short>(item);
      if (icalrecurrencetype_day_position(code) != 0) return inexpressible("BYDAY position", rule);
      appendUnique<int64_t>(days, icalrecurrencetype_day_day_of_week(code));
    }
  }
  // libical sorts the items of each pattern; sorting across patterns too gives one order however
  // the days were spread over the strings, so that reading what a rule wrote gives that rule.
  std::sort(days.begin(), days.end());
  return RecurrenceRule::initWeeklyRecurrenceWithInterval(static_cast<int16_t>(parsed.interval),
                                                          std::move(days), parsed.recurrenceEnd);
}

std::optional<RecurrenceRule> readMonthly(const ParsedStrings& parsed, std::optional<Date> backup) {
  std::vector<int64_t> days;
  std::vector<NthWeekDay> weekDays;
  for (const auto& parsedRule : parsed.recurrences) {
    const icalrecurrencetype& rule = parsedRule.rule();
    if (auto other = recurrence::otherByListInUse(rule)) return inexpressible(*other, rule);
    if (hasValues(byList(rule.by_month))) return inexpressible("BYMONTH", rule);
    const auto monthDays = byList(rule.by_month_day);
    const auto items = byList(rule.by_day);
    if (monthDays.empty() && items.empty()) {
      if (!backup) return inexpressible("no day and no reference date", rule);
      days.push_back(LDateUtilities::dayOfMonthForDate(*backup));
    }
    days.insert(days.end(), monthDays.begin(), monthDays.end());
    for (int item : items) {
      const auto code = static_cast<short>(item);
      appendUnique(weekDays, NthWeekDay{icalrecurrencetype_day_day_of_week(code),
                                        icalrecurrencetype_day_position(code)});
    }
  }
  std::sort(weekDays.begin(), weekDays.end(), [](const NthWeekDay& a, const NthWeekDay& b) {
    return std::tie(a.dayOfTheWeek, a.weekNumber) < std::tie(b.dayOfTheWeek, b.weekNumber);
  });
  return RecurrenceRule::initMonthlyRecurrenceWithInterval(
      static_cast<int16_t>(parsed.interval), days, std::move(weekDays), parsed.recurrenceEnd);
}

bool isTaxPattern(const ParsedStrings& parsed) {
  if (parsed.recurrences.size() != 1 || parsed.interval != 1) return false;
  const icalrecurrencetype& rule = parsed.recurrences.front().rule();
  auto months = byList(rule.by_month);
  std::sort(months.begin(), months.end());
  return months == std::vector<int>{1, 4, 6, 9} &&
         byList(rule.by_month_day) == std::vector<int>{15} && byList(rule.by_day).empty() &&
         !recurrence::otherByListInUse(rule);
}

std::optional<RecurrenceRule> readYearly(const ParsedStrings& parsed, std::optional<Date> backup) {
  if (isTaxPattern(parsed)) return RecurrenceRule::initUSTaxRecurrenceWithEnd(parsed.recurrenceEnd);
  std::vector<NthMonthDay> monthDays;
  for (const auto& parsedRule : parsed.recurrences) {
    const icalrecurrencetype& rule = parsedRule.rule();
    if (auto other = recurrence::otherByListInUse(rule)) return inexpressible(*other, rule);
    if (hasValues(byList(rule.by_day))) return inexpressible("BYDAY", rule);
    std::vector<int> months;
    for (int month : byList(rule.by_month)) {
      if (icalrecurrencetype_month_is_leap(static_cast<short>(month))) {
        return inexpressible("leap month", rule);
      }
      months.push_back(icalrecurrencetype_month_month(static_cast<short>(month)));
    }
    auto days = byList(rule.by_month_day);
    if ((months.empty() || days.empty()) && !backup) {
      return inexpressible("no month or day and no reference date", rule);
    }
    if (months.empty()) months.push_back(LDateUtilities::monthOfYearForDate(*backup));
    if (days.empty()) days.push_back(LDateUtilities::dayOfMonthForDate(*backup));
    for (int month : months) {
      for (int day : days) appendUnique(monthDays, NthMonthDay{day, month});
    }
  }
  return RecurrenceRule::initYearlyRecurrenceWithInterval(
      static_cast<int16_t>(parsed.interval), std::move(monthDays), parsed.recurrenceEnd);
}

void addMissingDay(const icalrecurrencetype& rule, Date referenceDate,
                   std::vector<std::string>& components) {
  const bool noWeekDays = byList(rule.by_day).empty();
  const bool noMonthDays = byList(rule.by_month_day).empty();
  switch (rule.freq) {
    case ICAL_WEEKLY_RECURRENCE:
      if (noWeekDays) {
        const auto code = recurrence::weekdayCode(LDateUtilities::dayOfWeekForDate(referenceDate));
        components.push_back("BYDAY=" + std::string(code.value_or("SU")));
      }
      break;
    case ICAL_MONTHLY_RECURRENCE:
      if (noWeekDays && noMonthDays) {
        components.push_back(stringWithFormat(
            "BYMONTHDAY=%ld", static_cast<long>(LDateUtilities::dayOfMonthForDate(referenceDate))));
      }
      break;
    case ICAL_YEARLY_RECURRENCE:
      if (noWeekDays && noMonthDays && byList(rule.by_month).empty() &&
          !recurrence::otherByListInUse(rule)) {
        components.push_back(
            stringWithFormat("BYMONTH=%ld;BYMONTHDAY=%ld",
                             static_cast<long>(LDateUtilities::monthOfYearForDate(referenceDate)),
                             static_cast<long>(LDateUtilities::dayOfMonthForDate(referenceDate))));
      }
      break;
    default:
      break;
  }
}

std::string upperCased(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return result;
}

}  // namespace

std::optional<RecurrenceRule> RecurrenceRule::ruleWithIcalStrings(
    const std::vector<std::string>& strings, RecurrenceEnd* end,
    std::optional<Date> backupReferenceDate) {
  ParsedStrings parsed;
  const bool ok = parseIcalStrings(strings, parsed);
  if (end) *end = parsed.recurrenceEnd;
  if (!ok) return std::nullopt;
  switch (parsed.frequency) {
    case ICAL_WEEKLY_RECURRENCE:
      return readWeekly(parsed, backupReferenceDate);
    case ICAL_MONTHLY_RECURRENCE:
      return readMonthly(parsed, backupReferenceDate);
    case ICAL_YEARLY_RECURRENCE:
      return readYearly(parsed, backupReferenceDate);
    default:
      LLog(recurrence::kCannotParseFrequencyFormat, static_cast<long>(parsed.frequency));
      return std::nullopt;
  }
}

bool RecurrenceRule::parseIcalString(std::string_view string, std::string* repeatPatternString,
                                     RecurrenceEnd* recurrenceEnd,
                                     std::optional<Date> referenceDate) {
  const std::string_view trimmed = recurrence::trimmedRecurrenceText(string);
  const auto parsedRule = recurrence::parseRecurrence(trimmed);
  std::optional<RecurrenceEnd> end;
  if (!parsedRule || !readEnd(parsedRule->rule(), end)) {
    LLog(recurrence::kInvalidRecurrenceFormat, string);
    return false;
  }
  std::vector<std::string> components;
  size_t position = 0;
  while (position <= trimmed.size()) {
    size_t next = trimmed.find(';', position);
    if (next == std::string_view::npos) next = trimmed.size();
    const std::string_view component = trimmed.substr(position, next - position);
    const std::string key = upperCased(component.substr(0, component.find('=')));
    if (!component.empty() && key != "UNTIL" && key != "COUNT") components.emplace_back(component);
    position = next + 1;
  }
  if (referenceDate) addMissingDay(parsedRule->rule(), *referenceDate, components);
  if (repeatPatternString) {
    repeatPatternString->clear();
    for (const std::string& component : components) {
      if (!repeatPatternString->empty()) *repeatPatternString += ';';
      *repeatPatternString += component;
    }
  }
  if (recurrenceEnd) *recurrenceEnd = end.value_or(RecurrenceEnd::infiniteRecurrenceEnd());
  return true;
}

std::optional<std::vector<std::string>> RecurrenceRule::normalizedScheduleStringsFromStrings(
    const std::vector<std::string>& strings, std::optional<Date> backupReferenceDate) {
  RecurrenceEnd end = RecurrenceEnd::infiniteRecurrenceEnd();
  const auto rule = ruleWithIcalStrings(strings, &end, backupReferenceDate);
  if (!rule) return std::nullopt;
  std::vector<std::string> normalized;
  for (const std::string& pattern : rule->icalStrings()) {
    normalized.push_back(icalStringWithPattern(pattern, end));
  }
  return normalized;
}

}  // namespace ledgeon
