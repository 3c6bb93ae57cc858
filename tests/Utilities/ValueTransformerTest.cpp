#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "Utilities/Amount.h"
#include "Utilities/AmountValueTransformer.h"
#include "Utilities/LocalizedAmountValueTransformer.h"

namespace ledgeon {
namespace {

Amount amount(const char* text) { return Amount::fromString(text); }

TEST(ValueTransformerTest, StoredAmountsRoundTripThroughLocaleFreeText) {
  const AmountValueTransformer transformer;
  for (const char* text : {"0", "-1234.5", "0.001", "98765432109876543210.0123456789"}) {
    const auto written = transformer.transformedValue(amount(text));
    ASSERT_TRUE(written.has_value());
    EXPECT_EQ(*written, text);
    EXPECT_EQ(transformer.reverseTransformedValue(written), amount(text)) << text;
  }
  EXPECT_FALSE(transformer.transformedValue(std::nullopt).has_value());
  EXPECT_FALSE(transformer.reverseTransformedValue(std::nullopt).has_value());
  // Locale-free: a decimal comma is not a number here.
  const auto comma = transformer.reverseTransformedValue(std::string("12,5"));
  ASSERT_TRUE(comma.has_value());
  EXPECT_TRUE(comma->isNaN());
}

TEST(ValueTransformerTest, LocalizedTextReadsBackThroughTheLocale) {
  const struct {
    const char* locale;
    bool absolute;
    const char* text;
    std::optional<Amount> expected;
  } cases[] = {
      {"en_US", false, "1,234.56", amount("1234.56")},
      {"en_US", false, "-1,234.56", amount("-1234.56")},
      {"en_US", true, "-1,234.56", amount("1234.56")},
      {"en_US", true, "7", amount("7")},
      {"de_DE", false, "1.234,56", amount("1234.56")},
      {"de_DE", true, "-0,5", amount("0.5")},
      {"en_US", false, "twelve", std::nullopt},
      {"en_US", true, "", std::nullopt},
  };
  for (const auto& c : cases) {
    const LocalizedAmountValueTransformer transformer(c.absolute, c.locale);
    EXPECT_EQ(transformer.reverseTransformedValue(std::string(c.text)), c.expected)
        << c.locale << (c.absolute ? " absolute " : " ") << c.text;
  }
  EXPECT_FALSE(
      LocalizedAmountValueTransformer(false).reverseTransformedValue(std::nullopt).has_value());
}

TEST(ValueTransformerTest, LocalizedTextShowsTheLocalesDecimalSeparator) {
  const LocalizedAmountValueTransformer german(false, "de_DE");
  const LocalizedAmountValueTransformer american(false, "en_US");
  const auto shown = german.transformedValue(amount("-1234.5"));
  ASSERT_TRUE(shown.has_value());
  EXPECT_EQ(*shown, "-1234,5");
  EXPECT_EQ(german.reverseTransformedValue(shown), amount("-1234.5"));
  EXPECT_EQ(american.transformedValue(amount("-1234.5")), "-1234.5");
  EXPECT_FALSE(german.transformedValue(std::nullopt).has_value());
}

}  // namespace
}  // namespace ledgeon
