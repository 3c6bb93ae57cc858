#pragma once

#include <string>
#include <string_view>

#include "Utilities/Amount.h"

namespace ledgeon {

class DataBase;
class LObject;

// Currency conversion through the document's ForexQuote objects. Each quote says how many units
// of its toCurrency (the home currency) one unit of its fromCurrency is worth. It lives with the
// store because it fetches; the quote refresh over the network belongs to a higher layer. One
// shared instance per process; main thread only.
class LForex final {
 public:
  static LForex& sharedForex();

  const std::string& homeCurrencyCode() const { return homeCurrencyCode_; }
  void setHomeCurrencyCode(std::string code) { homeCurrencyCode_ = std::move(code); }

  // The newest quote from `currencyCode` to the home currency (codes compared ignoring case).
  LObject* forexQuoteForCurrency(DataBase& document, std::string_view currencyCode) const;
  // Zero without a quote; a user's manual rate, when present and not zero, wins over the
  // downloaded one.
  Amount exchangeRateForCurrency(DataBase& document, std::string_view currencyCode) const;
  // The factor that converts an amount in `from` into `to`: zero when either rate is unknown.
  Amount exchangeRateFromCurrency(DataBase& document, std::string_view from,
                                  std::string_view to) const;

 private:
  std::string homeCurrencyCode_ = "USD";
};

}  // namespace ledgeon
