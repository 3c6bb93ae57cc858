#include <limits>

#include <gtest/gtest.h>

#include "Documents/LFileLockInfo.h"
#include "Documents/LPropertyList.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

// Symptom: reading a lock record or catalog metadata aborted the program (found by fuzzing).
// Cause: libplist's plist_get_string_val asserts when a binary text's stored length disagrees
// with its C length (a NUL inside). Fix: texts are read with plist_get_string_ptr.
TEST(PropertyListTest, DamagedTextIsReadNotFatal) {
  const std::string data = testing::readFile(std::string(LEDGEON_SOURCE_DIR) +
                                             "/fuzz/corpus/LockInfoFuzzer/embedded-nul-text.plist");
  ASSERT_FALSE(data.empty());
  auto plist = LPropertyList::fromData(data, "lock.plist");
  ASSERT_TRUE(plist);
  for (const auto& key : plist->keys()) (void)plist->string(key.c_str());
  (void)LFileLockInfo::readFromData(data, "lock.plist");  // aborted before the fix
}

// Symptom: undefined behaviour writing backup information with a far-off date (found by
// fuzzing). Cause: the seconds were cast to the 32-bit field libplist keeps. Fix: clamp.
TEST(PropertyListTest, DatesRoundTripAndFarOffDatesAreClamped) {
  const struct {
    double seconds;
    double expected;
  } cases[] = {
      {0.0, 0.0},
      {730000000.25, 730000000.25},
      {-31536000.4, -31536000.0},
      {1e12, double{std::numeric_limits<int32_t>::max()}},
      {-1e12, double{std::numeric_limits<int32_t>::min()}},
      {std::numeric_limits<double>::quiet_NaN(), 0.0},
  };
  for (const auto& c : cases) {
    LPropertyList plist = LPropertyList::dictionary();
    plist.setDate("when", Date(c.seconds));
    auto read = LPropertyList::fromData(plist.binaryData(), "test");
    ASSERT_TRUE(read);
    ASSERT_TRUE(read->date("when")) << c.seconds;
    EXPECT_NEAR(read->date("when")->timeIntervalSinceReferenceDate(), c.expected, 1e-5)
        << c.seconds;
  }
  for (const char* damaged : {"", "bplist00", "<plist><dict><key>a</key></plist>", "garbage!"}) {
    EXPECT_FALSE(LPropertyList::fromData(damaged, "x").ok() &&
                 LPropertyList::fromData(damaged, "x")->isDictionary())
        << damaged;
  }
}

}  // namespace
}  // namespace ledgeon
