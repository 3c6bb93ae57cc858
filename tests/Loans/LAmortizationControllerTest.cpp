#include <chrono>
#include <cmath>
#include <cstdint>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "Loans/LAmortizationController.h"
#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {

// Amounts in failure messages as their decimal text.
inline void PrintTo(const Amount& value, std::ostream* out) { *out << value.stringValue(); }

namespace {

Amount amount(const char* text) { return Amount::fromString(text); }
Date day(int year, int month, int dayOfMonth) {
  return *LDateUtilities::dateWithYear(year, month, dayOfMonth);
}
std::string iso(Date date) { return LDateUtilities::ISO8601StringFromDate(date); }

struct LoanTerms {
  const char* balance;
  const char* ratePercent;
  const char* term;
  unsigned paymentType = 5;
  unsigned compounding = 2;
  LoanDurationType unit = LoanDurationType::Years;
};

void configure(LAmortizationController& loan, const LoanTerms& terms, Date firstPayment) {
  loan.setOpeningBalance(amount(terms.balance));
  loan.setInterestRate(amount(terms.ratePercent));
  loan.setLoanTerm(amount(terms.term));
  loan.setPaymentPeriod(terms.paymentType);
  loan.setCompoundingPeriod(terms.compounding);
  loan.setDurationType(terms.unit);
  loan.setFirstPaymentDate(firstPayment);
}

Amount hundredths(int64_t value) {
  return Amount::multiplyByPowerOf10(Amount::fromInt64(value), -2, RoundingMode::Plain).value;
}

int64_t cents(const Amount& value) {
  return Amount::multiplyByPowerOf10(value, 2, RoundingMode::Plain).value.longLongValue();
}

TEST(LAmortizationControllerTest, PaymentAndCompoundingTables) {
  const unsigned payments[][2] = {{1, 1},  {2, 2},  {3, 4},  {4, 6},  {5, 12},  {6, 13},
                                  {7, 24}, {8, 26}, {9, 52}, {0, 12}, {10, 12}, {4242, 12}};
  for (const auto& [type, perYear] : payments) {
    EXPECT_EQ(LAmortizationController::paymentsPerYearForPaymentType(type), perYear) << type;
  }
  const unsigned compounding[][2] = {{0, 0}, {1, 365}, {2, 12}, {3, 2}, {4, 1}, {5, 12}, {77, 12}};
  for (const auto& [type, perYear] : compounding) {
    EXPECT_EQ(LAmortizationController::compoundingPeriodsPerYear(type), perYear) << type;
  }
}

// Monthly payments of well-known loans (exact figure in the comment), rounded up to the cent.
TEST(LAmortizationControllerTest, PublishedPayments) {
  const struct {
    LoanTerms terms;
    const char* payment;
  } cases[] = {
      {{"200000", "6", "30"}, "1199.11"},                                     // 1,199.1011
      {{"100000", "5", "30"}, "536.83"},                                      // 536.8216
      {{"100000", "6", "30"}, "599.56"},                                      // 599.5505
      {{"300000", "4", "30"}, "1432.25"},                                     // 1,432.2459
      {{"200000", "4", "15"}, "1479.38"},                                     // 1,479.3759
      {{"150000", "7", "180", 5, 2, LoanDurationType::Payments}, "1348.25"},  // 1,348.2424
      {{"25000", "7", "5"}, "495.03"},                                        // 495.0300
      {{"100000", "6", "25", 5, 3}, "639.81"},  // semi-annual compounding: 639.8066
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.terms.balance) + " at " + c.terms.ratePercent);
    LAmortizationController loan;
    configure(loan, c.terms, day(2025, 1, 1));
    EXPECT_EQ(loan.scheduledResults().basePIPayment, amount(c.payment))
        << loan.scheduledResults().basePIPayment.stringValue();
  }
}

TEST(LAmortizationControllerTest, RatePerPeriod) {
  LAmortizationController loan;
  configure(loan, {"1000", "6", "1"}, day(2025, 1, 1));
  EXPECT_EQ(loan.estimatedPaymentPeriodInterestRate(), amount("0.005"));
  EXPECT_FALSE(loan.mustCalculateRatePerPeriod());

  loan.setInterestRate(amount("7"));
  EXPECT_EQ(loan.estimatedPaymentPeriodInterestRate(),
            Amount::divide(amount("0.07"), amount("12"), RoundingMode::Bankers).value);

  loan.setIsSimple(true);
  EXPECT_NEAR(loan.estimatedPaymentPeriodInterestRate().doubleValue(),
              std::pow(1.07, 1.0 / 12.0) - 1.0, 1e-15);

  loan.setIsSimple(false);
  loan.setCompoundingPeriod(1);  // daily, more often than the payments
  EXPECT_TRUE(loan.mustCalculateRatePerPeriod());
  // 7 % / 365 for each of the 31 days of January.
  EXPECT_NEAR(loan.interestRateForPaymentDate(day(2025, 2, 1), day(2025, 1, 1)).doubleValue(),
              0.07 / 365.0 * 31.0, 1e-15);

  loan.setInterestRate(amount("0"));
  EXPECT_TRUE(loan.estimatedPaymentPeriodInterestRate().isZero());
}

