#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace ledgeon {

// Stored as integer codes in documents and preferences: the values are fixed.
enum class RoundingMode : uint8_t {
  Plain = 0,    // half away from zero
  Down = 1,     // toward negative infinity
  Up = 2,       // toward positive infinity
  Bankers = 3,  // half to even
};

enum class CalculationError : uint8_t {
  NoError = 0,
  LossOfPrecision = 1,
  Underflow = 2,
  Overflow = 3,
  DivideByZero = 4,
};

enum class ComparisonResult : int8_t { Ascending = -1, Same = 0, Descending = 1 };

struct Calculation;
struct AmountKernel;

// The mantissa type. Spelled through a typedef so pedantic builds accept the compiler extension.
__extension__ typedef unsigned __int128 UInt128;

// A base-10 decimal of up to 38 significant digits: mantissa x 10^exponent, with a sign and a
// not-a-number state. Every money value, quantity, price and rate is one. Immutable and trivially
// copyable; no operation allocates. Thread-safe as any value.
class Amount final {
 public:
  static constexpr int kMaxDigits = 38;
  static constexpr int kMinExponent = -128;
  static constexpr int kMaxExponent = 127;

  constexpr Amount() noexcept = default;  // zero

  // Shared constants.
  static Amount zero() noexcept;
  static Amount one() noexcept;
  static Amount minusOne() noexcept;
  static Amount oneHundred() noexcept;
  static Amount oneHundredth() noexcept;
  static Amount notANumber() noexcept;

  // Construction. A mantissa of more than 38 digits is rounded plain; an exponent outside the
  // 8-bit range after normalisation gives NaN.
  static Amount fromParts(UInt128 mantissa, int exponent, bool negative) noexcept;
  static Amount fromInt64(int64_t value) noexcept;
  static Amount fromUInt64(uint64_t value) noexcept;
  // The shortest decimal that reads back as the same double; NaN and infinities give NaN.
  static Amount fromDouble(double value) noexcept;
  // Locale-free text: optional sign, digits with an optional "." and an optional exponent
  // ("1.5e3"). Anything else, including empty text, gives NaN.
  static Amount fromString(std::string_view text) noexcept;
  // Text in the conventions of an ICU locale ("de_DE": "," is the decimal separator).
  static Amount fromString(std::string_view text, std::string_view localeIdentifier);

  // Safe constructors: never NaN. Empty or unparsable text gives zero; unparsable text also logs
  // "ERROR: String value (%@) is not a number (NaN)!".
  static Amount safeDecimalNumberWithString(std::string_view text);
  static Amount safeDecimalNumberWithString(std::string_view text,
                                            std::string_view localeIdentifier);
  static Amount safeDecimalNumberWithValue(const Amount& value) noexcept;
  static Amount safeDecimalNumberWithValue(double value) noexcept;
  static Amount safeDecimalNumberWithValue(int64_t value) noexcept;
  static Amount safeDecimalNumberWithValue(std::string_view text);

  // Parts.
  UInt128 mantissa() const noexcept { return mantissa_; }
  int exponent() const noexcept { return exponent_; }
  bool isSignNegative() const noexcept { return negative_; }

  // Predicates. isValid is deliberately false for zero as well as NaN.
  bool isZero() const noexcept { return !nan_ && mantissa_ == 0; }
  bool isNotZero() const noexcept { return !isZero(); }
  bool isNaN() const noexcept { return nan_; }
  bool isNotNaN() const noexcept { return !nan_; }
  bool isValid() const noexcept { return !nan_ && mantissa_ != 0; }
  bool isPositive() const noexcept { return !nan_ && mantissa_ != 0 && !negative_; }
  bool isNegative() const noexcept { return !nan_ && mantissa_ != 0 && negative_; }
  bool isEqualTo(const Amount& other) const noexcept;
  bool isGreaterThan(const Amount& other) const noexcept;
  bool isLessThan(const Amount& other) const noexcept;

  // Decimal comparison; NaN sorts below every number and equal to itself.
  ComparisonResult compare(const Amount& other) const noexcept;
  friend bool operator==(const Amount& a, const Amount& b) noexcept { return a.isEqualTo(b); }
  friend std::strong_ordering operator<=>(const Amount& a, const Amount& b) noexcept;

