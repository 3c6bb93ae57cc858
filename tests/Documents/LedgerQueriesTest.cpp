#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DataBase/DataBase.h"
#include "DocumentTestEnvironment.h"
#include "Documents/LDocument.h"
#include "Documents/LedgerQueries.h"
#include "LObjects/LObject.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

Amount amount(const char* text) { return Amount::fromString(text); }

// A new document and builders that write the ledger straight into its store, the way imports
// leave it: a transfer is one transaction in the paying account, its lines naming the accounts.
class LedgerQueriesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto created = LDocument::createNewDocument(environment_.path("Home.ledgeon"));
    ASSERT_TRUE(created) << created.error().description();
    document_ = *created;
  }
  void TearDown() override {
    if (document_) document_->close();
  }

  DataBase& db() { return document_->dataBase(); }
  LedgerQueries& queries() { return document_->ledgerQueries(); }

  LObject& makeAccount(const std::string& name, const char* typeClass = "Checking") {
    return db().createEntity("Account",
                             {{"name", Value(name)},
                              {"currency", Value("USD")},
                              {"type", Value(queries().accountTypeForClass(typeClass))}});
  }

  struct Line {
    const char* amount;
    const char* transfer = "";  // the account a transfer line pays into
    const char* category = "";
  };
  // Day 0: a transaction without a date.
  LObject& makeTransaction(LObject& account, int day, const char* total,
                           const std::vector<Line>& lines, LObject* target = nullptr) {
    EditDict properties{{"account", Value(&account)}, {"amount", Value(amount(total))}};
    if (day > 0) {
      properties.set("enteredDate", Value(*LDateUtilities::dateWithYear(2026, 1, day)));
    }
    if (target) properties.set("targetAccount", Value(target));
    LObject& transaction = db().createEntity("CashFlowTransaction", properties);
    int64_t sequence = 0;
    for (const Line& line : lines) {
      EditDict entry{{"parent", Value(&transaction)},
                     {"sequenceNumber", Value(sequence++)},
                     {"amount", Value(amount(line.amount))}};
      if (*line.transfer) entry.set("transfer", Value(line.transfer));
      if (*line.category) {
        entry.set("categoryTag", Value(queries().categoryWithFullName(line.category)));
      }
      db().createEntity("CashFlowTransactionEntry", entry);
    }
    return transaction;
  }

  LObject& makeInvestment(LObject& account, LObject& position, int64_t type, const char* units,
                          const char* total, const char* costBasis, const char* commission) {
    return db().createEntity("InvestmentTransaction",
                             {{"account", Value(&account)},
                              {"position", Value(&position)},
                              {"type", Value(type)},
                              {"units", Value(amount(units))},
                              {"amount", Value(amount(total))},
                              {"costBasis", Value(amount(costBasis))},
                              {"commission", Value(amount(commission))},
                              {"enteredDate", Value(*LDateUtilities::dateWithYear(2026, 2, 1))}});
  }

  std::string balance(const std::string& name) {
    LObject* account = queries().accountNamed(name);
    return account ? queries().balanceOfAccount(*account).stringValue() : "no account " + name;
  }

  DocumentTestEnvironment environment_;
  std::shared_ptr<LDocument> document_;
};

TEST_F(LedgerQueriesTest, EachTransferLineCreditsTheAccountItNames) {
  LObject& checking = makeAccount("Checking");
  LObject& savings = makeAccount("Savings", "Savings");
  LObject& wallet = makeAccount("Wallet");
  LObject& visa = makeAccount("Visa", "CreditCard");
  // Paid into two accounts at once: the target names only the last of them.
  makeTransaction(checking, 5, "-1000",
                  {{"-600", "Savings"}, {"-300", "Wallet"}, {"-100", "", "Bank Fees"}}, &wallet);
  makeTransaction(checking, 6, "-250", {{"-250", "Visa"}}, &visa);
  makeTransaction(savings, 7, "50", {{"50", "", "Income:Interest"}});
  // No line says which part is the transfer: the whole of it is.
  makeTransaction(wallet, 8, "-20", {}, &checking);
  // A line naming an account that is no longer called so falls to the target.
  makeTransaction(visa, 9, "-15", {{"-15", "Old Savings"}}, &savings);
  makeTransaction(checking, 10, "-999", {{"-999", "Savings"}}, &savings).deleteLObject();

  const struct {
    const char* account;
    const char* balance;
  } cases[] = {
      {"Checking", "-1230"},  // -1000 - 250 + 20
      {"Savings", "665"},     // 600 + 50 + 15; the deleted transfer counts nothing
      {"Wallet", "280"},      // 300 - 20
      {"Visa", "235"},        // 250 - 15
  };
  const auto rows = queries().accountRows();
  ASSERT_EQ(rows.size(), std::size(cases));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.account);
    EXPECT_EQ(balance(c.account), c.balance);
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const AccountRow& r) { return r.name == c.account; });
    ASSERT_NE(row, rows.end());
    EXPECT_EQ(row->balance.stringValue(), c.balance);
    EXPECT_FALSE(row->investment);
  }
}

