#include <gtest/gtest.h>

#include "DateRecurrence/DateRecurrenceUtils.h"
#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

using Strings = std::vector<std::string>;

Date day(const char* iso) { return LDateUtilities::dateFromISO8601String(iso).value(); }

Strings iso(const std::vector<Date>& dates) {
  Strings result;
  for (Date date : dates) result.push_back(LDateUtilities::ISO8601StringFromDate(date));
  return result;
}

const Strings kFirstOfMonth = {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=1"};
constexpr auto kNoLimit = DateRecurrenceUtils::kNoFutureInstanceLimit;

class DateRecurrenceUtilsTest : public ::testing::Test {
 protected:
  // Today is 2024-03-10 in every zone the tests run in.
  ScopedFixedClock clock_{Date::fromUnixTime(1710072000)};
};

TEST_F(DateRecurrenceUtilsTest, LimitAndCountOfTheEndRule) {
  const Date start = day("2024-01-01");
  const struct {
    const char* name;
    std::optional<RecurrenceEnd> end;
    std::optional<Date> maxDate;
    uint64_t futureInstances;
    Strings expected;
  } cases[] = {
      {"end date",
       RecurrenceEnd::recurrenceEndWithEndDate(day("2024-04-01")),
       std::nullopt,
       kNoLimit,
       {"2024-01-01", "2024-02-01", "2024-03-01", "2024-04-01"}},
      {"end date after the maximum",
       RecurrenceEnd::recurrenceEndWithEndDate(day("2024-06-01")),
       day("2024-03-15"),
       kNoLimit,
       {"2024-01-01", "2024-02-01", "2024-03-01"}},
      {"maximum after the end date",
       RecurrenceEnd::recurrenceEndWithEndDate(day("2024-02-15")),
       day("2024-12-31"),
       kNoLimit,
       {"2024-01-01", "2024-02-01"}},
      {"count",
       RecurrenceEnd::recurrenceEndWithOccurrenceCount(3),
       std::nullopt,
       kNoLimit,
       {"2024-01-01", "2024-02-01", "2024-03-01"}},
      {"count cut short by the maximum",
       RecurrenceEnd::recurrenceEndWithOccurrenceCount(3),
       day("2024-02-20"),
       kNoLimit,
       {"2024-01-01", "2024-02-01"}},
      {"infinite end with a maximum",
       RecurrenceEnd::infiniteRecurrenceEnd(),
       day("2024-03-01"),
       kNoLimit,
       {"2024-01-01", "2024-02-01", "2024-03-01"}},
      // Without an end rule the maximum date is not applied: only future instances bound it.
      {"no end rule ignores the maximum",
       std::nullopt,
       day("2024-01-15"),
       2,
       {"2024-01-01", "2024-02-01", "2024-03-01", "2024-04-01", "2024-05-01"}},
      {"future instances with an end",
       RecurrenceEnd::recurrenceEndWithOccurrenceCount(10),
       std::nullopt,
       0,
       {"2024-01-01", "2024-02-01", "2024-03-01"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(iso(DateRecurrenceUtils::allDatesFromStartDate(start, c.end, c.maxDate,
                                                             c.futureInstances, kFirstOfMonth)),
              c.expected)
        << c.name;
  }
}

TEST_F(DateRecurrenceUtilsTest, ShorterFormsAndMaximumDateAsTimestamp) {
  const Date start = day("2024-01-01");
  const auto count = RecurrenceEnd::recurrenceEndWithOccurrenceCount(2);
  EXPECT_EQ(
      iso(DateRecurrenceUtils::allDatesFromStartDate(start, count, std::nullopt, kFirstOfMonth)),
      (Strings{"2024-01-01", "2024-02-01"}));
  EXPECT_EQ(iso(DateRecurrenceUtils::allDatesFromStartDate(start, std::nullopt, kFirstOfMonth, 1)),
            (Strings{"2024-01-01", "2024-02-01", "2024-03-01", "2024-04-01"}));
  // A maximum date late on March 1 (GMT) still includes March 1.
  const Date lateOnMarchFirst = Date::fromUnixTime(1709337540);  // 2024-03-01 23:59 GMT
  EXPECT_EQ(iso(DateRecurrenceUtils::allDatesFromStartDate(
                start, RecurrenceEnd::infiniteRecurrenceEnd(), lateOnMarchFirst, kFirstOfMonth)),
            (Strings{"2024-01-01", "2024-02-01", "2024-03-01"}));
}

TEST_F(DateRecurrenceUtilsTest, MergedPatternsInDateOrder) {
  const Strings patterns = {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=1,15",
                            "FREQ=MONTHLY;WKST=SU;BYDAY=-1FR"};
  EXPECT_EQ(iso(DateRecurrenceUtils::allDatesFromStartDate(
                day("2024-01-01"), RecurrenceEnd::recurrenceEndWithEndDate(day("2024-03-31")),
                std::nullopt, patterns)),
            (Strings{"2024-01-01", "2024-01-15", "2024-01-26", "2024-02-01", "2024-02-15",
                     "2024-02-23", "2024-03-01", "2024-03-15", "2024-03-29"}));
  // The count covers the merged dates, not each pattern.
  EXPECT_EQ(DateRecurrenceUtils::allDatesFromStartDate(
                day("2024-01-01"), RecurrenceEnd::recurrenceEndWithOccurrenceCount(4), std::nullopt,
                patterns)
                .size(),
            4u);
}

TEST_F(DateRecurrenceUtilsTest, RollDateToTheFirstFittingDate) {
  const Strings everyOtherMonth = {"FREQ=MONTHLY;INTERVAL=2;BYMONTHDAY=10"};
  const struct {
    const char* date;
    Strings patterns;
    std::optional<RecurrenceEnd> end;
    std::optional<const char*> expected;
  } cases[] = {
      {"2024-01-10", everyOtherMonth, std::nullopt, "2024-01-10"},
      {"2024-01-11", everyOtherMonth, std::nullopt, "2024-02-10"},  // the interval is ignored
      {"2024-01-11",
       {"FREQ=WEEKLY;BYDAY=MO", "FREQ=MONTHLY;BYMONTHDAY=12"},
       std::nullopt,
       "2024-01-12"},
      {"2024-01-11", everyOtherMonth, RecurrenceEnd::recurrenceEndWithEndDate(day("2024-02-10")),
       "2024-02-10"},
      {"2024-01-11", everyOtherMonth, RecurrenceEnd::recurrenceEndWithEndDate(day("2024-02-09")),
       std::nullopt},
      {"2024-01-11", everyOtherMonth, RecurrenceEnd::recurrenceEndWithOccurrenceCount(1),
       "2024-02-10"},
      {"2024-01-11", {"garbage"}, std::nullopt, std::nullopt},
      {"2024-01-11", {}, std::nullopt, std::nullopt},
  };
  for (const auto& c : cases) {
    const auto rolled = DateRecurrenceUtils::rollDate(day(c.date), c.patterns, c.end);
    ASSERT_EQ(rolled.has_value(), c.expected.has_value()) << c.date;
    if (rolled) {
      EXPECT_EQ(LDateUtilities::ISO8601StringFromDate(*rolled), *c.expected);
    }
  }
}

TEST_F(DateRecurrenceUtilsTest, FarDatesEndCleanly) {
  // Years libical does not iterate give no dates rather than a hang.
  EXPECT_TRUE(
      DateRecurrenceUtils::allDatesFromStartDate(day("9000-01-01"), std::nullopt, kFirstOfMonth, 5)
          .empty());
  EXPECT_EQ(iso(DateRecurrenceUtils::allDatesFromStartDate(
                day("0001-01-01"), RecurrenceEnd::recurrenceEndWithOccurrenceCount(3), std::nullopt,
                kFirstOfMonth)),
            (Strings{"0001-01-01", "0001-02-01", "0001-03-01"}));
}

}  // namespace
}  // namespace ledgeon
