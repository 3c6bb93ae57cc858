#pragma once

#include <optional>

#include "Loans/LAmortizationResults.h"
#include "Loans/LAmortizationWhatIf.h"
#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

// How a loan's term is counted.
enum class LoanDurationType : unsigned { Years = 0, Payments = 1 };

// Turns a loan's terms into its periodic payment, payoff date and schedule: the scheduled view
// (from the opening balance), the actual view (from today's balance) and a what-if view. Every
// setter marks the results stale; they are recomputed on first use. Main thread only.
class LAmortizationController final {
 public:
  // Payment types 1-9 (1, 2, 4, 6, 12, 13, 24, 26, 52 payments a year); any other is monthly.
  static constexpr unsigned kMonthlyPaymentType = 5;
  // Compounding types: 0 none (an add-on loan), 1 daily, 2 monthly, 3 semi-annual, 4 annual; any
  // other is monthly. Every kind of loan compounds monthly unless told otherwise.
  static constexpr unsigned kNoCompounding = 0;
  static constexpr unsigned kDefaultCompoundingPeriod = 2;

  // The longest schedule made: a weekly loan over a thousand years.
  static constexpr unsigned kMaxNumberOfPayments = 52 * 1000;

  static unsigned paymentsPerYearForPaymentType(unsigned paymentType) noexcept;
  static unsigned compoundingPeriodsPerYear(unsigned compoundingType) noexcept;

  // Inputs.
  Date firstPaymentDate() const noexcept { return firstPaymentDate_; }
  void setFirstPaymentDate(Date date);
  std::optional<Date> nextPaymentDate() const noexcept { return nextPaymentDate_; }
  void setNextPaymentDate(std::optional<Date> date);
  const Amount& openingBalance() const noexcept { return openingBalance_; }
  void setOpeningBalance(const Amount& balance);
  const Amount& todaysBalance() const noexcept { return todaysBalance_; }
  void setTodaysBalance(const Amount& balance);
  const Amount& interestRate() const noexcept { return interestRate_; }  // annual, in percent
  void setInterestRate(const Amount& percent);
  const Amount& loanTerm() const noexcept { return loanTerm_; }
  void setLoanTerm(const Amount& term);
  unsigned compoundingPeriod() const noexcept { return compoundingPeriod_; }
  void setCompoundingPeriod(unsigned compoundingType);
  unsigned paymentPeriod() const noexcept { return paymentPeriod_; }
  void setPaymentPeriod(unsigned paymentType);
  LoanDurationType durationType() const noexcept { return durationType_; }
  void setDurationType(LoanDurationType type);
  bool isSimple() const noexcept { return isSimple_; }
  void setIsSimple(bool simple);
  const Amount& otherPaymentAmounts() const noexcept { return otherPaymentAmounts_; }
  void setOtherPaymentAmounts(const Amount& amount);
  bool createFullSchedule() const noexcept { return createFullSchedule_; }
  void setCreateFullSchedule(bool create);
  const LAmortizationWhatIf& whatIf();  // its payoffDate is the what-if schedule's
  void setWhatIf(const LAmortizationWhatIf& whatIf);
  // How many times the scheduled and actual results have been computed.
  unsigned updateCount() const noexcept { return updateCount_; }

  // Rates and payments.
  Amount interestRateAsPercentage() const;  // the annual rate as a fraction: 6 % gives 0.06
  // The rate of one payment period; also decides whether interest must follow the days between
  // payments (compounding more often than payments).
  Amount estimatedPaymentPeriodInterestRate();
  bool mustCalculateRatePerPeriod();
  // The rate for the period ending on `paymentDate`.
  Amount interestRateForPaymentDate(Date paymentDate, Date previousDate);
  Amount numYearsInLoanForTerm(const Amount& term, LoanDurationType durationType) const;
  // Whole payments; 0 for a term beyond kMaxNumberOfPayments, which gets no schedule.
  static unsigned numPaymentsForYears(const Amount& years, unsigned paymentType);
  // Fills numberOfPaymentsForTerms, basePIPayment and totalPayment of `results`.
  void calculatePaymentForOpeningBalance(const Amount& openingBalance,
                                         LAmortizationResults& results);

