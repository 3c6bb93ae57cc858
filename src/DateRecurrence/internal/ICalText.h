#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <libical/ical.h>

#include "Utilities/Date.h"

namespace ledgeon::recurrence {

// A recurrence text without the white space and ";" around it.
std::string_view trimmedRecurrenceText(std::string_view text);

// The rule libical reads from an already trimmed text; nothing when it rejects the text.
std::optional<icalrecurrencetype> parseRecurrence(std::string_view trimmedText);

// The values of one of libical's by-lists, which end at ICAL_RECURRENCE_ARRAY_MAX or when full.
template <size_t N>
std::vector<int> byList(const short (&values)[N]) {
  std::vector<int> result;
  for (short value : values) {
    if (value == ICAL_RECURRENCE_ARRAY_MAX) break;
    result.push_back(value);
  }
  return result;
}

// Whether any by-list other than BYDAY, BYMONTHDAY and BYMONTH holds a value; names the first.
std::optional<std::string_view> otherByListInUse(const icalrecurrencetype& rule);

// libical's date for a calendar date, made through its ISO 8601 text; nothing for a date
// outside the calendar.
std::optional<icaltimetype> icalDateFromDate(Date date);
// The calendar date of a libical time's year, month and day.
std::optional<Date> dateFromIcalTime(const icaltimetype& time);

}  // namespace ledgeon::recurrence
