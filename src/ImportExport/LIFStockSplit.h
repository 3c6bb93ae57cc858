#pragma once

#include "ImportExport/LIFRecords.h"
#include "Utilities/Amount.h"

namespace ledgeon {

// The outcome of a stock split on a position: its units afterwards and the ratio new:old in
// lowest whole terms.
struct LIFStockSplit {
  Amount newUnits;
  Amount numerator;
  Amount denominator;

  // `units` held before the split and the record's quantity: for "StkSplit" new shares per ten
  // old ones (units x quantity / 10), for "Split" the shares added (units + quantity). The ratio
  // is reduced by Euclid's algorithm on decimals, a remainder at or below 0.001 counting as none.
  // Any NaN, or no units before, gives NaN parts.
  static LIFStockSplit forUnits(const Amount& units, const Amount& quantity,
                                LIFStockSplitForm form);
  // The greatest common divisor as the algorithm above finds it; NaN when it does not end.
  static Amount greatestCommonDivisor(const Amount& a, const Amount& b);
};

}  // namespace ledgeon
