#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon::testing {
namespace {

class DbCommandTest : public ::testing::Test {
 protected:
  DbCommandTest() {
    const CliResult created = run({"db", "create", document(), "--sample"});
    EXPECT_EQ(created.exitStatus, 0) << created.err;
  }
  CliResult run(const std::vector<std::string>& arguments) {
    return runCli(arguments, folder_ / "home");
  }
  std::string document() const { return (folder_ / "Sample.ledgeon").string(); }

  TempFolder folder_;
};

TEST_F(DbCommandTest, StatsCountsEveryEntityAndNamesTheModel) {
  const CliResult result = run({"db", "stats", document(), "--json"});
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  const auto json = nlohmann::json::parse(result.out);
  EXPECT_EQ(json["modelVersion"], "Ledgeon 1");
  EXPECT_EQ(json["entities"]["CashFlowTransaction"]["count"], 8);
  EXPECT_EQ(json["entities"]["Account"]["count"], 3);
}

TEST_F(DbCommandTest, QueryRunsAPredicateWithArgumentsSortAndLimit) {
  const CliResult result = run({"db", "query", document(), "Transaction",
                                "amount < %@ AND account.name beginswith[c] %@", "-50", "every",
                                "--sort", "amount:desc", "--limit", "2", "--json"});
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  const auto rows = nlohmann::json::parse(result.out);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0]["amount"], "-84.37");
  EXPECT_EQ(rows[1]["amount"], "-91.02");
  EXPECT_EQ(rows[0]["account"]["entity"], "Account");
}

TEST_F(DbCommandTest, QueryFollowsToManyRelationshipsAndListsPrefetchedMembers) {
  const CliResult result =
      run({"db", "query", document(), "Transaction", "ANY entries.categoryTag.name == %@",
           "Groceries", "--prefetch", "entries.categoryTag", "--sort", "amount", "--json"});
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  const auto rows = nlohmann::json::parse(result.out);
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0]["amount"], "-91.02");
  ASSERT_EQ(rows[0]["entries"].size(), 1u);
  EXPECT_EQ(rows[0]["entries"][0]["entity"], "CashFlowTransactionEntry");
}

TEST_F(DbCommandTest, MistakesAreClearErrors) {
  struct Case {
    std::vector<std::string> arguments;
    const char* message;
  };
  const std::vector<Case> cases = {
      {{"db", "query", document(), "Transaction", "amount >"}, "position 8"},
      {{"db", "query", document(), "Nonsense"}, "unknown entity \"Nonsense\""},
      {{"db", "query", document(), "Transaction", "colour == 1"}, "unknown key \"colour\""},
      {{"db", "query", document(), "Transaction", "--prefetch", "note"}, "cannot prefetch"},
      {{"db", "stats", (folder_ / "missing").string()}, "not a document package"},
  };
  for (const Case& c : cases) {
    const CliResult result = run(c.arguments);
    EXPECT_EQ(result.exitStatus, 1) << c.message;
    EXPECT_NE(result.err.find(c.message), std::string::npos) << result.err;
  }
}

}  // namespace
}  // namespace ledgeon::testing
