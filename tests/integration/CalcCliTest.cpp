#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

std::string lastLine(const std::string& out) {
  const auto end = out.find_last_not_of('\n');
  if (end == std::string::npos) return "";
  const auto start = out.rfind('\n', end);
  return out.substr(start == std::string::npos ? 0 : start + 1, end - start);
}

TEST(CalcCli, PrintsTheTapeAndTheResult) {
  testing::TempFolder home;
  const struct {
    std::vector<std::string> arguments;
    std::string input;
    std::string result;
  } cases[] = {
      {{"calc", "19.99 * 3 + 4.50 ="}, "", "64.47"},
      {{"calc", "200 + 10 %"}, "", "220.00"},
      {{"calc", "10 / 4"}, "", "2.50"},     // totals at the end without "="
      {{"calc", "-5 + 3 ="}, "", "-2.00"},  // a leading minus is a key, not an option
      {{"calc"}, "19.99 * 3\n+ 4.50\n", "64.47"},
      {{"calc", "--locale", "de_DE", "1.000 * 3 + 4,5 ="}, "", "3.004,50"},
      {{"calc", "--auto-decimal", "1999 + 1 ="}, "", "20.00"},
  };
  for (const auto& c : cases) {
    const auto run = testing::runCli(c.arguments, home.path(), c.input);
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(lastLine(run.out), c.result) << run.out;
  }
  const auto run = testing::runCli({"calc", "19.99 * 3 + 4.50 ="}, home.path());
  EXPECT_NE(run.out.find("*             3.00\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("=            64.47\n"), std::string::npos) << run.out;
}

TEST(CalcCli, JsonHoldsTapeAndResult) {
  testing::TempFolder home;
  const auto run = testing::runCli({"calc", "--json", "19.99 * 3 + 4.50 ="}, home.path());
  ASSERT_EQ(run.exitStatus, 0) << run.err;
  const auto json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["result"], "64.47");
  EXPECT_EQ(json["value"], "64.47");
  EXPECT_EQ(json["tape"], nlohmann::json::array({"19.99", "* 3.00", "+ 4.50", "= 64.47"}));
}

TEST(CalcCli, BadKeysFailWithAMessage) {
  testing::TempFolder home;
  const struct {
    std::vector<std::string> arguments;
    std::string input;
    const char* message;
  } cases[] = {
      {{"calc", "12 x 3"}, "", "Key 4: \"x\" is not a calculator key"},
      {{"calc"}, "1 +\n2 ?\n", "line 2: Key 3: \"?\" is not a calculator key"},
      {{"calc", "5 / 0 ="}, "", "the calculation divides by zero"},
      {{"calc"}, "", "nothing to work out"},
      {{"calc", "--locale", "xx_YY", "1"}, "", "unknown locale \"xx_YY\""},
  };
  for (const auto& c : cases) {
    const auto run = testing::runCli(c.arguments, home.path(), c.input);
    EXPECT_EQ(run.exitStatus, 1) << run.out;
    EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
  }
}

}  // namespace
}  // namespace ledgeon
