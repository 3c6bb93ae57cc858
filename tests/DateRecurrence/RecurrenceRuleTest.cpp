#include <stdexcept>

#include <gtest/gtest.h>

#include "DateRecurrence/RecurrenceRule.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/Log.h"

namespace ledgeon {
namespace {

using Strings = std::vector<std::string>;

Date day(const char* iso) { return LDateUtilities::dateFromISO8601String(iso).value(); }

const RecurrenceEnd kNever = RecurrenceEnd::infiniteRecurrenceEnd();

TEST(RecurrenceEndTest, KindsAndEquality) {
  const auto until = RecurrenceEnd::recurrenceEndWithEndDate(day("2024-12-31"));
  const auto count = RecurrenceEnd::recurrenceEndWithOccurrenceCount(3);
  EXPECT_TRUE(until.usesEndDate());
  EXPECT_FALSE(until.usesEndCount());
  EXPECT_FALSE(until.isInfinite());
  EXPECT_TRUE(count.usesEndCount());
  EXPECT_EQ(count.occurrenceCount(), 3u);
  EXPECT_TRUE(kNever.isInfinite());
  EXPECT_TRUE(kNever.usesEndDate());
  EXPECT_EQ(kNever.occurrenceCount(), 0u);
  EXPECT_EQ(until, RecurrenceEnd::recurrenceEndWithEndDate(day("2024-12-31")));
  EXPECT_NE(until, RecurrenceEnd::recurrenceEndWithEndDate(day("2025-01-01")));
  EXPECT_NE(count, RecurrenceEnd::recurrenceEndWithOccurrenceCount(4));
  EXPECT_EQ(until.description(), "until 2024-12-31");
  EXPECT_EQ(count.description(), "after 3 occurrences");
}

TEST(RecurrenceRuleTest, TextFormOfEveryKind) {
  const struct {
    RecurrenceRule rule;
    Strings strings;
  } cases[] = {
      {RecurrenceRule::initWeeklyRecurrenceWithInterval(1, {2, 5}, kNever),
       {"FREQ=WEEKLY;WKST=SU;BYDAY=MO,TH"}},
      {RecurrenceRule::initWeeklyRecurrenceWithInterval(2, {2, 5}, kNever),
       {"FREQ=WEEKLY;WKST=SU;INTERVAL=2;BYDAY=MO,TH"}},
      // Weekday numbers without a code are left out.
      {RecurrenceRule::initWeeklyRecurrenceWithInterval(1, {0, 7, 8}, kNever),
       {"FREQ=WEEKLY;WKST=SU;BYDAY=SA"}},
      {RecurrenceRule::initMonthlyRecurrenceWithInterval(1, {1, 15}, {{6, -1}}, kNever),
       {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=1,15", "FREQ=MONTHLY;WKST=SU;BYDAY=-1FR"}},
      {RecurrenceRule::initMonthlyRecurrenceWithInterval(3, {}, {{2, 2}, {4, -2}}, kNever),
       {"FREQ=MONTHLY;WKST=SU;INTERVAL=3;BYDAY=2MO,-2WE"}},
      {RecurrenceRule::initMonthlyRecurrenceWithInterval(1, {-1, 31, 15, 15}, {}, kNever),
       {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=15,31,-1"}},
      {RecurrenceRule::initYearlyRecurrenceWithInterval(1, {{25, 12}, {1, 7}}, kNever),
       {"FREQ=YEARLY;WKST=SU;BYMONTH=12;BYMONTHDAY=25",
        "FREQ=YEARLY;WKST=SU;BYMONTH=7;BYMONTHDAY=1"}},
      {RecurrenceRule::initYearlyRecurrenceWithInterval(4, {{29, 2}}, kNever),
       {"FREQ=YEARLY;WKST=SU;INTERVAL=4;BYMONTH=2;BYMONTHDAY=29"}},
      {RecurrenceRule::initUSTaxRecurrenceWithEnd(kNever),
       {"FREQ=YEARLY;BYMONTH=1,4,6,9;BYMONTHDAY=15"}},
  };
  for (const auto& c : cases) EXPECT_EQ(c.rule.icalStrings(), c.strings) << c.rule.description();
}

TEST(RecurrenceRuleTest, TaxPatternHasTheFourPaymentDays) {
  const auto rule = RecurrenceRule::initUSTaxRecurrenceWithEnd(kNever);
  EXPECT_EQ(rule.recurrenceType(), 3);
  EXPECT_EQ(rule.recurrenceInterval(), 1);
  EXPECT_EQ(rule.nthDaysOfTheMonth(),
            (std::vector<NthMonthDay>{{15, 1}, {15, 4}, {15, 6}, {15, 9}}));
}

TEST(RecurrenceRuleTest, UnknownTypeIsAProgrammingError) {
  RecurrenceRule::Fields fields;
  fields.recurrenceType = 7;
  const auto rule = RecurrenceRule::initWithFields(fields);
  try {
    (void)rule.icalStrings();
    FAIL() << "no assertion";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "Unknown recurrence type: 7");
  }
}

TEST(RecurrenceRuleTest, EndComponent) {
  const std::string pattern = "FREQ=WEEKLY;WKST=SU;BYDAY=MO";
  const struct {
    std::string pattern;
    std::optional<RecurrenceEnd> end;
    std::string expected;
  } cases[] = {
      {pattern, std::nullopt, pattern},
      {pattern, kNever, pattern},
      {pattern, RecurrenceEnd::recurrenceEndWithEndDate(day("2025-03-31")),
       pattern + ";UNTIL=2025-03-31"},
      {pattern, RecurrenceEnd::recurrenceEndWithOccurrenceCount(12), pattern + ";COUNT=12"},
      {pattern, RecurrenceEnd::recurrenceEndWithOccurrenceCount(0), pattern},
      {"", RecurrenceEnd::recurrenceEndWithOccurrenceCount(2), "COUNT=2"},
      {"", std::nullopt, ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RecurrenceRule::icalStringWithPattern(c.pattern, c.end), c.expected);
  }
}

TEST(RecurrenceRuleTest, DayListNormalForm) {
  const struct {
    std::vector<int64_t> in;
    std::vector<int64_t> out;
  } cases[] = {
      {{31, 15, -1, 15}, {15, 31, -1}},
      {{15, -1, 15}, {15, -1}},
      {{-1}, {-1}},
      {{}, {}},
      {{3, 2, 1}, {1, 2, 3}},
      // Only the last day moves; other negative days keep their sorted place.
      {{-2, -1, 5}, {-2, -1, 5}},
  };
  for (const auto& c : cases) EXPECT_EQ(RecurrenceRule::uniqueAndSortArray(c.in), c.out);
}

TEST(RecurrenceRuleTest, RuleToStringsToRuleForEveryKind) {
  const RecurrenceEnd ends[] = {kNever, RecurrenceEnd::recurrenceEndWithEndDate(day("2026-06-30")),
                                RecurrenceEnd::recurrenceEndWithOccurrenceCount(7)};
  for (const RecurrenceEnd& end : ends) {
    // Weekday lists in the order libical keeps them (by weekday from Sunday), as a rule read from
    // strings has them.
    const RecurrenceRule rules[] = {
        RecurrenceRule::initWeeklyRecurrenceWithInterval(1, {1}, end),
        RecurrenceRule::initWeeklyRecurrenceWithInterval(3, {2, 4, 7}, end),
        RecurrenceRule::initMonthlyRecurrenceWithInterval(1, {1, 15, -1}, {}, end),
        RecurrenceRule::initMonthlyRecurrenceWithInterval(2, {}, {{2, 1}, {6, -1}}, end),
        RecurrenceRule::initMonthlyRecurrenceWithInterval(1, {10}, {{3, 5}}, end),
        RecurrenceRule::initYearlyRecurrenceWithInterval(1, {{25, 12}}, end),
        RecurrenceRule::initYearlyRecurrenceWithInterval(2, {{1, 1}, {4, 7}, {-1, 2}}, end),
        RecurrenceRule::initUSTaxRecurrenceWithEnd(end),
    };
    for (const RecurrenceRule& rule : rules) {
      Strings stored;
      for (const auto& pattern : rule.icalStrings()) {
        stored.push_back(RecurrenceRule::icalStringWithPattern(pattern, end));
      }
      RecurrenceEnd readEnd = RecurrenceEnd::recurrenceEndWithOccurrenceCount(99);
      const auto read = RecurrenceRule::ruleWithIcalStrings(stored, &readEnd);
      ASSERT_TRUE(read) << rule.description();
      EXPECT_EQ(*read, rule) << rule.description() << " read as " << read->description();
      EXPECT_EQ(readEnd, end);
      EXPECT_EQ(RecurrenceRule::normalizedScheduleStringsFromStrings(stored, std::nullopt), stored);
    }
  }
}

TEST(RecurrenceRuleTest, ReadingPicksUpBackupDayAndTaxPattern) {
  const Date thursday = day("2024-02-29");
  const struct {
    Strings strings;
    std::optional<Date> backup;
    std::string expected;  // the rule's description
  } cases[] = {
      {{"FREQ=WEEKLY"}, thursday, "weekly every 1 on TH, never"},
      {{"FREQ=WEEKLY;BYDAY=MO", "FREQ=WEEKLY;BYDAY=MO,FR"},
       thursday,
       "weekly every 1 on MO,FR, never"},
      {{"FREQ=WEEKLY"}, std::nullopt, "weekly every 1, never"},
      // Days spread over patterns come out in weekday order, as libical keeps one pattern's.
      {{"FREQ=WEEKLY;BYDAY=SA", "FREQ=WEEKLY", "FREQ=WEEKLY;BYDAY=SU,MO"},
       thursday,
       "weekly every 1 on SU,MO,TH,SA, never"},
      {{"FREQ=MONTHLY;BYDAY=-1FR", "FREQ=MONTHLY;BYDAY=2FR,1MO"},
       std::nullopt,
       "monthly every 1 on 1MO, -1FR, 2FR, never"},
      {{"FREQ=MONTHLY"}, thursday, "monthly every 1 on days 29, never"},
      {{"FREQ=MONTHLY;BYMONTHDAY=15,-1;BYDAY=1SU"},
       std::nullopt,
       "monthly every 1 on days 15, -1 and 1SU, never"},
      {{"FREQ=MONTHLY;BYDAY=MO"}, std::nullopt, "monthly every 1 on 0MO, never"},
      {{"FREQ=YEARLY;BYMONTH=3"}, thursday, "yearly every 1 on 3/29, never"},
      {{"FREQ=YEARLY;BYMONTHDAY=4"}, thursday, "yearly every 1 on 2/4, never"},
      {{"FREQ=YEARLY"}, thursday, "yearly every 1 on 2/29, never"},
      {{"FREQ=YEARLY;BYMONTH=1,2;BYMONTHDAY=5,6;COUNT=4"},
       std::nullopt,
       "yearly every 1 on 1/5, 1/6, 2/5, 2/6, after 4 occurrences"},
      {{"  FREQ=YEARLY;BYMONTH=9,6,4,1;BYMONTHDAY=15;UNTIL=20301231T000000Z ;"},
       std::nullopt,
       "tax payments every 1 on 1/15, 4/15, 6/15, 9/15, until 2030-12-31"},
      // Two patterns, or an interval, make the tax months a plain yearly rule.
      {{"FREQ=YEARLY;INTERVAL=2;BYMONTH=1,4,6,9;BYMONTHDAY=15"},
       std::nullopt,
       "yearly every 2 on 1/15, 4/15, 6/15, 9/15, never"},
  };
  for (const auto& c : cases) {
    const auto rule = RecurrenceRule::ruleWithIcalStrings(c.strings, nullptr, c.backup);
    ASSERT_TRUE(rule) << c.strings.front();
    EXPECT_EQ(rule->description(), c.expected) << c.strings.front();
  }
}

TEST(RecurrenceRuleTest, StringsThatAreNotARuleLogWhy) {
  const struct {
    Strings strings;
    std::string logLine;  // empty: no line expected
  } cases[] = {
      {{}, ""},
      {{"FREQ=SOMETIMES"}, "invalid recurrence - FREQ=SOMETIMES"},
      {{"FREQ=WEEKLY", ""}, "invalid recurrence - "},
      {{"FREQ=WEEKLY;BYDAY=MO;UNTIL=00000101"},
       "invalid recurrence - FREQ=WEEKLY;BYDAY=MO;UNTIL=00000101"},
      {{"FREQ=WEEKLY;BYDAY=MO", "FREQ=MONTHLY;BYMONTHDAY=1"}, "Mismatching frequencies: 4 != 5"},
      {{"FREQ=MONTHLY;BYMONTHDAY=1", "FREQ=MONTHLY;INTERVAL=2;BYDAY=1MO"},
       "Mismatching interval: 1 != 2"},
      {{"FREQ=DAILY"}, "Cannot parse recurrence frequency: 3"},
      {{"FREQ=WEEKLY;BYMONTHDAY=3"}, "BYMONTHDAY"},
      {{"FREQ=WEEKLY;BYDAY=2MO"}, "BYDAY position"},
      {{"FREQ=MONTHLY;BYMONTH=3;BYMONTHDAY=3"}, "BYMONTH"},
      {{"FREQ=MONTHLY;BYSETPOS=-1;BYDAY=MO,TU"}, "BYSETPOS"},
      {{"FREQ=MONTHLY"}, "no day and no reference date"},
      {{"FREQ=YEARLY;BYDAY=20MO"}, "BYDAY"},
      {{"FREQ=YEARLY;BYMONTH=3"}, "no month or day"},
  };
  for (const auto& c : cases) {
    LogCapture log;
    RecurrenceEnd end = RecurrenceEnd::recurrenceEndWithOccurrenceCount(5);
    EXPECT_FALSE(RecurrenceRule::ruleWithIcalStrings(c.strings, &end));
    if (c.logLine.empty()) {
      EXPECT_TRUE(log.lines().empty());
    } else {
      EXPECT_TRUE(log.contains(c.logLine)) << (c.strings.empty() ? "" : c.strings.front());
    }
  }
  RecurrenceEnd end = RecurrenceEnd::recurrenceEndWithOccurrenceCount(5);
  EXPECT_FALSE(RecurrenceRule::ruleWithIcalStrings({}, &end));
  EXPECT_TRUE(end.isInfinite());
}

TEST(RecurrenceRuleTest, ParseIcalStringSplitsPatternAndEnd) {
  const Date reference = day("2024-05-17");  // a Friday
  const struct {
    std::string string;
    std::optional<Date> reference;
    std::string pattern;
    RecurrenceEnd end;
  } cases[] = {
      {"FREQ=MONTHLY;BYMONTHDAY=1;UNTIL=2024-12-31", std::nullopt, "FREQ=MONTHLY;BYMONTHDAY=1",
       RecurrenceEnd::recurrenceEndWithEndDate(day("2024-12-31"))},
      {" FREQ=WEEKLY;COUNT=4;WKST=SU;BYDAY=MO; ", std::nullopt, "FREQ=WEEKLY;WKST=SU;BYDAY=MO",
       RecurrenceEnd::recurrenceEndWithOccurrenceCount(4)},
      {"FREQ=WEEKLY;count=4", reference, "FREQ=WEEKLY;BYDAY=FR",
       RecurrenceEnd::recurrenceEndWithOccurrenceCount(4)},
      {"FREQ=MONTHLY;INTERVAL=2", reference, "FREQ=MONTHLY;INTERVAL=2;BYMONTHDAY=17", kNever},
      {"FREQ=MONTHLY;BYDAY=1MO", reference, "FREQ=MONTHLY;BYDAY=1MO", kNever},
      {"FREQ=YEARLY", reference, "FREQ=YEARLY;BYMONTH=5;BYMONTHDAY=17", kNever},
      {"FREQ=DAILY;UNTIL=20250101T120000Z", reference, "FREQ=DAILY",
       RecurrenceEnd::recurrenceEndWithEndDate(day("2025-01-01"))},
  };
  for (const auto& c : cases) {
    std::string pattern = "unchanged";
    RecurrenceEnd end = RecurrenceEnd::recurrenceEndWithOccurrenceCount(99);
    ASSERT_TRUE(RecurrenceRule::parseIcalString(c.string, &pattern, &end, c.reference)) << c.string;
    EXPECT_EQ(pattern, c.pattern) << c.string;
    EXPECT_EQ(end, c.end) << c.string;
  }
  LogCapture log;
  std::string pattern;
  EXPECT_FALSE(RecurrenceRule::parseIcalString("FREQ=WEEKLY;BYDAY=XX", &pattern, nullptr));
  EXPECT_TRUE(log.contains("invalid recurrence - FREQ=WEEKLY;BYDAY=XX"));
}

TEST(RecurrenceRuleTest, NormalizedStringsRewriteThroughTheRule) {
  const auto normalized = RecurrenceRule::normalizedScheduleStringsFromStrings(
      {"FREQ=MONTHLY;BYMONTHDAY=-1,15,15;BYDAY=-1FR;COUNT=6"}, std::nullopt);
  EXPECT_EQ(normalized, (Strings{"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=15,-1;COUNT=6",
                                 "FREQ=MONTHLY;WKST=SU;BYDAY=-1FR;COUNT=6"}));
  EXPECT_EQ(
      RecurrenceRule::normalizedScheduleStringsFromStrings({"FREQ=WEEKLY"}, day("2024-05-17")),
      (Strings{"FREQ=WEEKLY;WKST=SU;BYDAY=FR"}));
  EXPECT_FALSE(RecurrenceRule::normalizedScheduleStringsFromStrings({"FREQ=DAILY"}, std::nullopt));
}

}  // namespace
}  // namespace ledgeon
