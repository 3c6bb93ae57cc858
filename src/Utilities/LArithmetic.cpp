#include "Utilities/LArithmetic.h"

#include <stdexcept>

#include <unicode/ucurr.h>

#include "Utilities/Log.h"

namespace ledgeon {

namespace {

constexpr char kErrorLog[] = "%@ %@ leftOperand = %@, rightOperand = %@";
constexpr char kInvalidParameter[] = "Invalid parameter not satisfying: %@";

Amount orZero(const std::optional<Amount>& operand) noexcept {
  return operand ? *operand : Amount();
}

}  // namespace

Amount Number::decimalValue() const noexcept {
  return std::visit(
      [](const auto& v) -> Amount {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, int64_t>) {
          return Amount::fromInt64(v);
        } else if constexpr (std::is_same_v<T, uint64_t>) {
          return Amount::fromUInt64(v);
        } else if constexpr (std::is_same_v<T, double>) {
          return Amount::fromDouble(v);
        } else {
          return v;
        }
      },
      value_);
}

LArithmetic LArithmetic::zero() noexcept { return LArithmetic(Amount::zero()); }
LArithmetic LArithmetic::one() noexcept { return LArithmetic(Amount::one()); }
LArithmetic LArithmetic::minusOne() noexcept { return LArithmetic(Amount::minusOne()); }
LArithmetic LArithmetic::decimalWithNumber(const Number& number) noexcept {
  return LArithmetic(number.decimalValue());
}
LArithmetic LArithmetic::decimalWithDecimal(const std::optional<Amount>& decimal) noexcept {
  return LArithmetic(orZero(decimal));
}
LArithmetic LArithmetic::decimalWithDouble(double value) noexcept {
  return LArithmetic(Amount::fromDouble(value));
}
LArithmetic LArithmetic::decimalWithInteger(int64_t value) noexcept {
  return LArithmetic(Amount::fromInt64(value));
}
LArithmetic LArithmetic::decimalWithUnsignedInteger(uint64_t value) noexcept {
  return LArithmetic(Amount::fromUInt64(value));
}

std::string LArithmetic::errorName(CalculationError error) {
  switch (error) {
    case CalculationError::Underflow:
      return "NSCalculationUnderflow";
    case CalculationError::Overflow:
      return "NSCalculationOverflow";
    case CalculationError::DivideByZero:
      return "NSCalculationDivideByZero";
    default:
      return stringWithFormat("Unknown error (%ld)", static_cast<long>(error));
  }
}

void LArithmetic::logCalculationError(CalculationError error, std::string_view operation,
                                      Amount left, Amount right) noexcept {
  try {
    LLog(kErrorLog, errorName(error), operation, left.stringValue(), right.stringValue());
  } catch (...) {  // out of memory while logging: the calculation itself has been done
  }
}

Amount LArithmetic::addGeneral(Amount left, Amount right, bool subtract) noexcept {
  LArithmetic sum(left);
  if (subtract) {
    sum.apply(Amount::subtract(left, right, kArithmeticMode), "subtract", right);
  } else {
    sum.apply(Amount::add(left, right, kArithmeticMode), "add", right);
  }
  return sum.value_;
}

void LArithmetic::addNumber(const Number& operand) { addDecimalValue(operand.decimalValue()); }
void LArithmetic::addDecimal(const std::optional<Amount>& operand) {
  addDecimalValue(orZero(operand));
}
void LArithmetic::subtractNumber(const Number& operand) {
  subtractDecimalValue(operand.decimalValue());
}
void LArithmetic::subtractDecimal(const std::optional<Amount>& operand) {
  subtractDecimalValue(orZero(operand));
}
void LArithmetic::multiplyByNumber(const Number& operand) {
  multiplyByDecimalValue(operand.decimalValue());
}
void LArithmetic::multiplyByDecimal(const std::optional<Amount>& operand) {
  multiplyByDecimalValue(orZero(operand));
}
void LArithmetic::divideByNumber(const Number& operand) {
  divideByDecimalValue(operand.decimalValue());
}
void LArithmetic::divideByDecimal(const std::optional<Amount>& operand) {
  divideByDecimalValue(orZero(operand));
}