// The whole schedule against an independent computation in whole cents: interest each month is
// balance x rate / 12 rounded half up, the payment is the exact annuity rounded up, and the
// term's last payment settles whatever rounding left.
TEST(LAmortizationControllerTest, FullScheduleTotalsMatchAnIndependentComputation) {
  const struct {
    int64_t balanceCents;
    int64_t rateBasisPoints;
    unsigned years;
  } cases[] = {{20000000, 600, 30}, {10000000, 500, 30}, {2500000, 700, 5}, {31415926, 425, 20}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.balanceCents);
    const unsigned n = c.years * 12;
    const long double i = static_cast<long double>(c.rateBasisPoints) / 120000.0L;
    const long double growth = std::pow(1.0L + i, static_cast<long double>(n));
    const auto payment = static_cast<int64_t>(
        std::ceil(static_cast<long double>(c.balanceCents) * i * growth / (growth - 1.0L)));
    int64_t balance = c.balanceCents;
    int64_t totalInterest = 0;
    int64_t lastPayment = 0;
    unsigned count = 0;
    while (balance > 0 && count < n) {
      const int64_t interest = (balance * c.rateBasisPoints * 2 + 120000) / 240000;
      const int64_t principal = count + 1 == n ? balance : std::min(payment - interest, balance);
      lastPayment = principal + interest;
      balance -= principal;
      totalInterest += interest;
      ++count;
    }

    LAmortizationController loan;
    loan.setOpeningBalance(hundredths(c.balanceCents));
    loan.setInterestRate(hundredths(c.rateBasisPoints));
    loan.setLoanTerm(Amount::fromUInt64(c.years));
    loan.setFirstPaymentDate(day(2025, 1, 31));
    const auto& results = loan.scheduledResults();
    EXPECT_EQ(cents(results.basePIPayment), payment);
    EXPECT_EQ(results.numberOfPaymentsRemaining, count);
    EXPECT_EQ(results.amortizationSchedule.size(), count);
    EXPECT_EQ(cents(results.totalInterest), totalInterest);
    EXPECT_EQ(cents(results.totalPrincipal), c.balanceCents);
    EXPECT_EQ(cents(results.totalCost), totalInterest + c.balanceCents);
    ASSERT_TRUE(results.lastPaymentData.has_value());
    EXPECT_EQ(cents(results.lastPaymentData->payment), lastPayment);
    EXPECT_TRUE(results.lastPaymentData->balance.isZero());
    // Dates count from the first payment, so the 31st comes back after short months.
    const int lastYear = 2025 + static_cast<int>(c.years) - 1;
    EXPECT_EQ(iso(*results.payoffDate), std::to_string(lastYear) + "-12-31");
  }
}

TEST(LAmortizationControllerTest, LastPaymentIsTheSmallestWhenThePaymentIsRoundedUp) {
  const LoanTerms loans[] = {{"200000", "6", "30"},
                             {"10000", "0", "36"},
                             {"8000", "9.5", "4", 9},
                             {"12345.67", "3", "2", 3, 4},
                             {"150000", "7", "15"}};
  for (const auto& terms : loans) {
    SCOPED_TRACE(terms.balance);
    LAmortizationController loan;
    configure(loan, terms, day(2025, 3, 15));
    const auto& schedule = loan.scheduledResults().amortizationSchedule;
    ASSERT_FALSE(schedule.empty());
    for (size_t k = 0; k + 1 < schedule.size(); ++k) {
      EXPECT_EQ(schedule[k].payment, loan.scheduledResults().basePIPayment);
      EXPECT_TRUE(schedule.back().payment.isLessThan(schedule[k].payment)) << k;
    }
  }
}

