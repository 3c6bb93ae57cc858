#include "Utilities/LCurrencyFormatter.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/parsepos.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include "Utilities/CalcState.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

std::string toUtf8(const icu::UnicodeString& text) {
  std::string out;
  text.toUTF8String(out);
  return out;
}

std::string symbol(const icu::DecimalFormatSymbols& symbols,
                   icu::DecimalFormatSymbols::ENumberFormatSymbol which) {
  return toUtf8(symbols.getConstSymbol(which));
}

bool startsWithAt(std::string_view text, std::size_t at, std::string_view prefix) {
  return !prefix.empty() && text.substr(at, prefix.size()) == prefix;
}

std::size_t occurrences(std::string_view text, std::string_view what) {
  if (what.empty()) return 0;
  std::size_t count = 0;
  for (auto at = text.find(what); at != std::string_view::npos; at = text.find(what, at + 1)) {
    ++count;
  }
  return count;
}

// Keyboards type the ASCII hyphen-minus even where the locale writes U+2212 (Swedish, Norwegian,
// ...), so "-" is a minus sign in every locale.
constexpr std::string_view kAsciiMinus = "-";

std::size_t minusSignCount(std::string_view text, std::string_view localeMinus) {
  const std::size_t count = occurrences(text, kAsciiMinus);
  return localeMinus == kAsciiMinus ? count : count + occurrences(text, localeMinus);
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n";
  const auto first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// ICU writes large and small magnitudes in scientific form ("1.234E-5"); the locale-free Amount
// reader takes "1.234e-5".
std::string amountText(std::string_view decimal) {
  std::string text;
  text.reserve(decimal.size());
  for (std::size_t i = 0; i < decimal.size(); ++i) {
    const char c = decimal[i];
    if (c == 'E') {
      text += 'e';
    } else if (c == '+' && i > 0 && decimal[i - 1] == 'E') {
      continue;
    } else {
      text += c;
    }
  }
  return text;
}

// Where an offset of the original text lands once the spans in `removed` (sorted, disjoint, in
// original offsets) are taken out.
std::size_t offsetAfterRemoving(std::size_t offset,
                                const std::vector<std::pair<std::size_t, std::size_t>>& removed) {
  std::size_t shift = 0;
  for (const auto& [start, length] : removed) {
    if (offset <= start) break;
    shift += std::min(length, offset - start);
  }
  return offset - shift;
}

}  // namespace

LCurrencyFormatter::LCurrencyFormatter(std::string_view localeIdentifier)
    : localeIdentifier_(localeIdentifier) {
  configure();
}

LCurrencyFormatter::~LCurrencyFormatter() = default;

void LCurrencyFormatter::configure() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale(localeIdentifier_.c_str());
  std::unique_ptr<icu::NumberFormat> format(
      icu::NumberFormat::createInstance(locale, UNUM_DECIMAL, status));
  auto* decimal = dynamic_cast<icu::DecimalFormat*>(format.get());
  if (U_FAILURE(status) || decimal == nullptr) {
    throw std::runtime_error(std::string("ICU has no number format for locale ") +
                             localeIdentifier_ + ": " + u_errorName(status));
  }
  format.release();
  format_.reset(decimal);
  format_->setRoundingMode(icu::DecimalFormat::kRoundHalfUp);
  format_->setMinimumIntegerDigits(1);
  format_->setMinimumFractionDigits(static_cast<int32_t>(minimumFractionDigits_));
  format_->setMaximumFractionDigits(static_cast<int32_t>(maximumFractionDigits_));
  format_->setGroupingUsed(true);
  // Amount fields never hold exponents; "1E5" pasted in is not a number.
  format_->setParseNoExponent(true);

  const icu::DecimalFormatSymbols& symbols = *format_->getDecimalFormatSymbols();
  decimalSeparator_ = symbol(symbols, icu::DecimalFormatSymbols::kDecimalSeparatorSymbol);
  groupingSeparator_ = symbol(symbols, icu::DecimalFormatSymbols::kGroupingSeparatorSymbol);
  minusSign_ = symbol(symbols, icu::DecimalFormatSymbols::kMinusSignSymbol);
  nanSymbol_ = symbol(symbols, icu::DecimalFormatSymbols::kNaNSymbol);
}

