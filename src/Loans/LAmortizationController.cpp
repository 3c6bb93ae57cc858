#include "Loans/LAmortizationController.h"

#include <cmath>

#include "Loans/internal/PaymentCalendar.h"
#include "Utilities/LArithmetic.h"

namespace ledgeon {

namespace {

constexpr unsigned kDaysPerYear = 365;

Amount fromUnsigned(unsigned value) { return Amount::fromUInt64(value); }

// (1 + r/m)^(m/p) - 1, or (1 + r)^(1/p) - 1 for a simple loan. The power is a double one; a
// whole-period exponent of one keeps the decimal exact, so monthly compounding of monthly
// payments gives exactly r/12.
Amount compoundedRatePerPeriod(const Amount& annualRate, unsigned paymentsPerYear,
                               unsigned periodsPerYear) {
  if (periodsPerYear == 0) return Amount::zero();
  auto rate = LArithmetic::decimalWithDecimal(annualRate);
  rate.divideByDecimal(fromUnsigned(periodsPerYear));
  if (paymentsPerYear == periodsPerYear) return rate.decimalNumber();
  rate.addDecimal(Amount::one());
  const double exponent = paymentsPerYear == 0 ? 0.0
                                               : static_cast<double>(periodsPerYear) /
                                                     static_cast<double>(paymentsPerYear);
  rate.setDecimal(Amount::fromDouble(std::pow(rate.doubleValue(), exponent)));
  rate.subtractDecimal(Amount::one());
  return rate.decimalNumber();
}

}  // namespace

unsigned LAmortizationController::paymentsPerYearForPaymentType(unsigned paymentType) noexcept {
  switch (paymentType) {
    case 1:
      return 1;
    case 2:
      return 2;
    case 3:
      return 4;
    case 4:
      return 6;
    case 6:
      return 13;
    case 7:
      return 24;
    case 8:
      return 26;
    case 9:
      return 52;
    default:
      return 12;
  }
}

unsigned LAmortizationController::compoundingPeriodsPerYear(unsigned compoundingType) noexcept {
  switch (compoundingType) {
    case 0:
      return 0;
    case 1:
      return 365;
    case 3:
      return 2;
    case 4:
      return 1;
    default:
      return 12;
  }
}

void LAmortizationController::invalidate() {
  ratePerPeriodUpToDate_ = false;
  calculationsUpToDate_ = false;
  whatIfCalculationsUpToDate_ = false;
}

void LAmortizationController::setFirstPaymentDate(Date date) {
  firstPaymentDate_ = date;
  invalidate();
}
void LAmortizationController::setNextPaymentDate(std::optional<Date> date) {
  nextPaymentDate_ = date;
  invalidate();
}
void LAmortizationController::setOpeningBalance(const Amount& balance) {
  openingBalance_ = balance;
  invalidate();
}
void LAmortizationController::setTodaysBalance(const Amount& balance) {
  todaysBalance_ = balance;
  invalidate();
}
void LAmortizationController::setInterestRate(const Amount& percent) {
  interestRate_ = percent;
  invalidate();
}
void LAmortizationController::setLoanTerm(const Amount& term) {
  loanTerm_ = term;
  invalidate();
}
void LAmortizationController::setCompoundingPeriod(unsigned compoundingType) {
  compoundingPeriod_ = compoundingType;
  invalidate();
}
void LAmortizationController::setPaymentPeriod(unsigned paymentType) {
  paymentPeriod_ = paymentType;
  invalidate();
}
void LAmortizationController::setDurationType(LoanDurationType type) {
  durationType_ = type;
  invalidate();
}
void LAmortizationController::setIsSimple(bool simple) {
  isSimple_ = simple;
  invalidate();
}
void LAmortizationController::setOtherPaymentAmounts(const Amount& amount) {
  otherPaymentAmounts_ = amount;
  invalidate();
}
void LAmortizationController::setCreateFullSchedule(bool create) {
  createFullSchedule_ = create;
  invalidate();
}
void LAmortizationController::setWhatIf(const LAmortizationWhatIf& whatIf) {
  whatIf_ = whatIf;
  whatIfCalculationsUpToDate_ = false;
}

const LAmortizationWhatIf& LAmortizationController::whatIf() {
  updateWhatIfCalculations();
  return whatIf_;
}

Amount LAmortizationController::interestRateAsPercentage() const {
  auto rate = LArithmetic::decimalWithDecimal(interestRate_);
  rate.divideByDecimal(Amount::oneHundred());
  return rate.decimalNumber();
}

LAmortizationController::Plan LAmortizationController::planForPaymentType(
    unsigned paymentType) const {
  Plan plan;
  plan.paymentType = paymentType;
  plan.paymentsPerYear = paymentsPerYearForPaymentType(paymentType);
  plan.compoundingPerYear = compoundingPeriodsPerYear(compoundingPeriod_);
  plan.mustCalculateRatePerPeriod = plan.compoundingPerYear > plan.paymentsPerYear;
  const Amount annualRate = interestRateAsPercentage();
  if (annualRate.isZero() || compoundingPeriod_ == kNoCompounding) {
    plan.ratePerPeriod = Amount::zero();
  } else if (isSimple_) {
    // Once a year: (1 + r)^(1/p) - 1.
    plan.ratePerPeriod = compoundedRatePerPeriod(annualRate, plan.paymentsPerYear, 1);
  } else {
    const unsigned periods =
        plan.mustCalculateRatePerPeriod ? plan.paymentsPerYear : plan.compoundingPerYear;
    plan.ratePerPeriod = compoundedRatePerPeriod(annualRate, plan.paymentsPerYear, periods);
  }
  plan.numberOfPayments =
      numPaymentsForYears(numYearsInLoanForTerm(loanTerm_, durationType_), paymentType);
  return plan;
}

Amount LAmortizationController::estimatedPaymentPeriodInterestRate() {
  if (!ratePerPeriodUpToDate_) {
    const Plan plan = planForPaymentType(paymentPeriod_);
    ratePerPeriod_ = plan.ratePerPeriod;
    mustCalculateRatePerPeriod_ = plan.mustCalculateRatePerPeriod;
    ratePerPeriodUpToDate_ = true;
  }
  return ratePerPeriod_;
}

bool LAmortizationController::mustCalculateRatePerPeriod() {
  estimatedPaymentPeriodInterestRate();
  return mustCalculateRatePerPeriod_;
}

// Interest accrues by the day when compounding is more frequent than payments: r/365 a day,
// which for daily compounding is r/c a day. Monthly compounding of quarterly or yearly payments
// accrues the same daily interest, so that a quarter costs a quarter's interest.
Amount LAmortizationController::ratePerDayPeriod(Date paymentDate, Date previousDate) const {
  auto rate = LArithmetic::decimalWithDecimal(interestRateAsPercentage());
  rate.divideByDecimal(fromUnsigned(kDaysPerYear));
  const long days = loans::daysBetween(previousDate, paymentDate);
  rate.multiplyByDecimal(Amount::fromInt64(days));
  return rate.decimalNumber();
}

Amount LAmortizationController::interestRateForPaymentDate(Date paymentDate, Date previousDate) {
  const Amount perPeriod = estimatedPaymentPeriodInterestRate();
  if (!mustCalculateRatePerPeriod_ || interestRateAsPercentage().isZero()) return perPeriod;
  return ratePerDayPeriod(paymentDate, previousDate);
}

Amount LAmortizationController::numYearsInLoanForTerm(const Amount& term,
                                                      LoanDurationType durationType) const {
  if (durationType != LoanDurationType::Payments) return term;
  auto years = LArithmetic::decimalWithDecimal(term);
  years.divideByDecimal(fromUnsigned(paymentsPerYearForPaymentType(paymentPeriod_)));
  return years.decimalNumber();
}

unsigned LAmortizationController::numPaymentsForYears(const Amount& years, unsigned paymentType) {
  auto payments = LArithmetic::decimalWithDecimal(years);
  payments.multiplyByDecimal(fromUnsigned(paymentsPerYearForPaymentType(paymentType)));
  payments.roundWithScale(0);
  if (payments.isNaN() || !payments.isGreaterThanZero() ||
      payments.isGreaterThanDecimal(fromUnsigned(kMaxNumberOfPayments))) {
    return 0;
  }
  return static_cast<unsigned>(payments.decimalNumber().unsignedIntValue());
}

// The interest of an add-on loan: the annual rate once on the amount borrowed, to the cent.
Amount LAmortizationController::addOnInterest(const Amount& openingBalance) const {
  auto interest = LArithmetic::decimalWithDecimal(openingBalance);
  interest.multiplyByDecimal(interestRateAsPercentage());
  interest.roundCurrencyWithMode(RoundingMode::Bankers);
  return interest.decimalNumber();
}

// The principal-and-interest payment, to the cent: rounded up when interest follows whole
// periods (so that the last payment is the smallest), to even when it follows days.
Amount LAmortizationController::paymentForPlan(const Plan& plan,
                                               const Amount& openingBalance) const {
  if (plan.numberOfPayments == 0) return Amount::zero();
  const Amount payments = fromUnsigned(plan.numberOfPayments);
  auto payment = LArithmetic::decimalWithDecimal(openingBalance);
  if (compoundingPeriod_ == kNoCompounding) {
    // The annual rate is charged once, whatever the term.
    payment.addDecimal(addOnInterest(openingBalance));
    payment.divideByDecimal(payments);
  } else if (plan.ratePerPeriod.isZero()) {
    payment.divideByDecimal(payments);
  } else {
    auto growth = LArithmetic::decimalWithDecimal(plan.ratePerPeriod);
    growth.addDecimal(Amount::one());
    growth.raiseToPower(plan.numberOfPayments);
    payment.multiplyByDecimal(plan.ratePerPeriod);
    payment.multiplyByDecimal(growth.decimalNumber());
    growth.subtractDecimal(Amount::one());
    payment.divideByDecimal(growth.decimalNumber());
  }
  payment.roundCurrencyWithMode(plan.mustCalculateRatePerPeriod ? RoundingMode::Bankers
                                                                : RoundingMode::Up);
  return payment.decimalNumber();
}

void LAmortizationController::calculatePaymentForOpeningBalance(const Amount& openingBalance,
                                                                LAmortizationResults& results) {
  estimatedPaymentPeriodInterestRate();
  const Plan plan = planForPaymentType(paymentPeriod_);
  results.numberOfPaymentsForTerms = plan.numberOfPayments;
  results.basePIPayment = paymentForPlan(plan, openingBalance);
  auto total = LArithmetic::decimalWithDecimal(results.basePIPayment);
  total.addDecimal(otherPaymentAmounts_);
  results.totalPayment = total.decimalNumber();
}

const LAmortizationResults& LAmortizationController::scheduledResults() {
  updateCalculations();
  return scheduled_;
}

const LAmortizationResults& LAmortizationController::actualResults() {
  updateCalculations();
  return actual_;
}

const LAmortizationResults& LAmortizationController::whatIfResults() {
  updateWhatIfCalculations();
  return whatIfResults_;
}

void LAmortizationController::updateCalculations() {
  if (!calculationsUpToDate_) {
    computeScheduled();
    computeActual();
    calculationsUpToDate_ = true;
    ++updateCount_;
  }
}

void LAmortizationController::updateWhatIfCalculations() {
  if (whatIfCalculationsUpToDate_) return;
  computeWhatIf();
  whatIfCalculationsUpToDate_ = true;
}

}  // namespace ledgeon
