#include <fstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

using testing::runCli;

TEST(RecurCli, ExpandsPrintsAndRejects) {
  testing::TempFolder home;
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string output;  // stdout, or a part of stderr for failures
  } cases[] = {
      {{"recur", "--rrule", "FREQ=MONTHLY;BYMONTHDAY=1,15,-1", "--start", "2024-01-10", "--until",
        "2024-02-29"},
       0,
       "2024-01-15\n2024-01-31\n2024-02-01\n2024-02-15\n2024-02-29\n"},
      {{"recur", "--rrule", "FREQ=WEEKLY;BYDAY=MO", "--rrule", "FREQ=MONTHLY;BYMONTHDAY=1",
        "--start", "2024-01-01", "--count", "3"},
       0,
       "2024-01-01\n2024-01-01\n2024-01-08\n"},
      {{"recur", "--rrule", "FREQ=YEARLY", "--start", "2024-02-29", "--max-date", "2030-01-01"},
       0,
       "2024-02-29\n2028-02-29\n"},
      {{"recur", "--rrule", "FREQ=BAD", "--start", "2024-01-01"}, 1, "--rrule \"FREQ=BAD\""},
      {{"recur", "--rrule", "FREQ=DAILY", "--start", "2024-02-30"}, 1, "is not a date"},
      {{"recur", "--rrule", "FREQ=DAILY", "--start", "2024-01-01", "--until", "soon"},
       1,
       "--until"},
      {{"recur", "--rrule", "FREQ=DAILY"}, 2, "--start is required"},
      {{"recur", "--start", "2024-01-01"}, 2, "--rrule is required"},
      {{"recur", "--rrule", "FREQ=DAILY", "--start", "2024-01-01", "--count", "0"}, 2, "--count"},
      {{"recur", "--rrule", "FREQ=DAILY", "--start", "2024-01-01", "--count", "2", "--until",
        "2024-02-01"},
       2,
       "excludes"},
  };
  for (const auto& c : cases) {
    const auto result = runCli(c.arguments, home.path());
    EXPECT_EQ(result.exitStatus, c.status) << c.arguments[2] << result.err;
    if (c.status == 0) {
      EXPECT_EQ(result.out, c.output);
    } else {
      EXPECT_NE(result.err.find(c.output), std::string::npos) << result.err;
    }
  }
  const auto json = runCli({"recur", "--rrule", "FREQ=MONTHLY;BYDAY=-1FR", "--start", "2024-01-01",
                            "--count", "2", "--json"},
                           home.path());
  ASSERT_EQ(json.exitStatus, 0) << json.err;
  EXPECT_EQ(nlohmann::json::parse(json.out)["dates"],
            nlohmann::json::parse(R"(["2024-01-26", "2024-02-23"])"));
}

TEST(RecurCli, DescribesTheStructuredRule) {
  testing::TempFolder home;
  auto result =
      runCli({"recur", "describe", "--rrule", "FREQ=MONTHLY;BYMONTHDAY=-1,15;COUNT=4", "--json"},
             home.path());
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  const auto rule = nlohmann::json::parse(result.out);
  EXPECT_EQ(rule["recurrenceType"], 1);
  EXPECT_EQ(rule["daysOfTheMonth"], nlohmann::json::parse("[15, -1]"));
  EXPECT_EQ(rule["recurrenceEnd"]["occurrenceCount"], 4);
  EXPECT_EQ(rule["normalizedStrings"][0], "FREQ=MONTHLY;WKST=SU;BYMONTHDAY=15,-1;COUNT=4");
  EXPECT_EQ(rule["rfc2445"][0], "FREQ=MONTHLY;INTERVAL=1;COUNT=4;BYMONTHDAY=15,-1");

  result = runCli({"recur", "describe", "--rrule", "FREQ=YEARLY;BYMONTH=1,4,6,9;BYMONTHDAY=15"},
                  home.path());
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_NE(result.out.find("tax payments rule (type 3)"), std::string::npos) << result.out;

  result = runCli({"recur", "describe", "--rrule", "FREQ=WEEKLY", "--reference-date", "2024-05-17"},
                  home.path());
  EXPECT_NE(result.out.find("FREQ=WEEKLY;WKST=SU;BYDAY=FR"), std::string::npos) << result.out;

  result = runCli({"recur", "describe", "--rrule", "FREQ=WEEKLY;BYDAY=MO", "--rrule",
                   "FREQ=WEEKLY;INTERVAL=2;BYDAY=TU", "--json"},
                  home.path());
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_NE(result.err.find("Mismatching interval: 1 != 2"), std::string::npos) << result.err;
  EXPECT_EQ(nlohmann::json::parse(result.out)["expressible"], false);

  result = runCli({"recur", "describe", "--rrule", "FREQ=DAILY"}, home.path());
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_NE(result.err.find("Cannot parse recurrence frequency: 3"), std::string::npos);
}

