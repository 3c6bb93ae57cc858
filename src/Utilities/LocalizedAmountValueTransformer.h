#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Utilities/Amount.h"

namespace ledgeon {

// Moves amounts to and from text in a locale ("1234,5" in de_DE), both ways: the text a user
// reads and types. Text that is not a number gives no value; with the absolute-value behaviour
// a negative amount read back is made positive (fields that hold a size, never a direction).
class LocalizedAmountValueTransformer final {
 public:
  static bool allowsReverseTransformation() { return true; }
  // The process's current ICU locale ("en_US" unless the environment says otherwise).
  static std::string currentLocaleIdentifier();

  explicit LocalizedAmountValueTransformer(
      bool absoluteValueBehavior, std::string localeIdentifier = currentLocaleIdentifier());

  bool absoluteValueBehavior() const { return absoluteValueBehavior_; }
  const std::string& localeIdentifier() const { return localeIdentifier_; }

  std::optional<std::string> transformedValue(const std::optional<Amount>& value) const;
  std::optional<Amount> reverseTransformedValue(const std::optional<std::string>& text) const;

 private:
  bool absoluteValueBehavior_;
  std::string localeIdentifier_;
};

}  // namespace ledgeon
