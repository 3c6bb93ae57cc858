#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "Utilities/Clock.h"
#include "Utilities/DateFormatter.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

Date stamp(const char* text) { return LDateUtilities::timestampFromISO8601String(text).value(); }

TEST(DateFormatter, FormatsWithPatternsLocalesAndZones) {
  struct Case {
    const char* pattern;
    const char* locale;
    const char* zone;
    const char* timestamp;
    const char* expected;
  };
  const Case cases[] = {
      {"yyyyMMddHHmmss.SSS", "en_US_POSIX", "GMT", "2024-02-29T23:30:15.250Z",
       "20240229233015.250"},
      {"yyyyMMddHHmmss.SSS", "en_US_POSIX", "America/New_York", "2024-03-01T03:30:15Z",
       "20240229223015.000"},
      {"yyyyMMdd", "en_US_POSIX", "GMT", "2024-02-29T12:00:00Z", "20240229"},
      {"MM/dd/yyyy", "en_US_POSIX", "GMT", "2024-02-29T12:00:00Z", "02/29/2024"},
      {"MM/dd/yy", "en_US_POSIX", "GMT", "2003-01-02T12:00:00Z", "01/02/03"},
      {"yyyyMMdd", "en_US_POSIX", "Pacific/Kiritimati", "2024-12-31T10:00:00Z", "20250101"},
      {"yyyyMMdd", "en_US_POSIX", "Pacific/Pago_Pago", "2025-01-01T10:00:00Z", "20241231"},
      {"zzz", "en_US_POSIX", "America/New_York", "2024-07-01T12:00:00Z", "EDT"},
      {"d MMMM yyyy", "fr_FR", "GMT", "2024-02-29T12:00:00Z", "29 février 2024"},
      {"EEEE", "en_US_POSIX", "GMT", "2024-02-29T12:00:00Z", "Thursday"},
      // Proleptic Gregorian, like LDateUtilities: no Julian dates before 1582.
      {"yyyy-MM-dd", "en_US_POSIX", "GMT", "1582-10-04T12:00:00Z", "1582-10-04"},
      {"yyyy-MM-dd", "en_US_POSIX", "GMT", "0001-01-01T12:00:00Z", "0001-01-01"},
      {"yyyy-MM-dd", "en_US_POSIX", "GMT", "9999-12-31T12:00:00Z", "9999-12-31"},
  };
  for (const auto& c : cases) {
    const DateFormatter formatter(c.pattern, c.locale, c.zone);
    EXPECT_EQ(formatter.stringFromDate(stamp(c.timestamp)), c.expected) << c.pattern;
  }
  const DateFormatter formatter("yyyyMMdd");
  EXPECT_EQ(formatter.stringFromDate(Date(std::numeric_limits<double>::quiet_NaN())), "");
  EXPECT_EQ(formatter.stringFromDate(Date(1e300)), "");
  EXPECT_EQ(formatter.stringFromDate(Date(-1e300)), "");
  EXPECT_NE(formatter.stringFromDate(Date(1e14)), "");
  EXPECT_EQ(formatter.localeIdentifier(), "en_US_POSIX");
  EXPECT_EQ(formatter.timeZoneIdentifier(), "GMT");
}

