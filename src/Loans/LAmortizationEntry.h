#pragma once

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

// One payment of an amortisation schedule. `payment` is what goes to principal and interest
// (escrow and other amounts excluded), extra principal included; `balance` is what is owed after
// it; `interestCarried` is interest the payment did not cover, owed with the next payment.
struct LAmortizationEntry {
  unsigned paymentNumber = 0;  // 1 for the loan's first payment
  Date paymentDate;
  Amount payment;
  Amount principal;
  Amount interest;
  Amount extraPrincipal;
  Amount interestCarried;
  Amount balance;
};

}  // namespace ledgeon
