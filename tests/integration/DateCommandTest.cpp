#include <gtest/gtest.h>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

TEST(DateCommand, ReadsAddsAndReports) {
  testing::TempFolder home;
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* expected;  // in stdout when the status is 0, else in stderr
  } cases[] = {
      {{"date", "2024-01-31", "--add-months", "1"}, 0, "2024-02-29 Thursday\n"},
      {{"date", "2024-01-31", "--add-months", "1", "--add-days", "1"}, 0, "2024-03-01 Friday\n"},
      {{"date", "2024-02-29", "--add-years", "1", "--json"},
       0,
       "{\"date\": \"2025-02-28\", \"year\": 2025, \"month\": 2, \"day\": 28, \"dayOfWeek\": 6, "
       "\"weekday\": \"Friday\", \"daysInMonth\": 28, \"timeIntervalSinceReferenceDate\": "
       "762436800}\n"},
      {{"date", "01/02/03", "--pattern", "MM/dd/yy"}, 0, "2003-01-02 Thursday\n"},
      {{"date", "20240229", "--pattern", "yyyyMMdd", "--zone", "Pacific/Kiritimati"},
       0,
       "2024-02-29 Thursday\n"},
      {{"date", "2024-02-30"}, 1, "\"2024-02-30\" is not a date"},
      {{"date", "02/29/2024x", "--pattern", "MM/dd/yyyy"}, 1, "is not a date of the form"},
      {{"date", "2024-01-01", "--pattern", "yyyy tt"}, 1, "'t' is not a date field"},
      {{"date", "2024-01-01", "--pattern", "yyyy", "--zone", "Nowhere/Land"},
       1,
       "Unknown time zone"},
      {{"date", "9999-12-31", "--add-days", "1"}, 1, "outside the calendar"},
  };
  for (const auto& c : cases) {
    const auto result = testing::runCli(c.arguments, home.path());
    EXPECT_EQ(result.exitStatus, c.status) << c.arguments[1] << ": " << result.err;
    if (c.status == 0) {
      EXPECT_EQ(result.out, c.expected);
    } else {
      EXPECT_NE(result.err.find(c.expected), std::string::npos) << result.err;
    }
  }
}

}  // namespace
}  // namespace ledgeon
