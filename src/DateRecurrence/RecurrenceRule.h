#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DateRecurrence/NthMonthDay.h"
#include "DateRecurrence/NthWeekDay.h"
#include "DateRecurrence/RecurrenceEnd.h"
#include "Utilities/Date.h"

namespace ledgeon {

// The stored codes of the kinds of rule.
enum class RecurrenceType : int32_t { Weekly = 0, Monthly = 1, Yearly = 2, USTax = 3 };

// The calendar pattern of a scheduled transaction as the scheduling editors show it: weekly on
// some weekdays, monthly on some days or n-th weekdays, yearly on month-days, or the fixed
// tax-payment pattern; plus how the series ends. Immutable. Its stored and exchanged form is a
// list of iCalendar recurrence strings (icalStrings), read back by ruleWithIcalStrings.
class RecurrenceRule final {
 public:
  // Every field, as kept in an archive. Nothing is checked here: a type of none of the known
  // kinds only shows when the rule is written out.
  struct Fields {
    int32_t recurrenceType = 0;
    int16_t recurrenceInterval = 1;
    RecurrenceEnd recurrenceEnd = RecurrenceEnd::infiniteRecurrenceEnd();
    std::vector<int64_t> daysOfTheWeek;
    std::vector<int64_t> daysOfTheMonth;
    std::vector<NthWeekDay> nthWeekDaysOfTheMonth;
    std::vector<NthMonthDay> nthDaysOfTheMonth;
  };

  static RecurrenceRule initWeeklyRecurrenceWithInterval(int16_t interval,
                                                         std::vector<int64_t> daysOfTheWeek,
                                                         RecurrenceEnd end);
  // Stores the day list in the normal form of uniqueAndSortArray.
  static RecurrenceRule initMonthlyRecurrenceWithInterval(
      int16_t interval, const std::vector<int64_t>& daysOfTheMonth,
      std::vector<NthWeekDay> nthWeekDaysOfTheMonth, RecurrenceEnd end);
  static RecurrenceRule initYearlyRecurrenceWithInterval(int16_t interval,
                                                         std::vector<NthMonthDay> nthDaysOfTheMonth,
                                                         RecurrenceEnd end);
  // January 15, April 15, June 15 and September 15 of every year.
  static RecurrenceRule initUSTaxRecurrenceWithEnd(RecurrenceEnd end);
  static RecurrenceRule initWithFields(Fields fields);

  int32_t recurrenceType() const { return fields_.recurrenceType; }
  int16_t recurrenceInterval() const { return fields_.recurrenceInterval; }
  const RecurrenceEnd& recurrenceEnd() const { return fields_.recurrenceEnd; }
  const std::vector<int64_t>& daysOfTheWeek() const { return fields_.daysOfTheWeek; }
  const std::vector<int64_t>& daysOfTheMonth() const { return fields_.daysOfTheMonth; }
  const std::vector<NthWeekDay>& nthWeekDaysOfTheMonth() const {
    return fields_.nthWeekDaysOfTheMonth;
  }
  const std::vector<NthMonthDay>& nthDaysOfTheMonth() const { return fields_.nthDaysOfTheMonth; }

  // The rule's patterns, without the end. Throws std::logic_error ("Unknown recurrence type: %ld")
  // for a type of none of the known kinds.
  std::vector<std::string> icalStrings() const;
  // One pattern with the end appended: nothing for no end or an infinite one, "UNTIL=<ISO 8601
  // date>" for an end date, "COUNT=<n>" for a count above 0.
  static std::string icalStringWithPattern(std::string_view pattern,
                                           const std::optional<RecurrenceEnd>& recurrenceEnd);
  // Duplicates removed, ascending, with a leading -1 (the last day of the month) moved to the end:
  // 31, 15, -1, 15 becomes 15, 31, -1.
  static std::vector<int64_t> uniqueAndSortArray(std::vector<int64_t> days);

  // The rule that the strings express, or nothing when they cannot be expressed as one (reasons
  // are logged). `end`, when given, receives the end the strings carry (the infinite end when
  // they carry none, or when there are no strings); the rule carries that end too. A pattern that
  // leaves out its day takes it from `backupReferenceDate` when one is given.
  static std::optional<RecurrenceRule> ruleWithIcalStrings(
      const std::vector<std::string>& strings, RecurrenceEnd* end = nullptr,
      std::optional<Date> backupReferenceDate = std::nullopt);

  // Splits one stored string into its pattern (every component but "UNTIL" and "COUNT", in their
  // order) and its end. A pattern without the day it repeats on gets the day of `referenceDate`
  // written in (BYDAY, BYMONTHDAY or BYMONTH and BYMONTHDAY by frequency), so that it no longer
  // depends on the start date it is later enumerated from. False, with the reason logged, for a
  // string libical rejects.
  static bool parseIcalString(std::string_view string, std::string* repeatPatternString,
                              RecurrenceEnd* recurrenceEnd,
                              std::optional<Date> referenceDate = std::nullopt);
  // The strings read into a rule and written out again, each with the end appended; nothing when
  // they cannot be expressed as a rule.
  static std::optional<std::vector<std::string>> normalizedScheduleStringsFromStrings(
      const std::vector<std::string>& strings, std::optional<Date> backupReferenceDate);

  friend bool operator==(const RecurrenceRule&, const RecurrenceRule&);
  // One line for logs: "monthly every 1 on days 1, 15, -1 and 2MO, never".
  std::string description() const;

 private:
  explicit RecurrenceRule(Fields fields) : fields_(std::move(fields)) {}

  Fields fields_;
};

}  // namespace ledgeon
