#include "Investments/IRRStream.h"

#include <cerrno>
#include <cmath>
#include <utility>

#include "Utilities/LArithmetic.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {

namespace {

// A result within a cent of zero value is an answer; rates closer than this are the same answer.
constexpr double kValueTolerance = 0.01;
constexpr double kRateTolerance = 0.0005;
constexpr int kMaxSteps = 100;

// Rates tried before scanning; the scan starts just above 1,000 % a year and walks down to -100 %,
// finely below 150 %.
constexpr double kFixedRates[] = {-0.99, 1.0, 10.0, 100.0};
constexpr double kScanStart = 10.001;
constexpr double kScanFineBelow = 1.5;
constexpr double kScanCoarseStep = 0.5;
constexpr double kScanFineStep = 0.1;
constexpr double kScanEnd = -1.0;
constexpr double kNoBracket = -1.0;
constexpr double kSecondsPerDay = 86400.0;

bool isNonNegative(double value) noexcept { return !(value < 0); }

bool isExactly(double a, double b) noexcept { return !(a < b) && !(a > b); }

struct Point {
  double rate;
  double value;
};

}  // namespace

IRRStream::IRRStream(Date startingDate, Amount startingValue, Date endingDate, Amount endingValue)
    : startingDate_(startingDate),
      startingValue_(startingValue),
      endingDate_(endingDate),
      endingValue_(endingValue) {}

void IRRStream::addIRRStreamEvent(Date date, const Amount& amount) {
  addIRRStreamEvent(IRRStreamEvent(amount, date));
}

void IRRStream::addIRRStreamEvent(const IRRStreamEvent& event) {
  cashFlowEvents_.push_back(event);
  termsReady_ = false;
}

void IRRStream::mergeIrrStream(const IRRStream& other, bool includeBeginAndEnd) {
  cashFlowEvents_.insert(cashFlowEvents_.end(), other.cashFlowEvents_.begin(),
                         other.cashFlowEvents_.end());
  if (includeBeginAndEnd) {
    // The other stream's own computation carries its starting value from the day before its
    // start; the merged event keeps that weight.
    const Date dayBefore = other.startingDate_.dateByAddingTimeInterval(
        -LDateUtilities::timeIntervalForNumberOfDays(1));
    cashFlowEvents_.emplace_back(other.startingValue_.decimalNumberByNegating(), dayBefore);
    cashFlowEvents_.emplace_back(other.endingValue_, other.endingDate_);
  }
  termsReady_ = false;
}

// Whole days between the GMT days of the two dates, as LDateUtilities counts them, without an
// ICU calendar per flow: a portfolio's streams hold thousands of flows.
long IRRStream::daysToEnd(Date date) const {
  if (!std::isfinite(date.unixTime()) || !std::isfinite(endingDate_.unixTime())) return 0;
  const double days = std::floor(endingDate_.unixTime() / kSecondsPerDay) -
                      std::floor(date.unixTime() / kSecondsPerDay);
  return static_cast<long>(days);
}

double IRRStream::durationForDate(Date date) const {
  const long days = daysToEnd(date);
  return static_cast<double>(days + 1) / 365.0;
}

bool IRRStream::accumulateNpv(double& npv, double amount, double duration,
                              double logRate) noexcept {
  errno = 0;
  const double growth = std::exp(duration * logRate);
  if (errno != 0) return false;
  npv += amount * growth;
  return std::isfinite(npv);
}

const std::vector<IRRStream::Term>& IRRStream::terms() const {
  if (termsReady_) return terms_;
  terms_.clear();
  terms_.reserve(cashFlowEvents_.size() + 2);
  // The starting value is money put in on the day before the period starts.
  terms_.push_back({-startingValue_.doubleValue(), durationForDate(startingDate_) + 1.0 / 365.0});
  terms_.push_back({endingValue_.doubleValue(), durationForDate(endingDate_)});
  for (const auto& event : cashFlowEvents_) {
    terms_.push_back({event.cashFlowAmount().doubleValue(), durationForDate(event.date())});
  }
  termsReady_ = true;
  return terms_;
}

std::optional<double> IRRStream::valueAt(double rate) const {
  if (!(1.0 + rate > 0)) return std::nullopt;
  const double logRate = std::log(1.0 + rate);
  double npv = 0;
  for (const auto& term : terms()) {
    if (!accumulateNpv(npv, term.amount, term.duration, logRate)) return std::nullopt;
  }
  return npv;
}

std::optional<Amount> IRRStream::netPresentValueWithRate(double rate) const {
  auto value = valueAt(rate);
  if (!value) return std::nullopt;
  return Amount::fromDouble(*value);
}

bool IRRStream::isZeroSum() const {
  auto sum = LArithmetic::decimalWithDecimal(endingValue_);
  sum.subtractDecimal(startingValue_);
  for (const auto& event : cashFlowEvents_) sum.addDecimal(event.cashFlowAmount());
  return sum.isZero();
}

