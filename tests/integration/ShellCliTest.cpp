#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

using testing::runCli;

// A new document with two accounts, a payee, a tag and a category of its own beside the
// household categories every new document has.
class ShellCliTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto created = runCli({"new", doc_}, home_.path());
    ASSERT_EQ(created.exitStatus, 0) << created.err;
    const auto set = shell(
        "account add Checking\n"
        "account add Savings type=Savings\n"
        "payee add \"Corner Shop\"\n"
        "tag add family\n"
        "category add Food:Snacks\n");
    ASSERT_EQ(set.exitStatus, 0) << set.err;
  }

  testing::CliResult shell(const std::string& script) {
    return runCli({"shell", doc_}, home_.path(), script);
  }
  nlohmann::json json(const std::vector<std::string>& arguments) {
    const auto run = runCli(arguments, home_.path());
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    return nlohmann::json::parse(run.out);
  }
  nlohmann::json accounts() { return json({"accounts", doc_, "--json"}); }
  nlohmann::json transactions() { return json({"transactions", doc_, "--json"}); }

  testing::TempFolder home_;
  std::string doc_ = (home_ / "Household.ledgeon").string();
};

TEST_F(ShellCliTest, ScriptEntersSplitsAndTransfersWithUndoAndRedo) {
  const auto run = shell(
      "# a week of spending\n"
      "transaction add Checking 2025-01-05 -120.00 payee=\"Corner Shop\" note=weekly check=101 "
      "status=cleared split=-100.00 category=Food:Groceries tags=family "
      "split=-20.00 category=Food:Snacks memo=\"crisps\"\n"
      "transaction add Checking 2025-01-06 -500 transfer=Savings note=\"to savings\"\n"
      "transaction add Checking 2025-01-07 -7.25 category=Food:Snacks\n"
      "undo\n"
      "redo\n"
      "undo\n");
  ASSERT_EQ(run.exitStatus, 0) << run.err;
  EXPECT_NE(run.out.find("Created transaction 1\nCreated transaction 2\nCreated transaction 3\n"
                         "Undo Create Transaction\nRedo Create Transaction\n"
                         "Undo Create Transaction\n"),
            std::string::npos)
      << run.out;

  const auto list = accounts();
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0]["name"], "Checking");
  EXPECT_EQ(list[0]["type"], "Checking");
  EXPECT_EQ(list[0]["currency"], "USD");
  EXPECT_EQ(list[0]["balance"], "-620.00");
  EXPECT_EQ(list[1]["name"], "Savings");
  EXPECT_EQ(list[1]["type"], "Savings");
  EXPECT_EQ(list[1]["balance"], "500.00");

  const auto all = transactions();
  ASSERT_EQ(all.size(), 2u);  // the third was undone
  const auto& weekly = all[0];
  EXPECT_EQ(weekly["id"], 1);
  EXPECT_EQ(weekly["account"], "Checking");
  EXPECT_EQ(weekly["date"], "2025-01-05");
  EXPECT_EQ(weekly["amount"], "-120.00");
  EXPECT_EQ(weekly["payee"], "Corner Shop");
  EXPECT_EQ(weekly["note"], "weekly");
  EXPECT_EQ(weekly["checkNumber"], "101");
  EXPECT_EQ(weekly["reconcileStatus"], 1);
  EXPECT_EQ(weekly["transferAccount"], "");
  ASSERT_EQ(weekly["splits"].size(), 2u);
  EXPECT_EQ(weekly["splits"][0]["category"], "Food:Groceries");
  EXPECT_EQ(weekly["splits"][0]["tags"], nlohmann::json::array({"family"}));
  EXPECT_EQ(weekly["splits"][0]["amount"], "-100.00");
  EXPECT_EQ(weekly["splits"][1]["category"], "Food:Snacks");
  EXPECT_EQ(weekly["splits"][1]["note"], "crisps");
  EXPECT_EQ(all[1]["transferAccount"], "Savings");
  EXPECT_EQ(all[1]["splits"][0]["transfer"], "Savings");

  const auto savings = json({"transactions", doc_, "--account", "Savings", "--json"});
  ASSERT_EQ(savings.size(), 1u);
  EXPECT_EQ(savings[0]["account"], "Savings");
  EXPECT_EQ(savings[0]["amount"], "500.00");
  EXPECT_EQ(savings[0]["transferAccount"], "Checking");
  EXPECT_EQ(savings[0]["splits"][0]["transfer"], "Checking");
}

