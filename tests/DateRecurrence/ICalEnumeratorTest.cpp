#include <cstdio>
#include <fstream>
#include <memory>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "DateRecurrence/AggregateICalEnumerator.h"
#include "DateRecurrence/ICalStringEnumerator.h"
#include "DateRecurrence/RecurrenceRule.h"
#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

using Strings = std::vector<std::string>;

Date day(const std::string& iso) { return LDateUtilities::dateFromISO8601String(iso).value(); }

Strings isoDates(AggregateICalEnumerator& enumerator) {
  Strings dates;
  while (auto date = enumerator.nextObject()) {
    dates.push_back(LDateUtilities::ISO8601StringFromDate(*date));
  }
  return dates;
}

struct OracleCase {
  const char* start;
  Strings patterns;
  int take;
};

// python-dateutil's expansion of every case, through tests/DateRecurrence/rrule_oracle.py.
std::vector<Strings> oracleDates(const std::vector<OracleCase>& cases) {
  nlohmann::json input = nlohmann::json::array();
  for (const auto& c : cases) {
    input.push_back({{"start", c.start}, {"patterns", c.patterns}, {"take", c.take}});
  }
  testing::TempFolder folder;
  const auto inputFile = folder / "cases.json";
  std::ofstream(inputFile) << input.dump();
  const std::string command =
      "python3 " LEDGEON_SOURCE_DIR "/tests/DateRecurrence/rrule_oracle.py < " + inputFile.string();
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  if (!pipe) throw std::runtime_error("cannot run " + command);
  std::string output;
  char buffer[4096];
  while (size_t n = fread(buffer, 1, sizeof buffer, pipe.get())) output.append(buffer, n);
  return nlohmann::json::parse(output).get<std::vector<Strings>>();
}