void LCurrencyFormatter::setMaximumFractionDigits(unsigned digits) {
  maximumFractionDigits_ = std::min(digits, 30u);
  minimumFractionDigits_ = std::min(2u, maximumFractionDigits_);
  format_->setMinimumFractionDigits(static_cast<int32_t>(minimumFractionDigits_));
  format_->setMaximumFractionDigits(static_cast<int32_t>(maximumFractionDigits_));
}

bool LCurrencyFormatter::isCalculatorActive() const {
  return calcState_ != nullptr && calcState_->enabled();
}

std::string LCurrencyFormatter::stringForObjectValue(const Amount& value) const {
  if (value.isNaN()) return nanSymbol_;
  const std::string plain = value.stringValue();
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString out;
  format_->format(icu::StringPiece(plain.data(), static_cast<int32_t>(plain.size())), out, nullptr,
                  status);
  if (U_FAILURE(status)) return plain;
  return toUtf8(out);
}

std::string LCurrencyFormatter::editingStringForObjectValue(const Amount& value) const {
  std::string display = stringForObjectValue(value);
  return filterEditingString_ ? removingGroupingSeparators(display) : display;
}

std::string LCurrencyFormatter::removingGroupingSeparators(std::string_view text) const {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (startsWithAt(text, i, groupingSeparator_)) {
      i += groupingSeparator_.size();
    } else {
      out += text[i++];
    }
  }
  return out;
}

bool LCurrencyFormatter::isPartialStringValid(std::string& partialString,
                                              TextRange& proposedSelectedRange,
                                              std::string_view originalString,
                                              TextRange originalSelectedRange,
                                              std::string* errorDescription) const {
  std::string proposal = partialString;
  TextRange selection = proposedSelectedRange;
  if (filterEditingString_ && !groupingSeparator_.empty()) {
    std::vector<std::pair<std::size_t, std::size_t>> removed;
    for (auto at = proposal.find(groupingSeparator_); at != std::string::npos;
         at = proposal.find(groupingSeparator_, at + groupingSeparator_.size())) {
      removed.emplace_back(at, groupingSeparator_.size());
    }
    const std::size_t end = selection.location + selection.length;
    selection.location = offsetAfterRemoving(selection.location, removed);
    selection.length = offsetAfterRemoving(end, removed) - selection.location;
    proposal = removingGroupingSeparators(proposal);
  }

  std::string problem;
  if (!characterOKInString(proposal)) {
    problem = isCalculatorActive()
                  ? "An amount takes digits, a minus sign, a decimal separator and + - * / = %"
                  : "An amount takes digits, a minus sign and a decimal separator";
  } else if (!isCalculatorActive()) {
    if (!signsOKInString(proposal)) {
      problem = minusSignCount(proposal, minusSign_) > 1 ? "An amount has only one minus sign"
                                                         : "This amount cannot be negative";
    } else if (!decimalsOKInString(proposal)) {
      problem = "An amount has only one decimal separator";
    }
  }
  if (!problem.empty()) {
    if (errorDescription != nullptr) *errorDescription = problem;
    partialString.assign(originalString);
    proposedSelectedRange = originalSelectedRange;
    return false;
  }
  const bool unchanged = proposal == partialString;
  partialString = std::move(proposal);
  proposedSelectedRange = selection;
  return unchanged;
}

bool LCurrencyFormatter::getObjectValue(std::optional<Amount>& objectValue, std::string_view string,
                                        const TextRange* range, std::string* error) const {
  auto fail = [&](std::string message) {
    if (error != nullptr) *error = std::move(message);
    return false;
  };
  if (range != nullptr) {
    if (range->location > string.size() || range->length > string.size() - range->location) {
      return fail(stringWithFormat("The range {%lu, %lu} lies outside \"%@\"", range->location,
                                   range->length, string));
    }
    string = string.substr(range->location, range->length);
  }
  const std::string_view text = trimmed(string);
  if (text.empty()) {
    objectValue.reset();
    return true;
  }

  Amount value;
  const bool arithmetic =
      isCalculatorActive() &&
      text.substr(startsWithAt(text, 0, minusSign_)    ? minusSign_.size()
                  : startsWithAt(text, 0, kAsciiMinus) ? kAsciiMinus.size()
                                                       : 0)
              .find_first_of(CalcState::kOperationCharacters) != std::string_view::npos;
  if (arithmetic) {
    auto result = calcState_->evaluate(text);
    if (!result) return fail(result.error().localizedDescription());
    value = *result;
  } else {
    value = amountFromString(text);
    if (value.isNaN()) return fail(stringWithFormat("\"%@\" is not an amount", text));
  }
  if (calcState_ != nullptr && calcState_->positiveNumbersOnly()) value = value.abs();
  objectValue = value.roundWithScale(static_cast<int>(maximumFractionDigits_));
  return true;
}

