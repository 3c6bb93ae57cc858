#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

std::string demoFile(const char* name) {
  return std::string(LEDGEON_SOURCE_DIR) + "/resources/demo/" + name;
}

TEST(LifDumpCommand, PrintsTheRecordsAndTheLogTree) {
  testing::TempFolder home;
  const auto result =
      testing::runCli({"lif", "dump", demoFile("household.lif"), "--json"}, home.path());
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  const auto json = nlohmann::json::parse(result.out);
  ASSERT_EQ(json["records"].size(), 46u);  // 3 securities, 5 account lists, 10 lists, 28 others
  EXPECT_EQ(json["records"][0]["record"], "security");
  EXPECT_EQ(json["log"]["text"], "Import Log");

  const auto plain = testing::runCli({"lif", "dump", demoFile("household.lif")}, home.path());
  EXPECT_NE(plain.out.find("  Process account Rewards Visa\n"), std::string::npos);
}

TEST(LifDumpCommand, BadFilesFailWithAMessage) {
  testing::TempFolder home;
  const auto missing = testing::runCli({"lif", "dump", (home / "none.lif").string()}, home.path());
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_NE(missing.err.find("none.lif"), std::string::npos);

  { std::ofstream(home / "bad.lif") << "!Type:Bank\nD99/99/99\n\x01\x02\n"; }
  const auto bad = testing::runCli({"lif", "dump", (home / "bad.lif").string()}, home.path());
  EXPECT_EQ(bad.exitStatus, 0);
  EXPECT_NE(bad.out.find("WARNING: Line 2: date 99/99/99 could not be read"), std::string::npos)
      << bad.out;
}

TEST(CsvDumpCommand, PrintsRows) {
  testing::TempFolder home;
  const auto result = testing::runCli(
      {"csv", "dump", demoFile("transactions.csv"), "--header", "--json"}, home.path());
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  const auto rows = nlohmann::json::parse(result.out);
  ASSERT_EQ(rows.size(), 7u);
  EXPECT_EQ(rows[5]["Amount"], "$1,129.99");
  EXPECT_EQ(rows[5]["Notes"], "Desk, lamp and paper");
  EXPECT_EQ(testing::runCli({"csv", "dump", demoFile("transactions.csv"), "--separator", "\""},
                            home.path())
                .exitStatus,
            1);
}

TEST(CsvDumpCommand, SaysWhereAStrayQuoteStoppedTheReading) {
  testing::TempFolder home;
  { std::ofstream(home / "stray.csv") << "a,b\r\nc,d\r\ne,f\"g\r\nh,i\r\n"; }
  for (const bool json : {false, true}) {
    std::vector<std::string> arguments = {"csv", "dump", (home / "stray.csv").string()};
    if (json) arguments.push_back("--json");
    const auto result = testing::runCli(arguments, home.path());
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_NE(result.err.find("reading stopped at line 3 (a double quote inside a field that "
                              "does not start with one); the rest of the file was not read"),
              std::string::npos)
        << result.err;
    if (json) {
      EXPECT_EQ(nlohmann::json::parse(result.out).size(), 3u);
    }
  }
}

}  // namespace
}  // namespace ledgeon
