#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "DataBase/LForex.h"
#include "DataBase/LedgerFixture.h"
#include "OLB/LForexRefresh.h"
#include "Utilities/NotificationCenter.h"
#include "support/RateServer.h"

namespace ledgeon::testing {
namespace {

constexpr const char* kAnswer =
    "<Rates><Base>USD</Base>"
    "<Rate><From>EUR</From><To>USD</To><Value>1.25</Value><Date>2024-03-01</Date></Rate>"
    "<Rate><From>GBP</From><To>USD</To><Value>0.5</Value><Date>2024-03-01</Date></Rate>"
    "<Rate><From>JPY</From><To>USD</To><Value>0.0067</Value><Date>2024-03-01</Date></Rate>"
    "</Rates>";

class LForexRefreshTest : public LedgerTest {
 protected:
  LForexRefreshTest()
      : observer_(NotificationCenter::defaultCenter(), LForex::kForexQuotesUpdatedNotification,
                  [this](const Notification&) { ++notifications_; }) {}

  void account(const char* currency) {
    LObject& type = db_->createEntity("Checking", {{"name", Value("Checking")}});
    db_->createEntity("Account", {{"name", Value(std::string("In ") + currency)},
                                  {"currency", Value(currency)},
                                  {"type", Value(&type)}});
  }
  Result<std::vector<LObject*>> refresh() {
    LForexRefresh refresher(forex_, client_);
    return refresher.refreshForexQuotes(*db_);
  }
  size_t storedQuotes() { return db_->countForInstancesOfClass("ForexQuote"); }

