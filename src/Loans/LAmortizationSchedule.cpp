#include <algorithm>

#include "Loans/LAmortizationController.h"
#include "Loans/internal/PaymentCalendar.h"
#include "Utilities/LArithmetic.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {

namespace {

Amount sum(const Amount& a, const Amount& b) {
  auto total = LArithmetic::decimalWithDecimal(a);
  total.addDecimal(b);
  return total.decimalNumber();
}

Amount difference(const Amount& a, const Amount& b) {
  auto total = LArithmetic::decimalWithDecimal(a);
  total.subtractDecimal(b);
  return total.decimalNumber();
}

Amount interestOn(const Amount& balance, const Amount& rate) {
  auto interest = LArithmetic::decimalWithDecimal(balance);
  interest.multiplyByDecimal(rate);
  interest.roundCurrencyWithMode(RoundingMode::Plain);
  return interest.decimalNumber();
}

// An add-on loan's interest spread over its payments: an equal share, to the cent, with the
// last payment of the term taking what rounding left over.
Amount addOnShare(const Amount& totalInterest, unsigned payments, unsigned paymentNumber) {
  if (payments == 0) return Amount::zero();
  auto share = LArithmetic::decimalWithDecimal(totalInterest);
  share.divideByDecimal(Amount::fromUInt64(payments));
  share.roundCurrencyWithMode(RoundingMode::Bankers);
  if (paymentNumber < payments) return share.decimalNumber();
  auto rest = LArithmetic::decimalWithDecimal(share.decimalNumber());
  rest.multiplyByDecimal(Amount::fromUInt64(payments - 1));
  return difference(totalInterest, rest.decimalNumber());
}

bool onOrAfter(Date date, Date day) { return loans::daysBetween(day, date) >= 0; }

// What runs from one payment to the next.
struct ScheduleData {
  LArithmetic balance;
  Amount carried;        // interest due but not yet paid
  bool settles = false;  // the term's last payment
};

// One payment: `payment` goes first to `amount`, the interest due for the period with what was
// carried, then to principal together with `extraPrincipal`. The last payment pays what is left
// and no more; the term's last payment settles the loan, whatever rounding left over.
LAmortizationEntry tableEntryForData(ScheduleData& data, const Amount& payment,
                                     const Amount& amount, const Amount& extraPrincipal) {
  LAmortizationEntry entry;
  const Amount due = sum(amount, data.carried);
  if (payment.isLessThan(due)) {
    entry.interest = payment;
    data.carried = difference(due, payment);
  } else {
    entry.interest = due;
    data.carried = Amount::zero();
    entry.principal = difference(payment, due);
  }
  if (extraPrincipal.isPositive()) {
    entry.extraPrincipal = extraPrincipal;
    entry.principal = sum(entry.principal, extraPrincipal);
  }
  if (data.settles) {
    entry.principal = data.balance.decimalNumber();
    entry.interest = sum(entry.interest, data.carried);
    data.carried = Amount::zero();
  } else if (!data.balance.isGreaterThanDecimal(entry.principal)) {
    entry.principal = data.balance.decimalNumber();
  }
  entry.payment = sum(entry.principal, entry.interest);
  data.balance.subtractDecimal(entry.principal);
  entry.balance = data.balance.decimalNumber();
  entry.interestCarried = data.carried;
  return entry;
}

}  // namespace