  // Arithmetic. Results beyond 38 digits drop digits with the given mode (LossOfPrecision);
  // overflow, underflow and division by zero are reported and leave NaN. NaN in gives NaN out.
  static Calculation add(const Amount& a, const Amount& b, RoundingMode mode) noexcept;
  static Calculation subtract(const Amount& a, const Amount& b, RoundingMode mode) noexcept;
  static Calculation multiply(const Amount& a, const Amount& b, RoundingMode mode) noexcept;
  static Calculation divide(const Amount& a, const Amount& b, RoundingMode mode) noexcept;
  static Calculation power(const Amount& a, unsigned exponent, RoundingMode mode) noexcept;
  static Calculation multiplyByPowerOf10(const Amount& a, int power, RoundingMode mode) noexcept;
  // Rounds to `scale` digits after the point (negative: tens, hundreds, ...).
  static Calculation roundToScale(const Amount& a, int scale, RoundingMode mode) noexcept;

  // Conveniences with plain rounding that drop the error code.
  Amount decimalNumberByAdding(const Amount& other) const noexcept;
  Amount decimalNumberBySubtracting(const Amount& other) const noexcept;
  Amount decimalNumberByMultiplyingBy(const Amount& other) const noexcept;
  Amount decimalNumberByDividingBy(const Amount& other) const noexcept;

  // Helpers with the program's fixed rounding rules.
  Amount abs() const noexcept;
  Amount decimalNumberByNegating() const noexcept;
  Amount round() const noexcept;                    // scale 0, plain; NaN and 0 give 0
  Amount roundWithScale(int scale) const noexcept;  // plain; NaN stays NaN, 0 gives 0
  Amount roundTo6Places() const noexcept;           // scale 6, plain
  Amount roundAccordingToCurrency(std::string_view isoCode) const;  // currency digits, plain
  Amount roundedDisplayPercentage() const noexcept;    // x 100, scale 2; NaN and 0 give 0
  Amount roundUpToMajorDollarAmount() const noexcept;  // next 1,000/10,000/100,000 up

  // Conversions. Integer conversions go through double, truncating.
  double doubleValue() const noexcept;
  int64_t longLongValue() const noexcept;
  uint64_t unsignedLongLongValue() const noexcept;
  int32_t intValue() const noexcept;
  uint32_t unsignedIntValue() const noexcept;

  // The plain textual form: "-1234.5", "0.001", "1200", "NaN". Locale-free, no exponent.
  std::string stringValue() const;
  std::string description() const { return stringValue(); }
  // The value written with the decimal separator of an ICU locale, no grouping.
  std::string descriptionWithLocale(std::string_view localeIdentifier) const;

 private:
  friend struct AmountKernel;
  friend class LArithmetic;  // sums in place on its hot path
  static constexpr UInt128 kMantissaLimit =
      UInt128{10000000000000000000ULL} * UInt128{10000000000000000000ULL};  // 10^38

  // The general cases of the inline operations below. They take their operands by value, so an
  // operand of an inline call never has its address taken and can stay in registers.
  static Calculation addGeneral(Amount a, Amount b, RoundingMode mode, bool negateB) noexcept;
  static Calculation multiplyGeneral(Amount a, Amount b, RoundingMode mode) noexcept;
  static ComparisonResult compareGeneral(Amount a, Amount b) noexcept;

  // Whether two values are numbers with the same exponent: amounts in one currency.
  [[gnu::always_inline]] static bool sameScale(const Amount& a, const Amount& b) noexcept {
    return (static_cast<unsigned>(a.nan_) | static_cast<unsigned>(b.nan_) |
            static_cast<uint8_t>(a.exponent_ ^ b.exponent_)) == 0;
  }
  // sameScale, with both mantissas below 2^62, so that a sum or difference fits a signed 64-bit
  // register. One test, hence one branch, for the everyday sum.
  [[gnu::always_inline]] static bool sameScaleNarrow(const Amount& a, const Amount& b) noexcept {
    const auto wide = static_cast<uint64_t>((a.mantissa_ | b.mantissa_) >> 62);
    return (wide | static_cast<unsigned>(a.nan_) | static_cast<unsigned>(b.nan_) |
            static_cast<uint8_t>(a.exponent_ ^ b.exponent_)) == 0;
  }
  // a + b (a - b when negateB) for two values that pass sameScaleNarrow. Branch-free: signs and
  // relative sizes of money amounts are as good as random.
  [[gnu::always_inline]] static Amount sumNarrow(const Amount& a, const Amount& b,
                                                 bool negateB) noexcept {
    // The left operand is usually a running total, whose sign seldom changes: a select, which the
    // compiler may turn into a predicted branch that keeps the sign off the chain from one sum to
    // the next. The right operand's sign is as good as random: applied arithmetically. The
    // magnitude of the total is a select again, a conditional move.
    const auto ma = static_cast<int64_t>(a.mantissa_);
    const auto bSign = static_cast<int64_t>(b.negative_ != negateB);
    const int64_t total =
        (a.negative_ ? -ma : ma) + ((static_cast<int64_t>(b.mantissa_) ^ -bSign) + bSign);
    const auto magnitude = static_cast<uint64_t>(total < 0 ? -total : total);
    return Amount(magnitude, magnitude != 0 ? a.exponent_ : int8_t{0}, total < 0, false);
  }
  // A result computed out of line, copied field by field. Callers of the inline operations then
  // hold every result in registers instead of merging both paths in memory, where reading a value
  // written a field at a time stalls the processor.
  [[gnu::always_inline]] static Calculation byFields(const Calculation& c) noexcept;

