#pragma once

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

// One dated cash flow of a return computation. Money taken out of the investment is positive,
// money put in is negative (the sign of an ending value). A plain value; copy freely.
class IRRStreamEvent final {
 public:
  IRRStreamEvent(Amount cashFlowAmount, Date date) noexcept
      : cashFlowAmount_(cashFlowAmount), date_(date) {}

  const Amount& cashFlowAmount() const noexcept { return cashFlowAmount_; }
  Date date() const noexcept { return date_; }

 private:
  Amount cashFlowAmount_;
  Date date_;
};

}  // namespace ledgeon