TEST(LAmortizationControllerTest, TermsAndRatesBeyondReachGetNoSchedule) {
  EXPECT_EQ(LAmortizationController::numPaymentsForYears(amount("1000"), 9), 52000u);
  EXPECT_EQ(LAmortizationController::numPaymentsForYears(amount("1000.01"), 9), 0u);
  EXPECT_EQ(LAmortizationController::numPaymentsForYears(amount("1e30"), 5), 0u);
  EXPECT_EQ(LAmortizationController::numPaymentsForYears(amount("0.04"), 5), 0u);
  LAmortizationController loan;
  configure(loan, {"1000", "5", "1e9"}, day(2025, 1, 1));
  EXPECT_TRUE(loan.scheduledResults().amortizationSchedule.empty());
  EXPECT_FALSE(loan.scheduledResults().payoffDate.has_value());

  // A rate so large that the payment leaves 38 digits: no schedule either.
  configure(loan, {"100000", "1e30", "30"}, day(2025, 1, 1));
  EXPECT_TRUE(loan.scheduledResults().basePIPayment.isNaN());
  EXPECT_TRUE(loan.scheduledResults().amortizationSchedule.empty());
}

TEST(LAmortizationControllerTest, ZeroInterestDividesTheBalance) {
  LAmortizationController loan;
  configure(loan, {"12000", "0", "1"}, day(2025, 1, 1));
  EXPECT_EQ(loan.scheduledResults().basePIPayment, amount("1000"));
  EXPECT_TRUE(loan.scheduledResults().totalInterest.isZero());
  EXPECT_EQ(loan.scheduledResults().numberOfPaymentsRemaining, 12u);

  configure(loan, {"10000", "0", "36", 5, 2, LoanDurationType::Payments}, day(2025, 1, 1));
  const auto& results = loan.scheduledResults();
  EXPECT_EQ(results.basePIPayment, amount("277.78"));
  EXPECT_EQ(results.lastPaymentData->payment, amount("277.70"));
  EXPECT_EQ(results.totalCost, amount("10000"));
}

TEST(LAmortizationControllerTest, AddOnLoanChargesTheAnnualRateOnce) {
  LAmortizationController loan;
  configure(loan, {"1000", "10", "10", 5, 0, LoanDurationType::Payments}, day(2025, 1, 1));
  const auto& results = loan.scheduledResults();
  EXPECT_EQ(results.basePIPayment, amount("110"));
  ASSERT_EQ(results.amortizationSchedule.size(), 10u);
  for (const auto& entry : results.amortizationSchedule) {
    EXPECT_EQ(entry.interest, amount("10"));
    EXPECT_EQ(entry.principal, amount("100"));
  }
  EXPECT_EQ(results.totalInterest, amount("100"));
  EXPECT_EQ(results.totalCost, amount("1100"));
  EXPECT_TRUE(results.lastPaymentData->balance.isZero());
}

TEST(LAmortizationControllerTest, DailyCompoundingFollowsTheDaysBetweenPayments) {
  LAmortizationController loan;
  configure(loan, {"10000", "12", "1", 5, 1}, day(2023, 2, 1));
  const auto& results = loan.scheduledResults();
  EXPECT_EQ(results.basePIPayment, amount("888.49"));  // 888.4879, rounded to even
  ASSERT_EQ(results.amortizationSchedule.size(), 12u);

  using namespace std::chrono;
  sys_days previous = year(2023) / January / 1;
  long double balance = 10000.00L;
  for (const auto& entry : results.amortizationSchedule) {
    const year_month_day date =
        year_month_day(year(2023) / January / 1) + months(entry.paymentNumber);
    const auto days = (sys_days(date) - previous).count();
    EXPECT_EQ(iso(entry.paymentDate),
              iso(day(static_cast<int>(date.year()),
                      static_cast<int>(static_cast<unsigned>(date.month())),
                      static_cast<int>(static_cast<unsigned>(date.day())))));
    const long double interest = std::round(balance * 0.12L * days / 365.0L * 100.0L) / 100.0L;
    EXPECT_NEAR(entry.interest.doubleValue(), static_cast<double>(interest), 1e-9)
        << entry.paymentNumber << " after " << days << " days";
    balance -= static_cast<long double>(entry.principal.doubleValue());
    previous = sys_days(date);
  }
  // February is the cheapest month, January and March the dearest of the first three.
  const auto& s = results.amortizationSchedule;
  EXPECT_TRUE(s[1].interest.isLessThan(s[0].interest));
}