// Symptom: the shell refused "transaction add" lines whose splits transfer to two accounts ("a
// transaction transfers to one account only"). Cause: a transaction had one target account, and
// balances credited all its transfer lines to it. Fix: each transfer line is credited to the
// account it names, so the shell takes such lines; renaming an account renames the transfer
// lines that name it in the same undoable step.
TEST_F(ShellCliTest, SplitsTransferToDifferentAccountsAndFollowARename) {
  const auto run = shell(
      "account add Wallet\n"
      "transaction add Checking 2025-03-02 -1000 split=-600 transfer=Savings "
      "split=-300 transfer=Wallet split=-100 category=\"Bank Fees\"\n"
      "account edit Savings name=\"Rainy Day\"\n");
  ASSERT_EQ(run.exitStatus, 0) << run.err;
  const auto balances = [&] {
    std::map<std::string, std::string> byName;
    for (const auto& row : accounts()) byName[row["name"]] = row["balance"];
    return byName;
  };
  using Balances = std::map<std::string, std::string>;
  EXPECT_EQ(balances(),
            (Balances{{"Checking", "-1000.00"}, {"Rainy Day", "600.00"}, {"Wallet", "300.00"}}));
  const auto rainyDay = json({"transactions", doc_, "--account", "Rainy Day", "--json"});
  ASSERT_EQ(rainyDay.size(), 1u);
  EXPECT_EQ(rainyDay[0]["amount"], "600.00");
  EXPECT_EQ(transactions()[0]["splits"][0]["transfer"], "Rainy Day");

  const auto undone = shell("undo\n");
  ASSERT_EQ(undone.exitStatus, 1);  // each session starts with an empty history
  const auto renamedBack = shell("account edit \"Rainy Day\" name=Savings\nundo\nredo\n");
  ASSERT_EQ(renamedBack.exitStatus, 0) << renamedBack.err;
  EXPECT_NE(renamedBack.out.find("Undo Change Name Account\nRedo Change Name Account\n"),
            std::string::npos)
      << renamedBack.out;
  EXPECT_EQ(balances(),
            (Balances{{"Checking", "-1000.00"}, {"Savings", "600.00"}, {"Wallet", "300.00"}}));
  EXPECT_EQ(transactions()[0]["splits"][0]["transfer"], "Savings");
  const auto deleted = shell("account delete Savings\n");
  EXPECT_EQ(deleted.exitStatus, 1);
  EXPECT_NE(deleted.err.find("account \"Savings\" still has 1 transaction(s)"), std::string::npos)
      << deleted.err;
}

TEST_F(ShellCliTest, EditsAndDeletionsUndoInOrder) {
  const auto run = shell(
      "transaction add Checking 2025-02-01 -30 category=Food:Snacks\n"
      "transaction edit 1 amount=-35.50 memo=cinema payee=\"Corner Shop\"\n"
      "account edit Checking name=Everyday\n"
      "transaction duplicate 1\n"
      "transaction delete 1\n"
      "undo\n"
      "undo\n"
      "undo\n"
      "undo\n"
      "account list\n"
      "transaction list\n");
  ASSERT_EQ(run.exitStatus, 0) << run.err;
  EXPECT_NE(run.out.find("Undo Delete Transaction\nUndo Duplicate Transaction\n"
                         "Undo Change Name Account\nUndo Change Amount Transaction\n"),
            std::string::npos)
      << run.out;
  const auto all = transactions();
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0]["account"], "Checking");
  EXPECT_EQ(all[0]["amount"], "-30.00");
  EXPECT_EQ(all[0]["payee"], "");
  EXPECT_EQ(all[0]["splits"][0]["amount"], "-30.00");
  EXPECT_EQ(all[0]["splits"][0]["note"], "");
  EXPECT_EQ(accounts()[0]["balance"], "-30.00");

  const auto again = shell(
      "transaction edit 1 amount=-35.50 memo=cinema payee=\"Corner Shop\"\n"
      "transaction duplicate 1\n"
      "undo\nundo\nredo\nredo\n");
  ASSERT_EQ(again.exitStatus, 0) << again.err;
  EXPECT_NE(again.out.find("Redo Change Amount Transaction\nRedo Duplicate Transaction\n"),
            std::string::npos)
      << again.out;
  const auto after = transactions();
  ASSERT_EQ(after.size(), 2u);
  for (const auto& transaction : after) {
    EXPECT_EQ(transaction["amount"], "-35.50");
    EXPECT_EQ(transaction["payee"], "Corner Shop");
    EXPECT_EQ(transaction["splits"][0]["note"], "cinema");
    EXPECT_EQ(transaction["splits"][0]["category"], "Food:Snacks");
  }
  EXPECT_NE(after[0]["id"], after[1]["id"]);
  EXPECT_EQ(accounts()[0]["balance"], "-71.00");
}

