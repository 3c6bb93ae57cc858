#include <gtest/gtest.h>

#include "OnlineBankingFramework/ForexRateService.h"
#include "support/RateServer.h"

namespace ledgeon {
namespace {

using testing::RateServer;

TEST(ForexRateServiceTest, PostsTheHomeCurrencyAndKeepsTheWantedQuotes) {
  RateServer server;
  server.answer_ =
      "<Rates><Base>USD</Base>"
      "<Rate><From>EUR</From><To>USD</To><Value>1.0842</Value><Date>2024-03-01</Date></Rate>"
      "<Rate><From>GBP</From><Value>1.26375</Value><Date>2024-03-01</Date></Rate>"
      "<Rate><From>JPY</From><To>USD</To><Value>0.0067</Value></Rate>"
      "<Rate><From>CHF</From><To>USD</To><Value>0</Value></Rate>"
      "<Rate><From>USD</From><To>USD</To><Value>1</Value></Rate>"
      "<Unknown>ignored</Unknown></Rates>";
  CurlHttpClient client;
  ForexRateService service(client);
  auto quotes = service.fetchQuotes("USD", {"EUR", "GBP", "CHF", "USD"});
  ASSERT_TRUE(quotes.ok()) << quotes.error().description();
  EXPECT_EQ(server.base_, "USD");
  EXPECT_EQ(server.body_, "currencies=EUR,GBP,CHF,USD");
  ASSERT_EQ(quotes->size(), 2u);
  EXPECT_EQ((*quotes)[0].fromCurrency, "EUR");
  EXPECT_EQ((*quotes)[0].toCurrency, "USD");
  EXPECT_EQ((*quotes)[0].exchangeRate.stringValue(), "1.0842");
  EXPECT_DOUBLE_EQ((*quotes)[0].quoteDate.unixTime(), 1709251200.0);  // 2024-03-01 GMT
  EXPECT_EQ((*quotes)[1].fromCurrency, "GBP");
  EXPECT_EQ((*quotes)[1].toCurrency, "USD");
  EXPECT_EQ((*quotes)[1].exchangeRate.stringValue(), "1.26375");
}

TEST(ForexRateServiceTest, EmptyBadAndFailedAnswers) {
  RateServer server;
  CurlHttpClient client;
  ForexRateService service(client);

  auto none = service.fetchQuotes("USD", {});
  ASSERT_TRUE(none.ok());
  EXPECT_TRUE(none->empty());
  EXPECT_EQ(server.requests_.load(), 0);  // nothing to ask for, nothing sent

  server.answer_ = "";
  auto empty = service.fetchQuotes("USD", {"EUR"});
  ASSERT_TRUE(empty.ok());
  EXPECT_TRUE(empty->empty());  // an empty answer stores nothing

  server.answer_ = "<Rates><Rate><From>EUR</From><Value>1,5x</Value></Rate></Rates>";
  auto bad = service.fetchQuotes("USD", {"EUR"});
  ASSERT_FALSE(bad.ok());
  EXPECT_NE(bad.error().localizedDescription().find("Invalid number"), std::string::npos);

  server.answer_ = "<Rates><Rate>";
  EXPECT_FALSE(service.fetchQuotes("USD", {"EUR"}).ok());

  server.status_ = 500;
  auto failed = service.fetchQuotes("USD", {"EUR"});
  ASSERT_FALSE(failed.ok());
  EXPECT_NE(failed.error().localizedDescription().find("HTTP-500"), std::string::npos);
}

}  // namespace
}  // namespace ledgeon
