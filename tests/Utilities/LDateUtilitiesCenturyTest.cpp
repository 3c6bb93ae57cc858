#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

using D = LDateUtilities;

std::string iso(std::optional<Date> date) {
  return date ? D::ISO8601StringFromDate(*date) : "none";
}

TEST(LDateUtilitiesCenturyTest, ShortYearsLandInTheWindowAroundTheCurrentYear) {
  struct Case {
    int year;
    int currentYear;
    int expected;
  };
  const Case cases[] = {
      {98, 2026, 1998},
      {30, 2026, 2030},
      {57, 2026, 1957},
      {56, 2026, 2056},
      {0, 2026, 2000},
      {99, 2000, 1999},
      {31, 2000, 1931},
      {30, 2000, 2030},
      {150, 2026, 2150},
      {999, 2026, 2999},
      {1000, 2026, 1000},
      {1998, 2026, 1998},
      // Late in a century the rule only ever moves a year back, never forward: 28 in 2099 is
      // 2028, below the window's start.
      {69, 2099, 2069},
      {28, 2099, 2028},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(D::yearByAdjustingYearIfNecessary(c.year, c.currentYear), c.expected)
        << c.year << " in " << c.currentYear;
  }
}

TEST(LDateUtilitiesCenturyTest, MonthDayYearTextThenCenturyRule) {
  const ScopedFixedClock clock(*D::dateWithYear(2026, 6, 15));
  struct Case {
    const char* text;
    const char* asWritten;
    const char* adjusted;
  };
  const Case cases[] = {
      {"3/7/98", "0098-03-07", "1998-03-07"},
      {"12/31/2024", "2024-12-31", "2024-12-31"},
      {"02-29-2024", "2024-02-29", "2024-02-29"},
      {"1/1/00", "2000-01-01", "2000-01-01"},
      {"1/1/57", "0057-01-01", "1957-01-01"},
      {"2/30/2024", "none", "none"},
      {"13/1/2024", "none", "none"},
      {"Date", "none", "none"},
      {"", "none", "none"},
      {"1/2/2024 ", "none", "none"},
      {"1/2", "none", "none"},
      {"99999999/1/1", "none", "none"},
  };
  for (const Case& c : cases) {
    const auto date = D::dateFromMonthDayYearString(c.text);
    EXPECT_EQ(iso(date), c.asWritten) << c.text;
    EXPECT_EQ(iso(date ? D::dateByAdjustingYearIfNecessary(*date) : std::nullopt), c.adjusted)
        << c.text;
  }
}

}  // namespace
}  // namespace ledgeon