TEST_F(ShellCliTest, BadRequestEndsTheScriptNamingItsLineAndChangesNothing) {
  const struct {
    std::string request;
    std::string message;
  } cases[] = {
      {"transaction add Checking 2025-01-05 -10 split=-4 split=-5",
       "the splits add up to -9, not -10"},
      {"transaction add Nowhere 2025-01-05 -10", "no account named \"Nowhere\""},
      {"transaction add Checking 2025-13-05 -10", "date \"2025-13-05\" is not a date"},
      {"transaction add Checking 2025-01-05 ten", "amount \"ten\" is not an amount"},
      {"transaction add Checking 2025-01-05 -10 transfer=Checking",
       "a transfer goes to another account"},
      {"transaction add Checking 2025-01-05 -10 tags=family,nosuch", "no tag named \"nosuch\""},
      {"transaction edit 99 note=x", "no transaction 99"},
      {"account add Checking", "there is already an account named \"Checking\""},
      {"account add Cash type=Wallet", "\"Wallet\" is not an account type"},
      {"account add Cash currency=dollars", "currency \"dollars\" is not a currency code"},
      {"account add Cash colour=red", "unknown option colour="},
      {"category add Nope:Child", "no category named \"Nope\""},
      {"category edit Food parent=Food:Groceries",
       "category not changed: parentCategory would make the category its own parent"},
      {"tag edit family name=", "tag not changed: name must not be empty"},
      {"payee add \"Corner Shop", "unclosed quote"},
      {"frobnicate", "unknown request \"frobnicate\""},
  };
  for (const auto& c : cases) {
    const auto run = shell("payee add Baker\n" + c.request + "\npayee add Never\n");
    EXPECT_EQ(run.exitStatus, 1) << c.request;
    EXPECT_NE(run.err.find("line 2: " + c.message), std::string::npos) << c.request << "\n"
                                                                       << run.err;
    const auto payees = shell("payee list\n");
    EXPECT_EQ(payees.out.find("Never"), std::string::npos) << c.request;
    EXPECT_EQ(shell("payee delete Baker\n").exitStatus, 0) << c.request;
  }
  EXPECT_TRUE(transactions().empty());
  EXPECT_EQ(accounts().size(), 2u);
  // Each session starts with an empty undo history.
  const auto undo = shell("undo\n");
  EXPECT_EQ(undo.exitStatus, 1);
  EXPECT_NE(undo.err.find("line 1: nothing to undo"), std::string::npos) << undo.err;
}

TEST_F(ShellCliTest, AccountWithTransactionsIsNotDeleted) {
  const auto run = shell(
      "transaction add Checking 2025-03-01 -10 transfer=Savings\n"
      "account delete Savings\n");
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_NE(run.err.find("account \"Savings\" still has 1 transaction(s)"), std::string::npos)
      << run.err;
  EXPECT_EQ(accounts().size(), 2u);
}

TEST_F(ShellCliTest, HelpListsTheRequests) {
  const auto run = shell("help\n");
  ASSERT_EQ(run.exitStatus, 0) << run.err;
  for (const char* request : {"account add", "category edit", "tag add", "payee edit",
                              "transaction add", "transaction list", "undo | redo"}) {
    EXPECT_NE(run.out.find(request), std::string::npos) << request;
  }
  const auto listing = runCli({"transactions", doc_}, home_.path());
  EXPECT_EQ(listing.exitStatus, 0) << listing.err;
  const auto missing = runCli({"transactions", doc_, "--account", "Nope"}, home_.path());
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_NE(missing.err.find("no account named \"Nope\""), std::string::npos) << missing.err;
}

}  // namespace
}  // namespace ledgeon
