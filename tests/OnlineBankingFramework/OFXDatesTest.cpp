#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXDates.h"

namespace ledgeon {
namespace {

// 2024-01-15 17:30:45.250 GMT
constexpr double kWinterUnix = 1705339845.25;

TEST(OFXDatesTest, WrittenDatesEndWithTheZoneBracket) {
  const Date winter = Date::fromUnixTime(kWinterUnix);
  EXPECT_EQ(OFXDates::OFXFormatForDate(winter, "America/New_York"), "20240115123045.250[-5:EST]");
  EXPECT_EQ(OFXDates::OFXFormatForDate(winter, "GMT"), "20240115173045.250[0:GMT]");
  const struct {
    int32_t offset;
    const char* abbreviation;
    const char* suffix;
  } cases[] = {{-18000, "EST", "[-5:EST]"},
               {36000, "AEST", "[10:AES]"},
               {19800, "IST", "[5:IST]"},
               {-12600, "GMT-3:30", "[-3:GMT]"},
               {0, "UTC", "[0:UTC]"}};
  for (const auto& c : cases) {
    EXPECT_EQ(OFXDates::zoneSuffix(c.offset, c.abbreviation), c.suffix) << c.abbreviation;
  }
}

TEST(OFXDatesTest, ReadingDates) {
  EXPECT_EQ(OFXDates::massageOFXDateTimeString("20240115123045[-5:EST]"),
            "20240115123045.000[-5:EST]");
  EXPECT_EQ(OFXDates::massageOFXDateTimeString("20240115123045.1[-5:EST]"),
            "20240115123045.1[-5:EST]");
  EXPECT_EQ(OFXDates::massageOFXDateTimeString("20240115"), "20240115");
  const struct {
    const char* text;
    double unix;  // < 0: no date
  } cases[] = {
      {"20240115123045.250[-5:EST]", kWinterUnix},
      {"20240115123045[-5:EST]", kWinterUnix - 0.25},
      {"20240115173045.250", kWinterUnix},
      {"20240115", 1705320000.0},  // a day alone is 12:00 GMT
      {"20240115173045.250[0:GMT]", kWinterUnix},
      {"20240115173045.250[-:EST]", kWinterUnix},
      {"20120231", -1},
      {"201120000000", -1},
      {"", -1},
      {"2024", -1},
  };
  for (const auto& c : cases) {
    const auto date = OFXDates::dateFromOFXString(c.text);
    if (c.unix < 0) {
      EXPECT_FALSE(date.has_value()) << c.text;
    } else {
      ASSERT_TRUE(date.has_value()) << c.text;
      EXPECT_DOUBLE_EQ(date->unixTime(), c.unix) << c.text;
    }
  }
}

TEST(OFXDatesTest, XmlDates) {
  const auto date = OFXDates::dateFromXMLString("2024-01-15T17:30:45.250Z");
  ASSERT_TRUE(date.has_value());
  EXPECT_DOUBLE_EQ(date->unixTime(), kWinterUnix);
  const auto offset = OFXDates::dateFromXMLString("2024-01-15T12:30:45.250-05:00");
  ASSERT_TRUE(offset.has_value());
  EXPECT_DOUBLE_EQ(offset->unixTime(), kWinterUnix);
  EXPECT_FALSE(OFXDates::dateFromXMLString("yesterday").has_value());
}

}  // namespace
}  // namespace ledgeon
