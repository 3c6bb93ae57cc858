#include "Utilities/LocalizedAmountValueTransformer.h"

#include <utility>

#include <unicode/locid.h>

#include "Utilities/LCurrencyFormatter.h"

namespace ledgeon {

std::string LocalizedAmountValueTransformer::currentLocaleIdentifier() {
  return icu::Locale::getDefault().getName();
}

LocalizedAmountValueTransformer::LocalizedAmountValueTransformer(bool absoluteValueBehavior,
                                                                 std::string localeIdentifier)
    : absoluteValueBehavior_(absoluteValueBehavior),
      localeIdentifier_(std::move(localeIdentifier)) {}

std::optional<std::string> LocalizedAmountValueTransformer::transformedValue(
    const std::optional<Amount>& value) const {
  if (!value) return std::nullopt;
  return value->descriptionWithLocale(localeIdentifier_);
}

std::optional<Amount> LocalizedAmountValueTransformer::reverseTransformedValue(
    const std::optional<std::string>& text) const {
  if (!text) return std::nullopt;
  const Amount value = LCurrencyFormatter::numberFromFormattedString(*text, localeIdentifier_);
  if (value.isNaN()) return std::nullopt;
  if (absoluteValueBehavior_ && value.isNegative()) return value.decimalNumberByNegating();
  return value;
}

}  // namespace ledgeon
