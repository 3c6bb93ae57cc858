#pragma once

#include <string>
#include <string_view>
#include <vector>

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
  // The document property holding the document's home currency code; "USD" when it is unset.
  static constexpr std::string_view kHomeCurrencyCodeProperty = "HomeCurrencyCode";
  static constexpr std::string_view kDefaultHomeCurrencyCode = "USD";
  // Posted (object: this LForex) after new quotes were stored in a document.
  static constexpr const char* kForexQuotesUpdatedNotification = "ForexQuotesUpdatedNotification";

  static LForex& sharedForex();

  // Takes the home currency code from the document before a refresh.
  void setHomeCurrency(DataBase& document);
  // Distinct currencies of the document's accounts other than the home currency, upper-cased and
  // sorted.
  std::vector<std::string> currencyCodesUsed(DataBase& document) const;

  // A refresh is wanted (set when currencies change) / a refresh is under way.
  bool needsForexQuoteUpdate() const { return needsForexQuoteUpdate_; }
  void mustRefreshForexQuotes(bool must) { needsForexQuoteUpdate_ = must; }
  bool isUpdatingForexQuotes() const { return isUpdatingForexQuotes_; }
  void setUpdatingForexQuotes(bool updating) { isUpdatingForexQuotes_ = updating; }
  void sendForexQuotesUpdatedNotification() const;

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
  std::string homeCurrencyCode_ = std::string(kDefaultHomeCurrencyCode);
  bool needsForexQuoteUpdate_ = false;
  bool isUpdatingForexQuotes_ = false;
};

}  // namespace ledgeon