TEST(CriteriaCli, EvaluatesRulesAgainstADescribedInstallation) {
  testing::TempFolder home;
  const auto write = [&](const std::string& name, const std::string& text) {
    std::ofstream(home / name) << text;
    return (home / name).string();
  };
  const std::string environment = write("env.json", R"({"version": "6.1", "SKUType": "Basic",
      "currentTimestamp": "2025-01-01T00:00:00Z", "userId": "u-77"})");
  const struct {
    std::string rule;
    int status;
    std::string output;
  } cases[] = {
      {R"({"and": [{"version_gte": "6"}, {"timestamp_lt": "2025-06-01T12:00:00+02:00"}]})", 0,
       "true\n2025-06-01T10:00:00Z\n"},
      {R"({"sku_type": "Premium"})", 0, "false\n"},
      {R"({"bucket": 77})", 0, "true\n"},
      {R"([{"sku_type": "Basic"}])", 1, "rule must be a JSON object"},
      {R"({"sku_type": )", 1, "not JSON"},
  };
  for (const auto& c : cases) {
    const auto rule = write("rule.json", c.rule);
    const auto result = runCli({"criteria", rule, "--env", environment}, home.path());
    EXPECT_EQ(result.exitStatus, c.status) << c.rule << result.err;
    EXPECT_NE((c.status == 0 ? result.out : result.err).find(c.output), std::string::npos)
        << c.rule << ": " << result.out << result.err;
  }
  const auto rule = write("rule.json", R"({"version": "6.1"})");
  for (const char* bad : {R"({"version": 6})", R"({"nickname": "x"})", "7", "{"}) {
    const auto result = runCli({"criteria", rule, "--env", write("bad.json", bad)}, home.path());
    EXPECT_EQ(result.exitStatus, 1) << bad;
    EXPECT_NE(result.err.find("bad.json"), std::string::npos) << result.err;
  }
  const auto missing = runCli({"criteria", (home / "none.json").string()}, home.path());
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_NE(missing.err.find("cannot be read"), std::string::npos);
}

TEST(CriteriaCli, BucketStringsAreKeptInThePreferences) {
  testing::TempFolder home;
  std::ofstream(home / "rule.json") << R"({"bucket_identifier": "rollout", "bucket_gte": 0})";
  const auto first = runCli({"criteria", (home / "rule.json").string(), "--json"}, home.path());
  ASSERT_EQ(first.exitStatus, 0) << first.err;
  EXPECT_EQ(nlohmann::json::parse(first.out)["satisfied"], true);
  const auto preferences =
      nlohmann::json::parse(testing::readFile(home / "config/preferences.json"));
  const std::string remembered = preferences["CriteriaEvaluatorBucketStrings"]["rollout"];
  ASSERT_GE(remembered.size(), 2u);

  // The same bucket on every later run: its last two digits, exactly.
  std::ofstream(home / "exact.json") << R"({"bucket_identifier": "rollout", "bucket": )"
                                     << std::stoi(remembered.substr(remembered.size() - 2)) << "}";
  for (int run = 0; run < 2; ++run) {
    const auto again = runCli({"criteria", (home / "exact.json").string()}, home.path());
    EXPECT_EQ(again.out, "true\n") << again.err;
  }
}

}  // namespace
}  // namespace ledgeon
