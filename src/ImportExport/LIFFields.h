#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

// How the values of LIF field lines read. Pure functions; thread-safe except where noted.
class LIFFields final {
 public:
  LIFFields() = delete;

  // A money text with "," as thousands separator; NaN when it is not a number.
  static Amount amount(std::string_view text);
  // A statement balance: "$" and "," dropped, "(" read as "-", ")" dropped.
  static Amount balance(std::string_view text);
  // A transaction date, "MM/dd/yy" with "'" for "/" (the form for years from 2000); two-digit
  // years fall in the century starting 80 years ago. Main thread only (shared formatter).
  static std::optional<Date> transactionDate(std::string_view text);
  // A price date: double quotes dropped, "'" read as "/20", "20 " as "200", then "MM/dd/yyyy".
  static std::optional<Date> priceDate(std::string_view text);

  // "X"/"R" reconciled (2), "*"/"c" cleared (1), anything else 0.
  static int reconcileStatus(std::string_view text);
  // "Bank" -> "CHECKING" ... "Oth L" -> "LIABILITY"; std::nullopt for an unknown type.
  static std::optional<std::string> accountType(std::string_view text);
  // "Stock" 7, "Mutual Fund" 4, "Bond" 2, "Market Index" 3, "CD" 1, anything else 6.
  static int securityType(std::string_view text);
  // The investment-transaction type code of an action text; 0 for an unknown action.
  static int investmentType(std::string_view action);

  struct CategoryParts {
    std::string category;  // before the first "/"
    std::string tag;       // the second "/"-piece
  };
  static CategoryParts categoryParts(std::string_view text);
  // The name between "[" and "]" (or the text's end) when `category` holds a "[".
  static std::optional<std::string> bracketedName(std::string_view category);
};

}  // namespace ledgeon
