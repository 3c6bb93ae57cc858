#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "ImportExport/LIFFields.h"
#include "ImportExport/LIFStockSplit.h"
#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

std::string iso(std::optional<Date> date) {
  return date ? LDateUtilities::ISO8601StringFromDate(*date) : "none";
}

Amount dec(const char* text) { return Amount::fromString(text); }

TEST(LIFFieldsTest, TransactionDates) {
  const ScopedFixedClock clock(*LDateUtilities::dateWithYear(2026, 6, 15));
  struct Case {
    const char* text;
    const char* expected;
  };
  const Case cases[] = {
      {"12/31/99", "1999-12-31"},
      {"1/ 2'03", "2003-01-02"},
      {"01/02'03", "2003-01-02"},
      {"6/15/26", "2026-06-15"},
      {"3/1/46", "2046-03-01"},
      {"3/1/47", "1947-03-01"},
      {"02/29/2024", "2024-02-29"},
      {"2/30/24", "none"},
      {"13/01/24", "none"},
      {"yesterday", "none"},
      {"", "none"},
      {"1/2", "none"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(iso(LIFFields::transactionDate(c.text)), c.expected) << c.text;
}

TEST(LIFFieldsTest, PriceDates) {
  struct Case {
    const char* text;
    const char* expected;
  };
  const Case cases[] = {
      {"\"1/ 2'03\"", "2003-01-02"},  // "'" -> "/20"
      {"\"1/ 2' 3\"", "2003-01-02"},  // "'" -> "/20", then "20 " -> "200"
      {"\"12/31/1999\"", "1999-12-31"}, {"\"12/31'10\"", "2010-12-31"},
      {"\"12/31/99\"", "0099-12-31"},  // four-digit pattern: the year as written
      {"\"13/1/2003\"", "none"},        {"garbage", "none"},
  };
  for (const Case& c : cases) EXPECT_EQ(iso(LIFFields::priceDate(c.text)), c.expected) << c.text;
}

TEST(LIFFieldsTest, AmountsAndBalances) {
  EXPECT_EQ(LIFFields::amount("-1,234.56"), dec("-1234.56"));
  EXPECT_EQ(LIFFields::amount("1,000,000"), dec("1000000"));
  EXPECT_TRUE(LIFFields::amount("12..3").isNaN());
  EXPECT_TRUE(LIFFields::amount("").isNaN());
  EXPECT_TRUE(LIFFields::amount("$12").isNaN());
  EXPECT_EQ(LIFFields::balance("$(1,234.50)"), dec("-1234.50"));
  EXPECT_EQ(LIFFields::balance("$1,234.50"), dec("1234.50"));
  EXPECT_TRUE(LIFFields::balance("n/a").isNaN());
}

TEST(LIFFieldsTest, CodeTables) {
  EXPECT_EQ(LIFFields::reconcileStatus("X"), 2);
  EXPECT_EQ(LIFFields::reconcileStatus("R"), 2);
  EXPECT_EQ(LIFFields::reconcileStatus("*"), 1);
  EXPECT_EQ(LIFFields::reconcileStatus("c"), 1);
  EXPECT_EQ(LIFFields::reconcileStatus("C"), 0);
  EXPECT_EQ(LIFFields::reconcileStatus(""), 0);

  const std::pair<const char*, const char*> accountTypes[] = {
      {"Bank", "CHECKING"},
      {"CCard", "CREDITCARD"},
      {"Cash", "CASH"},
      {"Port", "BROKERAGENORMAL"},
      {"Invst", "BROKERAGENORMAL"},
      {"401(k)/403(b)", "DEFERREDCOMPRETIREMENT401K"},
      {"Mutual", "BROKERAGENORMAL"},
      {"Oth A", "ASSET"},
      {"Oth L", "LIABILITY"},
      {"Bank Savings", "CHECKING"},
  };
  for (const auto& [text, type] : accountTypes) EXPECT_EQ(LIFFields::accountType(text), type);
  EXPECT_FALSE(LIFFields::accountType("Savings"));
  EXPECT_FALSE(LIFFields::accountType("401(k)"));

  const std::pair<const char*, int> securityTypes[] = {
      {"Stock", 7}, {"Mutual Fund", 4}, {"Bond", 2}, {"Market Index", 3},
      {"CD", 1},    {"Option", 6},      {"", 6},
  };
  for (const auto& [text, type] : securityTypes) EXPECT_EQ(LIFFields::securityType(text), type);

  const std::pair<const char*, int> actions[] = {
      {"Buy to Close", 5},
      {"CvrShrt", 5},
      {"Buy", 3},
      {"BuyX", 3},
      {"Sell to Open", 21},
      {"ShtSell", 21},
      {"Sell", 19},
      {"SellX", 19},
      {"ShrsIn", 2},
      {"ShrsOut", 17},
      {"Div", 10},
      {"DivX", 10},
      {"ReinvDiv", 15},
      {"Cash", 1},
      {"MiscInc", 12},
      {"XIn", 1},
      {"XOut", 1},
      {"ReinvInt", 16},
      {"ReinvSh", 14},
      {"ReinvLg", 13},
      {"Split", 23},
      {"StkSplit", 23},
      {"Cap. Gains Long", 8},
      {"CGLong", 8},
      {"CGLongX", 8},
      {"Cap. Gains Short", 9},
      {"CGShort", 9},
      {"Cap. Distribution", 18},
      {"RtrnCap", 18},
      {"Interest Income", 11},
      {"IntInc", 11},
      {"MargInt", 6},
      {"MiscExp", 7},
      {"Grant", 0},
      {"", 0},
      {"buy", 0},
  };
  for (const auto& [text, code] : actions) EXPECT_EQ(LIFFields::investmentType(text), code) << text;
}

TEST(LIFFieldsTest, CategoryTextsSplitAtSlashesAndBrackets) {
  const auto parts = LIFFields::categoryParts("Auto:Fuel/Vacation/ignored");
  EXPECT_EQ(parts.category, "Auto:Fuel");
  EXPECT_EQ(parts.tag, "Vacation");
  EXPECT_EQ(LIFFields::categoryParts("Groceries").tag, "");
  EXPECT_EQ(LIFFields::bracketedName("[Checking]"), "Checking");
  EXPECT_EQ(LIFFields::bracketedName("[Open"), "Open");
  EXPECT_FALSE(LIFFields::bracketedName("Groceries"));
}

TEST(LIFStockSplitTest, BothFormsReduceTheRatio) {
  struct Case {
    const char* units;
    const char* quantity;
    LIFStockSplitForm form;
    const char* newUnits;
    const char* numerator;
    const char* denominator;
  };
  const Case cases[] = {
      {"100", "20", LIFStockSplitForm::kNewSharesPerTen, "200", "2", "1"},
      {"100", "50", LIFStockSplitForm::kAddedShares, "150", "3", "2"},
      {"90", "15", LIFStockSplitForm::kNewSharesPerTen, "135", "3", "2"},
      {"100", "5", LIFStockSplitForm::kNewSharesPerTen, "50", "1", "2"},  // reverse split
      {"33.333", "66.666", LIFStockSplitForm::kAddedShares, "99.999", "3", "1"},
      {"7", "3", LIFStockSplitForm::kAddedShares, "10", "10", "7"},
  };
  for (const Case& c : cases) {
    const auto split = LIFStockSplit::forUnits(dec(c.units), dec(c.quantity), c.form);
    EXPECT_EQ(split.newUnits, dec(c.newUnits)) << c.units << " " << c.quantity;
    EXPECT_EQ(split.numerator, dec(c.numerator)) << c.units << " " << c.quantity;
    EXPECT_EQ(split.denominator, dec(c.denominator)) << c.units << " " << c.quantity;
  }
  EXPECT_TRUE(LIFStockSplit::forUnits(dec("0"), dec("20"), LIFStockSplitForm::kAddedShares)
                  .numerator.isNaN());
  EXPECT_TRUE(
      LIFStockSplit::forUnits(dec("10"), Amount::notANumber(), LIFStockSplitForm::kAddedShares)
          .numerator.isNaN());
}

}  // namespace
}  // namespace ledgeon
