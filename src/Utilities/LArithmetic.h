#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "Utilities/Amount.h"

namespace ledgeon {

// A boxed number: what a key-value read or a caller hands over when it is not already an Amount.
// It converts to an Amount through its decimal value.
class Number final {
 public:
  Number(int value) : value_(int64_t{value}) {}   // NOLINT: implicit, like a literal
  Number(int64_t value) : value_(value) {}        // NOLINT: implicit
  Number(uint64_t value) : value_(value) {}       // NOLINT: implicit
  Number(double value) : value_(value) {}         // NOLINT: implicit
  Number(const Amount& value) : value_(value) {}  // NOLINT: implicit
  Amount decimalValue() const noexcept;
  std::string description() const { return decimalValue().stringValue(); }

 private:
  std::variant<int64_t, uint64_t, double, Amount> value_;
};

// The mutable accumulator over Amount used to sum and scale money, quantities and rates.
// Single-thread; copyable. Arithmetic drops digits beyond 38 half to even, and logs (never
// throws) underflow, overflow and division by zero, keeping whatever the operation left.
//
// Operands come in three flavours, as in the rest of the program:
//  - "Number" (`addNumber`): a boxed `Number` (integer, double or Amount);
//  - "Decimal" (`addDecimal`): an Amount object that may be absent (`std::optional<Amount>`); an
//    absent one reads as zero, except in the whole-unit rounding variants, where it leaves the
//    value untouched;
//  - "DecimalValue" (`addDecimalValue`): a raw decimal value, always present (`const Amount&`).
class LArithmetic final {
 public:
  // What `compare` accepts: nothing (compares as zero), a Number, or another accumulator. Text
  // stands for any other kind of object and is refused.
  using Operand =
      std::variant<std::monostate, Number, std::reference_wrapper<const LArithmetic>, std::string>;

  LArithmetic() noexcept = default;                                      // zero
  explicit LArithmetic(const Amount& value) noexcept : value_(value) {}  // initWithDecimalValue

  static LArithmetic zero() noexcept;
  static LArithmetic one() noexcept;
  static LArithmetic minusOne() noexcept;
  static LArithmetic decimalWithNumber(const Number& number) noexcept;
  static LArithmetic decimalWithDecimal(const std::optional<Amount>& decimal) noexcept;
  static LArithmetic decimalWithDouble(double value) noexcept;
  static LArithmetic decimalWithInteger(int64_t value) noexcept;
  static LArithmetic decimalWithUnsignedInteger(uint64_t value) noexcept;

  // Reading.
  Amount decimalNumber() const noexcept { return value_; }
  Amount negativeDecimalNumber() const noexcept { return value_.decimalNumberByNegating(); }
  const Amount& decimalValue() const noexcept { return value_; }
  double doubleValue() const noexcept { return value_.doubleValue(); }
  int64_t integerValue() const noexcept { return value_.longLongValue(); }
  uint64_t unsignedIntegerValue() const noexcept { return value_.unsignedLongLongValue(); }
  std::string description() const { return value_.stringValue(); }
  std::string descriptionWithLocale(std::string_view localeIdentifier) const {
    return value_.descriptionWithLocale(localeIdentifier);
  }

  // Setting.
  void setDecimal(const Amount& value) noexcept { value_ = value; }
  void setZero() noexcept { value_ = Amount(); }

  // Arithmetic.
  void addNumber(const Number& operand);
  void addDecimal(const std::optional<Amount>& operand);
  void addDecimalValue(const Amount& operand) noexcept {
    if (Amount::sameScaleNarrow(value_, operand)) [[likely]] {
      value_ = Amount::sumNarrow(value_, operand, false);  // a running total in one currency
      return;
    }
    value_ = addGeneral(value_, operand, false);
  }
  void subtractNumber(const Number& operand);
  void subtractDecimal(const std::optional<Amount>& operand);
  void subtractDecimalValue(const Amount& operand) noexcept {
    if (Amount::sameScaleNarrow(value_, operand)) [[likely]] {
      value_ = Amount::sumNarrow(value_, operand, true);
      return;
    }
    value_ = addGeneral(value_, operand, true);
  }
  void multiplyByNumber(const Number& operand);
  void multiplyByDecimal(const std::optional<Amount>& operand);
  void multiplyByDecimalValue(const Amount& operand) noexcept {
    apply(Amount::multiply(value_, operand, kArithmeticMode), "multiply", operand);
  }
  void divideByNumber(const Number& operand);
  void divideByDecimal(const std::optional<Amount>& operand);
  void divideByDecimalValue(const Amount& operand) noexcept {
    apply(Amount::divide(value_, operand, kArithmeticMode), "divide", operand);
  }
  void raiseToPower(unsigned power);
  void addProductOfNumber(const Number& a, const Number& b);  // adds a x b
  void multiplyByNegativeOne() noexcept;

