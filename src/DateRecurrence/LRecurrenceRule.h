#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DateRecurrence/NthWeekDay.h"
#include "DateRecurrence/RecurrenceEnd.h"

namespace ledgeon {

// The frequencies of the calendar framework's recurrence rule, by their stored codes.
enum class LRecurrenceFrequency : int32_t { Daily = 0, Weekly = 1, Monthly = 2, Yearly = 3 };

// The calendar framework's recurrence rule, read from and written to RFC 2445 recurrence text
// ("FREQ=MONTHLY;INTERVAL=1;BYDAY=-1FR"). A weekday item with week number 0 means every such
// weekday. Immutable value.
class LRecurrenceRule final {
 public:
  struct Properties {
    LRecurrenceFrequency frequency = LRecurrenceFrequency::Daily;
    int64_t interval = 1;
    std::optional<RecurrenceEnd> recurrenceEnd;  // none: never ends
    std::vector<NthWeekDay> daysOfTheWeek;
    std::vector<int64_t> daysOfTheMonth;
    std::vector<int64_t> monthsOfTheYear;
    std::vector<int64_t> weeksOfTheYear;
    std::vector<int64_t> daysOfTheYear;
    std::vector<int64_t> setPositions;

    friend bool operator==(const Properties&, const Properties&) = default;
  };

  explicit LRecurrenceRule(Properties properties) : properties_(std::move(properties)) {}

  // The rule of an RFC 2445 text with the keys "FREQ" (required), "INTERVAL", "UNTIL"
  // (yyyyMMdd'T'HHmmss'Z', or a day yyyyMMdd), "COUNT", "BYDAY", "BYMONTHDAY", "BYMONTH",
  // "BYWEEKNO", "BYYEARDAY" and "BYSETPOS"; other keys (WKST ...) are passed over. Nothing when a
  // known key has a value out of its range or the text is not a list of KEY=VALUE components.
  static std::optional<LRecurrenceRule> recurrenceRuleWithString(std::string_view text);
  // The RFC 2445 text: FREQ and INTERVAL first, then the end, then the non-empty by-lists.
  std::string rfc2445String() const;

  const Properties& properties() const { return properties_; }
  LRecurrenceFrequency frequency() const { return properties_.frequency; }
  int64_t interval() const { return properties_.interval; }
  const std::optional<RecurrenceEnd>& recurrenceEnd() const { return properties_.recurrenceEnd; }

  friend bool operator==(const LRecurrenceRule&, const LRecurrenceRule&) = default;

 private:
  Properties properties_;
};

}  // namespace ledgeon
