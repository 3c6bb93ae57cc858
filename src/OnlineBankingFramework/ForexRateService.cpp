#include "OnlineBankingFramework/ForexRateService.h"

#include <algorithm>

#include "OnlineBankingFramework/OFXException.h"
#include "OnlineBankingFramework/XMLMapping.h"
#include "Platform/Preferences.h"
#include "Platform/Services.h"
#include "Utilities/Clock.h"
#include "Utilities/Resources.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

LEDGEON_OFX_DEFINE_CLASS(ForexRate, OFXObject, LEDGEON_FOREXRATE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(ForexRates, OFXObject, LEDGEON_FOREXRATES_PROPERTIES)

namespace {

Error serviceError(std::string description) {
  Error error = Error::make(kLErrorDomain, 1, std::move(description));
  error.userInfo["severity"] = "ERROR";
  return error;
}

}  // namespace

Result<std::vector<ForexQuoteRecord>> ForexRateService::decodeAnswer(
    std::string_view xml, std::string_view homeCurrency,
    const std::vector<std::string>& currencies) {
  std::vector<ForexQuoteRecord> quotes;
  if (xml.find_first_not_of(" \t\r\n") == std::string_view::npos) return quotes;
  std::unique_ptr<OFXObject> object;
  try {
    object =
        XMLMapping::fromFile(resourcePath("forexExchangeRateMapping.xml"), "Rates")->unmarshal(xml);
  } catch (const OFXException& e) {
    return serviceError("The exchange-rate answer cannot be read: " + e.description());
  }
  const auto* rates = dynamic_cast<const ForexRates*>(object.get());
  if (rates == nullptr) return serviceError("The exchange-rate mapping does not make ForexRates");
  const Date now = Clock::now();
  for (const auto& rate : rates->rates()) {
    const std::string to =
        rate->toCurrency().empty() ? std::string(homeCurrency) : rate->toCurrency().str();
    const bool wanted =
        std::find(currencies.begin(), currencies.end(), rate->fromCurrency()) != currencies.end();
    if (!wanted || to != homeCurrency || rate->fromCurrency() == homeCurrency ||
        !rate->exchangeRate().isPositive()) {
      continue;
    }
    quotes.push_back(
        {rate->fromCurrency(), to, rate->exchangeRate(), rate->quoteDate().value_or(now)});
  }
  return quotes;
}

Result<std::vector<ForexQuoteRecord>> ForexRateService::fetchQuotes(
    std::string_view homeCurrency, const std::vector<std::string>& currencies) const {
  if (currencies.empty()) return std::vector<ForexQuoteRecord>{};
  std::string host = Services::shared().preferences().stringForKey(kHostPreference);
  if (host.empty()) host = kDefaultHost;
  while (!host.empty() && host.back() == '/') host.pop_back();
  HttpRequest request;
  request.method = "POST";
  request.url = host + std::string(kPath) + std::string(homeCurrency);
  request.headers = {{"Content-Type", "application/x-www-form-urlencoded"}};
  std::string list;
  for (const auto& code : currencies) list += (list.empty() ? "" : ",") + code;
  request.body = "currencies=" + list;
  auto response = client_.send(request);
  if (!response.ok()) return response.error();
  if (response->statusCode < 200 || response->statusCode >= 300) {
    return serviceError(
        stringWithFormat("HTTP-%ld error from server = %@", response->statusCode, request.url));
  }
  return decodeAnswer(response->body, homeCurrency, currencies);
}

}  // namespace ledgeon
