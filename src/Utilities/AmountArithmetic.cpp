// The arithmetic of Amount. Common money operations (equal or close exponents, small mantissas)
// stay in 128-bit registers; everything else goes through an exact 256-bit intermediate that is
// rounded once, so results are correctly rounded to 38 digits.
#include <algorithm>

#include "Utilities/Amount.h"
#include "Utilities/internal/AmountKernel.h"

namespace ledgeon {

namespace {

using K = AmountKernel;

constexpr Calculation kNaNResult{K::nan(), CalculationError::NoError};

UInt256 multiplyWideBySmall(const UInt256& n, UInt128 factor) noexcept {
  UInt256 result = multiplyWide(n.lo, factor);
  result.hi += n.hi * factor;  // the callers know the product fits in 256 bits
  return result;
}

int clampExponent(int64_t exponent) noexcept {
  return static_cast<int>(std::clamp<int64_t>(exponent, -100000, 100000));
}

Calculation addMagnitudes(UInt128 ma, int ea, bool na, UInt128 mb, int eb, bool nb,
                          RoundingMode mode) noexcept {
  if (mb == 0) return {K::make(ma, ea, na), CalculationError::NoError};
  if (ma == 0) return {K::make(mb, eb, nb), CalculationError::NoError};
  if (ea == eb) {  // the usual case: amounts in the same currency
    if (na != nb) {
      return ma >= mb ? Calculation{K::make(ma - mb, ea, na), CalculationError::NoError}
                      : Calculation{K::make(mb - ma, ea, nb), CalculationError::NoError};
    }
    const UInt128 sum = ma + mb;
    if (sum < kMantissaLimit) return {K::make(sum, ea, na), CalculationError::NoError};
    return K::finish(UInt256{0, sum}, ea, na, mode, false);
  }
  if (ea < eb) {
    std::swap(ma, mb);
    std::swap(ea, eb);
    std::swap(na, nb);
  }
  const int shift = ea - eb;
  if (shift < 39 && ma < kPowersOf10[static_cast<size_t>(38 - shift)]) {
    const UInt128 aligned = ma * kPowersOf10[static_cast<size_t>(shift)];
    if (na == nb) {
      const UInt128 sum = aligned + mb;
      if (sum < kMantissaLimit) return {K::make(sum, eb, na), CalculationError::NoError};
      return K::finish(UInt256{0, sum}, eb, na, mode, false);
    }
    return aligned >= mb ? Calculation{K::make(aligned - mb, eb, na), CalculationError::NoError}
                         : Calculation{K::make(mb - aligned, eb, nb), CalculationError::NoError};
  }
  // Align a upward by up to 39 places; whatever of b lies further down only counts as a sticky
  // fraction, which is enough to round correctly because a then has at least 39 digits.
  const int up = std::min(shift, 39);
  UInt256 a = up == 39 ? multiplyWideBySmall(multiplyWide(ma, kPowersOf10[38]), 10)
                       : multiplyWide(ma, kPowersOf10[static_cast<size_t>(up)]);
  const int down = shift - up;
  UInt256 b{0, mb};
  bool sticky = false;
  if (down > 0) {
    if (down > 38) {
      b = UInt256{};
      sticky = true;
    } else {
      const UInt128 unit = kPowersOf10[static_cast<size_t>(down)];
      sticky = mb % unit != 0;
      b.lo = mb / unit;
    }
  }
  const int exponent = ea - up;
  if (na == nb) return K::finish(addWide(a, b), exponent, na, mode, sticky);
  if (lessWide(a, b)) return K::finish(subtractWide(b, a), exponent, nb, mode, false);
  UInt256 difference = subtractWide(a, b);
  if (sticky) difference = subtractWide(difference, UInt256{0, 1});
  return K::finish(difference, exponent, na, mode, sticky);
}

// One more digit of a long division whose divisor is too wide to take several at once.
unsigned nextQuotientDigit(UInt128& remainder, UInt128 divisor) noexcept {
  UInt256 scaled = multiplyWide(remainder, 10);
  const UInt256 wideDivisor{0, divisor};
  unsigned digit = 0;
  while (!lessWide(scaled, wideDivisor)) {
    scaled = subtractWide(scaled, wideDivisor);
    ++digit;
  }
  remainder = scaled.lo;
  return digit;
}

}  // namespace

Calculation Amount::addGeneral(Amount a, Amount b, RoundingMode mode, bool negateB) noexcept {
  if (a.nan_ || b.nan_) return kNaNResult;
  return addMagnitudes(a.mantissa_, a.exponent_, a.negative_, b.mantissa_, b.exponent_,
                       b.negative_ != negateB, mode);
}

Calculation Amount::multiplyGeneral(Amount a, Amount b, RoundingMode mode) noexcept {
  if (a.nan_ || b.nan_) return kNaNResult;
  if (a.mantissa_ == 0 || b.mantissa_ == 0) return {Amount(), CalculationError::NoError};
  const int exponent = a.exponent_ + b.exponent_;
  const bool negative = a.negative_ != b.negative_;
  if ((a.mantissa_ >> 64) == 0 && (b.mantissa_ >> 64) == 0) {
    const UInt128 product = a.mantissa_ * b.mantissa_;
    if (product < kMantissaLimit && exponent >= kMinExponent && exponent <= kMaxExponent) {
      return {K::make(product, exponent, negative), CalculationError::NoError};
    }
  }
  return K::finish(multiplyWide(a.mantissa_, b.mantissa_), exponent, negative, mode, false);
}

Calculation Amount::divide(const Amount& a, const Amount& b, RoundingMode mode) noexcept {
  if (a.nan_ || b.nan_) return kNaNResult;
  if (b.mantissa_ == 0) return {K::nan(), CalculationError::DivideByZero};
  if (a.mantissa_ == 0) return {Amount(), CalculationError::NoError};
  const bool negative = a.negative_ != b.negative_;
  const UInt128 divisor = b.mantissa_;
  int exponent = a.exponent_ - b.exponent_;
  UInt128 quotient = a.mantissa_ / divisor;
  UInt128 remainder = a.mantissa_ - quotient * divisor;
  if (remainder == 0 && exponent >= kMinExponent && exponent <= kMaxExponent) {
    return {K::make(quotient, exponent, negative), CalculationError::NoError};
  }
  // Long division, several digits per step while remainder x 10^step fits in 128 bits.
  const int digitsPerStep = kMaxDigits - K::digits(divisor);
  while (remainder != 0 || exponent > kMaxExponent) {
    int step = std::min(kMaxDigits - K::digits(quotient), exponent - kMinExponent);
    if (remainder == 0) step = std::min(step, exponent - kMaxExponent);
    if (step <= 0) break;
    if (digitsPerStep == 0) {
      quotient = quotient * 10 + nextQuotientDigit(remainder, divisor);
      --exponent;
      continue;
    }
    step = std::min(step, digitsPerStep);
    const UInt128 scale = kPowersOf10[static_cast<size_t>(step)];
    const UInt128 scaled = remainder * scale;
    const UInt128 digits = scaled / divisor;
    quotient = quotient * scale + digits;
    remainder = scaled - digits * divisor;
    exponent -= step;
  }
  // What is left of the remainder decides the rounding: below, at or above half a unit.
  const UInt128 rest = divisor - remainder;
  const unsigned guard = remainder == 0 ? 0 : remainder > rest ? 6 : remainder == rest ? 5 : 0;
  const bool sticky = remainder != 0 && remainder != rest;
  if (exponent < kMinExponent) {  // too small from the start: let the general rounding decide
    const UInt256 widened = addWide(multiplyWide(quotient, 10), UInt256{0, guard});
    return K::finish(widened, exponent - 1, negative, mode, sticky);
  }
  if (remainder == 0) {
    if (exponent > kMaxExponent) return {K::nan(), CalculationError::Overflow};
    return {K::make(quotient, exponent, negative), CalculationError::NoError};
  }
  if (K::roundsAway(mode, negative, guard, sticky, (quotient & 1) != 0)) {
    if (++quotient == kMantissaLimit) {
      quotient = kPowersOf10[37];
      ++exponent;
    }
  }
  if (quotient == 0) return {K::nan(), CalculationError::Underflow};
  if (exponent > kMaxExponent) return {K::nan(), CalculationError::Overflow};
  return {K::make(quotient, exponent, negative), CalculationError::LossOfPrecision};
}

Calculation Amount::power(const Amount& a, unsigned exponent, RoundingMode mode) noexcept {
  if (a.nan_) return kNaNResult;
  if (exponent == 0) return {one(), CalculationError::NoError};
  if (a.mantissa_ == 0) return {Amount(), CalculationError::NoError};
  const bool negative = a.negative_ && (exponent % 2) == 1;
  const int64_t resultExponent = static_cast<int64_t>(a.exponent_) * exponent;
  // Exact when the whole power fits in 256 bits: rounded once, like every other operation.
  const bool fits =
      a.mantissa_ == 1 || static_cast<uint64_t>(K::bitWidth(a.mantissa_)) * exponent <= 256;
  UInt256 exact{0, 1};
  if (fits && a.mantissa_ != 1) {
    for (unsigned i = 0; i < exponent; ++i) exact = multiplyWideBySmall(exact, a.mantissa_);
  }
  if (fits) return K::finish(exact, clampExponent(resultExponent), negative, mode, false);
  // Too wide to hold exactly: square and multiply, rounding each step with the caller's mode.
  // The steps work on the magnitude, so a negative result rounds its magnitude the other way.
  if (negative && mode == RoundingMode::Down) {
    mode = RoundingMode::Up;
  } else if (negative && mode == RoundingMode::Up) {
    mode = RoundingMode::Down;
  }
  Amount base = a.abs();
  Amount result = one();
  CalculationError error = CalculationError::NoError;
  for (unsigned n = exponent;;) {
    if (n & 1U) {
      const Calculation step = multiply(result, base, mode);
      if (step.error != CalculationError::NoError &&
          step.error != CalculationError::LossOfPrecision) {
        return step;
      }
      if (step.error == CalculationError::LossOfPrecision) error = step.error;
      result = step.value;
    }
    n >>= 1;
    if (n == 0) break;
    const Calculation square = multiply(base, base, mode);
    if (square.error != CalculationError::NoError &&
        square.error != CalculationError::LossOfPrecision) {
      return square;
    }
    if (square.error == CalculationError::LossOfPrecision) error = square.error;
    base = square.value;
  }
  return {negative ? result.decimalNumberByNegating() : result, error};
}

Calculation Amount::multiplyByPowerOf10(const Amount& a, int power, RoundingMode mode) noexcept {
  if (a.nan_) return kNaNResult;
  if (a.mantissa_ == 0) return {Amount(), CalculationError::NoError};
  return K::finish(UInt256{0, a.mantissa_},
                   clampExponent(static_cast<int64_t>(a.exponent_) + power), a.negative_, mode,
                   false);
}

Calculation Amount::roundToScale(const Amount& a, int scale, RoundingMode mode) noexcept {
  if (a.nan_) return kNaNResult;
  if (a.mantissa_ == 0) return {Amount(), CalculationError::NoError};
  const int target = clampExponent(-static_cast<int64_t>(scale));
  if (a.exponent_ >= target) return {a, CalculationError::NoError};
  const int drop = target - a.exponent_;
  UInt128 mantissa = 0;
  unsigned guard = 0;
  bool sticky = false;
  if (drop <= 38) {
    // The dropped part, compared with half a unit, is all the rounding needs.
    const UInt128 unit = kPowersOf10[static_cast<size_t>(drop)];
    UInt128 rest = 0;
    if (a.mantissa_ >> 64 == 0 && unit >> 64 == 0) {
      const auto m = static_cast<uint64_t>(a.mantissa_);
      const auto u = static_cast<uint64_t>(unit);
      mantissa = m / u;
      rest = m - static_cast<uint64_t>(mantissa) * u;
    } else {
      mantissa = a.mantissa_ / unit;
      rest = a.mantissa_ - mantissa * unit;
    }
    if (rest != 0) {
      const UInt128 other = unit - rest;
      guard = rest > other ? 6 : rest == other ? 5 : 0;
      sticky = rest != other;
    }
  } else {
    sticky = true;  // every digit goes, and the first of them is a leading zero
  }
  if (K::roundsAway(mode, a.negative_, guard, sticky, (mantissa & 1) != 0)) ++mantissa;
  if (mantissa == 0) return {Amount(), CalculationError::NoError};
  int exponent = target;
  while (exponent > kMaxExponent && mantissa < kPowersOf10[37]) {
    mantissa *= 10;
    --exponent;
  }
  if (exponent > kMaxExponent) return {K::nan(), CalculationError::Overflow};
  return {K::make(mantissa, exponent, a.negative_), CalculationError::NoError};
}

}  // namespace ledgeon