TEST(DateFormatter, ReadsWholeTextsOnly) {
  struct Case {
    const char* pattern;
    const char* zone;
    const char* text;
    const char* expected;  // ISO 8601 instant, or "none"
  };
  const Case cases[] = {
      {"yyyyMMddHHmmss.SSS", "GMT", "20240229233015.250", "2024-02-29T23:30:15.250Z"},
      {"yyyyMMddHHmmss.SSS", "America/New_York", "20240229223015.000", "2024-03-01T03:30:15Z"},
      {"yyyyMMdd", "GMT", "20240229", "2024-02-29T00:00:00Z"},
      {"yyyyMMdd", "Pacific/Kiritimati", "20240229", "2024-02-28T10:00:00Z"},
      {"MM/dd/yyyy", "GMT", "02/29/2024", "2024-02-29T00:00:00Z"},
      {"M/d/yyyy", "GMT", "2/9/2024", "2024-02-09T00:00:00Z"},
      {"M/d/yyyy", "GMT", "02/09/2024", "2024-02-09T00:00:00Z"},
      // The spring-forward gap and the repeated hour of New York.
      {"yyyy-MM-dd HH:mm", "America/New_York", "2024-03-10 01:59", "2024-03-10T06:59:00Z"},
      {"yyyy-MM-dd HH:mm", "America/New_York", "2024-03-10 03:00", "2024-03-10T07:00:00Z"},
      {"yyyy-MM-dd HH:mm", "America/New_York", "2024-11-03 00:30", "2024-11-03T04:30:00Z"},
      // Rejected: leftovers, missing parts, fields out of range, nothing at all.
      {"yyyyMMdd", "GMT", "20240229x", "none"},
      {"yyyyMMdd", "GMT", "20240229 ", "none"},
      {"MM/dd/yyyy", "GMT", "02/29/2024 garbage", "none"},
      {"MM/dd/yyyy", "GMT", "02/29", "none"},
      {"MM/dd/yyyy", "GMT", "02/30/2024", "none"},
      {"MM/dd/yyyy", "GMT", "13/01/2024", "none"},
      {"MM/dd/yyyy", "GMT", "02-29-2024", "none"},
      {"yyyyMMdd", "GMT", "", "none"},
      {"yyyyMMdd", "GMT", "abcdefgh", "none"},
      // A long run of fraction digits once crashed ICU (division by zero).
      {"yyyyMMddHHmmss.SSS", "GMT", "20240229233015.3333333333333333333333333333333333333333330",
       "none"},
      {"yyyyMMddHHmmss.SSS", "GMT", "20240229233015.٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣٣",
       "none"},
  };
  for (const auto& c : cases) {
    const DateFormatter formatter(c.pattern, "en_US_POSIX", c.zone);
    const auto date = formatter.dateFromString(c.text);
    const std::string expected = c.expected;
    if (expected == "none") {
      EXPECT_FALSE(date) << c.pattern << " \"" << c.text << "\" gave " << date->description();
    } else {
      ASSERT_TRUE(date) << c.pattern << " \"" << c.text << "\"";
      EXPECT_DOUBLE_EQ(date->unixTime(), stamp(c.expected).unixTime())
          << c.pattern << " " << c.text;
    }
  }
}

TEST(DateFormatter, LenientReadingRollsFieldsOver) {
  DateFormatter formatter("MM/dd/yyyy");
  EXPECT_FALSE(formatter.isLenient());
  EXPECT_FALSE(formatter.dateFromString("02/30/2024"));
  formatter.setLenient(true);
  EXPECT_TRUE(formatter.isLenient());
  EXPECT_EQ(formatter.calendarDateFromString("02/30/2024"),
            LDateUtilities::dateWithYear(2024, 3, 1));
  // Leftovers are refused whatever the leniency.
  EXPECT_FALSE(formatter.dateFromString("02/28/2024 x"));
}

TEST(DateFormatter, TwoDigitYearsFollowTheProgramsClock) {
  struct Case {
    const char* now;
    const char* text;
    int year;
  };
  const Case cases[] = {
      {"2024-06-01T00:00:00Z", "01/02/03", 2003}, {"2024-06-01T00:00:00Z", "01/02/43", 2043},
      {"2024-06-01T00:00:00Z", "01/02/45", 1945}, {"2024-06-01T00:00:00Z", "01/02/10", 2010},
      {"1990-06-01T00:00:00Z", "01/02/11", 1911}, {"1990-06-01T00:00:00Z", "01/02/09", 2009},
      {"1990-06-01T00:00:00Z", "01/02/99", 1999}};
  for (const auto& c : cases) {
    const ScopedFixedClock clock(stamp(c.now));
    const DateFormatter formatter("MM/dd/yy");
    const auto date = formatter.calendarDateFromString(c.text);
    ASSERT_TRUE(date) << c.text;
    EXPECT_EQ(LDateUtilities::yearForDate(*date), c.year) << c.text << " at " << c.now;
  }
}

TEST(DateFormatter, CalendarDateIsTheDayInTheFormattersZone) {
  const DateFormatter kiritimati("yyyyMMdd", "en_US_POSIX", "Pacific/Kiritimati");
  EXPECT_EQ(kiritimati.calendarDateFromString("20240229"),
            LDateUtilities::dateWithYear(2024, 2, 29));
  const DateFormatter pagoPago("MM/dd/yy HH:mm", "en_US_POSIX", "Pacific/Pago_Pago");
  EXPECT_EQ(pagoPago.calendarDateFromString("12/31/24 23:59"),
            LDateUtilities::dateWithYear(2024, 12, 31));
  EXPECT_FALSE(pagoPago.calendarDateFromString("12/31/24"));
}

TEST(DateFormatter, RefusesBadPatternsAndZones) {
  EXPECT_THROW(DateFormatter("yyyy'MM"), std::invalid_argument);
  EXPECT_THROW(DateFormatter("yyyy-MM-dd HH:mm:ss tt"), std::invalid_argument);
  EXPECT_NO_THROW(DateFormatter("yyyy-MM-dd'T'HH:mm:ss'Z' 'o''clock'"));
  EXPECT_THROW(DateFormatter("yyyyMMdd", "en_US_POSIX", "Mars/Olympus_Mons"),
               std::invalid_argument);
}

}  // namespace
}  // namespace ledgeon