TEST(ICalEnumeratorTest, ExpansionAgreesWithDateutil) {
  const RecurrenceRule monthlyDaysAndLastFriday = RecurrenceRule::initMonthlyRecurrenceWithInterval(
      1, {1, 15}, {{6, -1}}, RecurrenceEnd::infiniteRecurrenceEnd());
  const std::vector<OracleCase> cases = {
      {"2024-01-03", {"FREQ=WEEKLY;WKST=SU;BYDAY=MO,TH"}, 30},
      {"2024-01-03", {"FREQ=WEEKLY;WKST=SU;INTERVAL=2;BYDAY=MO,TH"}, 30},
      {"2023-12-30", {"FREQ=WEEKLY;WKST=SU;INTERVAL=3;BYDAY=SU,WE,SA"}, 40},
      {"2024-05-15", {"FREQ=WEEKLY;WKST=SU;INTERVAL=2"}, 20},
      {"2024-01-10", {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=1,15,-1"}, 60},
      {"2024-01-31", {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=31"}, 24},
      {"2023-11-05", {"FREQ=MONTHLY;WKST=SU;INTERVAL=2;BYMONTHDAY=30,-1"}, 30},
      {"2024-01-01", {"FREQ=MONTHLY;WKST=SU;BYDAY=-1FR"}, 24},
      {"2024-01-01", {"FREQ=MONTHLY;WKST=SU;BYDAY=2MO,-2WE"}, 36},
      {"2024-01-01", {"FREQ=MONTHLY;WKST=SU;INTERVAL=3;BYDAY=5TH"}, 20},
      {"2024-03-01", {"FREQ=YEARLY;WKST=SU;BYMONTH=2;BYMONTHDAY=29"}, 6},
      {"2024-03-01", {"FREQ=YEARLY;WKST=SU;INTERVAL=2;BYMONTH=12;BYMONTHDAY=25"}, 10},
      {"2024-02-01", {"FREQ=YEARLY;BYMONTH=1,4,6,9;BYMONTHDAY=15"}, 25},
      {"2024-01-03", {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=5;COUNT=7"}, 50},
      {"2024-01-06", {"FREQ=WEEKLY;WKST=SU;BYDAY=MO,FR;COUNT=9"}, 50},
      {"2024-01-03", {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=-1;UNTIL=2024-09-30"}, 50},
      {"2024-01-03", {"FREQ=WEEKLY;WKST=SU;BYDAY=TU;UNTIL=20240305T000000Z"}, 50},
      {"2024-01-03", monthlyDaysAndLastFriday.icalStrings(), 60},
      // Merged patterns that meet on the same day: both dates are listed.
      {"2024-01-01",
       {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=1,15", "FREQ=MONTHLY;WKST=SU;BYDAY=1MO",
        "FREQ=WEEKLY;WKST=SU;INTERVAL=2;BYDAY=MO"},
       60},
      {"2024-01-01",
       {"FREQ=YEARLY;WKST=SU;BYMONTH=12;BYMONTHDAY=25;COUNT=3",
        "FREQ=YEARLY;WKST=SU;BYMONTH=7;BYMONTHDAY=4;UNTIL=2026-12-31"},
       20},
      {"1999-12-31", {"FREQ=MONTHLY;BYMONTHDAY=31", "FREQ=MONTHLY;BYMONTHDAY=-1"}, 40},
  };
  const auto expected = oracleDates(cases);
  ASSERT_EQ(expected.size(), cases.size());
  for (size_t i = 0; i < cases.size(); ++i) {
    auto enumerator = AggregateICalEnumerator::enumeratorWithICalStrings(
        cases[i].patterns, day(cases[i].start), static_cast<uint64_t>(cases[i].take));
    EXPECT_EQ(isoDates(enumerator), expected[i])
        << cases[i].patterns.front() << " from " << cases[i].start;
  }
}

TEST(ICalEnumeratorTest, SinglePatternCountsAndIgnoredInterval) {
  auto limited =
      ICalStringEnumerator::initWithICalString("FREQ=MONTHLY;BYMONTHDAY=1", day("2024-01-01"), 3);
  ASSERT_TRUE(limited);
  Strings dates;
  while (auto date = limited->nextObject())
    dates.push_back(LDateUtilities::ISO8601StringFromDate(*date));
  EXPECT_EQ(dates, (Strings{"2024-01-01", "2024-02-01", "2024-03-01"}));
  EXPECT_FALSE(limited->nextObject());

  // Every other month from January; ignoring the interval gives February too.
  const std::string everyOther = " FREQ=MONTHLY;INTERVAL=2;BYMONTHDAY=10; ";
  auto phased = ICalStringEnumerator::initWithICalString(everyOther, day("2024-01-15"));
  auto unphased = ICalStringEnumerator::initWithICalString(
      everyOther, day("2024-01-15"), ICalStringEnumerator::kUnlimitedCount, true);
  EXPECT_EQ(LDateUtilities::ISO8601StringFromDate(*phased->nextObject()), "2024-03-10");
  EXPECT_EQ(LDateUtilities::ISO8601StringFromDate(*unphased->nextObject()), "2024-02-10");

  // No start date: today.
  ScopedFixedClock clock(Date::fromUnixTime(1717243200));  // 2024-06-01 12:00 GMT
  auto fromToday = ICalStringEnumerator::initWithICalString("FREQ=WEEKLY;BYDAY=MO", std::nullopt);
  EXPECT_EQ(LDateUtilities::ISO8601StringFromDate(*fromToday->nextObject()), "2024-06-03");
}

TEST(ICalEnumeratorTest, AggregateTiesMaximumAndAbsentPatterns) {
  auto enumerator = AggregateICalEnumerator::enumeratorWithICalStrings(
      {"FREQ=MONTHLY;BYMONTHDAY=1", "not a rule", "FREQ=WEEKLY;BYDAY=MO", "FREQ=HOURLY"},
      day("2024-01-01"), 5);
  // January 1 2024 is a Monday: both patterns give it, the first pattern's copy first.
  EXPECT_EQ(isoDates(enumerator),
            (Strings{"2024-01-01", "2024-01-01", "2024-01-08", "2024-01-15", "2024-01-22"}));

  std::vector<std::unique_ptr<ICalStringEnumerator>> none;
  none.push_back(nullptr);
  AggregateICalEnumerator empty(std::move(none), 10);
  EXPECT_FALSE(empty.nextObject());

  auto zero =
      AggregateICalEnumerator::enumeratorWithICalStrings({"FREQ=WEEKLY"}, day("2024-01-01"), 0);
  EXPECT_FALSE(zero.nextObject());
}

TEST(ICalEnumeratorTest, UnusableInputGivesNoEnumeratorOrEndsCleanly) {
  const struct {
    std::string pattern;
    std::string start;
  } absent[] = {
      {"", "2024-01-01"},
      {";;;", "2024-01-01"},
      {"FREQ=WEEKLY;BYDAY=MO,XX", "2024-01-01"},
      {"FREQ=MONTHLY;BYMONTHDAY=0", "2024-01-01"},
      {"FREQ=MINUTELY;BYMONTH=2;BYMONTHDAY=31", "2024-01-01"},  // would search for centuries
      {"FREQ=SECONDLY", "2024-01-01"},
      {"FREQ=YEARLY", "9999-12-31"},  // beyond the years libical iterates
      {std::string("FREQ=WEEKLY\0;BYDAY=MO", 21), "2024-01-01"},
  };
  for (const auto& c : absent) {
    EXPECT_FALSE(ICalStringEnumerator::initWithICalString(c.pattern, day(c.start))) << c.pattern;
  }
  // An enormous count is bounded by the calendar libical iterates over.
  auto huge = ICalStringEnumerator::initWithICalString("FREQ=YEARLY;COUNT=99999999999999",
                                                       day("2500-01-01"));
  ASSERT_TRUE(huge);
  int produced = 0;
  while (huge->nextObject()) ++produced;
  EXPECT_GT(produced, 50);
  EXPECT_LT(produced, 200);
}

}  // namespace
}  // namespace ledgeon
