#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

using testing::runCli;

// A new document with a LIF file of the test's own imported into it.
class LedgerListingCliTest : public ::testing::Test {
 protected:
  void importLif(const std::string& text) {
    ASSERT_EQ(runCli({"new", doc_}, home_.path()).exitStatus, 0);
    const std::string file = (home_ / "statement.lif").string();
    std::ofstream(file, std::ios::binary) << text;
    const auto imported = runCli({"import", doc_, file}, home_.path());
    ASSERT_EQ(imported.exitStatus, 0) << imported.err;
  }
  nlohmann::json json(std::vector<std::string> arguments) {
    arguments.push_back("--json");
    const auto run = runCli(arguments, home_.path());
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    return nlohmann::json::parse(run.out);
  }
  std::string text(const std::vector<std::string>& arguments) {
    const auto run = runCli(arguments, home_.path());
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    return run.out;
  }
  nlohmann::json account(const std::string& name) {
    for (const auto& row : json({"accounts", doc_})) {
      if (row["name"] == name) return row;
    }
    ADD_FAILURE() << "no account " << name;
    return {};
  }

  testing::TempFolder home_;
  std::string doc_ = (home_ / "Household.ledgeon").string();
};

// Symptom: a checking transaction split into transfers to Savings ($-600) and Wallet ($-300)
// left Savings at 0.00 and Wallet at 900.00. Cause: balances and listings credited every
// transfer line to the transaction's one `targetAccount`, which the import sets to the last
// transfer line's account. Fix: each transfer line is credited to the account its own
// `transfer` names (LedgerQueries), and `targetAccount` stays as the import sets it.
TEST_F(LedgerListingCliTest, SplitTransferringToTwoAccountsCreditsEachOfThem) {
  importLif(
      "!Account\nNChecking\nTBank\n^\nNSavings\nTBank\n^\nNWallet\nTCash\n^\n"
      "!Account\nNChecking\nTBank\n^\n!Type:Bank\n"
      "D03/02'26\nT-1000.00\nPMonthly sweep\n"
      "S[Savings]\n$-600.00\nS[Wallet]\n$-300.00\nSBank Charges\n$-100.00\n^\n"
      // The mirrors the other two accounts list are not created again.
      "!Account\nNSavings\nTBank\n^\n!Type:Bank\nD03/02'26\nT600.00\nPMonthly sweep\n"
      "L[Checking]\n^\n"
      "!Account\nNWallet\nTCash\n^\n!Type:Cash\nD03/02'26\nT300.00\nPMonthly sweep\n"
      "L[Checking]\n^\n");

  EXPECT_EQ(account("Checking")["balance"], "-1000.00");
  EXPECT_EQ(account("Savings")["balance"], "600.00");
  EXPECT_EQ(account("Wallet")["balance"], "300.00");

  const auto all = json({"transactions", doc_});
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0]["transferAccount"], "Wallet");  // as the import sets it
  ASSERT_EQ(all[0]["splits"].size(), 3u);
  EXPECT_EQ(all[0]["splits"][0]["transfer"], "Savings");
  EXPECT_EQ(all[0]["splits"][1]["transfer"], "Wallet");
  EXPECT_EQ(all[0]["splits"][2]["category"], "Bank Charges");

  const struct {
    const char* account;
    const char* amount;
  } received[] = {{"Savings", "600.00"}, {"Wallet", "300.00"}};
  for (const auto& c : received) {
    SCOPED_TRACE(c.account);
    const auto rows = json({"transactions", doc_, "--account", c.account});
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0]["amount"], c.amount);
    EXPECT_EQ(rows[0]["transferAccount"], "Checking");
    ASSERT_EQ(rows[0]["splits"].size(), 1u);
    EXPECT_EQ(rows[0]["splits"][0]["amount"], c.amount);
    EXPECT_EQ(rows[0]["splits"][0]["transfer"], "Checking");
  }
}

