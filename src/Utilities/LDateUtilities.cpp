#include "Utilities/LDateUtilities.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include <fmt/format.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include "Utilities/Clock.h"

namespace ledgeon {
namespace {

constexpr double kSecondsPerDay = 86400.0;
constexpr double kNoon = 43200.0;
// Days from 2001-01-01 to 0001-01-01 and to 9999-12-31 in the proleptic Gregorian calendar.
constexpr long kFirstDayIndex = -730485;
constexpr long kLastDayIndex = 2921573;
// ICU's earliest instant: as the Julian-Gregorian cutover it makes the calendar purely Gregorian.
constexpr double kProlepticCutoverMillis = -184303902528000000.0;

struct YearMonthDay {
  int year = 0;
  int month = 0;
  int day = 0;
};

bool isLeapYear(long year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

std::unique_ptr<icu::GregorianCalendar> makeCalendar(icu::TimeZone* adoptedZone) {
  UErrorCode status = U_ZERO_ERROR;
  auto calendar = std::make_unique<icu::GregorianCalendar>(adoptedZone, status);
  calendar->setGregorianChange(kProlepticCutoverMillis, status);
  if (U_FAILURE(status)) return nullptr;
  return calendar;
}

// One GMT calendar per thread: building a calendar costs far more than using it.
icu::GregorianCalendar* gmtCalendar() {
  thread_local std::unique_ptr<icu::GregorianCalendar> calendar =
      makeCalendar(icu::TimeZone::getGMT()->clone());
  return calendar.get();
}

// The GMT day of a date as days since 2001-01-01; nullopt outside the supported range.
std::optional<long> dayIndexOf(Date date) {
  const double days = std::floor(date.timeIntervalSinceReferenceDate() / kSecondsPerDay);
  if (!std::isfinite(days) || days < kFirstDayIndex || days > kLastDayIndex) return std::nullopt;
  return static_cast<long>(days);
}

Date calendarDateForDayIndex(long index) {
  return Date(static_cast<double>(index) * kSecondsPerDay + kNoon);
}

std::optional<YearMonthDay> fieldsOf(icu::Calendar& calendar, double unixMillis) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(unixMillis, status);
  YearMonthDay fields;
  fields.year = calendar.get(UCAL_EXTENDED_YEAR, status);
  fields.month = calendar.get(UCAL_MONTH, status) + 1;
  fields.day = calendar.get(UCAL_DATE, status);
  if (U_FAILURE(status)) return std::nullopt;
  return fields;
}

std::optional<YearMonthDay> fieldsOfDayIndex(long index) {
  const Date noon = calendarDateForDayIndex(index);
  return fieldsOf(*gmtCalendar(), noon.unixTime() * 1000.0);
}

std::optional<YearMonthDay> fieldsOfDate(Date date) {
  const auto index = dayIndexOf(date);
  if (!index) return std::nullopt;
  return fieldsOfDayIndex(*index);
}

// The calendar date of valid fields, through the GMT calendar.
std::optional<Date> calendarDateOf(long year, long month, long day) {
  if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 ||
      day > LDateUtilities::numberOfDaysInMonth(static_cast<int>(year), static_cast<int>(month))) {
    return std::nullopt;
  }
  icu::GregorianCalendar& calendar = *gmtCalendar();
  calendar.clear();
  calendar.set(UCAL_EXTENDED_YEAR, static_cast<int32_t>(year));
  calendar.set(UCAL_MONTH, static_cast<int32_t>(month - 1));
  calendar.set(UCAL_DATE, static_cast<int32_t>(day));
  calendar.set(UCAL_HOUR_OF_DAY, 12);
  UErrorCode status = U_ZERO_ERROR;
  const double millis = calendar.getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  return Date::fromUnixTime(millis / 1000.0);
}

// A field of a date's GMT day, or 0 when it has none.
template <typename Field>
int fieldOf(Date date, Field field) {
  const auto fields = fieldsOfDate(date);
  return fields ? field(*fields) : 0;
}

}  // namespace

Date LDateUtilities::currentDate() {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
  icu::UnicodeString id;
  std::string zoneId;
  zone->getID(id).toUTF8String(zoneId);
  if (auto today = dateWithTimestamp(Clock::now(), zoneId)) return *today;
  return dateWithTimestamp(Clock::now(), "GMT").value_or(Date(kNoon));
}

std::optional<Date> LDateUtilities::dateWithYear(int year, int month, int day) {
  return calendarDateOf(year, month, day);
}

