#include <cmath>

#include <gtest/gtest.h>

#include "Utilities/Amount.h"
#include "Utilities/Log.h"

namespace ledgeon {
namespace {

Amount A(std::string_view text) {
  const Amount value = Amount::fromString(text);
  EXPECT_FALSE(value.isNaN()) << text;
  return value;
}

const Amount kNaN = Amount::notANumber();

TEST(AmountTest, ParsesPlainTextAndWritesItBack) {
  const std::string tenToThe127 = "1" + std::string(127, '0');
  struct Case {
    std::string_view text;
    std::string_view expected;
  };
  const Case cases[] = {
      {"0", "0"},
      {"-0", "0"},
      {"12.50", "12.5"},
      {"-1234.5", "-1234.5"},
      {"+7", "7"},
      {".5", "0.5"},
      {"5.", "5"},
      {"0.001", "0.001"},
      {"000123.4500", "123.45"},
      {"1.5e3", "1500"},
      {"12E-4", "0.0012"},
      {"  42 ", "42"},
      {"1e127", tenToThe127},
      // More than 38 digits round half away from zero.
      {"123456789012345678901234567890123456785", "123456789012345678901234567890123456790"},
      {"0.123456789012345678901234567890123456785", "0.12345678901234567890123456789012345679"},
      {"99999999999999999999999999999999999999.5", "100000000000000000000000000000000000000"},
  };
  for (const auto& c : cases) EXPECT_EQ(Amount::fromString(c.text).stringValue(), c.expected);
}

TEST(AmountTest, RejectsTextThatIsNotANumber) {
  for (std::string_view text : {"", " ", "-", ".", "abc", "12abc", "1.2.3", "1,5", "--1", "1e",
                                "e5", "1e+", "NaN", "0x10", "1e200", "1e-200", "١٢"}) {
    EXPECT_TRUE(Amount::fromString(text).isNaN()) << text;
  }
}

TEST(AmountTest, ReadsAndWritesLocaleConventions) {
  EXPECT_EQ(Amount::fromString("1234,56", "de_DE"), A("1234.56"));
  EXPECT_EQ(Amount::fromString("-0,5", "fr_FR"), A("-0.5"));
  EXPECT_TRUE(Amount::fromString("1.234,56", "de_DE").isNaN());
  EXPECT_EQ(Amount::fromString("1234.56", "en_US"), A("1234.56"));
  EXPECT_EQ(A("-1234.56").descriptionWithLocale("de_DE"), "-1234,56");
  EXPECT_EQ(A("1234.56").descriptionWithLocale("en_US"), "1234.56");
}

TEST(AmountTest, SafeConstructorsNeverGiveNaNAndLogUnparsableText) {
  LogCapture log;
  EXPECT_EQ(Amount::safeDecimalNumberWithString(""), Amount::zero());
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(Amount::safeDecimalNumberWithString("12,x"), Amount::zero());
  EXPECT_EQ(log.lines(),
            std::vector<std::string>{"ERROR: String value (12,x) is not a number (NaN)!"});
  EXPECT_EQ(Amount::safeDecimalNumberWithString("3,5", "de_DE"), A("3.5"));
  EXPECT_EQ(Amount::safeDecimalNumberWithString("3.5", "de_DE"), Amount::zero());
  EXPECT_EQ(Amount::safeDecimalNumberWithValue(kNaN), Amount::zero());
  EXPECT_EQ(Amount::safeDecimalNumberWithValue(std::nan("")), Amount::zero());
  EXPECT_EQ(Amount::safeDecimalNumberWithValue(0.1), A("0.1"));
  EXPECT_EQ(Amount::safeDecimalNumberWithValue(int64_t{-3}), A("-3"));
  EXPECT_EQ(Amount::safeDecimalNumberWithValue(std::string_view("oops")), Amount::zero());
  EXPECT_EQ(log.lines().size(), 3u);
}

TEST(AmountTest, ConstantsAndPredicates) {
  EXPECT_EQ(Amount::minusOne().stringValue(), "-1");
  EXPECT_EQ(Amount::oneHundredth().stringValue(), "0.01");
  EXPECT_EQ(Amount::oneHundred().stringValue(), "100");
  EXPECT_FALSE(Amount::zero().isValid());
  EXPECT_FALSE(kNaN.isValid());
  EXPECT_TRUE(A("-0.01").isValid());
  EXPECT_TRUE(Amount::zero().isZero());
  EXPECT_FALSE(kNaN.isZero());
  EXPECT_FALSE(kNaN.isPositive() || kNaN.isNegative());
  EXPECT_TRUE(A("-2").isNegative());
  EXPECT_EQ(kNaN.stringValue(), "NaN");
}

TEST(AmountTest, ComparesByDecimalValueWithNaNLowest) {
  EXPECT_EQ(A("1.50"), A("1.5"));
  EXPECT_EQ(A("1500"), A("1.5e3"));
  EXPECT_LT(A("-2"), A("-1.99"));
  EXPECT_LT(A("0.999999999999999999999999999999999999"), A("1"));
  EXPECT_GT(A("1e20"), A("99999999999999999999"));
  EXPECT_LT(kNaN, A("-1e100"));
  EXPECT_EQ(kNaN.compare(kNaN), ComparisonResult::Same);
  EXPECT_EQ(A("0").compare(A("-0.0")), ComparisonResult::Same);
}

TEST(AmountTest, TwoWayTestsAgreeWithTheOrderOfValues) {
  // Ranked from lowest to highest; equal ranks are equal values, some with other exponents. Most
  // pairs share an exponent, which the two-way tests answer on their own.
  const std::pair<int, Amount> ranked[] = {
      {0, kNaN},         {1, A("-1e30")},
      {2, A("-12.34")},  {2, A("-12.340")},
      {3, A("-12.33")},  {4, A("-0.01")},
      {5, A("0")},       {5, A("0.00")},
      {6, A("0.01")},    {7, A("0.02")},
      {8, A("12.33")},   {9, A("12.34")},
      {9, A("1234e-2")}, {10, A("4611686018427387904.01")},
      {11, A("1e30")},
  };
  for (const auto& [leftRank, left] : ranked) {
    for (const auto& [rightRank, right] : ranked) {
      const std::string pair = left.stringValue() + " vs " + right.stringValue();
      EXPECT_EQ(left.isLessThan(right), leftRank < rightRank) << pair;
      EXPECT_EQ(left.isGreaterThan(right), leftRank > rightRank) << pair;
      EXPECT_EQ(left.isEqualTo(right), leftRank == rightRank) << pair;
      EXPECT_EQ(static_cast<int>(left.compare(right)),
                (leftRank > rightRank) - (leftRank < rightRank))
          << pair;
    }
  }
}

TEST(AmountTest, ReportsCalculationErrors) {
  const auto max = A("99999999999999999999999999999999999999e127");
  struct Case {
    Calculation got;
    CalculationError error;
    std::string value;
  };
  const Case cases[] = {
      {Amount::divide(A("1"), Amount::zero(), RoundingMode::Plain), CalculationError::DivideByZero,
       "NaN"},
      {Amount::divide(Amount::zero(), Amount::zero(), RoundingMode::Plain),
       CalculationError::DivideByZero, "NaN"},
      {Amount::multiply(max, A("10"), RoundingMode::Plain), CalculationError::Overflow, "NaN"},
      {Amount::add(max, max, RoundingMode::Plain), CalculationError::Overflow, "NaN"},
      {Amount::multiply(A("1e-100"), A("1e-100"), RoundingMode::Plain), CalculationError::Underflow,
       "NaN"},
      {Amount::divide(A("1"), A("3"), RoundingMode::Plain), CalculationError::LossOfPrecision,
       "0.33333333333333333333333333333333333333"},
      {Amount::divide(A("2"), A("3"), RoundingMode::Down), CalculationError::LossOfPrecision,
       "0.66666666666666666666666666666666666666"},
      {Amount::add(A("1e37"), A("0.5"), RoundingMode::Bankers), CalculationError::LossOfPrecision,
       "10000000000000000000000000000000000000"},
      {Amount::add(A("1e50"), A("1e-50"), RoundingMode::Up), CalculationError::LossOfPrecision,
       "100000000000000000000000000000000000010000000000000"},
      {Amount::subtract(A("1e50"), A("1e-50"), RoundingMode::Down),
       CalculationError::LossOfPrecision, "99999999999999999999999999999999999999000000000000"},
      {Amount::divide(A("1e-100"), A("1e100"), RoundingMode::Plain), CalculationError::Underflow,
       "NaN"},
      {Amount::divide(A("1e-100"), A("1e27"), RoundingMode::Plain), CalculationError::NoError,
       "0." + std::string(126, '0') + "1"},
      {Amount::divide(A("1e100"), A("1e-100"), RoundingMode::Plain), CalculationError::Overflow,
       "NaN"},
      {Amount::multiply(A("1.1"), A("1.1"), RoundingMode::Plain), CalculationError::NoError,
       "1.21"},
      {Amount::power(A("2"), 127, RoundingMode::Plain), CalculationError::LossOfPrecision,
       "170141183460469231731687303715884105730"},
      {Amount::power(A("-0.5"), 3, RoundingMode::Plain), CalculationError::NoError, "-0.125"},
      {Amount::power(kNaN, 2, RoundingMode::Plain), CalculationError::NoError, "NaN"},
      {Amount::multiplyByPowerOf10(A("1.5"), -2, RoundingMode::Plain), CalculationError::NoError,
       "0.015"},
      {Amount::multiplyByPowerOf10(A("1"), 200, RoundingMode::Plain), CalculationError::Overflow,
       "NaN"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.got.error, c.error) << c.value;
    EXPECT_EQ(c.got.value.stringValue(), c.value);
  }
}

TEST(AmountTest, PowersTooWideToHoldExactlyStillRoundInTheirModesDirection) {
  // -3^201 needs 402 bits, so it is rounded step by step; directed modes must still bracket it
  // (the bounds are the correctly rounded values toward each infinity).
  const Calculation down = Amount::power(A("-3"), 201, RoundingMode::Down);
  const Calculation up = Amount::power(A("-3"), 201, RoundingMode::Up);
  EXPECT_EQ(down.error, CalculationError::LossOfPrecision);
  EXPECT_LE(down.value, A("-7.9684196662762430801634396610733888049e95"));
  EXPECT_GE(up.value, A("-7.9684196662762430801634396610733888048e95"));
  EXPECT_LT(down.value, up.value);
}

TEST(AmountTest, RoundsToScaleInEveryMode) {
  struct Case {
    std::string_view value;
    int scale;
    RoundingMode mode;
    std::string_view expected;
  };
  const Case cases[] = {
      {"2.5", 0, RoundingMode::Plain, "3"},        {"-2.5", 0, RoundingMode::Plain, "-3"},
      {"2.5", 0, RoundingMode::Bankers, "2"},      {"3.5", 0, RoundingMode::Bankers, "4"},
      {"-2.5", 0, RoundingMode::Bankers, "-2"},    {"2.51", 0, RoundingMode::Bankers, "3"},
      {"-1.01", 0, RoundingMode::Down, "-2"},      {"1.99", 0, RoundingMode::Down, "1"},
      {"-1.99", 0, RoundingMode::Up, "-1"},        {"1.01", 0, RoundingMode::Up, "2"},
      {"1234.5", -2, RoundingMode::Plain, "1200"}, {"1250", -2, RoundingMode::Bankers, "1200"},
      {"0.004", 2, RoundingMode::Up, "0.01"},      {"0.004", 2, RoundingMode::Plain, "0"},
      {"1.25", 5, RoundingMode::Plain, "1.25"},    {"9.995", 2, RoundingMode::Plain, "10"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Amount::roundToScale(A(c.value), c.scale, c.mode).value.stringValue(), c.expected)
        << c.value << " scale " << c.scale << " mode " << static_cast<int>(c.mode);
  }
}

TEST(AmountTest, HelpersFollowTheFixedRoundingRules) {
  EXPECT_EQ(kNaN.round(), Amount::zero());
  EXPECT_EQ(Amount::zero().round(), Amount::zero());
  EXPECT_EQ(A("2.5").round(), A("3"));
  EXPECT_EQ(A("-2.5").round(), A("-3"));
  EXPECT_TRUE(kNaN.roundWithScale(2).isNaN());
  EXPECT_EQ(Amount::zero().roundWithScale(2), Amount::zero());
  EXPECT_EQ(A("1.005").roundWithScale(2), A("1.01"));
  // The scale is narrowed to 16 bits: 65538 is scale 2.
  EXPECT_EQ(A("1.005").roundWithScale(65538), A("1.01"));
  EXPECT_EQ(A("1.23456749").roundTo6Places(), A("1.234567"));
  EXPECT_EQ(A("1.2345675").roundTo6Places(), A("1.234568"));
  EXPECT_EQ(A("1234.5").roundAccordingToCurrency("JPY"), A("1235"));
  EXPECT_EQ(A("1.005").roundAccordingToCurrency("USD"), A("1.01"));
  EXPECT_EQ(A("1.0005").roundAccordingToCurrency("BHD"), A("1.001"));
  EXPECT_EQ(A("1.005").roundAccordingToCurrency("QQQ"), A("1.01"));
  EXPECT_EQ(A("0.123456").roundedDisplayPercentage(), A("12.35"));
  EXPECT_EQ(kNaN.roundedDisplayPercentage(), Amount::zero());
  EXPECT_EQ(A("-3").abs(), A("3"));
  EXPECT_EQ(A("3").decimalNumberByNegating(), A("-3"));
  EXPECT_TRUE(kNaN.abs().isNaN());
}

TEST(AmountTest, RoundsUpToMajorDollarAmounts) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"1", "1000"},          {"9999", "10000"},      {"10000", "10000"}, {"10001", "20000"},
      {"100000", "100000"},   {"100001", "200000"},   {"-1500", "-1000"}, {"0", "0"},
      {"99999.01", "100000"}, {"250000.5", "300000"},
  };
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(A(value).roundUpToMajorDollarAmount(), A(expected)) << value;
  }
  EXPECT_EQ(kNaN.roundUpToMajorDollarAmount(), Amount::zero());
}

