#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Utilities/Date.h"

namespace ledgeon {

// Calendar dates. A calendar date is the Date at 12:00:00 GMT of its day, held in GMT
// (dateTimeZone()): noon keeps it on the same day in every zone from UTC-12 to UTC+11, so a date
// shown in the user's zone does not move a day. Code must still never read a calendar date's
// fields in the user's zone: use the operations below, which read GMT. The calendar is the
// proleptic Gregorian one, as in ISO 8601, and the supported range is 0001-01-01 to 9999-12-31;
// operations whose result would fall outside give std::nullopt.
//
// Operations that read a Date (dayOfWeekForDate, ...) read its day in GMT, so any time stamp is
// accepted and means the GMT day it falls on; a Date that is not finite reads as 0.
class LDateUtilities final {
 public:
  LDateUtilities() = delete;

  // Today in the user's time zone (ICU's default zone), from Clock::now().
  static Date currentDate();
  // The calendar date of a day; std::nullopt when the month or day does not exist (no rollover:
  // February 30 is an error, not March 1) or the year is outside 1...9999.
  static std::optional<Date> dateWithYear(int year, int month, int day);
  // Keeps only the year, month and day that `timestamp` has in the zone `timeZoneId` (an Olson id
  // such as "America/New_York", or "GMT"). std::nullopt for an unknown zone or a date outside the
  // supported range.
  static std::optional<Date> dateWithTimestamp(Date timestamp, const std::string& timeZoneId);

  // 1 is Sunday ... 7 is Saturday.
  static int dayOfWeekForDate(Date date);
  static int dayOfMonthForDate(Date date);
  static int monthOfYearForDate(Date date);
  static int yearForDate(Date date);

  // "yyyy-MM-dd" of the date's GMT day; empty for a date outside the supported range.
  static std::string ISO8601StringFromDate(Date date);
  // The calendar date written in an ISO 8601 text. Accepted, and nothing else (no surrounding
  // spaces):
  //   extended date     2024-02-29
  //   basic date        20240229
  //   date and time     2024-02-29T23:30[:15[.250]] or 20240229T233015[.250], the "T" may be a
  //                     space, followed by nothing (local time), "Z", "+05", "+0530", "+05:30"
  //                     or "-08:00".
  // The calendar date is the day as written: "2024-02-29T23:30-08:00" is February 29, whatever
  // the offset. Out-of-range fields (month 13, February 30, hour 24) give std::nullopt.
  static std::optional<Date> dateFromISO8601String(std::string_view text);
  // The exact instant of the same texts (a text without offset is read as GMT); a date alone is
  // its midnight GMT.
  static std::optional<Date> timestampFromISO8601String(std::string_view text);

  // The zone calendar dates are held in: "GMT".
  static std::string dateTimeZone();
  static constexpr double timeIntervalForNumberOfDays(long days) noexcept {
    return static_cast<double>(days) * 86400.0;
  }

  // Calendar arithmetic on the GMT day of `date`; the result is a calendar date. Months and
  // years keep the day of month when the target month has it and otherwise clamp to its last
  // day: January 31 + 1 month is February 28 (29 in a leap year), February 29 + 1 year is
  // February 28.
  static std::optional<Date> dateByAddingDays(Date date, long days);
  static std::optional<Date> dateByAddingWeeks(Date date, long weeks);
  static std::optional<Date> dateByAddingMonths(Date date, long months);
  static std::optional<Date> dateByAddingYears(Date date, long years);

  // Whole days from the GMT day of `from` to the GMT day of `to` (negative when `to` is
  // earlier); 0 when either is not finite.
  static long numberOfDaysFromDate(Date from, Date to);
  // Whether `date` is exactly the noon-GMT value of a day in the supported range.
  static bool isCalendarDate(Date date);
  // 28...31; 0 for a month outside 1...12.
  static int numberOfDaysInMonth(int year, int month);
  static std::optional<Date> firstDayOfMonthForDate(Date date);
  static std::optional<Date> lastDayOfMonthForDate(Date date);
};

}  // namespace ledgeon
