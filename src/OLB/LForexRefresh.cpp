#include "OLB/LForexRefresh.h"

#include <algorithm>

#include "DataBase/DataBase.h"
#include "DataBase/LForex.h"
#include "Utilities/Log.h"

namespace ledgeon {

namespace {

// Clears the in-progress mark however the refresh ends.
class UpdatingMark final {
 public:
  explicit UpdatingMark(LForex& forex) : forex_(forex) { forex_.setUpdatingForexQuotes(true); }
  ~UpdatingMark() { forex_.setUpdatingForexQuotes(false); }
  UpdatingMark(const UpdatingMark&) = delete;
  UpdatingMark& operator=(const UpdatingMark&) = delete;

 private:
  LForex& forex_;
};

}  // namespace

Result<std::vector<LObject*>> LForexRefresh::refreshForexQuotes(DataBase& document) {
  UpdatingMark mark(forex_);
  forex_.setHomeCurrency(document);
  const std::vector<std::string> used = forex_.currencyCodesUsed(document);
  if (used.empty()) {
    forex_.mustRefreshForexQuotes(false);
    return std::vector<LObject*>{};
  }
  auto quotes = service_.fetchQuotes(forex_.homeCurrencyCode(), used);
  if (!quotes) return quotes.error();
  auto stored = saveForexQuotesWithUsedCurrencies(document, *quotes, used);
  if (!stored) return stored.error();
  forex_.mustRefreshForexQuotes(false);
  if (!stored->empty()) forex_.sendForexQuotesUpdatedNotification();
  return stored;
}

Result<std::vector<LObject*>> LForexRefresh::saveForexQuotesWithUsedCurrencies(
    DataBase& document, const std::vector<ForexQuoteRecord>& quotes,
    const std::vector<std::string>& used) {
  std::vector<LObject*> stored;
  for (const ForexQuoteRecord& quote : quotes) {
    if (std::find(used.begin(), used.end(), quote.fromCurrency) == used.end()) {
      LLog("skipping a quote for %@, a currency no account uses", quote.fromCurrency);
      continue;
    }
    stored.push_back(
        &document.createEntity("ForexQuote", {{"exchangeRate", Value(quote.exchangeRate)},
                                              {"fromCurrency", Value(quote.fromCurrency)},
                                              {"toCurrency", Value(forex_.homeCurrencyCode())},
                                              {"quoteDate", Value(quote.quoteDate)}}));
  }
  if (stored.empty()) return stored;
  if (auto committed = document.commit(); !committed) return committed.error();
  return stored;
}

}  // namespace ledgeon
