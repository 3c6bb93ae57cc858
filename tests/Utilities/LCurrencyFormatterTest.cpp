#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "Utilities/Amount.h"
#include "Utilities/CalcState.h"
#include "Utilities/LCurrencyFormatter.h"

namespace ledgeon {
namespace {

constexpr const char* kNarrowNoBreakSpace = "\u202f";

Amount amount(const char* text) { return Amount::fromString(text); }

TEST(LCurrencyFormatterTest, TakesEachLocalesSymbols) {
  const struct {
    const char* locale;
    std::string decimal, grouping, minus;
  } cases[] = {
      {"en_US", ".", ",", "-"},      {"en_us", ".", ",", "-"},
      {"de_DE", ",", ".", "-"},      {"fr_FR", ",", kNarrowNoBreakSpace, "-"},
      {"de_CH", ".", "\u2019", "-"}, {"sv_SE", ",", "\u00a0", "\u2212"},
  };
  for (const auto& c : cases) {
    const LCurrencyFormatter formatter(c.locale);
    EXPECT_EQ(formatter.decimalSeparator(), c.decimal) << c.locale;
    EXPECT_EQ(formatter.groupingSeparator(), c.grouping) << c.locale;
    EXPECT_EQ(formatter.minusSign(), c.minus) << c.locale;
  }
}

TEST(LCurrencyFormatterTest, DisplaysTwoToSixDigitsRoundingHalfUp) {
  const std::string nnbsp = kNarrowNoBreakSpace;
  const struct {
    const char* locale;
    const char* value;
    std::string display;
  } cases[] = {
      {"en_US", "0", "0.00"},
      {"en_US", "0.5", "0.50"},
      {"en_US", "1234.5", "1,234.50"},
      {"en_US", "1234567.1234565", "1,234,567.123457"},  // half up at the sixth digit
      {"en_US", "1.0000004", "1.00"},
      {"en_US", "-1.0000005", "-1.000001"},  // ties go away from zero on both sides
      {"en_US", "2.0000025", "2.000003"},    // not to even
      {"en_US", "12345678901234567890.12", "12,345,678,901,234,567,890.12"},  // no double inside
      {"de_DE", "1234.5", "1.234,50"},
      {"de_DE", "-0.1234567", "-0,123457"},
      {"fr_FR", "1234567.5", "1" + nnbsp + "234" + nnbsp + "567,50"},
  };
  for (const auto& c : cases) {
    const LCurrencyFormatter formatter(c.locale);
    EXPECT_EQ(formatter.stringForObjectValue(amount(c.value)), c.display)
        << c.locale << " " << c.value;
  }
  EXPECT_EQ(LCurrencyFormatter("en_US").stringForObjectValue(Amount::notANumber()), "NaN");
}

TEST(LCurrencyFormatterTest, EditingStringDropsGroupingOnlyWhenFiltering) {
  LCurrencyFormatter formatter("de_DE");
  EXPECT_EQ(formatter.editingStringForObjectValue(amount("1234567.5")), "1234567,50");
  formatter.setFilterEditingString(false);
  EXPECT_EQ(formatter.editingStringForObjectValue(amount("1234567.5")), "1.234.567,50");
}

// One keystroke: the field showed `original` and the keystroke proposes `proposed`.
struct Keystroke {
  const char* locale;
  bool calculator;
  std::optional<Amount> minimum;
  std::string original;
  std::string proposed;
  bool accepted;      // the proposal stands as typed
  std::string shown;  // what the field shows afterwards
  const char* error;  // part of the refusal's description, or "" when not refused
};

void checkKeystroke(const Keystroke& k) {
  LCurrencyFormatter formatter(k.locale);
  formatter.setMinimum(k.minimum);
  std::optional<CalcState> calc;
  if (k.calculator) calc.emplace(formatter);

  std::string partial = k.proposed;
  TextRange selection{k.proposed.size(), 0};
  const TextRange originalSelection{k.original.size(), 0};
  std::string error;
  const bool accepted =
      formatter.isPartialStringValid(partial, selection, k.original, originalSelection, &error);
  SCOPED_TRACE(std::string(k.locale) + " \"" + k.original + "\" -> \"" + k.proposed + "\"");
  EXPECT_EQ(accepted, k.accepted);
  EXPECT_EQ(partial, k.shown);
  EXPECT_EQ(selection.location, k.shown.size());
  if (*k.error != '\0') {
    EXPECT_NE(error.find(k.error), std::string::npos) << error;
  } else {
    EXPECT_EQ(error, "");
  }
}

TEST(LCurrencyFormatterTest, VetsEachKeystroke) {
  const std::optional<Amount> none;
  const std::string nnbsp = kNarrowNoBreakSpace;
  const Keystroke cases[] = {
      {"en_US", false, none, "12", "12.", true, "12.", ""},
      {"en_US", false, none, "12.5", "12.5.", false, "12.5", "only one decimal separator"},
      {"en_US", false, none, "-12", "-12-", false, "-12", "only one minus sign"},
      {"en_US", false, none, "", "-", true, "-", ""},
      {"en_US", false, Amount::zero(), "", "-", false, "", "cannot be negative"},
      {"en_US", false, amount("-100"), "", "-", true, "-", ""},
      {"en_US", false, none, "12", "12a", false, "12", "takes digits"},
      {"en_US", false, none, "12", "12+", false, "12", "takes digits"},
      {"en_US", false, none, "1,23", "1,234", false, "1234", ""},  // grouping filtered out
      // A calculator takes operations and leaves signs and separators to its own rules.
      {"en_US", true, none, "12.5", "12.5.", true, "12.5.", ""},
      {"en_US", true, none, "-12", "-12-", true, "-12-", ""},
      {"en_US", true, none, "19.99*3+4.50=", "19.99*3+4.50=%", true, "19.99*3+4.50=%", ""},
      {"en_US", true, none, "12", "12x", false, "12", "+ - * / = %"},
      {"de_DE", false, none, "12", "12,", true, "12,", ""},
      {"de_DE", false, none, "12,5", "12,5,", false, "12,5", "only one decimal separator"},
      {"de_DE", false, none, "1.23", "1.234", false, "1234", ""},
      {"fr_FR", false, none, "1" + nnbsp + "23", "1" + nnbsp + "234,", false, "1234,", ""},
      {"fr_FR", false, none, "12", "12.", false, "12", "takes digits"},
      // Where the locale's minus is U+2212, the keyboard's "-" still counts as one.
      {"sv_SE", false, none, "", "-", true, "-", ""},
      {"sv_SE", false, none, "\u221212", "\u221212-", false, "\u221212", "only one minus sign"},
      {"sv_SE", false, Amount::zero(), "", "-", false, "", "cannot be negative"},
  };
  for (const auto& c : cases) checkKeystroke(c);
}

TEST(LCurrencyFormatterTest, FilteringKeepsTheCaretOnTheSameDigit) {
  LCurrencyFormatter formatter("en_US");
  std::string partial = "1,234,567";
  TextRange selection{4, 2};  // "4," selected
  EXPECT_FALSE(formatter.isPartialStringValid(partial, selection, "1,234,56", {8, 0}));
  EXPECT_EQ(partial, "1234567");
  EXPECT_EQ(selection, (TextRange{3, 1}));
}

TEST(LCurrencyFormatterTest, ReadsTextAsExactAmounts) {
  const std::string nnbsp = kNarrowNoBreakSpace;
  const struct {
    const char* locale;
    std::string text;
    const char* expected;  // nullptr: not an amount
  } cases[] = {
      {"en_US", "1,234.56", "1234.56"},
      {"en_US", "  -12.5 ", "-12.5"},
      {"en_US", "1.23456789", "1.234568"},  // kept to the six fraction digits, plain rounding
      {"en_US", "-1.2345675", "-1.234568"},
      {"en_US", "12345678901234567890.123456", "12345678901234567890.123456"},
      {"en_US", "0.00001234", "0.000012"},
      {"en_US", "12abc", nullptr},
      {"en_US", "1e5", nullptr},
      {"en_US", "-", nullptr},
      {"de_DE", "1.234,56", "1234.56"},
      {"de_DE", "-0,5", "-0.5"},
      {"fr_FR", "1" + nnbsp + "234,56", "1234.56"},
      {"sv_SE", "-12,5", "-12.5"},
      {"sv_SE", "\u221212,5", "-12.5"},
  };
  for (const auto& c : cases) {
    const LCurrencyFormatter formatter(c.locale);
    std::optional<Amount> value;
    std::string error;
    const bool ok = formatter.getObjectValue(value, c.text, nullptr, &error);
    SCOPED_TRACE(std::string(c.locale) + " \"" + c.text + "\"");
    if (c.expected == nullptr) {
      EXPECT_FALSE(ok);
      EXPECT_NE(error.find("is not an amount"), std::string::npos) << error;
    } else {
      ASSERT_TRUE(ok) << error;
      ASSERT_TRUE(value.has_value());
      EXPECT_EQ(*value, amount(c.expected)) << value->stringValue();
    }
  }
}

TEST(LCurrencyFormatterTest, EmptyTextIsNoValueAndARangeLimitsTheReading) {
  const LCurrencyFormatter formatter;
  std::optional<Amount> value = Amount::one();
  EXPECT_TRUE(formatter.getObjectValue(value, "   "));
  EXPECT_FALSE(value.has_value());

  const TextRange range{4, 5};
  EXPECT_TRUE(formatter.getObjectValue(value, "Pay 12.50 now", &range));
  EXPECT_EQ(value, amount("12.5"));
  const TextRange outside{10, 5};
  std::string error;
  EXPECT_FALSE(formatter.getObjectValue(value, "12.50", &outside, &error));
  EXPECT_NE(error.find("outside"), std::string::npos);
}

TEST(LCurrencyFormatterTest, CalculatorFieldsWorkOutArithmeticAndCanForceASign) {
  LCurrencyFormatter formatter;
  CalcState calc(formatter);
  std::optional<Amount> value;
  ASSERT_TRUE(formatter.getObjectValue(value, "19.99*3+4.50"));
  EXPECT_EQ(value, amount("64.47"));
  EXPECT_EQ(calc.tapeLines().back(), "= 64.47");
  ASSERT_TRUE(formatter.getObjectValue(value, "-12.5"));
  EXPECT_EQ(value, amount("-12.5"));

  calc.setPositiveNumbersOnly(true);
  ASSERT_TRUE(formatter.getObjectValue(value, "-12.5"));
  EXPECT_EQ(value, amount("12.5"));
  ASSERT_TRUE(formatter.getObjectValue(value, "10-25"));
  EXPECT_EQ(value, amount("15"));

  std::string error;
  EXPECT_FALSE(formatter.getObjectValue(value, "5/0", nullptr, &error));
  EXPECT_EQ(error, "The calculation divides by zero");

  calc.setEnabled(false);  // a switched-off calculator leaves plain reading
  EXPECT_FALSE(formatter.getObjectValue(value, "1+1"));
}

TEST(LCurrencyFormatterTest, PastedTextLosesTheLocalesGroupingSeparators) {
  const std::string nnbsp = kNarrowNoBreakSpace;
  const struct {
    std::string text;
    const char* locale;  // nullptr: the default
    const char* expected;
  } cases[] = {
      {"1,234.56", nullptr, "1234.56"},
      {"-1,000", nullptr, "-1000"},
      {"1,2,3,4", nullptr, "1234"},  // every separator goes, wherever it stands
      {"1.234.567,89", "de_DE", "1234567.89"},
      // Only the locale's own separator is removed: a comma is de_DE's decimal separator.
      {"1,234.56", "de_DE", "1.23456"},
      {"1" + nnbsp + "234,56", "fr_FR", "1234.56"},
      {"98765432109876543210.0123456789", nullptr, "98765432109876543210.0123456789"},
  };
  for (const auto& c : cases) {
    const Amount value = c.locale ? LCurrencyFormatter::numberFromFormattedString(c.text, c.locale)
                                  : LCurrencyFormatter::numberFromFormattedString(c.text);
    EXPECT_EQ(value, amount(c.expected)) << c.text << " read as " << value.stringValue();
  }
  for (const char* text : {"", "abc", "12 apples", "--5"}) {
    EXPECT_TRUE(LCurrencyFormatter::numberFromFormattedString(text).isNaN()) << text;
  }
}

TEST(LCurrencyFormatterTest, KnowsWhichLocalesIcuDescribes) {
  for (const char* known : {"en_US", "en_us", "de_DE", "fr_FR", "ja_JP"}) {
    EXPECT_TRUE(LCurrencyFormatter::isKnownLocale(known)) << known;
  }
  for (const char* unknown : {"", "xx_YY", "not a locale"}) {
    EXPECT_FALSE(LCurrencyFormatter::isKnownLocale(unknown)) << unknown;
  }
}

}  // namespace
}  // namespace ledgeon
