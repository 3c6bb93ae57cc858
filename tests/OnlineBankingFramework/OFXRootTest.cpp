#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXException.h"
#include "OnlineBankingFramework/OFXRoot.h"

namespace ledgeon {
namespace {

std::unique_ptr<OFXStatus> status(int64_t code, std::string severity, std::string message = "") {
  auto s = std::make_unique<OFXStatus>();
  s->setErrorCode(code);
  s->setSeverity(std::move(severity));
  s->setMessage(std::move(message));
  return s;
}

TEST(OFXRootTest, BidRules) {
  const struct {
    const char* bid;
    const char* fid;
    bool directConnect;
    const char* expected;  // null: "Missing bid data"
  } cases[] = {
      {"00123", "", false, "123"}, {"", "4567", false, "4567"}, {"0017", "99", false, "17"},
      {"", "", false, nullptr},    {"", "", true, ""},
  };
  for (const auto& c : cases) {
    OFXRoot root;
    root.setBid(c.bid);
    root.setFid(c.fid);
    root.setDirectConnect(c.directConnect);
    if (c.expected == nullptr) {
      try {
        root.postImportValidate();
        ADD_FAILURE() << "no exception for " << c.bid << "/" << c.fid;
      } catch (const OFXException& e) {
        EXPECT_EQ(e.name(), "InvalidOFX");
        EXPECT_EQ(e.reason(), "Missing bid data");
      }
    } else {
      root.postImportValidate();
      EXPECT_EQ(root.bid(), c.expected);
    }
  }
}

TEST(OFXRootTest, SignonErrorsAndBubbling) {
  const struct {
    int64_t code;
    const char* severity;
    bool signonError;
  } cases[] = {
      {15500, "ERROR", true}, {15500, "error", true}, {0, "ERROR", false}, {2000, "WARN", false}};
  for (const auto& c : cases) {
    OFXRoot root;
    root.setBid("1");
    root.setOfxStatusSignon(status(c.code, c.severity, "signon"));
    root.postImportValidate();
    EXPECT_EQ(root.signonError(), c.signonError) << c.code << c.severity;
    EXPECT_EQ(root.statusResult(), c.code);  // a non-zero sign-on code becomes the root's
  }

  OFXRoot root;
  root.setBid("1");
  auto ok = std::make_unique<OFXStatement>();
  auto failed = std::make_unique<OFXStatement>();
  failed->setOfxStatus(status(2000, "ERROR", "General error"));
  root.statements().push_back(std::move(ok));
  root.statements().push_back(std::move(failed));
  root.postImportValidate();
  EXPECT_EQ(root.statusResult(), 2000);
  EXPECT_EQ(root.ofxStatus().message(), "General error");
  EXPECT_EQ(root.ofxStatus().description(),
            "Err Code: 2000, Severity: ERROR, Message: General error");
}

TEST(OFXRootTest, CountsAndCombinedStatements) {
  OFXRoot root;
  auto bank = std::make_unique<OFXStatement>();
  bank->transactions().push_back(std::make_unique<OFXTransaction>());
  auto card = std::make_unique<OFXStatement>();
  card->transactions().push_back(std::make_unique<OFXTransaction>());
  card->transactions().push_back(std::make_unique<OFXTransaction>());
  auto inv = std::make_unique<OFXInvStatement>();
  inv->transactions().push_back(std::make_unique<OFXBuyMutualFundTransaction>());
  root.statements().push_back(std::move(bank));
  root.ccStatements().push_back(std::move(card));
  root.invStatements().push_back(std::move(inv));
  EXPECT_EQ(root.numberOfStatements(), 3u);
  EXPECT_EQ(root.totalNumberOfTransactions(), 4u);
  root.combineCCandBankingArrays();
  EXPECT_EQ(root.statementCount(), 2u);
  EXPECT_EQ(root.ccStatementCount(), 0u);
  EXPECT_EQ(root.numberOfTransactionsInStatementIndex(1), 2u);
  EXPECT_EQ(root.numberOfTransactionsInStatementIndex(2), 1u);
  EXPECT_EQ(root.numberOfTransactionsInStatementIndex(3), 0u);
  EXPECT_EQ(root.totalNumberOfTransactions(), 4u);
}

TEST(OFXRootTest, ClassTreeIsKnownByName) {
  const struct {
    const char* name;
    const char* base;
  } cases[] = {
      {"OFXInvestmentMutalFundTransaction", "OFXInvestmentTransaction"},
      {"OFXBuyMutualFundTransaction", "OFXInvestmentMutalFundTransaction"},
      {"OFXInvestmentReinvestTransaction", "OFXInvestmentIncomeTransaction"},
      {"OFXInvStatement", "OFXStatement"},
      {"OFXIndexSecurity", "OFXOtherSecurity"},
      {"OFXEmailSync", "OFXSyncBase"},
      {"OFXTransferResponse", "OFXTransactionBase"},
      {"OFXInvestmentTransaction", "OFXTransaction"},
  };
  for (const auto& c : cases) {
    const OFXClassInfo* info = OFXObject::classNamed(c.name);
    ASSERT_NE(info, nullptr) << c.name;
    ASSERT_NE(info->base, nullptr) << c.name;
    EXPECT_EQ(info->base->name, c.base);
    EXPECT_TRUE(info->isKindOf(*OFXObject::classNamed("OFXBase"))) << c.name;
    EXPECT_EQ(OFXObject::makeInstance(c.name)->className(), c.name);
  }
  EXPECT_EQ(OFXObject::makeInstance("OFXInvestmentMutualFundTransaction"), nullptr);
}

}  // namespace
}  // namespace ledgeon
