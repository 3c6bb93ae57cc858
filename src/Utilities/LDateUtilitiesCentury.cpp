#include <charconv>

#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

// The next run of digits, moving `text` past it and one following separator.
std::optional<int> takeNumber(std::string_view& text, bool last) {
  size_t digits = 0;
  while (digits < text.size() && digits < 6 && text[digits] >= '0' && text[digits] <= '9') {
    ++digits;
  }
  if (digits == 0) return std::nullopt;
  int number = 0;
  std::from_chars(text.data(), text.data() + digits, number);
  text.remove_prefix(digits);
  if (last) return text.empty() ? std::optional<int>(number) : std::nullopt;
  if (text.empty() || (text.front() != '/' && text.front() != '-')) return std::nullopt;
  text.remove_prefix(1);
  return number;
}

}  // namespace

std::optional<Date> LDateUtilities::dateFromMonthDayYearString(std::string_view text) {
  const auto month = takeNumber(text, false);
  if (!month) return std::nullopt;
  const auto day = takeNumber(text, false);
  if (!day) return std::nullopt;
  const auto year = takeNumber(text, true);
  if (!year) return std::nullopt;
  const int written =
      *year == 0 ? yearByAdjustingYearIfNecessary(0, yearForDate(currentDate())) : *year;
  return dateWithYear(written, *month, *day);
}

int LDateUtilities::yearByAdjustingYearIfNecessary(int year, int currentYear) {
  if (year > 999 || year < 0) return year;
  if (year >= 100) return currentYear - currentYear % 1000 + year;
  const int candidate = currentYear - currentYear % 100 + year;
  return candidate > currentYear + 30 ? candidate - 100 : candidate;
}

std::optional<Date> LDateUtilities::dateByAdjustingYearIfNecessary(Date date) {
  const int year = yearByAdjustingYearIfNecessary(yearForDate(date), yearForDate(currentDate()));
  return dateWithYear(year, monthOfYearForDate(date), dayOfMonthForDate(date));
}

}  // namespace ledgeon
