#include <thread>

#include <gtest/gtest.h>

#include "Utilities/Date.h"
#include "Utilities/Log.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {
namespace {

struct Described {
  std::string description() const { return "<described>"; }
};

TEST(StringWithFormat, FillsTheProgramsTexts) {
  struct Case {
    std::string got;
    std::string expected;
  };
  const Case cases[] = {
      {stringWithFormat("ERROR: String value (%@) is not a number (NaN)!", "12,x"),
       "ERROR: String value (12,x) is not a number (NaN)!"},
      {stringWithFormat("ERROR: -[%@ editEntityWithData:] unknown key: %@", "Account", "colour"),
       "ERROR: -[Account editEntityWithData:] unknown key: colour"},
      {stringWithFormat("Unknown error (%ld)", 7), "Unknown error (7)"},
      {stringWithFormat("%lu of %lu", size_t{3}, uint64_t{18446744073709551615ULL}),
       "3 of 18446744073709551615"},
      {stringWithFormat("[%ld:%@]", -5, "EST"), "[-5:EST]"},
      {stringWithFormat("%@Id", "Transaction"), "TransactionId"},
      {stringWithFormat("%.2f%%", 12.345), "12.35%"},
      {stringWithFormat("%03ld|%-4d|", 7, 42), "007|42  |"},
      {stringWithFormat("%@ and %@", 1.5, 2.0), "1.5 and 2"},
      {stringWithFormat("%@", Described{}), "<described>"},
      {stringWithFormat("%@", std::optional<int>{}), "(null)"},
      {stringWithFormat("%@ %@", "only one"), "only one (null)"},
      {stringWithFormat("100%"), "100%"},
      {stringWithFormat("%@", Date(0)), "2001-01-01 00:00:00 +0000"},
      {stringWithFormat("%q!", 1), "%q!"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.got, c.expected);
}

TEST(Log, CapturesLinesFromEveryThreadWhileAlive) {
  LogCapture outer;
  {
    LogCapture inner;
    LLog("ERROR: %@ went wrong", "this");
    std::thread([] { LLog("from %@", "a worker"); }).join();
    EXPECT_EQ(inner.lines(), (std::vector<std::string>{"ERROR: this went wrong", "from a worker"}));
  }
  LLog("after");
  EXPECT_EQ(outer.lines().size(), 3u);
  EXPECT_TRUE(outer.contains("a worker"));
  EXPECT_FALSE(outer.contains("absent"));
}

}  // namespace
}  // namespace ledgeon
