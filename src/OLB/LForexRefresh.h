#pragma once

#include <vector>

#include "OnlineBankingFramework/ForexRateService.h"
#include "Utilities/Result.h"

namespace ledgeon {

class DataBase;
class LForex;
class LObject;

// Refreshes a document's exchange rates: asks the rate service for the currencies its accounts
// use and stores the answer as ForexQuote objects of the document. Runs on the thread that owns
// the document; the caller decides whether that is worth a thread of its own.
class LForexRefresh final {
 public:
  LForexRefresh(LForex& forex, HttpClient& client) : forex_(forex), service_(client) {}

  // The quotes stored (none when no account uses a foreign currency or the service answered with
  // nothing). Posts the quotes-updated notification once when quotes were stored.
  Result<std::vector<LObject*>> refreshForexQuotes(DataBase& document);

  // Stores the quotes of currencies in `used`, in one commit; the others are dropped.
  Result<std::vector<LObject*>> saveForexQuotesWithUsedCurrencies(
      DataBase& document, const std::vector<ForexQuoteRecord>& quotes,
      const std::vector<std::string>& used);

 private:
  LForex& forex_;
  ForexRateService service_;
};

}  // namespace ledgeon