bool LCurrencyFormatter::characterOKInString(std::string_view string) const {
  const bool calculator = isCalculatorActive();
  for (std::size_t i = 0; i < string.size();) {
    bool matched = false;
    for (const std::string_view s :
         {std::string_view(decimalSeparator_), std::string_view(groupingSeparator_),
          std::string_view(minusSign_), kAsciiMinus}) {
      if (startsWithAt(string, i, s)) {
        i += s.size();
        matched = true;
        break;
      }
    }
    if (matched) continue;
    UChar32 c = 0;
    int32_t offset = static_cast<int32_t>(i);
    U8_NEXT(reinterpret_cast<const uint8_t*>(string.data()), offset,
            static_cast<int32_t>(string.size()), c);
    i = static_cast<std::size_t>(offset);
    if (c < 0) return false;
    if (u_isdigit(c)) continue;
    if (calculator && CalcState::isOperationCharacter(static_cast<char32_t>(c))) continue;
    return false;
  }
  return true;
}

bool LCurrencyFormatter::signsOKInString(std::string_view string) const {
  const std::size_t minusSigns = minusSignCount(string, minusSign_);
  if (minusSigns == 0) return true;
  if (minimum_ && (minimum_->isZero() || minimum_->isPositive())) return false;
  return minusSigns == 1;
}

bool LCurrencyFormatter::decimalsOKInString(std::string_view string) const {
  return occurrences(string, decimalSeparator_) <= 1;
}

bool LCurrencyFormatter::commasOKInString(std::string_view /*string*/) const { return true; }

Amount LCurrencyFormatter::amountFromString(std::string_view text) const {
  text = trimmed(text);
  if (text.empty()) return Amount::notANumber();
  icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
  if (minusSign_ != kAsciiMinus) {
    unicode.findAndReplace(icu::UnicodeString(u'-'), icu::UnicodeString::fromUTF8(minusSign_));
  }
  icu::Formattable parsed;
  icu::ParsePosition position(0);
  format_->parse(unicode, parsed, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != unicode.length()) {
    return Amount::notANumber();
  }
  UErrorCode status = U_ZERO_ERROR;
  const icu::StringPiece decimal = parsed.getDecimalNumber(status);
  if (U_FAILURE(status)) return Amount::notANumber();
  return Amount::fromString(
      amountText(std::string_view(decimal.data(), static_cast<std::size_t>(decimal.size()))));
}

Amount LCurrencyFormatter::numberFromFormattedString(std::string_view text,
                                                     std::string_view localeIdentifier) {
  // Imports call this once per row: keep the last locale's formatter for this thread.
  thread_local std::unique_ptr<LCurrencyFormatter> formatter;
  if (!formatter || formatter->localeIdentifier() != localeIdentifier) {
    formatter = std::make_unique<LCurrencyFormatter>(localeIdentifier);
  }
  return formatter->amountFromString(formatter->removingGroupingSeparators(text));
}

bool LCurrencyFormatter::isKnownLocale(std::string_view localeIdentifier) {
  const icu::Locale locale(std::string(localeIdentifier).c_str());
  if (locale.isBogus() || *locale.getLanguage() == '\0') return false;
  int32_t count = 0;
  const icu::Locale* available = icu::NumberFormat::getAvailableLocales(count);
  for (int32_t i = 0; i < count; ++i) {
    if (std::string_view(available[i].getName()) == locale.getName()) return true;
  }
  return false;
}

}  // namespace ledgeon
