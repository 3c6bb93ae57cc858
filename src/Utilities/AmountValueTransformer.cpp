#include "Utilities/AmountValueTransformer.h"

namespace ledgeon {

std::optional<std::string> AmountValueTransformer::transformedValue(
    const std::optional<Amount>& value) const {
  if (!value) return std::nullopt;
  return value->stringValue();
}

std::optional<Amount> AmountValueTransformer::reverseTransformedValue(
    const std::optional<std::string>& text) const {
  if (!text) return std::nullopt;
  return Amount::fromString(*text);
}

}  // namespace ledgeon