  // Multiply (divide), then round to whole units with `mode`; an absent operand does nothing.
  void multiplyRoundWholeByDecimal(const std::optional<Amount>& operand, RoundingMode mode);
  void divideRoundWholeByDecimal(const std::optional<Amount>& operand, RoundingMode mode);

  // Rounding.
  void roundWithScale(int16_t scale) noexcept;  // plain
  void roundWithScale(int16_t scale, RoundingMode mode) noexcept;
  // Always two places, whatever the document's currency: callers rely on it.
  void roundCurrencyWithMode(RoundingMode mode);

  // Comparison. Any operand but nothing, a Number or an LArithmetic is a programming error.
  ComparisonResult compare(const Operand& operand) const;
  bool isLessThanNumber(const Number& n) const noexcept;
  bool isLessThanDecimal(const Amount& d) const noexcept;
  bool isLessThanOrEqualToNumber(const Number& n) const noexcept;
  bool isLessThanOrEqualToDecimal(const Amount& d) const noexcept;
  bool isEqualToNumber(const Number& n) const noexcept;
  bool isEqualToDecimal(const Amount& d) const noexcept;
  bool isGreaterThanNumber(const Number& n) const noexcept;
  bool isGreaterThanDecimal(const Amount& d) const noexcept;
  bool isGreaterThanOrEqualToNumber(const Number& n) const noexcept;
  bool isGreaterThanOrEqualToDecimal(const Amount& d) const noexcept;
  bool isLessThanZero() const noexcept { return value_.isNegative(); }
  bool isLessThanOrEqualToZero() const noexcept { return value_.isNegative() || value_.isZero(); }
  bool isZero() const noexcept { return value_.isZero(); }
  bool isNotZero() const noexcept { return value_.isNotZero(); }
  bool isGreaterThanZero() const noexcept { return value_.isPositive(); }
  bool isGreaterThanOrEqualToZero() const noexcept {
    return value_.isPositive() || value_.isZero();
  }
  bool isNaN() const noexcept { return value_.isNaN(); }
  bool isNotNaN() const noexcept { return value_.isNotNaN(); }
  bool isValid() const noexcept { return value_.isValid(); }  // not zero and not NaN

  // Fraction digits of an ISO 4217 code from ICU's currency data; 2 when empty or unknown.
  static int getDecimalsForCurrency(std::string_view isoCode);

  // The name a calculation error is logged under.
  static std::string errorName(CalculationError error);

 private:
  // Digits beyond 38 inside the accumulator always go half to even, so long sums do not drift.
  static constexpr RoundingMode kArithmeticMode = RoundingMode::Bankers;

  // Logs a calculation error with the operands, then keeps whatever the operation left.
  void apply(const Calculation& result, std::string_view operation, const Amount& right) noexcept {
    // 38-digit values lose digits all the time: that is expected and silent.
    if (result.error > CalculationError::LossOfPrecision) [[unlikely]] {
      logCalculationError(result.error, operation, value_, right);
    }
    value_ = result.value;
  }
  // The sums that do not fit the inline path: other exponents, wide mantissas, NaN. Static and
  // by value, so the accumulator itself never leaves registers on the inline path.
  static Amount addGeneral(Amount left, Amount right, bool subtract) noexcept;
  // By value, like every out-of-line path here, so the accumulator's address is never taken.
  [[gnu::cold]] static void logCalculationError(CalculationError error, std::string_view operation,
                                                Amount left, Amount right) noexcept;

  Amount value_;
};

inline bool LArithmetic::isLessThanDecimal(const Amount& d) const noexcept {
  return value_.isLessThan(d);
}
inline bool LArithmetic::isLessThanOrEqualToDecimal(const Amount& d) const noexcept {
  return !value_.isGreaterThan(d);
}
inline bool LArithmetic::isEqualToDecimal(const Amount& d) const noexcept {
  return value_.isEqualTo(d);
}
inline bool LArithmetic::isGreaterThanDecimal(const Amount& d) const noexcept {
  return value_.isGreaterThan(d);
}
inline bool LArithmetic::isGreaterThanOrEqualToDecimal(const Amount& d) const noexcept {
  return !value_.isLessThan(d);
}

}  // namespace ledgeon
