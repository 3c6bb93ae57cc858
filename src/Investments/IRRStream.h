#pragma once

#include <optional>
#include <vector>

#include "Investments/IRRStreamEvent.h"
#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

// The cash flows of one holding, account or portfolio over a period: a value at the start, dated
// flows in between and a value at the end. Gives the annualised internal rate of return and the
// simple return on investment. Copyable; not thread-safe (a search keeps its bracket in the
// stream).
class IRRStream final {
 public:
  // The starting value is given as a positive amount (the money the period starts with); the
  // ending value and the flows use the sign convention of IRRStreamEvent.
  IRRStream(Date startingDate, Amount startingValue, Date endingDate, Amount endingValue);

  Date startingDate() const noexcept { return startingDate_; }
  const Amount& startingValue() const noexcept { return startingValue_; }
  Date endingDate() const noexcept { return endingDate_; }
  const Amount& endingValue() const noexcept { return endingValue_; }
  const std::vector<IRRStreamEvent>& cashFlowEvents() const noexcept { return cashFlowEvents_; }

  void addIRRStreamEvent(Date date, const Amount& amount);  // addIRRStreamEventWithDate:amount:
  void addIRRStreamEvent(const IRRStreamEvent& event);
  // Appends the other stream's flows and, when asked, its starting value (as money put in, on
  // the day its own computation dates it) and its ending value (as money taken out).
  void mergeIrrStream(const IRRStream& other, bool includeBeginAndEnd);

  // The annual rate (0.05 is 5 % a year); -1 when no rate could be bracketed (callers show "not
  // available"); std::nullopt when there is no answer (nothing to earn, no convergence, or a
  // value that cannot be computed).
  std::optional<Amount> calculateIrrFromStream();
  // (gain) / (money at work); NaN when the stream has no starting value or nothing was at work.
  Amount calculateRoiWithRequiredMinimumDate(Date requiredMinimumDate) const;

  // The pieces of the search, public so that callers and tests can look inside.
  // Years from `date` to the end of the period, counting the end day: (days + 1) / 365.
  double durationForDate(Date date) const;
  // Every amount carried to the end of the period at `rate`; std::nullopt when 1 + rate <= 0 or
  // the C library reports a math error for any term.
  std::optional<Amount> netPresentValueWithRate(double rate) const;
  // Adds amount * e^(duration * logRate) to `npv`; false (npv unusable) on a math error.
  static bool accumulateNpv(double& npv, double amount, double duration, double logRate) noexcept;
  // Finds rates on both sides of zero value, filling the first* fields; false when none can be
  // found. Both rates are -1 when the value is negative at every rate tried.
  bool firstIRR();
  // True when the flows, the negated starting value and the ending value add to exactly zero.
  bool isZeroSum() const;

  double firstRatePositive() const noexcept { return firstRatePositive_; }
  double firstNPVPositive() const noexcept { return firstNPVPositive_; }
  double firstRateNegative() const noexcept { return firstRateNegative_; }
  double firstNPVNegative() const noexcept { return firstNPVNegative_; }

 private:
  // One amount ready for evaluation: its value as a double and its duration in years.
  struct Term {
    double amount;
    double duration;
  };

  long daysToEnd(Date date) const;
  const std::vector<Term>& terms() const;
  std::optional<double> valueAt(double rate) const;
  bool bracketFromFixedRates();
  bool scanDownward();
  void keepBracket(double rate, double value) noexcept;

  Date startingDate_;
  Amount startingValue_;
  Date endingDate_;
  Amount endingValue_;
  std::vector<IRRStreamEvent> cashFlowEvents_;

  double firstRatePositive_ = 0;
  double firstNPVPositive_ = 0;
  double firstRateNegative_ = 0;
  double firstNPVNegative_ = 0;

  mutable std::vector<Term> terms_;
  mutable bool termsReady_ = false;
};

}  // namespace ledgeon