TEST(LAmortizationControllerTest, InterestAPaymentDoesNotCoverIsCarried) {
  // A century-long loan pays little more than a 30-day month's interest; 31 days cost more.
  LAmortizationController loan;
  configure(loan, {"100000", "12", "100", 5, 1}, day(2023, 1, 31));
  const auto& s = loan.scheduledResults().amortizationSchedule;
  ASSERT_GE(s.size(), 2u);
  EXPECT_EQ(loan.scheduledResults().basePIPayment, amount("1000.01"));
  EXPECT_EQ(s[0].interest, amount("1000.01"));  // 31 days: 1,019.18 due
  EXPECT_EQ(s[0].interestCarried, amount("19.17"));
  EXPECT_TRUE(s[0].principal.isZero());
  EXPECT_EQ(s[1].interest, amount("939.72"));  // 28 days: 920.55 + 19.17
  EXPECT_TRUE(s[1].interestCarried.isZero());
}

TEST(LAmortizationControllerTest, PaymentTypeOutsideTheTableIsMonthly) {
  LAmortizationController monthly;
  configure(monthly, {"50000", "5.5", "10"}, day(2025, 1, 31));
  for (unsigned type : {0u, 10u, 99u}) {
    LAmortizationController other;
    configure(other, {"50000", "5.5", "10", type}, day(2025, 1, 31));
    EXPECT_EQ(other.scheduledResults().basePIPayment, monthly.scheduledResults().basePIPayment);
    EXPECT_EQ(other.scheduledResults().totalInterest, monthly.scheduledResults().totalInterest);
    EXPECT_EQ(*other.scheduledResults().payoffDate, *monthly.scheduledResults().payoffDate);
    EXPECT_EQ(iso(*other.nextPaymentAfterDate(day(2025, 1, 31), type)), "2025-02-28");
  }
}

TEST(LAmortizationControllerTest, PaymentDates) {
  const struct {
    unsigned type;
    Date from;
    const char* next;
    const char* previous;
  } cases[] = {
      {1, day(2024, 2, 29), "2025-02-28", "2023-02-28"},
      {2, day(2024, 8, 31), "2025-02-28", "2024-02-29"},
      {3, day(2024, 1, 31), "2024-04-30", "2023-10-31"},
      {4, day(2024, 12, 31), "2025-02-28", "2024-10-31"},
      {5, day(2024, 1, 31), "2024-02-29", "2023-12-31"},
      {6, day(2024, 1, 31), "2024-02-28", "2024-01-03"},
      {7, day(2024, 1, 10), "2024-01-25", "2023-12-25"},
      {7, day(2024, 1, 25), "2024-02-10", "2024-01-10"},
      {7, day(2024, 2, 15), "2024-03-01", "2024-01-30"},
      {8, day(2024, 12, 25), "2025-01-08", "2024-12-11"},
      {9, day(2024, 2, 26), "2024-03-04", "2024-02-19"},
  };
  LAmortizationController loan;
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.type) + " " + iso(c.from));
    EXPECT_EQ(iso(*loan.nextPaymentAfterDate(c.from, c.type)), c.next);
    EXPECT_EQ(iso(*loan.previousPaymentBeforeDate(c.from, c.type)), c.previous);
  }

  configure(loan, {"200000", "6", "30"}, day(2024, 2, 1));
  EXPECT_EQ(iso(*loan.maturityDateFromStartDate(day(2024, 1, 31))), "2054-01-31");
  EXPECT_EQ(iso(*loan.startDateFromMaturityDate(day(2054, 1, 31))), "2024-01-31");
  loan.setPaymentPeriod(9);
  EXPECT_EQ(iso(*loan.maturityDateFromStartDate(day(2024, 1, 1))), "2053-11-24");  // 1,560 weeks

  const ScopedFixedClock clock(day(2024, 3, 15));
  loan.setPaymentPeriod(5);
  EXPECT_EQ(iso(*loan.nextPaymentDateOnOrAfterTodayFromSeedDate(day(2023, 1, 31))), "2024-03-31");
  EXPECT_EQ(iso(*loan.nextPaymentDateOnOrAfterTodayFromSeedDate(day(2024, 3, 15))), "2024-03-15");
  EXPECT_EQ(iso(*loan.nextPaymentDateOnOrAfterTodayFromSeedDate(day(2024, 6, 1))), "2024-06-01");
}

