#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

TEST(OfxCommand, DumpPrintsStatementsAsJson) {
  testing::TempFolder home;
  auto result = testing::runCli(
      {"ofx", "dump", testing::sharedTestData("ofx/ofxtools/stmtrs_euro.ofx").string(), "--json"},
      home.path());
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  const auto json = nlohmann::json::parse(result.out);
  EXPECT_EQ(json["status"]["errorCode"], 0);
  EXPECT_EQ(json["bid"], "1001");
  const auto& statement = json["statements"][0];
  EXPECT_EQ(statement["acctID"], "999988");
  EXPECT_EQ(statement["ledgerBalance"], "200.29");  // "200,29" in the file
  ASSERT_EQ(statement["transactions"].size(), 2u);
  EXPECT_EQ(statement["transactions"][0]["amount"], "-200");
  EXPECT_EQ(statement["transactions"][0]["transactionType"], "CHECK");
  EXPECT_EQ(statement["transactions"][0]["checkNum"], "1000");
}

TEST(OfxCommand, InvestmentDumpHasPositionsAndSecurities) {
  testing::TempFolder home;
  auto result = testing::runCli(
      {"ofx", "dump", testing::sharedTestData("ofx/ofxparse/fidelity.ofx").string(), "--json"},
      home.path());
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  const auto json = nlohmann::json::parse(result.out);
  EXPECT_EQ(json["invStatements"][0]["transactions"].size(), 17u);
  EXPECT_EQ(json["invStatements"][0]["positions"].size(), 6u);
  EXPECT_EQ(json["securities"].size(), 7u);
}

TEST(OfxCommand, UnreadableFilesExitWithTheStatusMessage) {
  testing::TempFolder home;
  auto result = testing::runCli(
      {"ofx", "dump", testing::sharedTestData("ofx/ofxparse/bank_small.ofx").string()},
      home.path());
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_NE(result.err.find("bank_small.ofx: InvalidOFX: Missing bid data"), std::string::npos)
      << result.err;
  auto missing = testing::runCli({"ofx", "dump", (home / "none.ofx").string()}, home.path());
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_NE(missing.err.find("cannot be read"), std::string::npos) << missing.err;
}

TEST(OfxCommand, DemoShowsTheSampleStatement) {
  testing::TempFolder home;
  auto result = testing::runCli({"demo", "--work-folder", (home / "demo").string()}, home.path());
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  EXPECT_NE(result.out.find("Harbour & Hill Savings"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("-86.45"), std::string::npos) << result.out;
}

}  // namespace
}  // namespace ledgeon