  RateServer server_;
  CurlHttpClient client_;
  LForex forex_;
  int notifications_ = 0;
  ScopedObserver observer_;
};

TEST_F(LForexRefreshTest, StoresTheQuotesOfUsedCurrenciesAndConvertsWithThem) {
  account("USD");
  account("EUR");
  account("eur");
  account("GBP");
  commit();
  server_.answer_ = kAnswer;
  forex_.mustRefreshForexQuotes(true);
  auto stored = refresh();
  ASSERT_TRUE(stored.ok()) << stored.error().description();
  EXPECT_EQ(server_.base_, "USD");
  EXPECT_EQ(server_.body_, "currencies=EUR,GBP");
  EXPECT_EQ(stored->size(), 2u);
  EXPECT_EQ(notifications_, 1);
  EXPECT_FALSE(forex_.isUpdatingForexQuotes());
  EXPECT_FALSE(forex_.needsForexQuoteUpdate());

  // The quotes were committed: a reopened store converts with them.
  reopen();
  EXPECT_EQ(storedQuotes(), 2u);
  EXPECT_EQ(forex_.exchangeRateFromCurrency(*db_, "EUR", "GBP"), Amount::fromString("2.5"));
  EXPECT_EQ(forex_.exchangeRateFromCurrency(*db_, "GBP", "USD"), Amount::fromString("0.5"));
  EXPECT_EQ(forex_.exchangeRateFromCurrency(*db_, "JPY", "USD"), Amount::zero());
}

TEST_F(LForexRefreshTest, TheHomeCurrencyComesFromTheDocument) {
  db_->setValueForDocumentProperty(Value("eur"), LForex::kHomeCurrencyCodeProperty);
  account("USD");
  account("EUR");
  commit();
  server_.answer_ = "<Rates><Rate><From>USD</From><To>EUR</To><Value>0.8</Value></Rate></Rates>";
  auto stored = refresh();
  ASSERT_TRUE(stored.ok()) << stored.error().description();
  EXPECT_EQ(forex_.homeCurrencyCode(), "EUR");
  EXPECT_EQ(server_.base_, "EUR");
  EXPECT_EQ(server_.body_, "currencies=USD");
  ASSERT_EQ(stored->size(), 1u);
  EXPECT_EQ((*stored)[0]->stringForKey("toCurrency"), "EUR");
  EXPECT_EQ(forex_.exchangeRateFromCurrency(*db_, "USD", "EUR"), Amount::fromString("0.8"));
}

TEST_F(LForexRefreshTest, NothingIsStoredWithoutAUsableAnswer) {
  struct Case {
    const char* name;
    bool foreignAccount;
    int status;
    const char* answer;
    bool ok;
    int requests;
  };
  const Case cases[] = {
      {"no foreign currency", false, 200, kAnswer, true, 0},
      {"empty answer", true, 200, "<Rates></Rates>", true, 1},
      {"only unused currencies", true, 200,
       "<Rates><Rate><From>JPY</From><To>USD</To><Value>0.0067</Value></Rate></Rates>", true, 1},
      {"server error", true, 500, "", false, 1},
      {"malformed answer", true, 200, "<Rates><Rate>", false, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    db_ = nullptr;
    std::filesystem::remove(storePath());
    db_ = open(true);
    account("USD");
    if (c.foreignAccount) account("CHF");
    commit();
    server_.requests_ = 0;
    server_.status_ = c.status;
    server_.answer_ = c.answer;
    notifications_ = 0;
    auto stored = refresh();
    EXPECT_EQ(stored.ok(), c.ok);
    if (stored.ok()) {
      EXPECT_TRUE(stored->empty());
    }
    EXPECT_EQ(server_.requests_, c.requests);
    EXPECT_EQ(storedQuotes(), 0u);
    EXPECT_EQ(notifications_, 0);
    EXPECT_FALSE(db_->hasChanges());
    EXPECT_FALSE(forex_.isUpdatingForexQuotes());
  }
}

TEST_F(LForexRefreshTest, SavingSkipsCurrenciesNoAccountUses) {
  LForexRefresh refresher(forex_, client_);
  const std::vector<ForexQuoteRecord> quotes = {
      {"EUR", "USD", Amount::fromString("1.25"), Date(700000000.0)},
      {"JPY", "USD", Amount::fromString("0.0067"), Date(700000000.0)},
  };
  auto stored = refresher.saveForexQuotesWithUsedCurrencies(*db_, quotes, {"EUR"});
  ASSERT_TRUE(stored.ok()) << stored.error().description();
  ASSERT_EQ(stored->size(), 1u);
  EXPECT_FALSE(db_->hasChanges());
  reopen();
  EXPECT_EQ(storedQuotes(), 1u);
  EXPECT_EQ(forex_.exchangeRateForCurrency(*db_, "EUR"), Amount::fromString("1.25"));
}

// The store of the fixture's folder makes that folder a document package for the program.
TEST_F(LForexRefreshTest, CommandLineRefresh) {
  account("EUR");
  account("GBP");
  commit();
  db_ = nullptr;
  server_.answer_ = kAnswer;
  TempFolder home;
  const std::string document = folder_.path().string();

  const CliResult json =
      runCli({"forex", "refresh", document, "--host", server_.url(), "--json"}, home.path());
  ASSERT_EQ(json.exitStatus, 0) << json.err;
  const auto printed = nlohmann::json::parse(json.out);
  EXPECT_EQ(printed["homeCurrency"], "USD");
  ASSERT_EQ(printed["quotes"].size(), 2u);
  EXPECT_EQ(printed["quotes"][0]["fromCurrency"], "EUR");
  EXPECT_EQ(printed["quotes"][0]["exchangeRate"], "1.25");
  EXPECT_EQ(printed["quotes"][1]["quoteDate"], "2024-03-01");

  const CliResult text =
      runCli({"forex", "refresh", document, "--host", server_.url()}, home.path());
  ASSERT_EQ(text.exitStatus, 0) << text.err;
  EXPECT_NE(text.out.find("1 GBP = 0.5 USD"), std::string::npos) << text.out;

  server_.answer_ = "<Rates><Rate>";
  const CliResult bad =
      runCli({"forex", "refresh", document, "--host", server_.url()}, home.path());
  EXPECT_EQ(bad.exitStatus, 1);
  EXPECT_NE(bad.err.find("exchange rates not refreshed"), std::string::npos) << bad.err;

  const CliResult unreachable =
      runCli({"forex", "refresh", document, "--host", "http://127.0.0.1:1/"}, home.path());
  EXPECT_EQ(unreachable.exitStatus, 1);
  EXPECT_NE(unreachable.err.find("exchange rates not refreshed"), std::string::npos);

  const CliResult missing =
      runCli({"forex", "refresh", (home.path() / "Nowhere").string()}, home.path());
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_NE(missing.err.find("not a document package"), std::string::npos) << missing.err;

  db_ = open(false);
  EXPECT_EQ(storedQuotes(), 4u);
}

}  // namespace
}  // namespace ledgeon::testing