  constexpr Amount(UInt128 mantissa, int8_t exponent, bool negative, bool nan) noexcept
      : mantissa_(mantissa), exponent_(exponent), negative_(negative), nan_(nan) {}

  UInt128 mantissa_ = 0;
  int8_t exponent_ = 0;
  bool negative_ = false;
  bool nan_ = false;
};

// The outcome of one decimal operation: the value it left and what went wrong, if anything.
// On hot paths hold it in a non-const local (or read its fields straight away): GCC 12 keeps a
// const one on the stack, and copying its value out then waits for the stores that built it.
struct Calculation {
  Amount value;
  CalculationError error = CalculationError::NoError;
};

// The hot paths, inline: values with the same exponent (amounts in one currency) add and compare
// without leaving registers, and small mantissas multiply in one instruction.
inline Calculation Amount::byFields(const Calculation& c) noexcept {
  const Amount& v = c.value;
  return {Amount(v.mantissa_, v.exponent_, v.negative_, v.nan_), c.error};
}

inline Calculation Amount::add(const Amount& a, const Amount& b, RoundingMode mode) noexcept {
  if (sameScaleNarrow(a, b)) [[likely]] {
    return {sumNarrow(a, b, false), CalculationError::NoError};
  }
  return byFields(addGeneral(a, b, mode, false));
}

inline Calculation Amount::subtract(const Amount& a, const Amount& b, RoundingMode mode) noexcept {
  if (sameScaleNarrow(a, b)) [[likely]] {
    return {sumNarrow(a, b, true), CalculationError::NoError};
  }
  return byFields(addGeneral(a, b, mode, true));
}

inline Calculation Amount::multiply(const Amount& a, const Amount& b, RoundingMode mode) noexcept {
  const int exponent = a.exponent_ + b.exponent_;
  if (!a.nan_ && !b.nan_ && (a.mantissa_ >> 64) == 0 && (b.mantissa_ >> 64) == 0 &&
      exponent >= kMinExponent && exponent <= kMaxExponent) {
    const UInt128 product = a.mantissa_ * b.mantissa_;
    if (product < kMantissaLimit) {
      return {Amount(product, static_cast<int8_t>(product == 0 ? 0 : exponent),
                     product != 0 && a.negative_ != b.negative_, false),
              CalculationError::NoError};
    }
  }
  return byFields(multiplyGeneral(a, b, mode));
}

inline ComparisonResult Amount::compare(const Amount& other) const noexcept {
  if (sameScale(*this, other)) [[likely]] {
    // Zero is never negative, so the signs alone order values of opposite signs.
    const int magnitude = static_cast<int>(mantissa_ > other.mantissa_) -
                          static_cast<int>(mantissa_ < other.mantissa_);
    const int sign = negative_ ? -1 : 1;
    return static_cast<ComparisonResult>(negative_ == other.negative_ ? sign * magnitude : sign);
  }
  return compareGeneral(*this, other);
}

// The two-way tests answer in a few instructions for amounts of one currency. Zero is never
// negative, so when the signs differ the left sign alone decides.
inline bool Amount::isEqualTo(const Amount& other) const noexcept {
  if (sameScale(*this, other)) [[likely]] {
    return mantissa_ == other.mantissa_ && negative_ == other.negative_;
  }
  return compareGeneral(*this, other) == ComparisonResult::Same;
}
inline bool Amount::isGreaterThan(const Amount& other) const noexcept {
  return other.isLessThan(*this);
}
inline bool Amount::isLessThan(const Amount& other) const noexcept {
  if (sameScale(*this, other)) [[likely]] {
    const bool below = mantissa_ < other.mantissa_;
    const bool above = other.mantissa_ < mantissa_;
    return negative_ == other.negative_ ? (negative_ ? above : below) : negative_;
  }
  return compareGeneral(*this, other) == ComparisonResult::Ascending;
}

}  // namespace ledgeon