void IRRStream::keepBracket(double rate, double value) noexcept {
  if (isNonNegative(value)) {
    if (value < firstNPVPositive_) {
      firstRatePositive_ = rate;
      firstNPVPositive_ = value;
    }
  } else if (value > firstNPVNegative_) {
    firstRateNegative_ = rate;
    firstNPVNegative_ = value;
  }
}

// The first pair of neighbouring fixed rates whose values lie on both sides of zero, lowest
// rates first: the plausible returns are the low ones.
bool IRRStream::bracketFromFixedRates() {
  std::optional<Point> previous;
  for (const double rate : kFixedRates) {
    const auto value = valueAt(rate);
    if (!value) continue;
    if (previous && isNonNegative(previous->value) != isNonNegative(*value)) {
      Point positive{rate, *value};
      Point negative = *previous;
      if (!isNonNegative(*value)) std::swap(positive, negative);
      firstRatePositive_ = positive.rate;
      firstNPVPositive_ = positive.value;
      firstRateNegative_ = negative.rate;
      firstNPVNegative_ = negative.value;
      return true;
    }
    previous = Point{rate, *value};
  }
  return false;
}

// No sign change between the fixed rates: walk down from just above 1,000 % a year and keep the
// first rate on each side of zero. False when every value is non-negative: nothing to find.
bool IRRStream::scanDownward() {
  bool havePositive = false;
  bool haveNegative = false;
  for (double rate = kScanStart; rate > kScanEnd;
       rate -= rate > kScanFineBelow ? kScanCoarseStep : kScanFineStep) {
    const auto value = valueAt(rate);
    if (!value) continue;
    if (isNonNegative(*value)) {
      if (!havePositive) {
        firstRatePositive_ = rate;
        firstNPVPositive_ = *value;
        havePositive = true;
      }
    } else if (!haveNegative) {
      firstRateNegative_ = rate;
      firstNPVNegative_ = *value;
      haveNegative = true;
    }
    if (havePositive && haveNegative) return true;
  }
  if (havePositive) return false;
  firstRatePositive_ = kNoBracket;
  firstRateNegative_ = kNoBracket;
  return true;
}

bool IRRStream::firstIRR() {
  firstRatePositive_ = firstNPVPositive_ = firstRateNegative_ = firstNPVNegative_ = 0;
  return bracketFromFixedRates() || scanDownward();
}

std::optional<Amount> IRRStream::calculateIrrFromStream() {
  if (isZeroSum() || !firstIRR()) return std::nullopt;
  if (isExactly(firstRatePositive_, kNoBracket) && isExactly(firstRateNegative_, kNoBracket)) {
    return Amount::minusOne();
  }

  Point previous{firstRatePositive_, firstNPVPositive_};
  Point current{firstRateNegative_, firstNPVNegative_};
  if (std::fabs(previous.value) < std::fabs(current.value)) std::swap(previous, current);
  if (std::fabs(current.value) <= kValueTolerance) return Amount::fromDouble(current.rate);

  for (int step = 0; step < kMaxSteps; ++step) {
    const double run = current.rate - previous.rate;
    if (std::fpclassify(run) == FP_ZERO) break;
    const double slope = (current.value - previous.value) / run;
    if (std::fpclassify(slope) == FP_ZERO) break;

    double rate = current.rate - current.value / slope;
    auto value = valueAt(rate);
    if (!value) return std::nullopt;
    keepBracket(rate, *value);
    if (isNonNegative(*value) == isNonNegative(current.value)) {
      // The secant did not cross zero: bisect the bracket instead.
      rate = (firstRatePositive_ + firstRateNegative_) / 2;
      value = valueAt(rate);
      if (!value) return std::nullopt;
      keepBracket(rate, *value);
    }
    const bool settled =
        std::fabs(rate - current.rate) < kRateTolerance || std::fabs(*value) <= kValueTolerance;
    previous = current;
    current = Point{rate, *value};
    if (settled) break;
  }
  if (std::fabs(current.value) <= kValueTolerance) return Amount::fromDouble(current.rate);
  return std::nullopt;
}

Amount IRRStream::calculateRoiWithRequiredMinimumDate(Date requiredMinimumDate) const {
  if (!startingValue_.isValid()) return Amount::notANumber();
  // Gain: what came out (the ending value and the flows taken out) less what went in (the
  // starting value and the flows put in). Base: everything that went in.
  auto gain = LArithmetic::decimalWithDecimal(endingValue_);
  gain.subtractDecimal(startingValue_);
  auto base = LArithmetic::decimalWithDecimal(startingValue_);
  for (const auto& event : cashFlowEvents_) {
    if (!(event.date() > requiredMinimumDate)) continue;
    gain.addDecimal(event.cashFlowAmount());
    if (event.cashFlowAmount().isNegative()) base.subtractDecimal(event.cashFlowAmount());
  }
  if (base.isZero()) return Amount::notANumber();
  gain.divideByDecimal(base.decimalNumber());
  return gain.decimalNumber();
}

}  // namespace ledgeon
