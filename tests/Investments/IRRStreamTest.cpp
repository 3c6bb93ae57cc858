#include <cmath>
#include <optional>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

#include "Investments/IRRStream.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {

// Amounts in failure messages as their decimal text.
inline void PrintTo(const Amount& value, std::ostream* out) { *out << value.stringValue(); }

namespace {

// All streams end on this day; flows are placed by their distance in days before it.
Date endDate() { return *LDateUtilities::dateWithYear(2024, 6, 30); }
Date daysBeforeEnd(long days) { return *LDateUtilities::dateByAddingDays(endDate(), -days); }
Amount amount(const char* text) { return Amount::fromString(text); }

struct Flow {
  long daysBeforeEnd;
  double amount;
};

struct StreamCase {
  const char* name;
  long startDaysBeforeEnd;
  double startingValue;
  double endingValue;
  std::vector<Flow> flows;
};

IRRStream makeStream(const StreamCase& c) {
  IRRStream stream(daysBeforeEnd(c.startDaysBeforeEnd), Amount::fromDouble(c.startingValue),
                   endDate(), Amount::fromDouble(c.endingValue));
  for (const auto& flow : c.flows) {
    stream.addIRRStreamEvent(daysBeforeEnd(flow.daysBeforeEnd), Amount::fromDouble(flow.amount));
  }
  return stream;
}

// The same convention computed independently: each amount grows for (days to the end + 1) / 365
// years, the starting value from the day before the start.
double referenceValue(const StreamCase& c, double rate) {
  auto grow = [rate](double amount, long days) {
    return amount * std::pow(1.0 + rate, static_cast<double>(days + 1) / 365.0);
  };
  double value = grow(-c.startingValue, c.startDaysBeforeEnd + 1) + grow(c.endingValue, 0);
  for (const auto& flow : c.flows) value += grow(flow.amount, flow.daysBeforeEnd);
  return value;
}

// Plain bisection over a sign change found by a fine scan from -99 % upward.
std::optional<double> referenceRate(const StreamCase& c) {
  double low = -0.99;
  for (double high = low + 0.01; high <= 100.0; high += 0.01) {
    if ((referenceValue(c, low) < 0) != (referenceValue(c, high) < 0)) {
      for (int i = 0; i < 200; ++i) {
        const double middle = (low + high) / 2;
        ((referenceValue(c, low) < 0) == (referenceValue(c, middle) < 0) ? low : high) = middle;
      }
      return (low + high) / 2;
    }
    low = high;
  }
  return std::nullopt;
}

TEST(IRRStreamTest, OneYearGainMatchesTheClosedForm) {
  IRRStream stream(daysBeforeEnd(365), amount("1000"), endDate(), amount("1100"));
  EXPECT_DOUBLE_EQ(stream.durationForDate(endDate()), 1.0 / 365.0);
  EXPECT_DOUBLE_EQ(stream.durationForDate(daysBeforeEnd(364)), 1.0);

  const auto rate = stream.calculateIrrFromStream();
  ASSERT_TRUE(rate.has_value());
  const double exact = std::pow(1.1, 365.0 / 366.0) - 1.0;  // about 0.0997
  EXPECT_NEAR(rate->doubleValue(), exact, 0.0005);
  const auto value = stream.netPresentValueWithRate(rate->doubleValue());
  ASSERT_TRUE(value.has_value());
  EXPECT_LE(std::fabs(value->doubleValue()), 0.01);

  // The first bracket comes from -99 % (positive value) and 100 % (negative).
  ASSERT_TRUE(stream.firstIRR());
  EXPECT_DOUBLE_EQ(stream.firstRatePositive(), -0.99);
  EXPECT_DOUBLE_EQ(stream.firstRateNegative(), 1.0);
  EXPECT_GT(stream.firstNPVPositive(), 0);
  EXPECT_LT(stream.firstNPVNegative(), 0);
}

TEST(IRRStreamTest, RatesAgreeWithAnIndependentBisection) {
  const StreamCase cases[] = {
      {"loss of a fifth", 365, 1000, 800, {}},
      {"monthly deposits",
       360,
       0,
       1300,
       {{360, -100},
        {330, -100},
        {300, -100},
        {270, -100},
        {240, -100},
        {210, -100},
        {180, -100},
        {150, -100},
        {120, -100},
        {90, -100},
        {60, -100},
        {30, -100}}},
      {"two years with a withdrawal", 730, 5000, 4800, {{500, -1000}, {200, 2000}}},
      {"short period", 30, 10000, 10100, {}},
      {"tripled in a year", 365, 100, 400, {}},
      {"fifteenfold in a year", 365, 100, 1600, {}},
      {"three years of dividends",
       1095,
       20000,
       21000,
       {{1000, 300}, {700, 300}, {400, 300}, {100, 300}}},
      {"buy in the middle", 365, 1000, 2100, {{180, -1000}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto expected = referenceRate(c);
    ASSERT_TRUE(expected.has_value());
    IRRStream stream = makeStream(c);
    const auto rate = stream.calculateIrrFromStream();
    ASSERT_TRUE(rate.has_value());
    EXPECT_NEAR(rate->doubleValue(), *expected, 0.0005);
    EXPECT_LE(std::fabs(referenceValue(c, rate->doubleValue())), 0.01);
  }
}

TEST(IRRStreamTest, NoBracketGivesMinusOneAndNothingToEarnGivesNoAnswer) {
  // Everything put in is lost: the value is negative at every rate.
  IRRStream lost(daysBeforeEnd(365), amount("1000"), endDate(), amount("0"));
  const auto lostRate = lost.calculateIrrFromStream();
  ASSERT_TRUE(lostRate.has_value());
  EXPECT_EQ(*lostRate, Amount::minusOne());
  EXPECT_DOUBLE_EQ(lost.firstRatePositive(), -1.0);
  EXPECT_DOUBLE_EQ(lost.firstRateNegative(), -1.0);

  // Flows that cancel and equal start and end values: nothing to earn.
  IRRStream flat(daysBeforeEnd(365), amount("1000"), endDate(), amount("1000"));
  flat.addIRRStreamEvent(daysBeforeEnd(200), amount("-250.50"));
  flat.addIRRStreamEvent(daysBeforeEnd(100), amount("250.50"));
  EXPECT_TRUE(flat.isZeroSum());
  EXPECT_FALSE(flat.calculateIrrFromStream().has_value());

  // Money that only comes out: the value is positive at every rate.
  IRRStream gift(daysBeforeEnd(365), amount("0"), endDate(), amount("100"));
  EXPECT_FALSE(gift.isZeroSum());
  EXPECT_FALSE(gift.calculateIrrFromStream().has_value());

  // Above 10,000 % a year neither the fixed rates nor the scan reach the root.
  IRRStream tooGood(daysBeforeEnd(365), amount("1"), endDate(), amount("500"));
  EXPECT_FALSE(tooGood.calculateIrrFromStream().has_value());
}

TEST(IRRStreamTest, ValuesThatCannotBeComputed) {
  IRRStream stream(daysBeforeEnd(365), amount("1000"), endDate(), amount("1100"));
  EXPECT_FALSE(stream.netPresentValueWithRate(-1.0).has_value());
  EXPECT_FALSE(stream.netPresentValueWithRate(-1.5).has_value());
  EXPECT_TRUE(stream.netPresentValueWithRate(-0.999).has_value());

  double npv = 0;
  EXPECT_FALSE(IRRStream::accumulateNpv(npv, 1.0, 400.0, std::log(101.0)));  // overflows
  npv = 0;
  EXPECT_TRUE(IRRStream::accumulateNpv(npv, 2.0, 1.0, std::log(1.5)));
  EXPECT_DOUBLE_EQ(npv, 3.0);

  // A flow four centuries old overflows at 10,000 % a year: the whole value is unavailable.
  stream.addIRRStreamEvent(*LDateUtilities::dateWithYear(1624, 1, 1), amount("-1"));
  EXPECT_FALSE(stream.netPresentValueWithRate(100.0).has_value());
  EXPECT_TRUE(stream.netPresentValueWithRate(1.0).has_value());
}

TEST(IRRStreamTest, MergedStreams) {
  const StreamCase whole{"whole", 365, 1000, 2300, {{300, -500}, {200, 250}, {100, -400}}};
  IRRStream first(daysBeforeEnd(365), amount("1000"), endDate(), amount("2300"));
  first.addIRRStreamEvent(daysBeforeEnd(300), amount("-500"));
  IRRStream second(daysBeforeEnd(365), amount("0"), endDate(), amount("0"));
  second.addIRRStreamEvent(daysBeforeEnd(200), amount("250"));
  second.addIRRStreamEvent(daysBeforeEnd(100), amount("-400"));
  first.mergeIrrStream(second, false);
  ASSERT_EQ(first.cashFlowEvents().size(), 3u);
  const auto merged = first.calculateIrrFromStream();
  ASSERT_TRUE(merged.has_value());
  EXPECT_NEAR(merged->doubleValue(), *referenceRate(whole), 0.0005);

  // A holding bought in the middle of a portfolio's period: its start and end values become
  // flows of the portfolio, weighted as in the holding's own computation.
  IRRStream holding(daysBeforeEnd(180), amount("1000"), endDate(), amount("1050"));
  holding.addIRRStreamEvent(daysBeforeEnd(90), amount("20"));
  IRRStream portfolio(daysBeforeEnd(365), amount("0"), endDate(), amount("0"));
  portfolio.mergeIrrStream(holding, true);
  ASSERT_EQ(portfolio.cashFlowEvents().size(), 3u);
  const auto own = holding.calculateIrrFromStream();
  const auto combined = portfolio.calculateIrrFromStream();
  ASSERT_TRUE(own.has_value());
  ASSERT_TRUE(combined.has_value());
  EXPECT_NEAR(combined->doubleValue(), own->doubleValue(), 0.0005);
  EXPECT_NEAR(own->doubleValue(), *referenceRate({"holding", 180, 1000, 1050, {{90, 20}}}), 0.0005);
}

TEST(IRRStreamTest, ReturnOnInvestment) {
  const Date minimum = daysBeforeEnd(365);
  struct Case {
    const char* name;
    const char* start;
    const char* end;
    std::vector<std::pair<long, const char*>> flows;
    const char* expected;  // nullptr: not a number
  } cases[] = {
      {"plain gain", "1000", "1100", {}, "0.1"},
      {"money put in counts in the base", "1000", "1650", {{200, "-500"}}, "0.1"},
      {"money taken out counts as gain", "1000", "900", {{200, "200"}}, "0.1"},
      {"flows before the minimum date are left out", "1000", "1100", {{400, "-500"}}, "0.1"},
      {"no starting value", "0", "1100", {{200, "-500"}}, nullptr},
      {"nothing at work", "-500", "100", {{200, "-500"}}, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    IRRStream stream(minimum, amount(c.start), endDate(), amount(c.end));
    for (const auto& [days, value] : c.flows) {
      stream.addIRRStreamEvent(daysBeforeEnd(days), amount(value));
    }
    const Amount roi = stream.calculateRoiWithRequiredMinimumDate(minimum);
    if (c.expected) {
      EXPECT_EQ(roi, amount(c.expected)) << roi.stringValue();
    } else {
      EXPECT_TRUE(roi.isNaN()) << roi.stringValue();
    }
  }
}

}  // namespace
}  // namespace ledgeon
