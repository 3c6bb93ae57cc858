#include <climits>
#include <cmath>
#include <limits>
#include <memory>

#include <gtest/gtest.h>
#include <unicode/timezone.h>

#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

using D = LDateUtilities;

Date day(int year, int month, int dayOfMonth) {
  const auto date = D::dateWithYear(year, month, dayOfMonth);
  EXPECT_TRUE(date) << year << "-" << month << "-" << dayOfMonth;
  return date.value_or(Date());
}

// "none" for no date, so that tables can expect failures.
std::string iso(std::optional<Date> date) {
  return date ? D::ISO8601StringFromDate(*date) : "none";
}

Date stamp(const char* text) {
  const auto date = D::timestampFromISO8601String(text);
  EXPECT_TRUE(date) << text;
  return date.value_or(Date());
}

// Sets ICU's default zone (the user's zone) for the guard's lifetime.
class ScopedDefaultTimeZone final {
 public:
  explicit ScopedDefaultTimeZone(const char* id) : previous_(icu::TimeZone::createDefault()) {
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone(id));
  }
  ~ScopedDefaultTimeZone() { icu::TimeZone::adoptDefault(previous_.release()); }
  ScopedDefaultTimeZone(const ScopedDefaultTimeZone&) = delete;
  ScopedDefaultTimeZone& operator=(const ScopedDefaultTimeZone&) = delete;

 private:
  std::unique_ptr<icu::TimeZone> previous_;
};

TEST(LDateUtilities, CalendarDatesAreNoonGMT) {
  EXPECT_EQ(day(2001, 1, 1), Date(43200));
  EXPECT_EQ(day(1970, 1, 1), Date::fromUnixTime(43200));
  EXPECT_EQ(day(2024, 2, 29).description(), "2024-02-29 12:00:00 +0000");
  EXPECT_EQ(D::dateTimeZone(), "GMT");
  EXPECT_EQ(D::timeIntervalForNumberOfDays(3), 259200.0);
  EXPECT_EQ(D::timeIntervalForNumberOfDays(-1), -86400.0);
}

TEST(LDateUtilities, RejectsDaysThatDoNotExist) {
  const int bad[][3] = {{2023, 2, 29}, {1900, 2, 29}, {2024, 2, 30}, {2024, 4, 31}, {2024, 13, 1},
                        {2024, 0, 1},  {2024, 1, 0},  {0, 1, 1},     {10000, 1, 1}, {-5, 1, 1}};
  for (const auto& f : bad) {
    EXPECT_FALSE(D::dateWithYear(f[0], f[1], f[2])) << f[0] << "-" << f[1] << "-" << f[2];
  }
  EXPECT_TRUE(D::dateWithYear(2000, 2, 29));
  EXPECT_TRUE(D::dateWithYear(1, 1, 1));
  EXPECT_TRUE(D::dateWithYear(9999, 12, 31));
}

TEST(LDateUtilities, FieldsAndDayOfWeekOfKnownDates) {
  struct Case {
    int year, month, dayOfMonth, weekday;
  };
  const Case cases[] = {
      {2024, 2, 29, 5}, {2000, 1, 1, 7},   {1970, 1, 1, 5},
      {2001, 1, 1, 2},  {2000, 12, 31, 1}, {1582, 10, 15, 6},  // first day of the Gregorian reform
      {1582, 10, 4, 2},  // proleptic: a Thursday in the Julian calendar
      {1, 1, 1, 2},     {9999, 12, 31, 6}, {1900, 3, 1, 5},
  };
  for (const auto& c : cases) {
    const Date date = day(c.year, c.month, c.dayOfMonth);
    EXPECT_EQ(D::dayOfWeekForDate(date), c.weekday) << iso(date);
    EXPECT_EQ(D::yearForDate(date), c.year);
    EXPECT_EQ(D::monthOfYearForDate(date), c.month);
    EXPECT_EQ(D::dayOfMonthForDate(date), c.dayOfMonth);
    EXPECT_TRUE(D::isCalendarDate(date));
    // Any time of the same GMT day reads the same.
    EXPECT_EQ(D::dayOfMonthForDate(date.dateByAddingTimeInterval(43199.9)), c.dayOfMonth);
    EXPECT_EQ(D::dayOfWeekForDate(date.dateByAddingTimeInterval(-43200)), c.weekday);
  }
}