TEST(LAmortizationControllerTest, ResultsAreRecomputedOnlyWhenTheTermsChange) {
  LAmortizationController loan;
  configure(loan, {"200000", "6", "30"}, day(2025, 1, 1));
  EXPECT_FALSE(loan.calculationsUpToDate());
  const Amount first = loan.scheduledResults().basePIPayment;
  EXPECT_TRUE(loan.calculationsUpToDate());
  loan.actualResults();
  loan.whatIfResults();
  EXPECT_EQ(loan.updateCount(), 1u);

  LAmortizationWhatIf whatIf;
  whatIf.flags = LAmortizationWhatIf::kExtraPayment;
  whatIf.extraPayment = amount("100");
  loan.setWhatIf(whatIf);
  EXPECT_TRUE(loan.calculationsUpToDate());
  EXPECT_FALSE(loan.whatIfCalculationsUpToDate());
  loan.whatIfResults();
  EXPECT_EQ(loan.updateCount(), 1u);

  loan.setInterestRate(amount("5"));
  EXPECT_FALSE(loan.calculationsUpToDate());
  EXPECT_FALSE(loan.whatIfCalculationsUpToDate());
  EXPECT_TRUE(loan.scheduledResults().basePIPayment.isLessThan(first));
  EXPECT_EQ(loan.updateCount(), 2u);
}

TEST(LAmortizationControllerTest, ActualResultsStartFromTodaysBalance) {
  const ScopedFixedClock clock(day(2025, 6, 10));
  LAmortizationController loan;
  configure(loan, {"200000", "6", "30"}, day(2025, 1, 1));
  loan.setTodaysBalance(amount("150000"));
  const auto& actual = loan.actualResults();
  ASSERT_FALSE(actual.amortizationSchedule.empty());
  const auto& next = actual.amortizationSchedule.front();
  EXPECT_EQ(iso(next.paymentDate), "2025-07-01");
  EXPECT_EQ(next.paymentNumber, 7u);
  EXPECT_EQ(next.interest, amount("750"));
  EXPECT_EQ(actual.basePIPayment, amount("1199.11"));
  EXPECT_LT(actual.numberOfPaymentsRemaining, 354u);  // ahead of schedule: paid off early
  EXPECT_TRUE(actual.lastPaymentData->balance.isZero());
  ASSERT_TRUE(actual.nextPaymentData.has_value());
  EXPECT_EQ(actual.nextPaymentData->paymentNumber, 7u);

  // The scheduled view's next payment is also the one on or after today.
  EXPECT_EQ(loan.scheduledResults().nextPaymentData->paymentNumber, 7u);

  loan.setNextPaymentDate(day(2025, 9, 1));
  EXPECT_EQ(loan.actualResults().amortizationSchedule.front().paymentNumber, 9u);
}

TEST(LAmortizationControllerTest, WhatIfVariants) {
  LAmortizationController loan;
  configure(loan, {"200000", "6", "30"}, day(2025, 1, 1));
  const auto scheduled = loan.scheduledResults();

  LAmortizationWhatIf extra;
  extra.flags = LAmortizationWhatIf::kExtraPayment;
  extra.extraPayment = amount("200");
  loan.setWhatIf(extra);
  const auto faster = loan.whatIfResults();
  EXPECT_EQ(faster.amortizationSchedule.front().payment, amount("1399.11"));
  EXPECT_LT(faster.numberOfPaymentsRemaining, scheduled.numberOfPaymentsRemaining);
  EXPECT_TRUE(faster.totalInterest.isLessThan(scheduled.totalInterest));
  EXPECT_EQ(faster.totalPrincipal, amount("200000"));
  EXPECT_EQ(*loan.whatIf().payoffDate, *faster.payoffDate);

  LAmortizationWhatIf lump;
  lump.flags = LAmortizationWhatIf::kExtraPrincipal;
  lump.extraPrincipal = amount("10000");
  loan.setWhatIf(lump);
  const auto& once = loan.whatIfResults();
  EXPECT_EQ(once.amortizationSchedule[0].extraPrincipal, amount("10000"));
  EXPECT_EQ(once.amortizationSchedule[0].balance, amount("189800.89"));  // 200,000 - 10,199.11
  EXPECT_TRUE(once.amortizationSchedule[1].extraPrincipal.isZero());

  LAmortizationWhatIf biweekly;
  biweekly.flags = LAmortizationWhatIf::kPaymentFrequency;
  biweekly.paymentFrequency = 8;
  loan.setWhatIf(biweekly);
  const auto& everyTwoWeeks = loan.whatIfResults();
  EXPECT_EQ(everyTwoWeeks.numberOfPaymentsForTerms, 780u);
  // Monthly compounding of payments every two weeks: (1 + 0.06/12)^(12/26) - 1 a period.
  EXPECT_EQ(everyTwoWeeks.basePIPayment, amount("552.69"));  // 552.6882 rounded up
  EXPECT_EQ(iso(everyTwoWeeks.amortizationSchedule[1].paymentDate), "2025-01-15");
}

}  // namespace
}  // namespace ledgeon
