#include <gtest/gtest.h>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

TEST(Cli, ExitStatusesAndHelp) {
  testing::TempFolder home;
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* expectedOutput;
  } cases[] = {
      {{"--version"}, 0, "ledgeon "},
      {{"--help"}, 0, "demo"},
      {{"demo", "--help"}, 0, "--work-folder"},
      {{}, 2, ""},
      {{"no-such-command"}, 2, ""},
  };
  for (const auto& c : cases) {
    auto result = testing::runCli(c.arguments, home.path());
    EXPECT_EQ(result.exitStatus, c.status) << result.err;
    EXPECT_NE((result.out + result.err).find(c.expectedOutput), std::string::npos)
        << result.out << result.err;
  }
}

TEST(Cli, DemoRunsInAWorkFolder) {
  testing::TempFolder home;
  auto result = testing::runCli({"demo", "--work-folder", (home / "demo").string()}, home.path());
  EXPECT_EQ(result.exitStatus, 0) << result.err;
  EXPECT_NE(result.out.find("Demo finished"), std::string::npos) << result.out;
}

}  // namespace
}  // namespace ledgeon
