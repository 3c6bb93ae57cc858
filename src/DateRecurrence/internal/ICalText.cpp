#include "DateRecurrence/internal/ICalText.h"

#include <string>

#include "Utilities/LDateUtilities.h"

namespace ledgeon::recurrence {

namespace {

bool isTrimmed(char c) {
  return c == ';' || c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

}  // namespace

std::string_view trimmedRecurrenceText(std::string_view text) {
  while (!text.empty() && isTrimmed(text.front())) text.remove_prefix(1);
  while (!text.empty() && isTrimmed(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<ParsedRecurrence> parseRecurrence(std::string_view trimmedText) {
  // libical reads a C string: a text with a NUL inside is not one it could have written.
  if (trimmedText.empty() || trimmedText.find('\0') != std::string_view::npos) return std::nullopt;
  const std::string text(trimmedText);
  // Owned before anything is checked: a text with RSCALE but no FREQ still allocates it.
  ParsedRecurrence parsed(icalrecurrencetype_from_string(text.c_str()));
  if (parsed.rule().freq == ICAL_NO_RECURRENCE) return std::nullopt;
  return parsed;
}

std::optional<std::string_view> otherByListInUse(const icalrecurrencetype& rule) {
  if (rule.by_second[0] != ICAL_RECURRENCE_ARRAY_MAX) return "BYSECOND";
  if (rule.by_minute[0] != ICAL_RECURRENCE_ARRAY_MAX) return "BYMINUTE";
  if (rule.by_hour[0] != ICAL_RECURRENCE_ARRAY_MAX) return "BYHOUR";
  if (rule.by_year_day[0] != ICAL_RECURRENCE_ARRAY_MAX) return "BYYEARDAY";
  if (rule.by_week_no[0] != ICAL_RECURRENCE_ARRAY_MAX) return "BYWEEKNO";
  if (rule.by_set_pos[0] != ICAL_RECURRENCE_ARRAY_MAX) return "BYSETPOS";
  return std::nullopt;
}

std::optional<icaltimetype> icalDateFromDate(Date date) {
  const std::string text = LDateUtilities::ISO8601StringFromDate(date);
  if (text.empty()) return std::nullopt;
  icaltimetype time = icaltime_from_string(text.c_str());
  if (icaltime_is_null_time(time)) return std::nullopt;
  return time;
}

std::optional<Date> dateFromIcalTime(const icaltimetype& time) {
  return LDateUtilities::dateWithYear(time.year, time.month, time.day);
}

}  // namespace ledgeon::recurrence
