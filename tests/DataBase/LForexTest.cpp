#include <gtest/gtest.h>

#include "DataBase/LForex.h"
#include "DataBase/LedgerFixture.h"

namespace ledgeon::testing {
namespace {

class LForexTest : public LedgerTest {
 protected:
  LForexTest() {
    forex_.setHomeCurrencyCode("USD");
    quote("EUR", "USD", "1.10", nullptr, 700000000.0);
    quote("eur", "usd", "1.08", nullptr, 700086400.0);  // newer, other case
    quote("EUR", "CAD", "1.45", nullptr, 700172800.0);  // not to the home currency
    quote("GBP", "USD", "1.25", "1.30", 700000000.0);
    quote("CHF", "USD", "1.12", "0", 700000000.0);
    commit();
  }
  void quote(const char* from, const char* to, const char* rate, const char* manual, double date) {
    EditDict data{{"fromCurrency", Value(from)},
                  {"toCurrency", Value(to)},
                  {"exchangeRate", Value(Amount::fromString(rate))},
                  {"quoteDate", Value(Date(date))}};
    if (manual) data.set("manualExchangeRate", Value(Amount::fromString(manual)));
    db_->createEntity("ForexQuote", data);
  }
  Amount rate(const char* from, const char* to) {
    return forex_.exchangeRateFromCurrency(*db_, from, to);
  }

  LForex forex_;
};

TEST_F(LForexTest, TheNewestQuoteToTheHomeCurrencyWins) {
  LObject* quote = forex_.forexQuoteForCurrency(*db_, "Eur");
  ASSERT_NE(quote, nullptr);
  EXPECT_EQ(quote->amountForKey("exchangeRate"), Amount::fromString("1.08"));
  EXPECT_EQ(forex_.forexQuoteForCurrency(*db_, "JPY"), nullptr);
}

TEST_F(LForexTest, ManualRatesOverrideDownloadedOnesUnlessZero) {
  EXPECT_EQ(forex_.exchangeRateForCurrency(*db_, "GBP"), Amount::fromString("1.30"));
  EXPECT_EQ(forex_.exchangeRateForCurrency(*db_, "CHF"), Amount::fromString("1.12"));
  EXPECT_EQ(forex_.exchangeRateForCurrency(*db_, "JPY"), Amount::zero());
}

TEST_F(LForexTest, ConversionFactorsBetweenAnyTwoCurrencies) {
  EXPECT_EQ(rate("EUR", "USD"), Amount::fromString("1.08"));
  EXPECT_EQ(rate("USD", "USD"), Amount::one());
  EXPECT_EQ(rate("EUR", "GBP"), Amount::divide(Amount::fromString("1.08"),
                                               Amount::fromString("1.30"), RoundingMode::Plain)
                                    .value);
  EXPECT_EQ(rate("usd", "GBP"),
            Amount::divide(Amount::one(), Amount::fromString("1.30"), RoundingMode::Plain).value);
  EXPECT_EQ(rate("JPY", "USD"), Amount::zero());
  EXPECT_EQ(rate("USD", "JPY"), Amount::zero());
}

}  // namespace
}  // namespace ledgeon::testing