TEST(AmountTest, ConvertsThroughDouble) {
  EXPECT_DOUBLE_EQ(A("0.1").doubleValue(), 0.1);
  EXPECT_DOUBLE_EQ(A("-123456789.123456789").doubleValue(), -123456789.123456789);
  EXPECT_DOUBLE_EQ(A("1e100").doubleValue(), 1e100);
  EXPECT_TRUE(std::isnan(kNaN.doubleValue()));
  EXPECT_EQ(A("-7.9").longLongValue(), -7);
  EXPECT_EQ(A("7.9").intValue(), 7);
  EXPECT_EQ(A("1e30").longLongValue(), INT64_MAX);
  EXPECT_EQ(kNaN.longLongValue(), 0);
  // At or above 2^63 the unsigned conversions subtract 2^63 and set the top bit.
  EXPECT_EQ(A("9223372036854775808").unsignedLongLongValue(), uint64_t{1} << 63);
  EXPECT_EQ(A("12345678901234567890").unsignedLongLongValue(), 12345678901234567168ULL);
  EXPECT_EQ(A("-1").unsignedLongLongValue(), UINT64_MAX);
  EXPECT_EQ(A("4294967297").unsignedIntValue(), 1u);
  EXPECT_EQ(Amount::fromDouble(0.1), A("0.1"));
  EXPECT_EQ(Amount::fromDouble(-1.5e-7), A("-0.00000015"));
  EXPECT_TRUE(Amount::fromDouble(INFINITY).isNaN());
  EXPECT_EQ(Amount::fromInt64(INT64_MIN).stringValue(), "-9223372036854775808");
  EXPECT_EQ(Amount::fromUInt64(UINT64_MAX).stringValue(), "18446744073709551615");
}

TEST(AmountTest, FromPartsRoundsWideMantissasAndRejectsOutOfRangeExponents) {
  const UInt128 wide = UInt128{1} << 127;  // 39 digits
  EXPECT_EQ(Amount::fromParts(wide, 0, false).stringValue(),
            "170141183460469231731687303715884105730");
  EXPECT_EQ(Amount::fromParts(15, -1, true), A("-1.5"));
  EXPECT_TRUE(Amount::fromParts(1, 200, false).isNaN());
  EXPECT_EQ(Amount::fromParts(1000, 128, false).exponent(), 127);
  EXPECT_EQ(Amount::fromParts(1000, 128, false).mantissa(), 10000);
}

}  // namespace
}  // namespace ledgeon
