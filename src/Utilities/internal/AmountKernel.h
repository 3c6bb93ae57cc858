#pragma once

#include <array>
#include <cstdint>

#include "Utilities/Amount.h"

namespace ledgeon {

// A 256-bit unsigned integer: just wide enough for the exact product of two 38-digit mantissas
// and for a mantissa aligned 39 places up for an addition.
struct UInt256 {
  UInt128 hi = 0;
  UInt128 lo = 0;

  bool isZero() const noexcept { return hi == 0 && lo == 0; }
};

// Powers of ten that fit a mantissa: 10^0 ... 10^38.
inline constexpr std::array<UInt128, 39> kPowersOf10 = [] {
  std::array<UInt128, 39> powers{};
  UInt128 p = 1;
  for (auto& slot : powers) {
    slot = p;
    p *= 10;
  }
  return powers;
}();
inline constexpr UInt128 kMantissaLimit = kPowersOf10[38];

// The arithmetic kernel behind Amount: digit counting, exact wide intermediates, and the one
// place where a result is rounded to 38 digits and fitted into the exponent range.
struct AmountKernel {
  static constexpr Amount make(UInt128 mantissa, int exponent, bool negative) noexcept {
    return mantissa == 0 ? Amount()
                         : Amount(mantissa, static_cast<int8_t>(exponent), negative, false);
  }
  static constexpr Amount nan() noexcept { return Amount(0, 0, false, true); }
  static UInt128 mantissaOf(const Amount& a) noexcept { return a.mantissa_; }
  static int exponentOf(const Amount& a) noexcept { return a.exponent_; }
  static bool negativeOf(const Amount& a) noexcept { return a.negative_; }

  static int bitWidth(UInt128 value) noexcept;
  static int digits(UInt128 value) noexcept;
  // A count of digits that is never above the true one and at most one below it.
  static int digitsLowerBound(const UInt256& value) noexcept;

  // Whether a result whose dropped digits start with `guard` (followed by more non-zero digits
  // when `sticky`) moves one unit away from zero under `mode`.
  static bool roundsAway(RoundingMode mode, bool negative, unsigned guard, bool sticky,
                         bool odd) noexcept;

  // Rounds the exact value n x 10^exponent (plus a non-zero fraction of its last unit when
  // `sticky`) to 38 digits with `mode` and fits it into the exponent range.
  static Calculation finish(UInt256 n, int exponent, bool negative, RoundingMode mode,
                            bool sticky) noexcept;
  // Removes the `count` last digits of n: `guard` is the first digit removed and `sticky` tells
  // whether any digit after it was non-zero.
  static void dropDigits(UInt256& n, int count, unsigned& guard, bool& sticky) noexcept;
};

UInt256 multiplyWide(UInt128 a, UInt128 b) noexcept;
UInt256 addWide(const UInt256& a, const UInt256& b) noexcept;
UInt256 subtractWide(const UInt256& a, const UInt256& b) noexcept;  // a >= b
bool lessWide(const UInt256& a, const UInt256& b) noexcept;
// Divides n in place by a divisor below 2^64 and returns the remainder.
uint64_t divideWide(UInt256& n, uint64_t divisor) noexcept;

}  // namespace ledgeon
