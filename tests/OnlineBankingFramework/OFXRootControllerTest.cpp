#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXRootController.h"
#include "Utilities/Log.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

// Sum of the cash amounts (bank and card transactions, and the bank transactions inside an
// investment statement) of every statement.
Amount cashTotal(const OFXRoot& root) {
  Amount total;
  auto add = [&](const auto& statements) {
    for (const auto& statement : statements) {
      for (const auto& transaction : statement->transactions()) {
        if (!transaction->amountString().empty() &&
            (transaction->type().empty() || transaction->type() == "INVBANKTRAN")) {
          total = total.decimalNumberByAdding(transaction->amount());
        }
      }
    }
  };
  add(root.statements());
  add(root.invStatements());
  return total;
}

TEST(OFXRootControllerTest, RealWorldFilesParseWithTheirCountsAndAmounts) {
  // Counts and sums read off the files (TRNAMT values; "," is the decimal point).
  const struct {
    const char* file;
    size_t statements;
    size_t transactions;
    const char* cashTotal;
    const char* bid;
  } cases[] = {
      {"ofx-parser/banking.ofx.sgml", 1, 4, "1000", "1402"},
      {"ofx-parser/banks.ofx.sgml", 2, 6, "899.99", "1402"},
      {"ofx-parser/creditcards.ofx.sgml", 2, 6, "-40.32", "24909"},
      {"ofxparse/checking.ofx", 1, 3, "-59.5", "51123"},
      {"ofxparse/bank_medium.ofx", 1, 3, "-345.27", "24"},
      {"ofxtools/stmtrs.ofx", 1, 2, "-500", "1001"},
      {"ofxtools/stmtrs_euro.ofx", 1, 2, "-500", "1001"},
      {"ofxgo/valid_responses/moneymrkt1_v103.ofx", 1, 3, "2863.2522955731815", "3534"},
      {"ofxgo/valid_responses/moneymrkt1_v203.ofx", 1, 3, "4774.8611135902484", "4881"},
      {"ofxgo/busted_responses/wellsfargo.lfx", 1, 1, "-12.34", "1000"},
      {"ofxgo/busted_responses/bmo_v102__no_header_newline.lfx", 1, 1, "2042.24", "17"},
      {"ofx4j/example-response.ofx2", 1, 3, "250", "01234"},
      {"ofx4j/nanoxml/example-response.ofx", 1, 1, "150", "01234"},
      {"ofxparse/suncorp.ofx", 1, 1, "-16.85", "484-799"},
      {"ofxparse/fidelity-savings.ofx", 1, 4, "-1778.3952", "7776"},
      {"ofxparse/fidelity.ofx", 1, 17, "-0.57", "7776"},
      {"ofxgo/valid_responses/inv_v202.ofx", 1, 74, "1266.56372960083246", "1055"},
      {"ofxgo/valid_responses/ira_v202.ofx", 1, 60, "3730.7633832701704", "3418"},
      {"ofxgo/valid_responses/401k_v203.ofx", 1, 7, "0", "8133"},
      {"ofxparse/vanguard401k.ofx", 1, 5, "0", "84022"},
      {"ofxparse/td_ameritrade.ofx", 1, 0, "0", "5024"},
      {"ofxtools/invstmtrs.ofx", 1, 2, "1000", "1001"},
      {"ofxparse/multiple_accounts.ofx", 2, 0, "0", "1000"},
      {"ofx-parser/account_info.ofx.sgml", 0, 0, "0", "1001"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    OFXRootController controller;
    ASSERT_TRUE(
        controller.openOFXFile(testing::sharedTestData(std::string("ofx/") + c.file), false))
        << controller.statusMessage();
    const OFXRoot& root = controller.root();
    EXPECT_EQ(root.numberOfStatements(), c.statements);
    EXPECT_EQ(root.totalNumberOfTransactions(), c.transactions);
    EXPECT_EQ(cashTotal(root).stringValue(), Amount::fromString(c.cashTotal).stringValue());
    EXPECT_EQ(controller.bid(), c.bid);
    EXPECT_EQ(controller.statusResult(), 0);
  }
}

TEST(OFXRootControllerTest, MalformedFilesFailWithAStatusThatSaysWhy) {
  const struct {
    const char* file;
    const char* message;
  } cases[] = {
      {"ofxparse/bank_small.ofx", "InvalidOFX: Missing bid data"},
      {"ofxparse/vanguard.ofx", "Missing bid data"},
      {"ofxparse/anzcc.ofx", "XMLParseError: mismatched tag"},
      {"ofx4j/nanoxml/example-response2.ofx", "XMLParseError"},
      {"ofxparse/fail_nice/empty_balance.ofx", "Passed nil for value input string!"},
      {"ofxparse/fail_nice/date_missing.ofx", "Passed nil for value input string!"},
      {"ofxparse/ofx-v102-empty-tags.ofx", "Passed nil for value input string!"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    LogCapture log;
    OFXRootController controller;
    EXPECT_FALSE(
        controller.openOFXFile(testing::sharedTestData(std::string("ofx/") + c.file), false));
    EXPECT_EQ(controller.statusResult(), OFXRootController::kParseFailureCode);
    EXPECT_EQ(controller.statusSeverity(), "ERROR");
    EXPECT_NE(controller.statusMessage().find(c.message), std::string::npos)
        << controller.statusMessage();
    EXPECT_EQ(controller.root().numberOfStatements(), 0u);
    EXPECT_TRUE(log.contains("OFX parsing failed"));
  }
}

TEST(OFXRootControllerTest, EveryFileOfTheCorpusEndsInARootOrAStatus) {
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(testing::sharedTestData("ofx"))) {
    if (!entry.is_regular_file()) continue;
    OFXRootController controller;
    const bool ok = controller.openOFXFile(entry.path(), false);
    if (!ok) {
      EXPECT_FALSE(controller.statusMessage().empty()) << entry.path();
    }
  }
}

TEST(OFXRootControllerTest, SignonFailureBecomesTheRootStatus) {
  OFXRootController controller;
  ASSERT_TRUE(
      controller.openOFXFile(testing::sharedTestData("ofx/ofxparse/signon_fail.ofx"), false));
  EXPECT_TRUE(controller.root().signonError());
  EXPECT_EQ(controller.statusResult(), 15500);
  EXPECT_EQ(controller.statusSeverity(), "ERROR");
  EXPECT_NE(controller.statusMessage().find("invalid identification code"), std::string::npos);
}

TEST(OFXRootControllerTest, StatementErrorBubblesUpToTheRoot) {
  OFXRootController controller;
  ASSERT_TRUE(
      controller.openOFXFile(testing::sharedTestData("ofx/ofxparse/error_message.ofx"), false));
  EXPECT_FALSE(controller.root().signonError());
  EXPECT_EQ(controller.statusResult(), 2000);
  EXPECT_EQ(controller.statusMessage(), "General Server Error");
}

TEST(OFXRootControllerTest, InvestmentStatementHasPositionsSecuritiesAndActions) {
  OFXRootController controller;
  ASSERT_TRUE(controller.openOFXFile(testing::sharedTestData("ofx/ofxtools/invstmtrs.ofx"), false));
  const OFXRoot& root = controller.root();
  EXPECT_TRUE(root.investmentOFX());
  ASSERT_EQ(root.invStatements().size(), 1u);
  const auto& statement = *root.invStatements()[0];
  EXPECT_EQ(statement.acctID(), "999988");
  EXPECT_EQ(statement.brokerID(), "121099999");
  ASSERT_EQ(statement.transactions().size(), 2u);
  const auto* buy =
      dynamic_cast<const OFXBuyInvestmentTransaction*>(statement.transactions()[0].get());
  ASSERT_NE(buy, nullptr);
  EXPECT_EQ(buy->uniqueID(), "123456789");
  EXPECT_EQ(buy->units(), "100");
  EXPECT_EQ(buy->action(), "BUY");
  EXPECT_EQ(buy->amount().stringValue(), "-5025");
  ASSERT_EQ(statement.positions().size(), 2u);
  EXPECT_NE(dynamic_cast<const OFXOptionPos*>(statement.positions()[1].get()), nullptr);
  EXPECT_EQ(statement.positions()[0]->marketValue(), "9900.00");
  ASSERT_EQ(root.securities().size(), 3u);
  EXPECT_EQ(root.securities()[0]->ticker(), "ACME");
  EXPECT_NE(dynamic_cast<const OFXOptionSecurity*>(root.securities()[2].get()), nullptr);
  ASSERT_EQ(statement.balances().size(), 1u);
  EXPECT_EQ(statement.balances()[0]->value(), "7.85");
}

TEST(OFXRootControllerTest, CardStatementsJoinTheBankStatements) {
  OFXRootController controller;
  ASSERT_TRUE(controller.openOFXFile(testing::sharedTestData("ofx/ofx-parser/creditcards.ofx.sgml"),
                                     false));
  EXPECT_EQ(controller.root().statementCount(), 2u);
  EXPECT_EQ(controller.root().ccStatementCount(), 0u);
  EXPECT_EQ(controller.accountID(1), "XXXXXXXXXXXX2222");
  EXPECT_EQ(controller.acctType(0), "CREDITCARD");
  EXPECT_EQ(controller.accountID(2), "");
}

TEST(OFXRootControllerTest, AccountListAndProfileAreRead) {
  OFXRootController accounts;
  ASSERT_TRUE(accounts.openOFXFile(
      testing::sharedTestData("ofx/ofxparse/account_listing_aggregation.ofx"), false));
  EXPECT_EQ(accounts.root().accountCount(), 4u);

  OFXRootController profile;
  ASSERT_TRUE(
      profile.openOFXFile(testing::sharedTestData("ofx/ofx4j/bank-of-america-profile.ofx"), false));
  ASSERT_NE(profile.profile(), nullptr);
  EXPECT_FALSE(profile.profile()->messageSets().empty());
}

TEST(OFXRootControllerTest, RunningBalancesEndAtTheLedgerBalance) {
  OFXRootController controller;
  ASSERT_TRUE(controller.openOFXFile(testing::sharedTestData("ofx/ofxtools/stmtrs.ofx"), false));
  controller.root().setRunningBalances();
  const auto& statement = *controller.root().statements()[0];
  const auto& transactions = statement.transactions();
  ASSERT_EQ(transactions.size(), 2u);
  // LEDGERBAL 200.29; the CHECK of -200.00 comes first, the ATM -300.00 last.
  EXPECT_EQ(transactions[1]->balance().stringValue(), "200.29");
  EXPECT_EQ(transactions[0]->balance().stringValue(), "500.29");
}

}  // namespace
}  // namespace ledgeon