  // Dates, stepped by a payment type. Months keep their day, clamped to shorter months.
  std::optional<Date> nextPaymentAfterDate(Date date, unsigned paymentType) const;
  std::optional<Date> previousPaymentBeforeDate(Date date, unsigned paymentType) const;
  // The loan starts one period before its first payment and matures with its last.
  std::optional<Date> maturityDateFromStartDate(Date startDate) const;
  std::optional<Date> startDateFromMaturityDate(Date maturityDate) const;
  // The first payment date, stepping from `seedDate`, that is today or later (today is the
  // user's calendar day from Clock).
  std::optional<Date> nextPaymentDateOnOrAfterTodayFromSeedDate(Date seedDate) const;
  // The date `index` payments after (before, when negative) `anchor`, counted from the anchor so
  // that clamping to a short month does not drift the day of later payments.
  static std::optional<Date> paymentDateAtIndex(Date anchor, long index, unsigned paymentType);

  // Results.
  const LAmortizationResults& scheduledResults();
  const LAmortizationResults& actualResults();
  const LAmortizationResults& whatIfResults();
  // Recomputes the scheduled and actual results when the terms changed; the what-if results
  // follow on their own first use.
  void updateCalculations();
  void updateWhatIfCalculations();
  bool calculationsUpToDate() const noexcept { return calculationsUpToDate_; }
  bool whatIfCalculationsUpToDate() const noexcept { return whatIfCalculationsUpToDate_; }

 private:
  // A loan's terms at one payment frequency.
  struct Plan {
    unsigned paymentType = kMonthlyPaymentType;
    unsigned paymentsPerYear = 12;
    unsigned compoundingPerYear = 12;
    bool mustCalculateRatePerPeriod = false;
    Amount ratePerPeriod;
    unsigned numberOfPayments = 0;
  };
  // Where a schedule starts and what it pays.
  struct ScheduleStart {
    Amount balance;
    Date firstDate;
    unsigned firstNumber = 1;
    unsigned paymentsAllowed = 0;
    Amount payment;
    Amount extraPayment;
    Amount extraPrincipal;
  };

  void invalidate();
  Plan planForPaymentType(unsigned paymentType) const;
  Amount paymentForPlan(const Plan& plan, const Amount& openingBalance) const;
  Amount addOnInterest(const Amount& openingBalance) const;
  Amount ratePerDayPeriod(Date paymentDate, Date previousDate) const;
  // Fills the schedule, totals and dates of fresh `results`.
  void buildSchedule(const Plan& plan, const ScheduleStart& start,
                     LAmortizationResults& results) const;
  void computeScheduled();
  void computeActual();
  void computeWhatIf();

  Date firstPaymentDate_;
  std::optional<Date> nextPaymentDate_;
  Amount openingBalance_;
  Amount todaysBalance_;
  Amount interestRate_;
  Amount loanTerm_;
  unsigned compoundingPeriod_ = kDefaultCompoundingPeriod;
  unsigned paymentPeriod_ = kMonthlyPaymentType;
  LoanDurationType durationType_ = LoanDurationType::Years;
  bool isSimple_ = false;
  Amount otherPaymentAmounts_;
  bool createFullSchedule_ = true;
  unsigned updateCount_ = 0;

  LAmortizationResults scheduled_;
  LAmortizationResults actual_;
  LAmortizationResults whatIfResults_;
  LAmortizationWhatIf whatIf_;
  Amount ratePerPeriod_;
  bool mustCalculateRatePerPeriod_ = false;
  bool ratePerPeriodUpToDate_ = false;
  bool calculationsUpToDate_ = false;
  bool whatIfCalculationsUpToDate_ = false;
};

}  // namespace ledgeon
