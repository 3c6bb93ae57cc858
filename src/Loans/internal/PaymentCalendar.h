#pragma once

#include <chrono>
#include <cmath>
#include <optional>

#include "Utilities/Date.h"

namespace ledgeon::loans {

// Calendar-day arithmetic for schedules, on the same proleptic Gregorian calendar and noon-GMT
// calendar dates as LDateUtilities, without building an ICU calendar per payment: a 40-year
// weekly schedule steps thousands of dates.

inline std::chrono::sys_days dayOf(Date date) {
  const double days = std::floor(date.unixTime() / 86400.0);
  return std::chrono::sys_days(std::chrono::days(static_cast<long>(days)));
}

// The calendar date of a day, std::nullopt outside years 1 to 9999.
inline std::optional<Date> calendarDate(std::chrono::sys_days day) {
  const std::chrono::year_month_day ymd(day);
  if (!ymd.ok() || ymd.year() < std::chrono::year(1) || ymd.year() > std::chrono::year(9999)) {
    return std::nullopt;
  }
  const auto seconds = static_cast<double>(day.time_since_epoch().count()) * 86400.0 + 43200.0;
  return Date::fromUnixTime(seconds);
}

inline long daysBetween(Date from, Date to) { return (dayOf(to) - dayOf(from)).count(); }

inline std::optional<Date> addDays(Date date, long days) {
  return calendarDate(dayOf(date) + std::chrono::days(days));
}

// Keeps the day of month, clamped to the end of a shorter month.
inline std::optional<Date> addMonths(Date date, long months) {
  using namespace std::chrono;
  const year_month_day ymd(dayOf(date));
  const year_month target = year_month(ymd.year(), ymd.month()) + std::chrono::months(months);
  const auto last = year_month_day_last(target.year(), month_day_last(target.month())).day();
  return calendarDate(sys_days(target / std::min(ymd.day(), last)));
}

inline unsigned dayOfMonth(Date date) {
  return static_cast<unsigned>(std::chrono::year_month_day(dayOf(date)).day());
}

}  // namespace ledgeon::loans