std::optional<Date> LDateUtilities::dateWithTimestamp(Date timestamp,
                                                      const std::string& timeZoneId) {
  // A day of margin each side: the zone may move the time stamp across a day boundary.
  const double days = std::floor(timestamp.timeIntervalSinceReferenceDate() / kSecondsPerDay);
  if (!std::isfinite(days) || days < kFirstDayIndex - 1 || days > kLastDayIndex + 1) {
    return std::nullopt;
  }
  auto* zone = icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZoneId));
  if (*zone == icu::TimeZone::getUnknown()) {
    delete zone;
    return std::nullopt;
  }
  const auto calendar = makeCalendar(zone);
  if (!calendar) return std::nullopt;
  const auto fields = fieldsOf(*calendar, timestamp.unixTime() * 1000.0);
  if (!fields) return std::nullopt;
  return calendarDateOf(fields->year, fields->month, fields->day);
}

int LDateUtilities::dayOfWeekForDate(Date date) {
  const auto index = dayIndexOf(date);
  if (!index) return 0;
  // 2001-01-01 was a Monday (2).
  return static_cast<int>(((*index % 7) + 7 + 1) % 7) + 1;
}

int LDateUtilities::dayOfMonthForDate(Date date) {
  return fieldOf(date, [](const YearMonthDay& f) { return f.day; });
}

int LDateUtilities::monthOfYearForDate(Date date) {
  return fieldOf(date, [](const YearMonthDay& f) { return f.month; });
}

int LDateUtilities::yearForDate(Date date) {
  return fieldOf(date, [](const YearMonthDay& f) { return f.year; });
}

std::string LDateUtilities::ISO8601StringFromDate(Date date) {
  const auto fields = fieldsOfDate(date);
  if (!fields) return {};
  return fmt::format("{:04}-{:02}-{:02}", fields->year, fields->month, fields->day);
}

std::string LDateUtilities::dateTimeZone() { return "GMT"; }

std::optional<Date> LDateUtilities::dateByAddingDays(Date date, long days) {
  const auto index = dayIndexOf(date);
  if (!index) return std::nullopt;
  // Bound before adding so that huge counts cannot overflow.
  if (days < kFirstDayIndex - *index || days > kLastDayIndex - *index) return std::nullopt;
  return calendarDateForDayIndex(*index + days);
}

std::optional<Date> LDateUtilities::dateByAddingWeeks(Date date, long weeks) {
  if (weeks < -(kLastDayIndex - kFirstDayIndex) / 7 || weeks > (kLastDayIndex - kFirstDayIndex) / 7)
    return std::nullopt;
  return dateByAddingDays(date, weeks * 7);
}

std::optional<Date> LDateUtilities::dateByAddingMonths(Date date, long months) {
  const auto fields = fieldsOfDate(date);
  if (!fields || months < -12L * 10000 || months > 12L * 10000) return std::nullopt;
  const long total = fields->year * 12L + (fields->month - 1) + months;
  const long year = total >= 0 ? total / 12 : -((-total + 11) / 12);
  const long month = total - year * 12 + 1;
  if (year < 1 || year > 9999) return std::nullopt;
  const int lastDay = numberOfDaysInMonth(static_cast<int>(year), static_cast<int>(month));
  return calendarDateOf(year, month, std::min<long>(fields->day, lastDay));
}

std::optional<Date> LDateUtilities::dateByAddingYears(Date date, long years) {
  if (years < -10000 || years > 10000) return std::nullopt;
  return dateByAddingMonths(date, years * 12);
}

long LDateUtilities::numberOfDaysFromDate(Date from, Date to) {
  const double a = std::floor(from.timeIntervalSinceReferenceDate() / kSecondsPerDay);
  const double b = std::floor(to.timeIntervalSinceReferenceDate() / kSecondsPerDay);
  const double difference = b - a;
  if (!std::isfinite(difference) || std::fabs(difference) > 1e15) return 0;
  return static_cast<long>(difference);
}

bool LDateUtilities::isCalendarDate(Date date) {
  const auto index = dayIndexOf(date);
  return index && date == calendarDateForDayIndex(*index);
}

int LDateUtilities::numberOfDaysInMonth(int year, int month) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

std::optional<Date> LDateUtilities::firstDayOfMonthForDate(Date date) {
  const auto fields = fieldsOfDate(date);
  if (!fields) return std::nullopt;
  return calendarDateOf(fields->year, fields->month, 1);
}

std::optional<Date> LDateUtilities::lastDayOfMonthForDate(Date date) {
  const auto fields = fieldsOfDate(date);
  if (!fields) return std::nullopt;
  return calendarDateOf(fields->year, fields->month,
                        numberOfDaysInMonth(fields->year, fields->month));
}

}  // namespace ledgeon
