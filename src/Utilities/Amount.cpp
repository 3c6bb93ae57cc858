#include "Utilities/Amount.h"

#include <cmath>
#include <cstdlib>

#include <fmt/format.h>

#include "Utilities/LArithmetic.h"
#include "Utilities/Log.h"
#include "Utilities/internal/AmountKernel.h"

namespace ledgeon {

namespace {

using K = AmountKernel;

constexpr Amount kZero{};
constexpr Amount kOne = K::make(1, 0, false);
constexpr Amount kMinusOne = K::make(1, 0, true);
constexpr Amount kOneHundred = K::make(100, 0, false);
constexpr Amount kOneHundredth = K::make(1, -2, false);
constexpr Amount kNaN = K::nan();

constexpr char kNotANumberLog[] = "ERROR: String value (%@) is not a number (NaN)!";

// Truncates toward zero into the signed range; NaN gives 0 and values beyond the range stop at
// its ends.
int64_t truncateToInt64(double value) noexcept {
  if (std::isnan(value)) return 0;
  if (value >= 9223372036854775808.0) return INT64_MAX;
  if (value <= -9223372036854775808.0) return INT64_MIN;
  return static_cast<int64_t>(value);
}

}  // namespace

Amount Amount::zero() noexcept { return kZero; }
Amount Amount::one() noexcept { return kOne; }
Amount Amount::minusOne() noexcept { return kMinusOne; }
Amount Amount::oneHundred() noexcept { return kOneHundred; }
Amount Amount::oneHundredth() noexcept { return kOneHundredth; }
Amount Amount::notANumber() noexcept { return kNaN; }

Amount Amount::fromParts(UInt128 mantissa, int exponent, bool negative) noexcept {
  if (mantissa < kMantissaLimit && exponent >= kMinExponent && exponent <= kMaxExponent) {
    return K::make(mantissa, exponent, negative);
  }
  return K::finish(UInt256{0, mantissa}, exponent, negative, RoundingMode::Plain, false).value;
}

Amount Amount::fromInt64(int64_t value) noexcept {
  const bool negative = value < 0;
  const uint64_t magnitude =
      negative ? ~static_cast<uint64_t>(value) + 1 : static_cast<uint64_t>(value);
  return K::make(magnitude, 0, negative);
}

Amount Amount::fromUInt64(uint64_t value) noexcept { return K::make(value, 0, false); }

Amount Amount::fromDouble(double value) noexcept {
  if (!std::isfinite(value)) return kNaN;
  char buffer[40];
  const auto end = fmt::format_to_n(buffer, sizeof buffer, "{}", value);
  return fromString(std::string_view(buffer, end.size));
}

Amount Amount::safeDecimalNumberWithString(std::string_view text) {
  if (text.empty()) return kZero;
  const Amount value = fromString(text);
  if (value.isNaN()) {
    LLog(kNotANumberLog, text);
    return kZero;
  }
  return value;
}

Amount Amount::safeDecimalNumberWithString(std::string_view text,
                                           std::string_view localeIdentifier) {
  if (text.empty()) return kZero;
  const Amount value = fromString(text, localeIdentifier);
  if (value.isNaN()) {
    LLog(kNotANumberLog, text);
    return kZero;
  }
  return value;
}

Amount Amount::safeDecimalNumberWithValue(const Amount& value) noexcept {
  return value.isNaN() ? kZero : value;
}

Amount Amount::safeDecimalNumberWithValue(double value) noexcept {
  return safeDecimalNumberWithValue(fromDouble(value));
}

Amount Amount::safeDecimalNumberWithValue(int64_t value) noexcept { return fromInt64(value); }

Amount Amount::safeDecimalNumberWithValue(std::string_view text) {
  return safeDecimalNumberWithString(text);
}

ComparisonResult Amount::compareGeneral(Amount a, Amount other) noexcept {
  if (a.nan_ || other.nan_) {
    if (a.nan_ && other.nan_) return ComparisonResult::Same;
    return a.nan_ ? ComparisonResult::Ascending : ComparisonResult::Descending;
  }
  const int leftSign = a.mantissa_ == 0 ? 0 : a.negative_ ? -1 : 1;
  const int rightSign = other.mantissa_ == 0 ? 0 : other.negative_ ? -1 : 1;
  if (leftSign != rightSign) {
    return leftSign < rightSign ? ComparisonResult::Ascending : ComparisonResult::Descending;
  }
  if (leftSign == 0) return ComparisonResult::Same;
  if (a.exponent_ == other.exponent_) {
    if (a.mantissa_ == other.mantissa_) return ComparisonResult::Same;
    return (a.mantissa_ < other.mantissa_) == (leftSign > 0) ? ComparisonResult::Ascending
                                                             : ComparisonResult::Descending;
  }
  // Same sign: compare magnitudes, by order of magnitude first, then by aligned mantissas.
  int magnitude = 0;
  const int leftOrder = K::digits(a.mantissa_) + a.exponent_;
  const int rightOrder = K::digits(other.mantissa_) + other.exponent_;
  if (leftOrder != rightOrder) {
    magnitude = leftOrder < rightOrder ? -1 : 1;
  } else {
    UInt128 left = a.mantissa_;
    UInt128 right = other.mantissa_;
    if (a.exponent_ > other.exponent_) {
      left *= kPowersOf10[static_cast<size_t>(a.exponent_ - other.exponent_)];
    } else if (other.exponent_ > a.exponent_) {
      right *= kPowersOf10[static_cast<size_t>(other.exponent_ - a.exponent_)];
    }
    magnitude = left < right ? -1 : left > right ? 1 : 0;
  }
  const int result = magnitude * leftSign;
  return result < 0   ? ComparisonResult::Ascending
         : result > 0 ? ComparisonResult::Descending
                      : ComparisonResult::Same;
}

std::strong_ordering operator<=>(const Amount& a, const Amount& b) noexcept {
  const auto result = a.compare(b);
  return result == ComparisonResult::Ascending    ? std::strong_ordering::less
         : result == ComparisonResult::Descending ? std::strong_ordering::greater
                                                  : std::strong_ordering::equal;
}

Amount Amount::decimalNumberByAdding(const Amount& other) const noexcept {
  return add(*this, other, RoundingMode::Plain).value;
}
Amount Amount::decimalNumberBySubtracting(const Amount& other) const noexcept {
  return subtract(*this, other, RoundingMode::Plain).value;
}
Amount Amount::decimalNumberByMultiplyingBy(const Amount& other) const noexcept {
  return multiply(*this, other, RoundingMode::Plain).value;
}
Amount Amount::decimalNumberByDividingBy(const Amount& other) const noexcept {
  return divide(*this, other, RoundingMode::Plain).value;
}

Amount Amount::abs() const noexcept { return nan_ ? *this : K::make(mantissa_, exponent_, false); }

Amount Amount::decimalNumberByNegating() const noexcept {
  return nan_ ? *this : K::make(mantissa_, exponent_, !negative_);
}

Amount Amount::round() const noexcept {
  if (!isValid()) return kZero;
  return roundToScale(*this, 0, RoundingMode::Plain).value;
}

Amount Amount::roundWithScale(int scale) const noexcept {
  if (nan_) return *this;
  if (mantissa_ == 0) return kZero;
  // The scale travels as a 16-bit integer: wider values wrap, as they always have.
  return roundToScale(*this, static_cast<int16_t>(scale), RoundingMode::Plain).value;
}

Amount Amount::roundTo6Places() const noexcept {
  return roundToScale(*this, 6, RoundingMode::Plain).value;
}

Amount Amount::roundAccordingToCurrency(std::string_view isoCode) const {
  return roundToScale(*this, LArithmetic::getDecimalsForCurrency(isoCode), RoundingMode::Plain)
      .value;
}

Amount Amount::roundedDisplayPercentage() const noexcept {
  if (!isValid()) return kZero;
  const Amount percent = multiplyByPowerOf10(*this, 2, RoundingMode::Plain).value;
  return roundToScale(percent, 2, RoundingMode::Plain).value;
}

Amount Amount::roundUpToMajorDollarAmount() const noexcept {
  if (!isValid()) return kZero;
  static constexpr Amount kTenThousand = K::make(1, 4, false);
  static constexpr Amount kHundredThousand = K::make(1, 5, false);
  const int scale = isLessThan(kTenThousand) ? -3 : isLessThan(kHundredThousand) ? -4 : -5;
  return roundToScale(*this, scale, RoundingMode::Up).value;
}

double Amount::doubleValue() const noexcept {
  if (nan_) return std::nan("");
  if (mantissa_ == 0) return 0.0;
  static constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                            1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  double value = 0;
  if (mantissa_ < (UInt128{1} << 53) && exponent_ >= -22 && exponent_ <= 22) {
    // Both factors are exact doubles, so one multiplication or division rounds correctly.
    const auto m = static_cast<double>(static_cast<uint64_t>(mantissa_));
    value = exponent_ >= 0 ? m * kExactPowers[exponent_] : m / kExactPowers[-exponent_];
  } else {
    char buffer[48];
    const UInt128 high = mantissa_ / kPowersOf10[19];
    const auto low = static_cast<uint64_t>(mantissa_ % kPowersOf10[19]);
    const auto end = high == 0
                         ? fmt::format_to_n(buffer, sizeof buffer - 1, "{}e{}", low, exponent_)
                         : fmt::format_to_n(buffer, sizeof buffer - 1, "{}{:019}e{}",
                                            static_cast<uint64_t>(high), low, exponent_);
    buffer[end.size] = '\0';
    value = std::strtod(buffer, nullptr);
  }
  return negative_ ? -value : value;
}

int64_t Amount::longLongValue() const noexcept { return truncateToInt64(doubleValue()); }

uint64_t Amount::unsignedLongLongValue() const noexcept {
  const double value = doubleValue();
  if (std::isnan(value)) return 0;
  constexpr double kTopBit = 9223372036854775808.0;  // 2^63
  if (value < kTopBit) return static_cast<uint64_t>(truncateToInt64(value));
  // At or above 2^63 the signed conversion cannot hold the value: convert what lies above 2^63
  // and put the top bit back.
  return static_cast<uint64_t>(truncateToInt64(value - kTopBit)) | (uint64_t{1} << 63);
}

int32_t Amount::intValue() const noexcept {
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(longLongValue())));
}

uint32_t Amount::unsignedIntValue() const noexcept {
  return static_cast<uint32_t>(unsignedLongLongValue());
}

}  // namespace ledgeon
