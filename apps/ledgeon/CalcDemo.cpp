#include <fmt/format.h>

#include "DemoStep.h"
#include "Utilities/Amount.h"
#include "Utilities/CalcState.h"
#include "Utilities/LCurrencyFormatter.h"

namespace ledgeon::cli {

namespace {

void showAmountsAndCalculator(DemoContext& context) {
  LCurrencyFormatter american("en_US");
  LCurrencyFormatter german("de_DE");
  context.out << fmt::format("{:>22} {:>22} {:>22}\n", "amount", "en_US", "de_DE");
  for (const char* text : {"1234.5", "-98765.4321", "0.0000005", "1234567890.995"}) {
    const Amount amount = Amount::fromString(text);
    context.out << fmt::format("{:>22} {:>22} {:>22}\n", text,
                               american.stringForObjectValue(amount),
                               german.stringForObjectValue(amount));
  }
  context.out << fmt::format(
      "Pasted \"1,234.56\" reads as {}; \"1.234,56\" in de_DE as {}\n",
      LCurrencyFormatter::numberFromFormattedString("1,234.56").stringValue(),
      LCurrencyFormatter::numberFromFormattedString("1.234,56", "de_DE").stringValue());

  CalcState calc(american);
  calc.begin("");
  const char* keys = "19.99 * 3 + 4.50 - 10 %";
  context.out << "\nCalculator tape for \"" << keys << "\":\n";
  if (auto typed = calc.typeKeystrokes(keys); !typed) {
    context.out << typed.error().localizedDescription() << '\n';
    return;
  }
  for (const auto& item : calc.historyItems()) {
    context.out << fmt::format("  {} {:>12}\n", item.operation, calc.numberText(item));
  }
}

const DemoStepRegistration step(110, "Amounts in two locales and the calculator",
                                showAmountsAndCalculator);

}  // namespace

}  // namespace ledgeon::cli
