#include "DateRecurrence/RecurrenceRule.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

#include "DateRecurrence/DateRecurrenceStrings.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

template <typename T, typename Describe>
std::string joined(const std::vector<T>& values, std::string_view separator, Describe describe) {
  std::string text;
  for (const T& value : values) {
    std::string item = describe(value);
    if (item.empty()) continue;
    if (!text.empty()) text += separator;
    text += item;
  }
  return text;
}

std::string numbersJoined(const std::vector<int64_t>& values, std::string_view separator = ",") {
  return joined(values, separator, [](int64_t value) { return std::to_string(value); });
}

std::string patternStart(std::string_view frequency, int16_t interval) {
  std::string pattern = fmt::format("FREQ={};WKST=SU", frequency);
  if (interval > 1) pattern += stringWithFormat(";INTERVAL=%lu", static_cast<uint64_t>(interval));
  return pattern;
}

}  // namespace

std::string NthWeekDay::description() const {
  const auto code = recurrence::weekdayCode(dayOfTheWeek);
  return code ? stringWithFormat("%ld%@", weekNumber, *code) : std::string();
}

std::string NthMonthDay::description() const {
  return fmt::format("{}/{}", monthNumber, dayOfTheMonth);
}

RecurrenceRule RecurrenceRule::initWeeklyRecurrenceWithInterval(int16_t interval,
                                                                std::vector<int64_t> daysOfTheWeek,
                                                                RecurrenceEnd end) {
  Fields fields;
  fields.recurrenceType = static_cast<int32_t>(RecurrenceType::Weekly);
  fields.recurrenceInterval = interval;
  fields.recurrenceEnd = end;
  fields.daysOfTheWeek = std::move(daysOfTheWeek);
  return RecurrenceRule(std::move(fields));
}

RecurrenceRule RecurrenceRule::initMonthlyRecurrenceWithInterval(
    int16_t interval, const std::vector<int64_t>& daysOfTheMonth,
    std::vector<NthWeekDay> nthWeekDaysOfTheMonth, RecurrenceEnd end) {
  Fields fields;
  fields.recurrenceType = static_cast<int32_t>(RecurrenceType::Monthly);
  fields.recurrenceInterval = interval;
  fields.recurrenceEnd = end;
  fields.daysOfTheMonth = uniqueAndSortArray(daysOfTheMonth);
  fields.nthWeekDaysOfTheMonth = std::move(nthWeekDaysOfTheMonth);
  return RecurrenceRule(std::move(fields));
}

RecurrenceRule RecurrenceRule::initYearlyRecurrenceWithInterval(
    int16_t interval, std::vector<NthMonthDay> nthDaysOfTheMonth, RecurrenceEnd end) {
  Fields fields;
  fields.recurrenceType = static_cast<int32_t>(RecurrenceType::Yearly);
  fields.recurrenceInterval = interval;
  fields.recurrenceEnd = end;
  fields.nthDaysOfTheMonth = std::move(nthDaysOfTheMonth);
  return RecurrenceRule(std::move(fields));
}

RecurrenceRule RecurrenceRule::initUSTaxRecurrenceWithEnd(RecurrenceEnd end) {
  Fields fields;
  fields.recurrenceType = static_cast<int32_t>(RecurrenceType::USTax);
  fields.recurrenceInterval = 1;
  fields.recurrenceEnd = end;
  fields.nthDaysOfTheMonth = {{15, 1}, {15, 4}, {15, 6}, {15, 9}};
  return RecurrenceRule(std::move(fields));
}

RecurrenceRule RecurrenceRule::initWithFields(Fields fields) {
  return RecurrenceRule(std::move(fields));
}

