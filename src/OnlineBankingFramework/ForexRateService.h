#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OnlineBankingFramework/OFXObject.h"
#include "Platform/HttpClient.h"
#include "Utilities/Result.h"

namespace ledgeon {

#define LEDGEON_FOREXRATE_PROPERTIES(X)    \
  X(OFXString, fromCurrency, FromCurrency) \
  X(OFXString, toCurrency, ToCurrency)     \
  X(Amount, exchangeRate, ExchangeRate)    \
  X(OFXDate, quoteDate, QuoteDate)

// One quote of the rate service: one unit of fromCurrency is worth exchangeRate units of
// toCurrency (the home currency).
class ForexRate : public OFXObject {
  LEDGEON_OFX_CLASS(ForexRate, LEDGEON_FOREXRATE_PROPERTIES)
};

#define LEDGEON_FOREXRATES_PROPERTIES(X)   \
  X(OFXString, baseCurrency, BaseCurrency) \
  X(OFXList<ForexRate>, rates, Rates)

// The rate service's answer (root element "Rates").
class ForexRates : public OFXObject {
  LEDGEON_OFX_CLASS(ForexRates, LEDGEON_FOREXRATES_PROPERTIES)
};

// A decoded quote, ready to be stored as a ForexQuote of the document.
struct ForexQuoteRecord {
  std::string fromCurrency;
  std::string toCurrency;
  Amount exchangeRate;
  Date quoteDate;
};

// Asks the exchange-rate service for the rates of `currencies` in `homeCurrency`: one POST to
// "/currencyapi/currency.asp?baseCurrency=<home>" on the host of the preference
// "forexServiceHost", decoded through resources/forexExchangeRateMapping.xml. Quotes of
// currencies not asked for, of the home currency itself, and without a positive rate are dropped.
class ForexRateService final {
 public:
  static constexpr std::string_view kHostPreference = "forexServiceHost";
  static constexpr std::string_view kDefaultHost = "https://rates.ledgeon.app";
  static constexpr std::string_view kPath = "/currencyapi/currency.asp?baseCurrency=";

  explicit ForexRateService(HttpClient& client) : client_(client) {}

  Result<std::vector<ForexQuoteRecord>> fetchQuotes(
      std::string_view homeCurrency, const std::vector<std::string>& currencies) const;
  // Decodes an answer of the service; throws nothing: a malformed answer is an error value.
  static Result<std::vector<ForexQuoteRecord>> decodeAnswer(
      std::string_view xml, std::string_view homeCurrency,
      const std::vector<std::string>& currencies);

 private:
  HttpClient& client_;
};

}  // namespace ledgeon
