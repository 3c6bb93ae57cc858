#include <gtest/gtest.h>
#include <libical/ical.h>

#include "DateRecurrence/LRecurrenceRule.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

TEST(LRecurrenceRuleTest, ReadsEveryKey) {
  const auto rule = LRecurrenceRule::recurrenceRuleWithString(
      "FREQ=MONTHLY;INTERVAL=2;UNTIL=20251231T235959Z;BYDAY=MO,-1FR,+2TU;BYMONTHDAY=1,-1;"
      "BYMONTH=3,6;BYWEEKNO=-53,1;BYYEARDAY=100,-366;BYSETPOS=-1;WKST=SU");
  ASSERT_TRUE(rule);
  const auto& p = rule->properties();
  EXPECT_EQ(p.frequency, LRecurrenceFrequency::Monthly);
  EXPECT_EQ(p.interval, 2);
  ASSERT_TRUE(p.recurrenceEnd && p.recurrenceEnd->usesEndDate());
  EXPECT_EQ(p.recurrenceEnd->endDate()->unixTime(), 1767225599.0);
  EXPECT_EQ(p.daysOfTheWeek, (std::vector<NthWeekDay>{{2, 0}, {6, -1}, {3, 2}}));
  EXPECT_EQ(p.daysOfTheMonth, (std::vector<int64_t>{1, -1}));
  EXPECT_EQ(p.monthsOfTheYear, (std::vector<int64_t>{3, 6}));
  EXPECT_EQ(p.weeksOfTheYear, (std::vector<int64_t>{-53, 1}));
  EXPECT_EQ(p.daysOfTheYear, (std::vector<int64_t>{100, -366}));
  EXPECT_EQ(p.setPositions, (std::vector<int64_t>{-1}));
  EXPECT_EQ(rule->rfc2445String(),
            "FREQ=MONTHLY;INTERVAL=2;UNTIL=20251231T235959Z;BYDAY=MO,-1FR,2TU;BYMONTHDAY=1,-1;"
            "BYMONTH=3,6;BYWEEKNO=-53,1;BYYEARDAY=100,-366;BYSETPOS=-1");
}

TEST(LRecurrenceRuleTest, WritesWhatItReadsAndLibicalAgrees) {
  const char* texts[] = {
      "FREQ=DAILY;INTERVAL=1",
      "FREQ=WEEKLY;INTERVAL=2;COUNT=10;BYDAY=MO,TH",
      "FREQ=MONTHLY;INTERVAL=1;UNTIL=20240131T120000Z;BYMONTHDAY=15,-1",
      "FREQ=MONTHLY;INTERVAL=3;BYDAY=-1FR",
      "FREQ=YEARLY;INTERVAL=1;BYMONTHDAY=15;BYMONTH=1,4,6,9",
      "FREQ=YEARLY;INTERVAL=1;BYDAY=MO;BYWEEKNO=20",
      "FREQ=YEARLY;INTERVAL=1;BYYEARDAY=1,-1",
      "FREQ=MONTHLY;INTERVAL=1;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1",
  };
  for (const char* text : texts) {
    const auto rule = LRecurrenceRule::recurrenceRuleWithString(text);
    ASSERT_TRUE(rule) << text;
    EXPECT_EQ(rule->rfc2445String(), text);
    EXPECT_EQ(LRecurrenceRule::recurrenceRuleWithString(rule->rfc2445String()), rule);
    // The written text means to libical what it meant to us.
    icalrecurrencetype ical = icalrecurrencetype_from_string(rule->rfc2445String().c_str());
    EXPECT_EQ(static_cast<int>(ical.freq) - ICAL_DAILY_RECURRENCE,
              static_cast<int>(rule->frequency()))
        << text;
    EXPECT_EQ(ical.interval, rule->interval()) << text;
  }
}

TEST(LRecurrenceRuleTest, DateOnlyUntilAndLowerCase) {
  const auto rule =
      LRecurrenceRule::recurrenceRuleWithString("freq=weekly;until=20240301;byday=sa");
  ASSERT_TRUE(rule);
  EXPECT_EQ(*rule->recurrenceEnd()->endDate(), LDateUtilities::dateWithYear(2024, 3, 1).value());
  EXPECT_EQ(rule->rfc2445String(), "FREQ=WEEKLY;INTERVAL=1;UNTIL=20240301T120000Z;BYDAY=SA");
}

TEST(LRecurrenceRuleTest, RejectsMalformedText) {
  const char* texts[] = {
      "",
      "INTERVAL=2",
      "FREQ=HOURLY",
      "FREQ=WEEKLY;INTERVAL=0",
      "FREQ=WEEKLY;INTERVAL=x",
      "FREQ=WEEKLY;COUNT=-1",
      "FREQ=WEEKLY;COUNT=99999999999999999999999",
      "FREQ=WEEKLY;UNTIL=2024",
      "FREQ=WEEKLY;UNTIL=20240101T000000Z;COUNT=2",
      "FREQ=WEEKLY;BYDAY=XX",
      "FREQ=WEEKLY;BYDAY=0MO",
      "FREQ=WEEKLY;BYDAY=M",
      "FREQ=WEEKLY;BYDAY=",
      "FREQ=MONTHLY;BYMONTHDAY=32",
      "FREQ=MONTHLY;BYMONTHDAY=0",
      "FREQ=YEARLY;BYMONTH=13",
      "FREQ=YEARLY;BYMONTH=-1",
      "FREQ=YEARLY;BYWEEKNO=54",
      "FREQ=YEARLY;BYYEARDAY=367",
      "FREQ=YEARLY;BYSETPOS=1,,2",
      "FREQ=YEARLY;BYDAY",
  };
  for (const char* text : texts)
    EXPECT_FALSE(LRecurrenceRule::recurrenceRuleWithString(text)) << text;
}

}  // namespace
}  // namespace ledgeon
