#include <fmt/format.h>

#include "DemoStep.h"
#include "Utilities/Amount.h"
#include "Utilities/LArithmetic.h"

namespace ledgeon::cli {

namespace {

Amount amount(std::string_view text) { return Amount::fromString(text); }

void showExactMoney(DemoContext& context) {
  auto& out = context.out;
  out << fmt::format("0.1 + 0.2 as binary floats: {}; as Amounts: {}\n", 0.1 + 0.2,
                     amount("0.1").decimalNumberByAdding(amount("0.2")).stringValue());

  LArithmetic total = LArithmetic::decimalWithDecimal(amount("19.99"));
  total.multiplyByNumber(3);
  total.addDecimalValue(amount("4.50"));
  out << "19.99 x 3 + 4.50 = " << total.description() << "\n";

  LArithmetic share = LArithmetic::decimalWithInteger(100);
  share.divideByNumber(3);
  out << "100 / 3 (38 digits) = " << share.description() << "\n";
  share.roundCurrencyWithMode(RoundingMode::Plain);
  out << "  rounded to cents   = " << share.description() << "\n";

  out << "Rounding rules:\n";
  for (const auto* text : {"2.5", "-2.5"}) {
    out << fmt::format("  round({}) = {}\n", text, amount(text).round().stringValue());
  }
  LArithmetic tie =
      LArithmetic::decimalWithDecimal(amount("50000000000000000000000000000000000001"));
  tie.divideByNumber(2);
  out << "  50000000000000000000000000000000000001 / 2 = ...0.5 needs 39 digits; "
         "the accumulator goes to even:\n    "
      << tie.description() << "\n";
  for (const auto* text : {"9999", "10000", "10001", "-1500"}) {
    out << fmt::format("  roundUpToMajorDollarAmount({}) = {}\n", text,
                       amount(text).roundUpToMajorDollarAmount().stringValue());
  }
  out << "Currency digits:";
  for (const auto* code : {"USD", "JPY", "BHD"}) {
    out << fmt::format(" {} {}", code, LArithmetic::getDecimalsForCurrency(code));
  }
  out << "\n  1234.567 in yen: " << amount("1234.567").roundAccordingToCurrency("JPY").stringValue()
      << ", in dinars: " << amount("1234.5675").roundAccordingToCurrency("BHD").stringValue()
      << "\n";
  out << "  German text 1234,56 reads as " << Amount::fromString("1234,56", "de_DE").stringValue()
      << "\n";
}

const DemoStepRegistration registration(100, "Exact decimal money", showExactMoney);

}  // namespace

}  // namespace ledgeon::cli