TEST(LDateUtilities, DatesOutsideTheCalendarGiveNoFields) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Date outside[] = {Date(nan),
                          Date(std::numeric_limits<double>::infinity()),
                          Date(1e300),
                          Date(-1e300),
                          day(1, 1, 1).dateByAddingTimeInterval(-86400),
                          day(9999, 12, 31).dateByAddingTimeInterval(86400)};
  for (const Date& date : outside) {
    EXPECT_EQ(D::dayOfWeekForDate(date), 0);
    EXPECT_EQ(D::dayOfMonthForDate(date), 0);
    EXPECT_EQ(D::monthOfYearForDate(date), 0);
    EXPECT_EQ(D::yearForDate(date), 0);
    EXPECT_EQ(D::ISO8601StringFromDate(date), "");
    EXPECT_FALSE(D::isCalendarDate(date));
    EXPECT_FALSE(D::dateByAddingDays(date, 1));
    EXPECT_FALSE(D::dateByAddingMonths(date, 1));
    EXPECT_FALSE(D::firstDayOfMonthForDate(date));
    EXPECT_FALSE(D::dateWithTimestamp(date, "GMT"));
  }
  EXPECT_EQ(D::numberOfDaysFromDate(Date(nan), day(2024, 1, 1)), 0);
  EXPECT_FALSE(D::isCalendarDate(day(2024, 1, 1).dateByAddingTimeInterval(1)));
}

TEST(LDateUtilities, TimestampKeepsTheDayOfItsZone) {
  struct Case {
    const char* timestamp;
    const char* zone;
    const char* expected;
  };
  const Case cases[] = {
      // UTC+14 and UTC-11 either side of midnight.
      {"2024-03-10T09:59:59Z", "Pacific/Kiritimati", "2024-03-10"},
      {"2024-03-10T10:00:00Z", "Pacific/Kiritimati", "2024-03-11"},
      {"2024-03-10T10:59:59Z", "Pacific/Pago_Pago", "2024-03-09"},
      {"2024-03-10T11:00:00Z", "Pacific/Pago_Pago", "2024-03-10"},
      {"2024-12-31T10:00:00Z", "Pacific/Kiritimati", "2025-01-01"},
      {"2025-01-01T10:00:00Z", "Pacific/Pago_Pago", "2024-12-31"},
      {"2024-02-29T23:00:00Z", "Pacific/Kiritimati", "2024-03-01"},
      {"2024-03-01T05:00:00Z", "Pacific/Pago_Pago", "2024-02-29"},
      // New York around both changes of 2024 (EST -5, EDT -4).
      {"2024-03-10T04:59:59Z", "America/New_York", "2024-03-09"},
      {"2024-03-10T05:00:00Z", "America/New_York", "2024-03-10"},
      {"2024-11-03T03:59:59Z", "America/New_York", "2024-11-02"},
      {"2024-11-03T04:00:00Z", "America/New_York", "2024-11-03"},
      {"2024-03-31T00:30:00Z", "Europe/London", "2024-03-31"},
      {"2024-03-30T23:30:00Z", "Europe/London", "2024-03-30"},
      {"2024-03-30T23:30:00Z", "GMT", "2024-03-30"},
      {"0001-01-01T00:00:00Z", "GMT", "0001-01-01"},
      {"9999-12-31T23:59:59Z", "GMT", "9999-12-31"},
      // The zone's day falls outside the calendar.
      {"0001-01-01T04:00:00Z", "America/New_York", "none"},
      {"9999-12-31T20:00:00Z", "Asia/Tokyo", "none"},
      {"2024-03-10T10:00:00Z", "Mars/Olympus_Mons", "none"},
      {"2024-03-10T10:00:00Z", "", "none"},
  };
  for (const auto& c : cases) {
    const auto date = D::dateWithTimestamp(stamp(c.timestamp), c.zone);
    EXPECT_EQ(iso(date), c.expected) << c.timestamp << " in " << c.zone;
    if (date) {
      EXPECT_TRUE(D::isCalendarDate(*date));
    }
  }
}

TEST(LDateUtilities, CalendarDatesStayPutInZonesWithSummerTime) {
  const char* zones[] = {"America/New_York", "Europe/London", "Australia/Sydney",
                         "Pacific/Pago_Pago", "America/Los_Angeles"};
  for (const char* zone : zones) {
    for (long i = 0; i < 366; ++i) {
      const Date date = D::dateByAddingDays(day(2024, 1, 1), i).value();
      EXPECT_EQ(D::dateWithTimestamp(date, zone), date) << iso(date) << " in " << zone;
    }
  }
}

TEST(LDateUtilities, CurrentDateIsTodayInTheUsersZone) {
  struct Case {
    const char* zone;
    const char* expected;
  };
  const Case cases[] = {{"Pacific/Kiritimati", "2024-03-11"},
                        {"Pacific/Pago_Pago", "2024-03-09"},
                        {"America/New_York", "2024-03-10"}};
  const ScopedFixedClock clock(stamp("2024-03-10T10:30:00Z"));
  for (const auto& c : cases) {
    const ScopedDefaultTimeZone zone(c.zone);
    EXPECT_EQ(iso(D::currentDate()), c.expected) << c.zone;
    EXPECT_TRUE(D::isCalendarDate(D::currentDate()));
  }
}

