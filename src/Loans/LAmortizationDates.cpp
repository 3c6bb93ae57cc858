#include "Loans/LAmortizationController.h"
#include "Loans/internal/PaymentCalendar.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {

namespace {

constexpr long kSemiMonthlyType = 7;
constexpr long kHalfMonthDays = 15;
// Far enough for a weekly loan seeded a century ago; a safety net, not a rule.
constexpr long kMaxStepsToToday = 100L * 52 + 1;

// Months per payment of the month-based payment types, or 0 for the others.
long monthsPerPayment(unsigned paymentType) {
  switch (paymentType) {
    case 1:
      return 12;
    case 2:
      return 6;
    case 3:
      return 3;
    case 4:
      return 2;
    case 6:
    case 7:
    case 8:
    case 9:
      return 0;
    default:
      return 1;
  }
}

// Days per payment of the week-based payment types.
long daysPerPayment(unsigned paymentType) {
  switch (paymentType) {
    case 6:
      return 28;
    case 8:
      return 14;
    default:
      return 7;
  }
}

// Twice a month on a fixed pair of days: a day in the first half is followed by the same month's
// day 15 later, a day in the second half by the next month's day 15 earlier.
std::optional<Date> halfMonthAfter(Date date) {
  if (loans::dayOfMonth(date) <= kHalfMonthDays) return loans::addDays(date, kHalfMonthDays);
  auto firstHalf = loans::addDays(date, -kHalfMonthDays);
  if (!firstHalf) return std::nullopt;
  return loans::addMonths(*firstHalf, 1);
}

long floorDivide(long a, long b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0); }

}  // namespace

std::optional<Date> LAmortizationController::paymentDateAtIndex(Date anchor, long index,
                                                                unsigned paymentType) {
  auto day = loans::calendarDate(loans::dayOf(anchor));
  if (!day) return std::nullopt;
  if (paymentType == kSemiMonthlyType) {
    const long months = floorDivide(index, 2);
    auto date = loans::addMonths(*day, months);
    if (!date || index - 2 * months == 0) return date;
    return halfMonthAfter(*date);
  }
  if (const long months = monthsPerPayment(paymentType); months != 0) {
    return loans::addMonths(*day, months * index);
  }
  return loans::addDays(*day, daysPerPayment(paymentType) * index);
}

std::optional<Date> LAmortizationController::nextPaymentAfterDate(Date date,
                                                                  unsigned paymentType) const {
  return paymentDateAtIndex(date, 1, paymentType);
}

std::optional<Date> LAmortizationController::previousPaymentBeforeDate(Date date,
                                                                       unsigned paymentType) const {
  return paymentDateAtIndex(date, -1, paymentType);
}

std::optional<Date> LAmortizationController::maturityDateFromStartDate(Date startDate) const {
  const Plan plan = planForPaymentType(paymentPeriod_);
  return paymentDateAtIndex(startDate, static_cast<long>(plan.numberOfPayments), paymentPeriod_);
}

std::optional<Date> LAmortizationController::startDateFromMaturityDate(Date maturityDate) const {
  const Plan plan = planForPaymentType(paymentPeriod_);
  return paymentDateAtIndex(maturityDate, -static_cast<long>(plan.numberOfPayments),
                            paymentPeriod_);
}

std::optional<Date> LAmortizationController::nextPaymentDateOnOrAfterTodayFromSeedDate(
    Date seedDate) const {
  const Date today = LDateUtilities::currentDate();
  for (long index = 0; index <= kMaxStepsToToday; ++index) {
    auto date = paymentDateAtIndex(seedDate, index, paymentPeriod_);
    if (!date) return std::nullopt;
    if (loans::daysBetween(today, *date) >= 0) return date;
  }
  return std::nullopt;
}

}  // namespace ledgeon
