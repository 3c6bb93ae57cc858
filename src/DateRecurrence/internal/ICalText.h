#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <libical/ical.h>

#include "Utilities/Date.h"

namespace ledgeon::recurrence {

// A recurrence text without the white space and ";" around it.
std::string_view trimmedRecurrenceText(std::string_view text);

// A rule libical read, owning what libical allocated for it (the RSCALE text): libical hands
// that to the caller and neither its iterator nor anything else frees it. Move-only, so the text
// is freed once, and it must outlive any iterator made from the rule, which keeps the pointer.
class ParsedRecurrence {
 public:
  explicit ParsedRecurrence(icalrecurrencetype rule) : rule_(rule) {}
  ~ParsedRecurrence() { free(rule_.rscale); }  // NOLINT: libical strdup's it
  ParsedRecurrence(ParsedRecurrence&& other) noexcept : rule_(other.rule_) {
    other.rule_.rscale = nullptr;
  }
  ParsedRecurrence& operator=(ParsedRecurrence&& other) noexcept {
    if (this != &other) {
      free(rule_.rscale);  // NOLINT: libical strdup's it
      rule_ = other.rule_;
      other.rule_.rscale = nullptr;
    }
    return *this;
  }
  ParsedRecurrence(const ParsedRecurrence&) = delete;
  ParsedRecurrence& operator=(const ParsedRecurrence&) = delete;

  const icalrecurrencetype& rule() const { return rule_; }
  void setInterval(short interval) { rule_.interval = interval; }

 private:
  icalrecurrencetype rule_;
};

// The rule libical reads from an already trimmed text; nothing when it rejects the text.
std::optional<ParsedRecurrence> parseRecurrence(std::string_view trimmedText);

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