TEST(LDateUtilities, AddsDaysWeeksMonthsAndYears) {
  enum Unit { Days, Weeks, Months, Years };
  struct Case {
    const char* from;
    Unit unit;
    long count;
    const char* expected;
  };
  const Case cases[] = {
      {"2024-02-28", Days, 1, "2024-02-29"},
      {"2023-02-28", Days, 1, "2023-03-01"},
      {"2024-12-31", Days, 1, "2025-01-01"},
      {"2024-03-01", Days, -1, "2024-02-29"},
      {"2024-01-01", Days, 366, "2025-01-01"},
      {"2024-03-09", Days, 2, "2024-03-11"},
      {"2024-10-27", Weeks, 1, "2024-11-03"},
      {"2024-01-03", Weeks, -1, "2023-12-27"},
      {"2024-01-31", Months, 1, "2024-02-29"},
      {"2023-01-31", Months, 1, "2023-02-28"},
      {"2024-03-31", Months, -1, "2024-02-29"},
      {"2024-05-31", Months, 1, "2024-06-30"},
      {"2024-12-31", Months, 2, "2025-02-28"},
      {"2024-01-15", Months, -13, "2022-12-15"},
      {"2024-01-15", Months, -24, "2022-01-15"},
      {"2024-11-30", Months, 3, "2025-02-28"},
      {"2024-02-29", Years, 1, "2025-02-28"},
      {"2024-02-29", Years, 4, "2028-02-29"},
      {"2024-02-29", Years, -100, "1924-02-29"},
      {"2000-02-29", Years, 100, "2100-02-28"},
      // The edges of the calendar.
      {"9999-12-31", Days, 1, "none"},
      {"0001-01-01", Days, -1, "none"},
      {"9999-12-01", Months, 1, "none"},
      {"0001-01-31", Months, -1, "none"},
      {"0001-01-01", Years, 9998, "9999-01-01"},
      {"0001-01-01", Years, 9999, "none"},
      {"2024-01-01", Days, LONG_MAX, "none"},
      {"2024-01-01", Days, LONG_MIN, "none"},
      {"2024-01-01", Weeks, LONG_MAX, "none"},
      {"2024-01-01", Months, LONG_MIN, "none"},
      {"2024-01-01", Years, LONG_MAX, "none"},
  };
  for (const auto& c : cases) {
    const Date from = D::dateFromISO8601String(c.from).value();
    std::optional<Date> result;
    switch (c.unit) {
      case Days:
        result = D::dateByAddingDays(from, c.count);
        break;
      case Weeks:
        result = D::dateByAddingWeeks(from, c.count);
        break;
      case Months:
        result = D::dateByAddingMonths(from, c.count);
        break;
      case Years:
        result = D::dateByAddingYears(from, c.count);
        break;
    }
    EXPECT_EQ(iso(result), c.expected) << c.from << " + " << c.count << " (unit " << c.unit << ")";
    if (result) {
      EXPECT_TRUE(D::isCalendarDate(*result));
    }
  }
  // A time stamp is first reduced to its GMT day.
  EXPECT_EQ(D::dateByAddingDays(stamp("2024-01-31T23:59:00Z"), 0), day(2024, 1, 31));
}

TEST(LDateUtilities, CountsWholeDaysAndMonthEnds) {
  EXPECT_EQ(D::numberOfDaysFromDate(day(2024, 1, 1), day(2025, 1, 1)), 366);
  EXPECT_EQ(D::numberOfDaysFromDate(day(2023, 1, 1), day(2024, 1, 1)), 365);
  EXPECT_EQ(D::numberOfDaysFromDate(day(2024, 3, 1), day(2024, 2, 1)), -29);
  EXPECT_EQ(D::numberOfDaysFromDate(day(1, 1, 1), day(9999, 12, 31)), 3652058);
  EXPECT_EQ(D::numberOfDaysFromDate(stamp("2024-01-01T23:59:00Z"), stamp("2024-01-02T00:01:00Z")),
            1);
  EXPECT_EQ(D::numberOfDaysFromDate(stamp("2024-01-02T00:01:00Z"), stamp("2024-01-01T23:59:00Z")),
            -1);
  EXPECT_EQ(D::numberOfDaysFromDate(stamp("2024-01-01T00:00:00Z"), stamp("2024-01-01T23:59:59Z")),
            0);

  struct Case {
    const char* date;
    const char* first;
    const char* last;
    int days;
  };
  const Case cases[] = {{"2024-02-10", "2024-02-01", "2024-02-29", 29},
                        {"2023-02-28", "2023-02-01", "2023-02-28", 28},
                        {"2100-02-01", "2100-02-01", "2100-02-28", 28},
                        {"2024-12-31", "2024-12-01", "2024-12-31", 31},
                        {"2024-04-01", "2024-04-01", "2024-04-30", 30},
                        {"9999-12-15", "9999-12-01", "9999-12-31", 31}};
  for (const auto& c : cases) {
    const Date date = D::dateFromISO8601String(c.date).value();
    EXPECT_EQ(iso(D::firstDayOfMonthForDate(date)), c.first);
    EXPECT_EQ(iso(D::lastDayOfMonthForDate(date)), c.last);
    EXPECT_EQ(D::numberOfDaysInMonth(D::yearForDate(date), D::monthOfYearForDate(date)), c.days);
  }
  EXPECT_EQ(D::numberOfDaysInMonth(2024, 13), 0);
}

