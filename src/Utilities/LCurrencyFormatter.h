#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <unicode/uversion.h>

#include "Utilities/Amount.h"

U_NAMESPACE_BEGIN
class DecimalFormat;
U_NAMESPACE_END

namespace ledgeon {

class CalcState;

// A span of text in UTF-8 bytes: the selection of an amount field.
struct TextRange {
  std::size_t location = 0;
  std::size_t length = 0;
  friend bool operator==(const TextRange&, const TextRange&) = default;
};

// The text formatter of an amount field: shows amounts in a locale (grouping, 2 to 6 fraction
// digits, half-up rounding, no currency symbol), vets each keystroke and reads the text back as
// an exact Amount. With a CalcState attached the field works as a calculator. Main thread only.
class LCurrencyFormatter final {
 public:
  static constexpr std::string_view kDefaultLocale = "en_US";

  // `localeIdentifier` is an ICU locale ("de_DE", "fr_FR"); an unknown one falls back to ICU's
  // root conventions.
  explicit LCurrencyFormatter(std::string_view localeIdentifier = kDefaultLocale);
  ~LCurrencyFormatter();
  LCurrencyFormatter(const LCurrencyFormatter&) = delete;
  LCurrencyFormatter& operator=(const LCurrencyFormatter&) = delete;

  const std::string& localeIdentifier() const { return localeIdentifier_; }
  // The locale's symbols, in UTF-8.
  const std::string& decimalSeparator() const { return decimalSeparator_; }
  const std::string& groupingSeparator() const { return groupingSeparator_; }
  const std::string& minusSign() const { return minusSign_; }

  // Settings.
  bool filterEditingString() const { return filterEditingString_; }
  void setFilterEditingString(bool filter) { filterEditingString_ = filter; }
  // The smallest amount the field takes; zero or more means no minus sign can be typed.
  const std::optional<Amount>& minimum() const { return minimum_; }
  void setMinimum(std::optional<Amount> minimum) { minimum_ = minimum; }
  unsigned minimumFractionDigits() const { return minimumFractionDigits_; }
  unsigned maximumFractionDigits() const { return maximumFractionDigits_; }
  void setMaximumFractionDigits(unsigned digits);

  // The calculator working the field, if any; the CalcState attaches and detaches itself.
  CalcState* calcState() const { return calcState_; }
  void setCalcState(CalcState* calcState) { calcState_ = calcState; }
  // True when a calculator is attached and switched on: then the text holds arithmetic.
  bool isCalculatorActive() const;

  // Display: "1,234.50" in en_US, "1.234,50" in de_DE. NaN shows the locale's NaN symbol.
  std::string stringForObjectValue(const Amount& value) const;
  // The display without grouping separators when filterEditingString is on: what the user edits.
  std::string editingStringForObjectValue(const Amount& value) const;

  // Vets a keystroke. On return `partialString` and `proposedSelectedRange` hold what the field
  // should show: the proposal itself (returns true), the proposal with grouping separators
  // filtered out (returns false), or the original text when the proposal is refused (returns
  // false, with `errorDescription` set when given).
  bool isPartialStringValid(std::string& partialString, TextRange& proposedSelectedRange,
                            std::string_view originalString, TextRange originalSelectedRange,
                            std::string* errorDescription = nullptr) const;

  // Reads the text of the field. Empty text gives true with no value. In calculator mode text
  // holding arithmetic ("19.99*3") is worked out by the CalcState. The value is made positive
  // when the calculator asks for positive numbers only, then rounded (plain) to the maximum
  // fraction digits. `range`, when given, is the part of `string` to read.
  bool getObjectValue(std::optional<Amount>& objectValue, std::string_view string,
                      const TextRange* range = nullptr, std::string* error = nullptr) const;

  // Typed digits may be read as cents by the calculator.
  bool supportsAutomaticDecimalPoint() const { return true; }

  // The keystroke checks. Characters: digits, the locale's minus sign, decimal and grouping
  // separators, and in calculator mode the operation characters "+-/*=%".
  bool characterOKInString(std::string_view string) const;
  // At most one minus sign, and none when the minimum is zero or more.
  bool signsOKInString(std::string_view string) const;
  // At most one decimal separator.
  bool decimalsOKInString(std::string_view string) const;
  // Grouping separators may stand anywhere: they are filtered or ignored when reading.
  bool commasOKInString(std::string_view string) const;

  // Parses the whole of `text` with this formatter's locale into an exact Amount (never through
  // a binary float); NaN when it is not a number in that locale.
  Amount amountFromString(std::string_view text) const;

  // Pasted or imported text: every grouping separator of the locale is removed, then the rest is
  // read as an amount in that locale. NaN when it is not a number.
  static Amount numberFromFormattedString(std::string_view text,
                                          std::string_view localeIdentifier = "en_us");

  // ICU has number conventions of its own for this locale (not just the root fallback).
  static bool isKnownLocale(std::string_view localeIdentifier);

 private:
  void configure();
  std::string removingGroupingSeparators(std::string_view text) const;

  std::string localeIdentifier_;
  std::unique_ptr<icu::DecimalFormat> format_;
  std::string decimalSeparator_;
  std::string groupingSeparator_;
  std::string minusSign_;
  std::string nanSymbol_;
  bool filterEditingString_ = true;
  std::optional<Amount> minimum_;
  unsigned minimumFractionDigits_ = 2;
  unsigned maximumFractionDigits_ = 6;
  CalcState* calcState_ = nullptr;
};

}  // namespace ledgeon
