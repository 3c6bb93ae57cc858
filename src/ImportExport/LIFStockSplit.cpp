#include "ImportExport/LIFStockSplit.h"

namespace ledgeon {
namespace {

// Enough for any ratio of 38-digit decimals: Euclid needs about 5 steps per digit.
constexpr int kMaximumSteps = 400;

Amount wholePartOf(const Amount& value) {
  return Amount::roundToScale(value, 0, RoundingMode::Down).value;
}

}  // namespace

Amount LIFStockSplit::greatestCommonDivisor(const Amount& a, const Amount& b) {
  static const Amount kNegligible = Amount::fromString("0.001");
  if (a.isNaN() || b.isNaN()) return Amount::notANumber();
  Amount dividend = a;
  Amount divisor = b;
  for (int step = 0; step < kMaximumSteps; ++step) {
    if (divisor.isZero()) return dividend;
    const Amount quotient = wholePartOf(dividend.decimalNumberByDividingBy(divisor));
    Amount remainder =
        dividend.decimalNumberBySubtracting(quotient.decimalNumberByMultiplyingBy(divisor));
    if (remainder.isNaN()) return Amount::notANumber();
    if (!remainder.isGreaterThan(kNegligible)) remainder = Amount::zero();
    dividend = divisor;
    divisor = remainder;
  }
  return Amount::notANumber();
}

LIFStockSplit LIFStockSplit::forUnits(const Amount& units, const Amount& quantity,
                                      LIFStockSplitForm form) {
  const Amount nan = Amount::notANumber();
  if (units.isNaN() || quantity.isNaN() || units.isZero()) return {nan, nan, nan};
  const Amount newUnits = form == LIFStockSplitForm::kNewSharesPerTen
                              ? units.decimalNumberByMultiplyingBy(
                                    quantity.decimalNumberByDividingBy(Amount::fromInt64(10)))
                              : units.decimalNumberByAdding(quantity);
  const Amount gcd = greatestCommonDivisor(newUnits, units);
  if (gcd.isNaN() || gcd.isZero()) return {newUnits, nan, nan};
  return {newUnits, wholePartOf(newUnits.decimalNumberByDividingBy(gcd)),
          wholePartOf(units.decimalNumberByDividingBy(gcd))};
}

}  // namespace ledgeon