TEST(LDateUtilities, ReadsISO8601Texts) {
  struct Case {
    const char* text;
    const char* date;        // the calendar date, or "none"
    double unixTimeOfStamp;  // the instant, when there is a date
  };
  const Case cases[] = {
      {"2024-02-29", "2024-02-29", 1709164800},
      {"20240229", "2024-02-29", 1709164800},
      {"2024-02-29T23:30:15Z", "2024-02-29", 1709249415},
      {"2024-02-29 23:30:15Z", "2024-02-29", 1709249415},
      {"20240229T233015Z", "2024-02-29", 1709249415},
      {"2024-02-29T23:30:15", "2024-02-29", 1709249415},
      {"2024-02-29T23:30Z", "2024-02-29", 1709249400},
      {"2024-02-29T23:30:15.250Z", "2024-02-29", 1709249415.25},
      {"2024-02-29T23:30:15,5Z", "2024-02-29", 1709249415.5},
      {"2024-02-29T23:30:15-08:00", "2024-02-29", 1709278215},
      {"2024-02-29T23:30:15-0800", "2024-02-29", 1709278215},
      {"2024-02-29T23:30:15-08", "2024-02-29", 1709278215},
      {"2024-03-01T01:00:00+05:30", "2024-03-01", 1709235000},
      {"0001-01-01", "0001-01-01", -62135596800},
      {"9999-12-31T23:59:59Z", "9999-12-31", 253402300799},
      // Rejected.
      {"", "none", 0},
      {"2024-2-29", "none", 0},
      {"2024-02-29 ", "none", 0},
      {" 2024-02-29", "none", 0},
      {"2024-0229", "none", 0},
      {"202402-29", "none", 0},
      {"2023-02-29", "none", 0},
      {"2024-13-01", "none", 0},
      {"2024-00-10", "none", 0},
      {"0000-01-01", "none", 0},
      {"2024-02-29T24:00:00Z", "none", 0},
      {"2024-02-29T23:60Z", "none", 0},
      {"2024-02-29T23:30:60Z", "none", 0},
      {"2024-02-29T23Z", "none", 0},
      {"2024-02-29T", "none", 0},
      {"2024-02-29T23:30:15.Z", "none", 0},
      {"2024-02-29T23:30:15.1234567890Z", "none", 0},
      {"2024-02-29T23:30:15+24:00", "none", 0},
      {"2024-02-29T23:30:15+05:", "none", 0},
      {"2024-02-29T23:30:15ZZ", "none", 0},
      {"2024-02-29T23:30:15 garbage", "none", 0},
      {"abcd-ef-gh", "none", 0},
      {"+2024-02-29", "none", 0},
      {"２０２４-02-29", "none", 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(iso(D::dateFromISO8601String(c.text)), c.date) << '"' << c.text << '"';
    const auto instant = D::timestampFromISO8601String(c.text);
    EXPECT_EQ(instant.has_value(), std::string(c.date) != "none") << c.text;
    if (instant) {
      EXPECT_DOUBLE_EQ(instant->unixTime(), c.unixTimeOfStamp) << c.text;
    }
  }
  EXPECT_FALSE(D::dateFromISO8601String(std::string_view("2024-02-29\0", 11)));
}

TEST(LDateUtilities, ISO8601TextsRoundTrip) {
  for (Date date = day(1, 1, 1); D::isCalendarDate(date);
       date = date.dateByAddingTimeInterval(D::timeIntervalForNumberOfDays(997))) {
    EXPECT_EQ(D::dateFromISO8601String(D::ISO8601StringFromDate(date)), date) << iso(date);
  }
}

}  // namespace
}  // namespace ledgeon