std::vector<std::string> RecurrenceRule::icalStrings() const {
  const Fields& f = fields_;
  switch (f.recurrenceType) {
    case static_cast<int32_t>(RecurrenceType::Weekly): {
      std::string pattern = patternStart("WEEKLY", f.recurrenceInterval);
      const std::string days = joined(f.daysOfTheWeek, ",", [](int64_t day) {
        return std::string(recurrence::weekdayCode(day).value_or(""));
      });
      // A weekly pattern without weekdays repeats on the start date's weekday.
      if (!days.empty()) pattern += ";BYDAY=" + days;
      return {pattern};
    }
    case static_cast<int32_t>(RecurrenceType::Monthly): {
      std::vector<std::string> patterns;
      const std::string start = patternStart("MONTHLY", f.recurrenceInterval);
      if (!f.daysOfTheMonth.empty()) {
        patterns.push_back(start +
                           stringWithFormat(";BYMONTHDAY=%@", numbersJoined(f.daysOfTheMonth)));
      }
      const std::string weekDays = joined(f.nthWeekDaysOfTheMonth, ",",
                                          [](const NthWeekDay& day) { return day.description(); });
      if (!weekDays.empty()) patterns.push_back(start + stringWithFormat(";BYDAY=%@", weekDays));
      return patterns;
    }
    case static_cast<int32_t>(RecurrenceType::Yearly): {
      std::vector<std::string> patterns;
      const std::string start = patternStart("YEARLY", f.recurrenceInterval);
      for (const NthMonthDay& day : f.nthDaysOfTheMonth) {
        patterns.push_back(start + stringWithFormat(";BYMONTH=%ld;BYMONTHDAY=%ld", day.monthNumber,
                                                    day.dayOfTheMonth));
      }
      return patterns;
    }
    case static_cast<int32_t>(RecurrenceType::USTax):
      return {"FREQ=YEARLY;BYMONTH=1,4,6,9;BYMONTHDAY=15"};
    default:
      throw std::logic_error(
          stringWithFormat(recurrence::kUnknownRecurrenceTypeFormat, f.recurrenceType));
  }
}

std::string RecurrenceRule::icalStringWithPattern(
    std::string_view pattern, const std::optional<RecurrenceEnd>& recurrenceEnd) {
  std::string end;
  if (recurrenceEnd && !recurrenceEnd->isInfinite()) {
    if (recurrenceEnd->usesEndDate()) {
      const std::string date = LDateUtilities::ISO8601StringFromDate(*recurrenceEnd->endDate());
      if (!date.empty()) end = stringWithFormat("UNTIL=%@", date);
    } else if (recurrenceEnd->occurrenceCount() > 0) {
      end = stringWithFormat("COUNT=%lu", recurrenceEnd->occurrenceCount());
    }
  }
  if (pattern.empty()) return end;
  if (end.empty()) return std::string(pattern);
  return std::string(pattern) + ";" + end;
}

std::vector<int64_t> RecurrenceRule::uniqueAndSortArray(std::vector<int64_t> days) {
  std::sort(days.begin(), days.end());
  days.erase(std::unique(days.begin(), days.end()), days.end());
  if (!days.empty() && days.front() == -1) std::rotate(days.begin(), days.begin() + 1, days.end());
  return days;
}

bool operator==(const RecurrenceRule& a, const RecurrenceRule& b) {
  const auto& x = a.fields_;
  const auto& y = b.fields_;
  return x.recurrenceType == y.recurrenceType && x.recurrenceInterval == y.recurrenceInterval &&
         x.recurrenceEnd == y.recurrenceEnd && x.daysOfTheWeek == y.daysOfTheWeek &&
         x.daysOfTheMonth == y.daysOfTheMonth &&
         x.nthWeekDaysOfTheMonth == y.nthWeekDaysOfTheMonth &&
         x.nthDaysOfTheMonth == y.nthDaysOfTheMonth;
}

std::string RecurrenceRule::description() const {
  const Fields& f = fields_;
  std::string text;
  switch (f.recurrenceType) {
    case static_cast<int32_t>(RecurrenceType::Weekly):
      text = fmt::format("weekly every {}", f.recurrenceInterval);
      // Without weekdays the series repeats on the start date's weekday.
      if (!f.daysOfTheWeek.empty()) {
        text += " on " + joined(f.daysOfTheWeek, ",", [](int64_t day) {
                  return std::string(recurrence::weekdayCode(day).value_or("?"));
                });
      }
      break;
    case static_cast<int32_t>(RecurrenceType::Monthly): {
      text = fmt::format("monthly every {}", f.recurrenceInterval);
      if (!f.daysOfTheMonth.empty()) text += " on days " + numbersJoined(f.daysOfTheMonth, ", ");
      if (!f.nthWeekDaysOfTheMonth.empty()) {
        text += (f.daysOfTheMonth.empty() ? " on " : " and ") +
                joined(f.nthWeekDaysOfTheMonth, ", ",
                       [](const NthWeekDay& day) { return day.description(); });
      }
      break;
    }
    case static_cast<int32_t>(RecurrenceType::Yearly):
    case static_cast<int32_t>(RecurrenceType::USTax):
      text = fmt::format(
          "{} every {} on {}",
          f.recurrenceType == static_cast<int32_t>(RecurrenceType::Yearly) ? "yearly"
                                                                           : "tax payments",
          f.recurrenceInterval, joined(f.nthDaysOfTheMonth, ", ", [](const NthMonthDay& day) {
            return day.description();
          }));
      break;
    default:
      text = fmt::format("unknown type {}", f.recurrenceType);
  }
  return text + ", " + f.recurrenceEnd.description();
}

}  // namespace ledgeon
