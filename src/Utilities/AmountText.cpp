// Amount text: the locale-free plain form used for storage and interchange, and the decimal
// separator and minus sign of an ICU locale for text a user reads or types.
#include <map>
#include <mutex>

#include <fmt/format.h>
#include <unicode/dcfmtsym.h>
#include <unicode/locid.h>

#include "Utilities/Amount.h"
#include "Utilities/internal/AmountKernel.h"

namespace ledgeon {

namespace {

using K = AmountKernel;

struct LocaleSymbols {
  std::string decimalSeparator;
  std::string minusSign;
};

// ICU builds symbols slowly, so each locale's are read once.
LocaleSymbols symbolsFor(std::string_view localeIdentifier) {
  static std::mutex mutex;
  static std::map<std::string, LocaleSymbols, std::less<>> cache;
  std::lock_guard lock(mutex);
  if (auto found = cache.find(localeIdentifier); found != cache.end()) return found->second;
  LocaleSymbols symbols;
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale(std::string(localeIdentifier).c_str());
  const icu::DecimalFormatSymbols icuSymbols(locale, status);
  if (U_SUCCESS(status)) {
    icuSymbols.getSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol)
        .toUTF8String(symbols.decimalSeparator);
    icuSymbols.getSymbol(icu::DecimalFormatSymbols::kMinusSignSymbol)
        .toUTF8String(symbols.minusSign);
  }
  if (symbols.decimalSeparator.empty()) symbols.decimalSeparator.push_back('.');
  if (symbols.minusSign.empty()) symbols.minusSign.push_back('-');
  cache.emplace(std::string(localeIdentifier), symbols);
  return symbols;
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads "e[+-]digits" at the end of a number; false when anything else follows.
bool parseExponent(std::string_view text, size_t& i, int& exponent) {
  ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  if (i >= text.size() || !isDigit(text[i])) return false;
  int value = 0;
  for (; i < text.size() && isDigit(text[i]); ++i) {
    if (value < 100000) value = value * 10 + (text[i] - '0');  // beyond that it is out of range
  }
  exponent = negative ? -value : value;
  return i == text.size();
}

std::string mantissaDigits(UInt128 mantissa) {
  const UInt128 chunk = kPowersOf10[19];
  if (mantissa < chunk) return fmt::format("{}", static_cast<uint64_t>(mantissa));
  const UInt128 high = mantissa / chunk;
  const auto low = static_cast<uint64_t>(mantissa % chunk);
  if (high < chunk) return fmt::format("{}{:019}", static_cast<uint64_t>(high), low);
  return fmt::format("{}{:019}{:019}", static_cast<uint64_t>(high / chunk),
                     static_cast<uint64_t>(high % chunk), low);
}

}  // namespace

Amount Amount::fromString(std::string_view text) noexcept {
  text = trimmed(text);
  size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  UInt128 mantissa = 0;
  int kept = 0;
  int exponent = 0;
  int extraDigits = 0;
  unsigned guard = 0;
  bool sticky = false;
  bool sawDigit = false;
  bool sawPoint = false;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '.') {
      if (sawPoint) return notANumber();
      sawPoint = true;
      continue;
    }
    if (c == 'e' || c == 'E') {
      int written = 0;
      if (!sawDigit || !parseExponent(text, i, written)) return notANumber();
      exponent += written;
      break;
    }
    if (!isDigit(c)) return notANumber();
    sawDigit = true;
    const auto digit = static_cast<unsigned>(c - '0');
    if (kept < kMaxDigits) {
      if (mantissa == 0 && digit == 0) {  // a leading zero only moves the point
        if (sawPoint) --exponent;
        continue;
      }
      mantissa = mantissa * 10 + digit;
      ++kept;
      if (sawPoint) --exponent;
    } else {  // beyond 38 digits: kept only to round with
      if (extraDigits++ == 0) {
        guard = digit;
      } else if (digit != 0) {
        sticky = true;
      }
      if (!sawPoint) ++exponent;
    }
  }
  if (!sawDigit) return notANumber();
  const Calculation fitted =
      extraDigits == 0
          ? K::finish(UInt256{0, mantissa}, exponent, negative, RoundingMode::Plain, false)
          : K::finish(addWide(multiplyWide(mantissa, 10), UInt256{0, guard}), exponent - 1,
                      negative, RoundingMode::Plain, sticky);
  if (fitted.error == CalculationError::Overflow || fitted.error == CalculationError::Underflow) {
    return notANumber();
  }
  return fitted.value;
}

Amount Amount::fromString(std::string_view text, std::string_view localeIdentifier) {
  const LocaleSymbols symbols = symbolsFor(localeIdentifier);
  std::string plain;
  plain.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const std::string_view rest = text.substr(i);
    if (rest.starts_with(symbols.decimalSeparator)) {
      plain += '.';
      i += symbols.decimalSeparator.size();
    } else if (rest.starts_with(symbols.minusSign)) {
      plain += '-';
      i += symbols.minusSign.size();
    } else if (text[i] == '.') {  // not this locale's decimal separator
      return notANumber();
    } else {
      plain += text[i++];
    }
  }
  return fromString(plain);
}

std::string Amount::stringValue() const {
  if (nan_) return "NaN";
  if (mantissa_ == 0) return "0";
  std::string digits = mantissaDigits(mantissa_);
  int exponent = exponent_;
  while (exponent < 0 && digits.back() == '0') {
    digits.pop_back();
    ++exponent;
  }
  std::string text = negative_ ? "-" : "";
  if (exponent >= 0) {
    text += digits;
    text.append(static_cast<size_t>(exponent), '0');
    return text;
  }
  const int point = static_cast<int>(digits.size()) + exponent;
  if (point <= 0) {
    text += "0.";
    text.append(static_cast<size_t>(-point), '0');
    text += digits;
  } else {
    text += digits.substr(0, static_cast<size_t>(point));
    text += '.';
    text += digits.substr(static_cast<size_t>(point));
  }
  return text;
}

std::string Amount::descriptionWithLocale(std::string_view localeIdentifier) const {
  std::string text = stringValue();
  const size_t point = text.find('.');
  if (point != std::string::npos) {
    text.replace(point, 1, symbolsFor(localeIdentifier).decimalSeparator);
  }
  return text;
}

}  // namespace ledgeon
