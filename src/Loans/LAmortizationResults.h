#pragma once

#include <optional>
#include <vector>

#include "Loans/LAmortizationEntry.h"
#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

// One computed view of a loan: its periodic payment, the schedule from its starting point to
// payoff, and the totals along that schedule.
struct LAmortizationResults {
  unsigned numberOfPaymentsForTerms = 0;   // what the term allows at this frequency
  unsigned numberOfPaymentsRemaining = 0;  // entries of this schedule, to payoff or term end
  Amount basePIPayment;                    // principal and interest, rounded to the cent
  Amount totalPayment;                     // basePIPayment plus escrow and other amounts
  Amount totalInterest;
  Amount totalPrincipal;
  Amount totalCost;                                   // totalInterest + totalPrincipal
  std::optional<LAmortizationEntry> lastPaymentData;  // the schedule's final payment
  std::optional<LAmortizationEntry> nextPaymentData;  // its first payment on or after today
  std::optional<Date> payoffDate;
  // Every entry, when the controller is asked for a full schedule; totals are computed either way.
  std::vector<LAmortizationEntry> amortizationSchedule;
};

}  // namespace ledgeon
