#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Utilities/Amount.h"

namespace ledgeon {

// Moves stored amounts to and from locale-free text ("-1234.5"), both ways. Absent stays absent;
// text that is not a number reads as NaN, for the caller to refuse.
class AmountValueTransformer final {
 public:
  static bool allowsReverseTransformation() { return true; }

  std::optional<std::string> transformedValue(const std::optional<Amount>& value) const;
  std::optional<Amount> reverseTransformedValue(const std::optional<std::string>& text) const;
};

}  // namespace ledgeon
