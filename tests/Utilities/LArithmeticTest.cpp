#include <stdexcept>

#include <gtest/gtest.h>

#include "Utilities/LArithmetic.h"
#include "Utilities/Log.h"

namespace ledgeon {
namespace {

Amount A(std::string_view text) { return Amount::fromString(text); }

TEST(LArithmeticTest, AccumulatesInEveryOperandFlavour) {
  LArithmetic sum = LArithmetic::zero();
  sum.addNumber(19.99);
  sum.addDecimal(A("0.01"));
  sum.addDecimal(std::nullopt);  // absent reads as zero
  sum.addDecimalValue(A("5"));
  sum.subtractNumber(int64_t{2});
  sum.multiplyByDecimal(A("3"));
  sum.divideByNumber(uint64_t{4});
  EXPECT_EQ(sum.description(), "17.25");
  sum.addProductOfNumber(A("1.5"), 2);
  EXPECT_EQ(sum.decimalNumber(), A("20.25"));
  sum.multiplyByNegativeOne();
  EXPECT_EQ(sum.negativeDecimalNumber(), A("20.25"));
  EXPECT_EQ(sum.integerValue(), -20);
  EXPECT_EQ(sum.descriptionWithLocale("de_DE"), "-20,25");
  LArithmetic power = LArithmetic::decimalWithInteger(-3);
  power.raiseToPower(3);
  EXPECT_EQ(power.decimalNumber(), A("-27"));
}

TEST(LArithmeticTest, KeepsARunningTotalInOneCurrency) {
  const std::pair<std::string_view, std::string_view> steps[] = {
      {"10.00", "10"},  {"-25.50", "-15.5"}, {"15.50", "0"},
      {"0.01", "0.01"}, {"-0.02", "-0.01"},  {"99999999999999999.99", "99999999999999999.98"},
  };
  LArithmetic total;
  for (const auto& [step, expected] : steps) {
    total.addDecimalValue(A(step));
    EXPECT_EQ(total.description(), expected) << "after adding " << step;
  }
  total.subtractDecimalValue(A("99999999999999999.98"));
  EXPECT_TRUE(total.isZero());
  EXPECT_FALSE(total.isLessThanZero());
  EXPECT_EQ(total.decimalValue().exponent(), 0);
}

TEST(LArithmeticTest, DivisionThatLosesDigitsRoundsHalfToEven) {
  // Each quotient has 39 digits ending in a tie (...0.5, ...1.5): plain rounding would go away
  // from zero, the accumulator goes to the even neighbour.
  struct Case {
    std::string_view dividend;
    std::string_view expected;
  };
  const Case cases[] = {
      {"50000000000000000000000000000000000001", "25000000000000000000000000000000000000"},
      {"50000000000000000000000000000000000003", "25000000000000000000000000000000000002"},
      {"-50000000000000000000000000000000000001", "-25000000000000000000000000000000000000"},
      {"-50000000000000000000000000000000000003", "-25000000000000000000000000000000000002"},
  };
  for (const auto& c : cases) {
    LArithmetic value = LArithmetic::decimalWithDecimal(A(c.dividend));
    value.divideByNumber(2);
    EXPECT_EQ(value.description(), c.expected) << c.dividend;
  }
  LArithmetic third = LArithmetic::decimalWithInteger(2);
  third.divideByDecimalValue(A("3"));
  EXPECT_EQ(third.description(), "0.66666666666666666666666666666666666667");
}

TEST(LArithmeticTest, RoundingVariants) {
  LArithmetic value(A("2.5"));
  value.roundWithScale(0);
  EXPECT_EQ(value.decimalNumber(), A("3"));  // plain: half away from zero
  value.setDecimal(A("-2.45"));
  value.roundWithScale(1, RoundingMode::Bankers);
  EXPECT_EQ(value.decimalNumber(), A("-2.4"));
  // Always two places, even for an amount in yen.
  value.setDecimal(A("1234.567"));
  value.roundCurrencyWithMode(RoundingMode::Down);
  EXPECT_EQ(value.decimalNumber(), A("1234.56"));
  value.setDecimal(A("10"));
  value.divideRoundWholeByDecimal(A("4"), RoundingMode::Up);
  EXPECT_EQ(value.decimalNumber(), A("3"));
  value.multiplyRoundWholeByDecimal(A("0.5"), RoundingMode::Bankers);
  EXPECT_EQ(value.decimalNumber(), A("2"));
  value.multiplyRoundWholeByDecimal(std::nullopt, RoundingMode::Plain);
  value.divideRoundWholeByDecimal(std::nullopt, RoundingMode::Plain);
  EXPECT_EQ(value.decimalNumber(), A("2"));
}

TEST(LArithmeticTest, LogsCalculationErrorsAndKeepsWhatTheOperationLeft) {
  LogCapture log;
  LArithmetic value = LArithmetic::decimalWithInteger(7);
  value.divideByDecimalValue(Amount::zero());
  EXPECT_TRUE(value.isNaN());
  value.setDecimal(A("1e164"));
  value.multiplyByNumber(100);
  value.setDecimal(A("1e-100"));
  value.multiplyByDecimalValue(A("1e-100"));
  value.setDecimal(A("1"));
  value.divideByDecimalValue(A("3"));  // loss of precision is silent
  EXPECT_EQ(log.lines(),
            (std::vector<std::string>{
                "NSCalculationDivideByZero divide leftOperand = 7, rightOperand = 0",
                "NSCalculationOverflow multiply leftOperand = 1" + std::string(164, '0') +
                    ", rightOperand = 100",
                "NSCalculationUnderflow multiply leftOperand = 0." + std::string(99, '0') +
                    "1, rightOperand = 0." + std::string(99, '0') + "1",
            }));
  EXPECT_EQ(LArithmetic::errorName(static_cast<CalculationError>(9)), "Unknown error (9)");
}

TEST(LArithmeticTest, ComparesNumbersAccumulatorsAndNothing) {
  const LArithmetic value(A("2.50"));
  const LArithmetic other(A("3"));
  EXPECT_EQ(value.compare(Number(2.5)), ComparisonResult::Same);
  EXPECT_EQ(value.compare(std::cref(other)), ComparisonResult::Ascending);
  EXPECT_EQ(value.compare(std::monostate{}), ComparisonResult::Descending);
  try {
    (void)value.compare(std::string("2.5"));
    FAIL() << "a text operand must be refused";
  } catch (const std::logic_error& error) {
    EXPECT_EQ(std::string(error.what()).rfind("Invalid parameter not satisfying: ", 0), 0u);
  }
  EXPECT_TRUE(value.isLessThanNumber(3));
  EXPECT_TRUE(value.isLessThanOrEqualToDecimal(A("2.5")));
  EXPECT_TRUE(value.isEqualToNumber(A("2.5")));
  EXPECT_TRUE(value.isGreaterThanDecimal(A("-2.5")));
  EXPECT_TRUE(value.isGreaterThanOrEqualToNumber(2.5));
  EXPECT_FALSE(value.isGreaterThanNumber(2.5));
  const struct {
    LArithmetic value;
    bool lessThanZero, lessOrEqualZero, zero, greaterThanZero, greaterOrEqualZero, nan, valid;
  } predicates[] = {
      {LArithmetic(A("-1")), true, true, false, false, false, false, true},
      {LArithmetic::zero(), false, true, true, false, true, false, false},
      {LArithmetic::one(), false, false, false, true, true, false, true},
      {LArithmetic(Amount::notANumber()), false, false, false, false, false, true, false},
  };
  for (const auto& p : predicates) {
    EXPECT_EQ(p.value.isLessThanZero(), p.lessThanZero) << p.value.description();
    EXPECT_EQ(p.value.isLessThanOrEqualToZero(), p.lessOrEqualZero) << p.value.description();
    EXPECT_EQ(p.value.isZero(), p.zero) << p.value.description();
    EXPECT_EQ(p.value.isNotZero(), !p.zero) << p.value.description();
    EXPECT_EQ(p.value.isGreaterThanZero(), p.greaterThanZero) << p.value.description();
    EXPECT_EQ(p.value.isGreaterThanOrEqualToZero(), p.greaterOrEqualZero);
    EXPECT_EQ(p.value.isNaN(), p.nan) << p.value.description();
    EXPECT_EQ(p.value.isValid(), p.valid) << p.value.description();
  }
}

TEST(LArithmeticTest, CurrencyDigitsComeFromTheCurrencyTable) {
  const std::pair<std::string_view, int> cases[] = {
      {"USD", 2}, {"JPY", 0}, {"jpy", 0}, {"BHD", 3}, {"EUR", 2},
      {"", 2},    {"QQQ", 2}, {"US", 2},  {"U$D", 2},
  };
  for (const auto& [code, digits] : cases) {
    EXPECT_EQ(LArithmetic::getDecimalsForCurrency(code), digits) << code;
  }
}

}  // namespace
}  // namespace ledgeon