TEST_F(LedgerQueriesTest, ATransferIsSeenFromBothSides) {
  LObject& checking = makeAccount("Checking");
  LObject& savings = makeAccount("Savings", "Savings");
  LObject& wallet = makeAccount("Wallet");
  LObject& split = makeTransaction(
      checking, 5, "-1000", {{"-600", "Savings"}, {"-300", "Wallet"}, {"-100", "", "Bank Fees"}},
      &wallet);
  const int64_t id = split.integerForKey("ledgeonId");

  const auto own = queries().transactionRows(&checking);
  ASSERT_EQ(own.size(), 1u);
  EXPECT_EQ(own[0].id, id);
  EXPECT_EQ(own[0].account, "Checking");
  EXPECT_EQ(own[0].amount.stringValue(), "-1000");
  EXPECT_EQ(own[0].transferAccount, "Wallet");
  ASSERT_EQ(own[0].entries.size(), 3u);
  EXPECT_EQ(own[0].entries[2].category, "Bank Fees");

  const struct {
    LObject* account;
    const char* amount;
  } received[] = {{&savings, "600"}, {&wallet, "300"}};
  for (const auto& c : received) {
    const std::string name = c.account->stringForKey("name");
    SCOPED_TRACE(name);
    const auto rows = queries().transactionRows(c.account);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].id, id);
    EXPECT_EQ(rows[0].account, name);
    EXPECT_EQ(rows[0].transferAccount, "Checking");
    EXPECT_EQ(rows[0].amount.stringValue(), c.amount);
    ASSERT_EQ(rows[0].entries.size(), 1u);
    EXPECT_EQ(rows[0].entries[0].amount.stringValue(), c.amount);
    EXPECT_EQ(rows[0].entries[0].transfer, "Checking");
    EXPECT_EQ(queries().transactionsOfAccount(*c.account).size(), 1u);
  }
  // The whole listing shows it once, as the paying account sees it.
  const auto all = queries().transactionRows();
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0].account, "Checking");
}

TEST_F(LedgerQueriesTest, UndatedTransactionsComeFirstWithoutADate) {
  LObject& checking = makeAccount("Checking");
  makeTransaction(checking, 3, "-1", {{"-1"}});
  makeTransaction(checking, 0, "-2", {{"-2"}});
  makeTransaction(checking, 1, "-3", {{"-3"}});
  const auto rows = queries().transactionRows();
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_FALSE(rows[0].date);
  EXPECT_EQ(rows[0].amount.stringValue(), "-2");
  EXPECT_EQ(rows[1].amount.stringValue(), "-3");
  EXPECT_EQ(rows[2].amount.stringValue(), "-1");
  EXPECT_EQ(balance("Checking"), "-6");
}