// Symptom: `ledgeon transactions` listed none of a brokerage account's buys, sells and
// dividends, and `ledgeon accounts` gave the account one balance that counted a reinvested
// dividend as cash. Cause: the listing fetched cash-flow transactions only, and the balance
// summed every amount whatever the action. Fix: every transaction is listed, investment ones
// with action, security, units, price and commission; an investment account shows its cash
// (actions that move only units count nothing) and its holdings apart.
TEST_F(LedgerListingCliTest, InvestmentTransactionsAreListedAndHoldingsShownApartFromCash) {
  importLif(
      "!Account\nNBrokerage\nTInvst\n^\n"
      "!Type:Security\nNEvergreen Index Fund\nSEVGIX\nTMutual Fund\n^\n"
      "!Account\nNBrokerage\nTInvst\n^\n!Type:Invst\n"
      "D01/16'26\nNBuy\nYEvergreen Index Fund\nI45.20\nQ15\nO4.95\nT682.95\n^\n"
      "D01/30'26\nNReinvDiv\nYEvergreen Index Fund\nI45.80\nQ0.2\nT9.16\n^\n"
      "D02/10'26\nNDiv\nYEvergreen Index Fund\nT12.40\n^\n"
      "D02/12'26\nNSell\nYEvergreen Index Fund\nI46.00\nQ5\nO4.95\nT225.05\nMHalf\n^\n"
      "!Type:Prices\n\"EVGIX\",46.35,\"2/27'26\"\n^\n");

  const auto rows = json({"transactions", doc_});
  const struct {
    const char* date;
    const char* action;
    const char* units;
    nlohmann::json price;
    const char* commission;
    const char* amount;
  } expected[] = {
      {"2026-01-16", "Buy", "15", "45.2", "4.95", "-682.95"},
      {"2026-01-30", "Reinvest Dividend", "0.2", "45.8", "0.00", "9.16"},
      {"2026-02-10", "Dividend", "0", nullptr, "0.00", "12.40"},
      {"2026-02-12", "Sell", "5", "46", "4.95", "225.05"},
  };
  ASSERT_EQ(rows.size(), std::size(expected)) << rows.dump(2);
  for (size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(expected[i].action);
    EXPECT_EQ(rows[i]["kind"], "investment");
    EXPECT_EQ(rows[i]["account"], "Brokerage");
    EXPECT_EQ(rows[i]["date"], expected[i].date);
    EXPECT_EQ(rows[i]["action"], expected[i].action);
    EXPECT_EQ(rows[i]["security"], "Evergreen Index Fund");
    EXPECT_EQ(rows[i]["units"], expected[i].units);
    EXPECT_EQ(rows[i]["price"], expected[i].price);
    EXPECT_EQ(rows[i]["commission"], expected[i].commission);
    EXPECT_EQ(rows[i]["amount"], expected[i].amount);
  }
  EXPECT_EQ(rows[3]["note"], "Half");
  EXPECT_NE(text({"transactions", doc_})
                .find("-682.95  Buy Evergreen Index Fund 15 units @ 45.2 commission 4.95"),
            std::string::npos);

  const auto brokerage = account("Brokerage");
  EXPECT_EQ(brokerage["balance"], "-445.50");  // -682.95 + 12.40 + 225.05
  EXPECT_EQ(brokerage["cash"], "-445.50");
  ASSERT_EQ(brokerage["holdings"].size(), 1u);
  const nlohmann::json holding = {{"security", "Evergreen Index Fund"},
                                  {"ticker", "EVGIX"},
                                  {"units", "10.2"},
                                  {"price", "46.35"},
                                  {"priceDate", "2026-02-27"},
                                  {"value", "472.77"}};
  EXPECT_EQ(brokerage["holdings"][0], holding);
  const std::string listing = text({"accounts", doc_});
  EXPECT_NE(listing.find("    cash"), std::string::npos) << listing;
  EXPECT_NE(listing.find("Evergreen Index Fund (EVGIX): 10.2 units @ 46.35 on 2026-02-27 = 472.77"),
            std::string::npos)
      << listing;
}

}  // namespace
}  // namespace ledgeon