void LAmortizationController::buildSchedule(const Plan& plan, const ScheduleStart& start,
                                            LAmortizationResults& results) const {
  // A payment beyond 38 digits cannot amortise anything: no schedule.
  if (start.payment.isNaN()) return;
  const bool addOn = compoundingPeriod_ == kNoCompounding;
  const Amount addOnTotal = addOn ? addOnInterest(openingBalance_) : Amount::zero();
  const Date today = LDateUtilities::currentDate();
  auto previousDate = previousPaymentBeforeDate(start.firstDate, plan.paymentType);
  ScheduleData data{LArithmetic::decimalWithDecimal(start.balance), Amount::zero(), false};
  auto totalInterest = LArithmetic::zero();
  auto totalPrincipal = LArithmetic::zero();
  const Amount payment = sum(start.payment, start.extraPayment);
  if (createFullSchedule_) results.amortizationSchedule.reserve(start.paymentsAllowed);

  for (unsigned index = 0; index < start.paymentsAllowed && data.balance.isGreaterThanZero();
       ++index) {
    const auto date = paymentDateAtIndex(start.firstDate, index, plan.paymentType);
    if (!date || !previousDate) break;
    const unsigned number = start.firstNumber + index;
    Amount interest;
    if (addOn) {
      interest = addOnShare(addOnTotal, plan.numberOfPayments, number);
    } else if (plan.mustCalculateRatePerPeriod) {
      interest = interestOn(data.balance.decimalNumber(), ratePerDayPeriod(*date, *previousDate));
    } else {
      interest = interestOn(data.balance.decimalNumber(), plan.ratePerPeriod);
    }
    data.settles = index + 1 == start.paymentsAllowed;
    LAmortizationEntry entry =
        tableEntryForData(data, payment, interest, index == 0 ? start.extraPrincipal : Amount());
    entry.paymentNumber = number;
    entry.paymentDate = *date;

    totalInterest.addDecimal(entry.interest);
    totalPrincipal.addDecimal(entry.principal);
    ++results.numberOfPaymentsRemaining;
    if (!results.nextPaymentData && onOrAfter(entry.paymentDate, today)) {
      results.nextPaymentData = entry;
    }
    results.lastPaymentData = entry;
    if (createFullSchedule_) results.amortizationSchedule.push_back(entry);
    previousDate = date;
  }

  results.totalInterest = totalInterest.decimalNumber();
  results.totalPrincipal = totalPrincipal.decimalNumber();
  results.totalCost = sum(results.totalInterest, results.totalPrincipal);
  if (results.lastPaymentData) results.payoffDate = results.lastPaymentData->paymentDate;
}

void LAmortizationController::computeScheduled() {
  scheduled_ = LAmortizationResults();
  calculatePaymentForOpeningBalance(openingBalance_, scheduled_);
  const Plan plan = planForPaymentType(paymentPeriod_);
  ScheduleStart start;
  start.balance = openingBalance_;
  start.firstDate = firstPaymentDate_;
  start.paymentsAllowed = plan.numberOfPayments;
  start.payment = scheduled_.basePIPayment;
  buildSchedule(plan, start, scheduled_);
}

// From today's balance: the payments still due under the term, at the loan's payment, from the
// next payment date (or the next due date after today).
void LAmortizationController::computeActual() {
  actual_ = LAmortizationResults();
  calculatePaymentForOpeningBalance(openingBalance_, actual_);
  const Plan plan = planForPaymentType(paymentPeriod_);
  const auto next = nextPaymentDate_ ? nextPaymentDate_
                                     : nextPaymentDateOnOrAfterTodayFromSeedDate(firstPaymentDate_);
  if (!next) return;
  unsigned paymentsMade = 0;
  while (paymentsMade < plan.numberOfPayments) {
    const auto date = paymentDateAtIndex(firstPaymentDate_, paymentsMade, paymentPeriod_);
    if (!date || onOrAfter(*date, *next)) break;
    ++paymentsMade;
  }
  ScheduleStart start;
  start.balance = todaysBalance_;
  start.firstDate = *next;
  start.firstNumber = paymentsMade + 1;
  start.paymentsAllowed = plan.numberOfPayments - paymentsMade;
  start.payment = actual_.basePIPayment;
  buildSchedule(plan, start, actual_);
}

// The loan from its opening balance, with the what-if's changes.
void LAmortizationController::computeWhatIf() {
  whatIfResults_ = LAmortizationResults();
  const unsigned paymentType = whatIf_.has(LAmortizationWhatIf::kPaymentFrequency)
                                   ? whatIf_.paymentFrequency
                                   : paymentPeriod_;
  const Plan plan = planForPaymentType(paymentType);
  whatIfResults_.numberOfPaymentsForTerms = plan.numberOfPayments;
  whatIfResults_.basePIPayment = paymentForPlan(plan, openingBalance_);
  whatIfResults_.totalPayment = sum(whatIfResults_.basePIPayment, otherPaymentAmounts_);
  ScheduleStart start;
  start.balance = openingBalance_;
  start.firstDate = firstPaymentDate_;
  start.paymentsAllowed = plan.numberOfPayments;
  start.payment = whatIfResults_.basePIPayment;
  if (whatIf_.has(LAmortizationWhatIf::kExtraPayment)) start.extraPayment = whatIf_.extraPayment;
  if (whatIf_.has(LAmortizationWhatIf::kExtraPrincipal)) {
    start.extraPrincipal = whatIf_.extraPrincipal;
  }
  buildSchedule(plan, start, whatIfResults_);
  whatIf_.payoffDate = whatIfResults_.payoffDate;
}

}  // namespace ledgeon