TEST_F(LedgerQueriesTest, AnInvestmentAccountKeepsItsCashAndItsHoldingsApart) {
  LObject& brokerage = makeAccount("Brokerage", "BrokerageNormal");
  LObject& fund = db().createEntity("Security", {{"name", Value("Evergreen Fund")},
                                                 {"ticker", Value("EVG")},
                                                 {"latestClosingPrice", Value(amount("46.35"))}});
  LObject& bond = db().createEntity("Security", {{"name", Value("City Bond")}});
  LObject& inFund =
      db().createEntity("Position", {{"account", Value(&brokerage)}, {"security", Value(&fund)}});
  LObject& inBond =
      db().createEntity("Position", {{"account", Value(&brokerage)}, {"security", Value(&bond)}});
  const struct {
    LObject* position;
    int64_t type;
    const char* units;
    const char* amount;
    const char* costBasis;
    const char* commission;
  } transactions[] = {
      {&inFund, 3, "15", "-682.95", "682.95", "4.95"},  // buy: cash out, units in
      {&inFund, 15, "0.2", "9.30", "9.30", "0"},        // reinvested dividend: no cash
      {&inFund, 10, "0", "12.40", "0", "0"},            // dividend paid in cash
      {&inFund, 19, "5", "226.80", "231.75", "4.95"},   // sell: cash in, units out
      {&inBond, 2, "2", "197", "197", "0"},             // shares in from elsewhere: no cash
      {&inFund, 23, "5", "0", "0", "0"},                // split: the units it added
  };
  for (const auto& t : transactions) {
    makeInvestment(brokerage, *t.position, t.type, t.units, t.amount, t.costBasis, t.commission);
  }

  EXPECT_EQ(balance("Brokerage"), "-443.75");  // -682.95 + 12.40 + 226.80
  const auto rows = queries().accountRows();
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_TRUE(rows[0].investment);
  EXPECT_EQ(rows[0].balance.stringValue(), "-443.75");
  ASSERT_EQ(rows[0].holdings.size(), 2u);
  const HoldingRow& bondHolding = rows[0].holdings[0];
  EXPECT_EQ(bondHolding.security, "City Bond");
  EXPECT_EQ(bondHolding.units.stringValue(), "2");
  EXPECT_FALSE(bondHolding.price);
  EXPECT_FALSE(bondHolding.value);
  const HoldingRow& fundHolding = rows[0].holdings[1];
  EXPECT_EQ(fundHolding.ticker, "EVG");
  EXPECT_EQ(fundHolding.units.stringValue(), "15.2");
  ASSERT_TRUE(fundHolding.value);
  EXPECT_EQ(fundHolding.value->stringValue(), "704.52");

  const auto listed = queries().transactionRows(&brokerage);
  ASSERT_EQ(listed.size(), std::size(transactions));
  const struct {
    const char* action;
    std::optional<const char*> price;
  } expected[] = {{"Buy", "45.2"},   {"Reinvest Dividend", "46.5"}, {"Dividend", std::nullopt},
                  {"Sell", "45.36"}, {"Shares In", "98.5"},         {"Stock Split", std::nullopt}};
  for (size_t i = 0; i < listed.size(); ++i) {
    SCOPED_TRACE(expected[i].action);
    ASSERT_TRUE(listed[i].investment);
    EXPECT_EQ(listed[i].investment->action, expected[i].action);
    EXPECT_EQ(listed[i].investment->security,
              transactions[i].position == &inBond ? "City Bond" : "Evergreen Fund");
    ASSERT_EQ(listed[i].investment->price.has_value(), expected[i].price.has_value());
    if (expected[i].price) {
      EXPECT_EQ(listed[i].investment->price->stringValue(), *expected[i].price);
    }
  }
}

TEST_F(LedgerQueriesTest, CategoriesAreFoundByFullOrOwnNameAndFollowRenames) {
  LObject* groceries = queries().categoryWithFullName("Food:Groceries");
  ASSERT_NE(groceries, nullptr);
  EXPECT_EQ(queries().categoryNamed("Groceries"), groceries);
  EXPECT_EQ(queries().categoryNamed("Food:Groceries"), groceries);
  EXPECT_EQ(queries().categoryWithFullName("Groceries"), nullptr);
  EXPECT_EQ(queries().categoryNamed("Nothing Like It"), nullptr);

  // Renamed and committed, the tree is read again.
  document_->beginTransaction();
  groceries->objectForKey("parentCategory")->editEntityWithData({{"name", Value("Meals")}});
  ASSERT_TRUE(document_->endTransaction());
  EXPECT_EQ(queries().categoryWithFullName("Food:Groceries"), nullptr);
  EXPECT_EQ(queries().categoryWithFullName("Meals:Groceries"), groceries);
  EXPECT_EQ(LedgerQueries::categoryFullName(groceries), "Meals:Groceries");
}

}  // namespace
}  // namespace ledgeon
