#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Utilities/Amount.h"
#include "Utilities/CalcState.h"
#include "Utilities/LCurrencyFormatter.h"
#include "Utilities/Log.h"

namespace ledgeon {
namespace {

Amount amount(const char* text) { return Amount::fromString(text); }

struct Sequence {
  const char* keys;
  const char* value;  // the exact running value afterwards
  std::vector<std::string> tape;
  const char* locale = "en_US";
  bool autoDecimal = false;
};

void checkSequence(const Sequence& s) {
  SCOPED_TRACE(std::string(s.locale) + (s.autoDecimal ? " auto-decimal" : "") + " \"" + s.keys +
               "\"");
  LCurrencyFormatter formatter(s.locale);
  CalcState calc(formatter);
  calc.begin("");
  calc.setAutoDecimalPointEnabled(s.autoDecimal);
  const auto typed = calc.typeKeystrokes(s.keys);
  ASSERT_TRUE(typed.ok()) << typed.error().localizedDescription();
  EXPECT_EQ(calc.value(), amount(s.value)) << calc.value().stringValue();
  EXPECT_EQ(calc.tapeLines(), s.tape);
  EXPECT_EQ(calc.failure(), CalculationError::NoError);
}

TEST(CalcStateTest, WorksLikeAnAddingMachine) {
  const Sequence cases[] = {
      {"19.99 * 3 + 4.50 =", "64.47", {"19.99", "* 3.00", "+ 4.50", "= 64.47"}},
      // Left to right, as on an adding machine: no precedence.
      {"2 + 3 * 4 =", "20", {"2.00", "+ 3.00", "* 4.00", "= 20.00"}},
      {"10 / 4 =", "2.5", {"10.00", "/ 4.00", "= 2.50"}},
      {"1 / 3 * 3 =",
       "0.99999999999999999999999999999999999999",
       {"1.00", "/ 3.00", "* 3.00", "= 1.00"}},
      {"-5 + 3 =", "-2", {"-5.00", "+ 3.00", "= -2.00"}},
      {"5 * -2 =", "-10", {"5.00", "* -2.00", "= -10.00"}},
      {"5 - - 2 =", "7", {"5.00", "- -2.00", "= 7.00"}},
      {"5 + * 2 =", "10", {"5.00", "* 2.00", "= 10.00"}},  // the last operation typed wins
      {"5 + =", "5", {"5.00", "= 5.00"}},
      {"1 + 2 = * 10 =", "30", {"1.00", "+ 2.00", "= 3.00", "* 10.00", "= 30.00"}},
      {"1 + 2 = 7 + 1 =", "8", {"1.00", "+ 2.00", "= 3.00", "7.00", "+ 1.00", "= 8.00"}},
      {"1,000 + .5 =", "1000.5", {"1,000.00", "+ 0.50", "= 1,000.50"}},
      {"0.1234567 + 0 =", "0.1234567", {"0.123457", "+ 0.00", "= 0.123457"}},
      {"200 + 10 %", "220", {"200.00", "+ 10.00%", "= 220.00"}},
      {"200 - 10 %", "180", {"200.00", "- 10.00%", "= 180.00"}},
      {"200 * 10 %", "20", {"200.00", "* 10.00%", "= 20.00"}},
      {"200 / 10 %", "2000", {"200.00", "/ 10.00%", "= 2,000.00"}},
      {"10 %", "0.1", {"10.00%", "= 0.10"}},
      {"19,99 * 3 + 4,50 =", "64.47", {"19,99", "* 3,00", "+ 4,50", "= 64,47"}, "de_DE"},
      {"1.000 - 0,01 =", "999.99", {"1.000,00", "- 0,01", "= 999,99"}, "de_DE"},
      {"1999 + 501 =", "25", {"19.99", "+ 5.01", "= 25.00"}, "en_US", true},
      // Multipliers, divisors and rates are read as typed; a typed point is kept.
      {"1999 * 3 =", "59.97", {"19.99", "* 3.00", "= 59.97"}, "en_US", true},
      {"1999 * 1.5 =", "29.985", {"19.99", "* 1.50", "= 29.99"}, "en_US", true},
      {"10000 / 4 =", "25", {"100.00", "/ 4.00", "= 25.00"}, "en_US", true},
      {"20000 + 10 %", "220", {"200.00", "+ 10.00%", "= 220.00"}, "en_US", true},
      {"12.5 + 1 =", "12.51", {"12.50", "+ 0.01", "= 12.51"}, "en_US", true},
  };
  for (const auto& c : cases) checkSequence(c);
}

TEST(CalcStateTest, RefusesBadKeysAndKeepsItsState) {
  const struct {
    const char* keys;
    const char* error;
  } cases[] = {
      {"12a", "Key 3: \"a\" is not a calculator key: type digits, \".\" and + - * / = %"},
      {"1..2", "Key 3: An entry has only one decimal separator"},
      {"* 5", "Key 1: \"*\" needs a number before it"},
      {"%", "Key 1: \"%\" needs a rate before it"},
      {"=", "Key 1: \"=\" needs a number before it"},
      {"5 + - =", "Key 7: A number must follow the minus sign"},
      {"5 * - - 1", "Key 7: A number takes only one minus sign"},
      {"123456789012345678901234567890123456789", "Key 39: An entry has at most 38 digits"},
  };
  for (const auto& c : cases) {
    LCurrencyFormatter formatter;
    CalcState calc(formatter);
    calc.begin("");
    const auto typed = calc.typeKeystrokes(c.keys);
    ASSERT_FALSE(typed.ok()) << c.keys;
    EXPECT_EQ(typed.error().localizedDescription().rfind(c.error, 0), 0u)
        << c.keys << ": " << typed.error().localizedDescription();
  }

  LCurrencyFormatter formatter;
  CalcState calc(formatter);
  calc.begin("");
  ASSERT_TRUE(calc.typeKeystrokes("12 +").ok());
  EXPECT_FALSE(calc.typeKey(U'x').ok());
  EXPECT_FALSE(calc.typeKey('%').ok());
  ASSERT_TRUE(calc.typeKeystrokes("3 =").ok());
  EXPECT_EQ(calc.value(), amount("15"));
}

TEST(CalcStateTest, DivisionByZeroIsLoggedAndReported) {
  LCurrencyFormatter formatter;
  CalcState calc(formatter);
  calc.begin("");
  LogCapture log;
  ASSERT_TRUE(calc.typeKeystrokes("5 / 0 + 1 =").ok());
  EXPECT_TRUE(log.contains("NSCalculationDivideByZero")) << log.lines().size();
  EXPECT_EQ(calc.failure(), CalculationError::DivideByZero);
  EXPECT_TRUE(calc.value().isNaN());
  EXPECT_EQ(calc.tapeLines().back(), "= NaN");

  const auto evaluated = calc.evaluate("8 / 0");
  ASSERT_FALSE(evaluated.ok());
  EXPECT_EQ(evaluated.error().localizedDescription(), "The calculation divides by zero");

  // The next calculation starts clean.
  ASSERT_TRUE(calc.evaluate("8 / 2").ok());
  EXPECT_EQ(calc.failure(), CalculationError::NoError);
  EXPECT_EQ(calc.value(), amount("4"));
}

TEST(CalcStateTest, StartsFromTheFieldsInitialValue) {
  const struct {
    const char* initial;
    const char* keys;
    const char* value;
  } cases[] = {
      {"100", "+ 5 =", "105"},
      {"100", "- 5 =", "95"},  // an operation first continues from the field
      {"100", "7 =", "7"},     // a digit first replaces it
      {"1,234.50", "+ 0.50 =", "1235"},
      {"100", "* 10 %", "10"},
      {"", "-5 =", "-5"},  // a blank field: the minus starts a negative number
  };
  for (const auto& c : cases) {
    LCurrencyFormatter formatter;
    CalcState calc(formatter);
    calc.begin(c.initial);
    EXPECT_TRUE(calc.shouldSelectAll());
    ASSERT_TRUE(calc.typeKeystrokes(c.keys).ok()) << c.initial << " " << c.keys;
    EXPECT_EQ(calc.value(), amount(c.value)) << c.initial << " " << c.keys;
  }
}

TEST(CalcStateTest, ShowsTheEntryOrTheRunningValue) {
  LCurrencyFormatter formatter("de_DE");
  CalcState calc(formatter);
  calc.begin("12,00");
  EXPECT_EQ(calc.currentString(), "12,00");
  ASSERT_TRUE(calc.typeKeystrokes("1234,5").ok());
  EXPECT_EQ(calc.currentString(), "1234,5");
  ASSERT_TRUE(calc.typeKeystrokes(" * -").ok());
  EXPECT_EQ(calc.currentString(), "-");
  ASSERT_TRUE(calc.typeKeystrokes("2").ok());
  calc.commitPendingArithmetic();
  EXPECT_EQ(calc.pendingOperation(), '\0');
  EXPECT_FALSE(calc.didTypeEquals());
  EXPECT_EQ(calc.currentString(), "-2469,00");
  ASSERT_TRUE(calc.typeKey('=').ok());
  EXPECT_TRUE(calc.didTypeEquals());
  EXPECT_TRUE(calc.shouldSelectAll());
  EXPECT_EQ(calc.tapeLines(), (std::vector<std::string>{"1.234,50", "* -2,00", "= -2.469,00"}));
}

TEST(CalcStateTest, AttachesToItsFormatterAndRestoresItsPrecision) {
  LCurrencyFormatter formatter;
  EXPECT_FALSE(formatter.isCalculatorActive());
  {
    CalcState calc(formatter);
    EXPECT_EQ(formatter.calcState(), &calc);
    EXPECT_TRUE(formatter.isCalculatorActive());
    EXPECT_TRUE(calc.setAutoDecimalPointEnabled(true));
    EXPECT_EQ(formatter.maximumFractionDigits(), 2u);
    EXPECT_EQ(calc.savedMaximumFractionDigits(), 6u);
    EXPECT_EQ(formatter.stringForObjectValue(amount("1.005")), "1.01");
    EXPECT_FALSE(calc.setAutoDecimalPointEnabled(false));
    EXPECT_EQ(formatter.maximumFractionDigits(), 6u);
    EXPECT_TRUE(calc.setAutoDecimalPointEnabled(true));
  }
  EXPECT_EQ(formatter.calcState(), nullptr);
  EXPECT_EQ(formatter.maximumFractionDigits(), 6u);
}

}  // namespace
}  // namespace ledgeon
