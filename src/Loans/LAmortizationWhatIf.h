#pragma once

#include <cstdint>
#include <optional>

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

// A variant of a loan's terms to compare with its schedule. Each change applies only when its
// flag is set; `payoffDate` is filled in by the controller with the variant's payoff.
struct LAmortizationWhatIf {
  enum Flag : uint32_t {
    kExtraPayment = 1 << 0,      // `extraPayment` added to every payment
    kExtraPrincipal = 1 << 1,    // `extraPrincipal` paid once, with the first payment
    kPaymentFrequency = 1 << 2,  // payments made at `paymentFrequency` (a payment type) instead
  };

  uint32_t flags = 0;
  std::optional<Date> payoffDate;
  Amount extraPayment;
  Amount extraPrincipal;
  unsigned paymentFrequency = 5;

  bool has(Flag flag) const noexcept { return (flags & flag) != 0; }
};

}  // namespace ledgeon