void LArithmetic::raiseToPower(unsigned power) {
  apply(Amount::power(value_, power, kArithmeticMode), "raiseToPower", Amount::fromUInt64(power));
}

void LArithmetic::addProductOfNumber(const Number& a, const Number& b) {
  LArithmetic product = decimalWithNumber(a);
  product.multiplyByNumber(b);
  addDecimalValue(product.value_);
}

void LArithmetic::multiplyByNegativeOne() noexcept { value_ = value_.decimalNumberByNegating(); }

void LArithmetic::multiplyRoundWholeByDecimal(const std::optional<Amount>& operand,
                                              RoundingMode mode) {
  if (!operand) return;
  multiplyByDecimalValue(*operand);
  roundWithScale(0, mode);
}

void LArithmetic::divideRoundWholeByDecimal(const std::optional<Amount>& operand,
                                            RoundingMode mode) {
  if (!operand) return;
  divideByDecimalValue(*operand);
  roundWithScale(0, mode);
}

void LArithmetic::roundWithScale(int16_t scale) noexcept {
  roundWithScale(scale, RoundingMode::Plain);
}

void LArithmetic::roundWithScale(int16_t scale, RoundingMode mode) noexcept {
  value_ = Amount::roundToScale(value_, scale, mode).value;
}

void LArithmetic::roundCurrencyWithMode(RoundingMode mode) {
  // Asks for no currency at all, hence two places.
  roundWithScale(static_cast<int16_t>(getDecimalsForCurrency({})), mode);
}

ComparisonResult LArithmetic::compare(const Operand& operand) const {
  if (std::holds_alternative<std::string>(operand)) {
    throw std::logic_error(stringWithFormat(
        kInvalidParameter, "[number isKindOfClass:Number] || [number isKindOfClass:LArithmetic]"));
  }
  if (const auto* number = std::get_if<Number>(&operand)) {
    return value_.compare(number->decimalValue());
  }
  if (const auto* other = std::get_if<std::reference_wrapper<const LArithmetic>>(&operand)) {
    return value_.compare(other->get().value_);
  }
  return value_.compare(Amount());
}

bool LArithmetic::isLessThanNumber(const Number& n) const noexcept {
  return isLessThanDecimal(n.decimalValue());
}
bool LArithmetic::isLessThanOrEqualToNumber(const Number& n) const noexcept {
  return isLessThanOrEqualToDecimal(n.decimalValue());
}
bool LArithmetic::isEqualToNumber(const Number& n) const noexcept {
  return isEqualToDecimal(n.decimalValue());
}
bool LArithmetic::isGreaterThanNumber(const Number& n) const noexcept {
  return isGreaterThanDecimal(n.decimalValue());
}
bool LArithmetic::isGreaterThanOrEqualToNumber(const Number& n) const noexcept {
  return isGreaterThanOrEqualToDecimal(n.decimalValue());
}

int LArithmetic::getDecimalsForCurrency(std::string_view isoCode) {
  constexpr int kDefaultDigits = 2;
  if (isoCode.size() != 3) return kDefaultDigits;
  UChar code[4] = {};
  for (size_t i = 0; i < 3; ++i) {
    const char c = isoCode[i];
    if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'))) return kDefaultDigits;
    code[i] = static_cast<UChar>(c >= 'a' ? c - 'a' + 'A' : c);
  }
  UErrorCode status = U_ZERO_ERROR;
  const int32_t digits = ucurr_getDefaultFractionDigits(code, &status);
  return U_SUCCESS(status) && digits >= 0 ? digits : kDefaultDigits;
}

}  // namespace ledgeon
