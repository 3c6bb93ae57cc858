#include "Utilities/internal/AmountKernel.h"

namespace ledgeon {

namespace {

int bitWidthOf(UInt128 value) noexcept {
  const auto high = static_cast<uint64_t>(value >> 64);
  if (high != 0) return 128 - __builtin_clzll(high);
  const auto low = static_cast<uint64_t>(value);
  return low == 0 ? 0 : 64 - __builtin_clzll(low);
}

// floor((bits - 1) x log10(2)), possibly one too small: a safe first guess at a digit count.
int digitsFromBits(int bits) noexcept { return bits <= 1 ? 1 : (((bits - 1) * 1233) >> 12) + 1; }

}  // namespace

UInt256 multiplyWide(UInt128 a, UInt128 b) noexcept {
  const auto a0 = static_cast<uint64_t>(a);
  const auto a1 = static_cast<uint64_t>(a >> 64);
  const auto b0 = static_cast<uint64_t>(b);
  const auto b1 = static_cast<uint64_t>(b >> 64);
  const UInt128 p00 = static_cast<UInt128>(a0) * b0;
  const UInt128 p01 = static_cast<UInt128>(a0) * b1;
  const UInt128 p10 = static_cast<UInt128>(a1) * b0;
  const UInt128 p11 = static_cast<UInt128>(a1) * b1;
  const UInt128 middle = (p00 >> 64) + static_cast<uint64_t>(p01) + static_cast<uint64_t>(p10);
  UInt256 result;
  result.lo = (middle << 64) | static_cast<uint64_t>(p00);
  result.hi = p11 + (p01 >> 64) + (p10 >> 64) + (middle >> 64);
  return result;
}

UInt256 addWide(const UInt256& a, const UInt256& b) noexcept {
  UInt256 result;
  result.lo = a.lo + b.lo;
  result.hi = a.hi + b.hi + (result.lo < a.lo ? 1 : 0);
  return result;
}

UInt256 subtractWide(const UInt256& a, const UInt256& b) noexcept {
  UInt256 result;
  result.lo = a.lo - b.lo;
  result.hi = a.hi - b.hi - (a.lo < b.lo ? 1 : 0);
  return result;
}

bool lessWide(const UInt256& a, const UInt256& b) noexcept {
  return a.hi < b.hi || (a.hi == b.hi && a.lo < b.lo);
}

uint64_t divideWide(UInt256& n, uint64_t divisor) noexcept {
  uint64_t limbs[4] = {static_cast<uint64_t>(n.hi >> 64), static_cast<uint64_t>(n.hi),
                       static_cast<uint64_t>(n.lo >> 64), static_cast<uint64_t>(n.lo)};
  uint64_t remainder = 0;
  for (auto& limb : limbs) {
    const UInt128 current = (static_cast<UInt128>(remainder) << 64) | limb;
    limb = static_cast<uint64_t>(current / divisor);
    remainder = static_cast<uint64_t>(current % divisor);
  }
  n.hi = (static_cast<UInt128>(limbs[0]) << 64) | limbs[1];
  n.lo = (static_cast<UInt128>(limbs[2]) << 64) | limbs[3];
  return remainder;
}

int AmountKernel::bitWidth(UInt128 value) noexcept { return bitWidthOf(value); }

int AmountKernel::digits(UInt128 value) noexcept {
  if (value == 0) return 0;
  int count = digitsFromBits(bitWidthOf(value));
  while (count < 39 && value >= kPowersOf10[static_cast<size_t>(count)]) ++count;
  return count;
}

int AmountKernel::digitsLowerBound(const UInt256& value) noexcept {
  if (value.hi == 0) return digits(value.lo);
  return digitsFromBits(128 + bitWidthOf(value.hi));
}

bool AmountKernel::roundsAway(RoundingMode mode, bool negative, unsigned guard, bool sticky,
                              bool odd) noexcept {
  if (guard == 0 && !sticky) return false;
  switch (mode) {
    case RoundingMode::Plain:
      return guard >= 5;
    case RoundingMode::Down:
      return negative;
    case RoundingMode::Up:
      return !negative;
    case RoundingMode::Bankers:
      return guard > 5 || (guard == 5 && (sticky || odd));
  }
  return guard >= 5;
}

void AmountKernel::dropDigits(UInt256& n, int count, unsigned& guard, bool& sticky) noexcept {
  if (count <= 0) return;
  if (count > 78) {  // more digits than n can hold
    sticky = sticky || guard != 0 || !n.isZero();
    guard = 0;
    n = UInt256{};
    return;
  }
  sticky = sticky || guard != 0;
  int below = count - 1;
  while (below > 0) {
    const int chunk = below > 19 ? 19 : below;
    if (divideWide(n, static_cast<uint64_t>(kPowersOf10[static_cast<size_t>(chunk)])) != 0) {
      sticky = true;
    }
    below -= chunk;
  }
  guard = static_cast<unsigned>(divideWide(n, 10));
}

Calculation AmountKernel::finish(UInt256 n, int exponent, bool negative, RoundingMode mode,
                                 bool sticky) noexcept {
  if (n.isZero() && !sticky) return {Amount(), CalculationError::NoError};
  int drop = digitsLowerBound(n) - Amount::kMaxDigits;
  if (drop < 0) drop = 0;
  if (exponent + drop < Amount::kMinExponent) drop = Amount::kMinExponent - exponent;
  unsigned guard = 0;
  dropDigits(n, drop, guard, sticky);
  exponent += drop;
  const UInt256 limit{0, kMantissaLimit};
  while (!lessWide(n, limit)) {  // the digit count was one short
    dropDigits(n, 1, guard, sticky);
    ++exponent;
  }
  UInt128 mantissa = n.lo;
  const bool inexact = guard != 0 || sticky;
  if (roundsAway(mode, negative, guard, sticky, (mantissa & 1) != 0)) {
    if (++mantissa == kMantissaLimit) {
      mantissa = kPowersOf10[37];
      ++exponent;
    }
  }
  if (mantissa == 0) {
    return inexact ? Calculation{nan(), CalculationError::Underflow}
                   : Calculation{Amount(), CalculationError::NoError};
  }
  while (exponent > Amount::kMaxExponent && mantissa < kPowersOf10[37]) {
    mantissa *= 10;
    --exponent;
  }
  if (exponent > Amount::kMaxExponent) return {nan(), CalculationError::Overflow};
  return {make(mantissa, exponent, negative),
          inexact ? CalculationError::LossOfPrecision : CalculationError::NoError};
}

}  // namespace ledgeon
