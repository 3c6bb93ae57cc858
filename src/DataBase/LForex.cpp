#include "DataBase/LForex.h"

#include <cctype>
#include <set>

#include "DataBase/DataBase.h"
#include "Utilities/Log.h"
#include "Utilities/NotificationCenter.h"

namespace ledgeon {

namespace {

bool sameCode(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::toupper(static_cast<unsigned char>(a[i])) !=
        std::toupper(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

std::string upperCased(std::string code) {
  for (char& c : code) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return code;
}

}  // namespace

LForex& LForex::sharedForex() {
  static LForex forex;
  return forex;
}

void LForex::setHomeCurrency(DataBase& document) {
  const Value stored = document.valueForDocumentPropertyNamed(kHomeCurrencyCodeProperty);
  std::string code = stored.kind() == Value::Kind::String ? stored.asString() : std::string();
  homeCurrencyCode_ = code.empty() ? std::string(kDefaultHomeCurrencyCode) : upperCased(code);
}

std::vector<std::string> LForex::currencyCodesUsed(DataBase& document) const {
  std::set<std::string> codes;
  for (LObject* account : document.instancesOfClass("Account")) {
    const std::string code = upperCased(account->stringForKey("currency"));
    if (!code.empty() && !sameCode(code, homeCurrencyCode_)) codes.insert(code);
  }
  return {codes.begin(), codes.end()};
}

void LForex::sendForexQuotesUpdatedNotification() const {
  NotificationCenter::defaultCenter().postNotificationName(kForexQuotesUpdatedNotification, this);
}

LObject* LForex::forexQuoteForCurrency(DataBase& document, std::string_view currencyCode) const {
  const auto quotes = document.instancesOfClass(
      "ForexQuote",
      {.predicate = Predicate::withFormat("(toCurrency like[c] %@) and (fromCurrency like[c] %@)",
                                          homeCurrencyCode_, std::string(currencyCode)),
       .sortDescriptors = {{"quoteDate", false}},
       .fetchLimit = 1});
  return quotes.empty() ? nullptr : quotes.front();
}

Amount LForex::exchangeRateForCurrency(DataBase& document, std::string_view currencyCode) const {
  LObject* quote = forexQuoteForCurrency(document, currencyCode);
  if (!quote) return Amount::zero();
  const Amount manual = decimalNumberFrom(*quote, "manualExchangeRate");
  if (manual.isNotZero()) return manual;
  return decimalNumberFrom(*quote, "exchangeRate");
}

Amount LForex::exchangeRateFromCurrency(DataBase& document, std::string_view from,
                                        std::string_view to) const {
  const auto rate = [&](std::string_view code) {
    return sameCode(code, homeCurrencyCode_) ? Amount::one()
                                             : exchangeRateForCurrency(document, code);
  };
  const Amount fromRate = rate(from);
  const Amount toRate = rate(to);
  if (fromRate.isZero() || toRate.isZero()) return Amount::zero();
  const Calculation factor = Amount::divide(fromRate, toRate, RoundingMode::Plain);
  if (factor.error != CalculationError::NoError &&
      factor.error != CalculationError::LossOfPrecision) {
    LLog("ERROR: exchange rate %@ / %@ failed", fromRate, toRate);
    return Amount::zero();
  }
  return factor.value;
}

}  // namespace ledgeon
