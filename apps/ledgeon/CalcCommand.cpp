#include <cstddef>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Subcommand.h"
#include "Utilities/CalcState.h"
#include "Utilities/LCurrencyFormatter.h"

namespace ledgeon::cli {

namespace {

struct CalcOptions {
  std::optional<std::string> keys;
  std::string locale{LCurrencyFormatter::kDefaultLocale};
  bool autoDecimal = false;
  bool json = false;
};

// Prints the tape lines from `first` on: the operation, then the number right-aligned.
void printTape(const CalcState& calc, std::size_t first) {
  const auto& items = calc.historyItems();
  for (std::size_t i = first; i < items.size(); ++i) {
    std::cout << fmt::format("{} {:>16}\n", items[i].operation, calc.numberText(items[i]));
  }
}

void runCalc(const CalcOptions& options) {
  if (!LCurrencyFormatter::isKnownLocale(options.locale)) {
    throw CommandFailure("unknown locale \"" + options.locale + "\"");
  }
  LCurrencyFormatter formatter(options.locale);
  CalcState calc(formatter);
  calc.begin("");
  calc.setAutoDecimalPointEnabled(options.autoDecimal);

  std::size_t printed = 0;
  auto printNew = [&] {
    if (options.json) return;
    printTape(calc, printed);
    printed = calc.historyItems().size();
  };
  if (options.keys) {
    if (auto typed = calc.typeKeystrokes(*options.keys); !typed) {
      throw CommandFailure(typed.error().localizedDescription());
    }
  } else {
    std::string line;
    for (std::size_t number = 1; std::getline(std::cin, line); ++number) {
      if (auto typed = calc.typeKeystrokes(line); !typed) {
        printNew();
        throw CommandFailure(
            fmt::format("line {}: {}", number, typed.error().localizedDescription()));
      }
      printNew();
    }
  }
  if (!calc.didTypeEquals()) {
    if (auto totalled = calc.typeKey('='); !totalled) {
      throw CommandFailure("nothing to work out: type numbers and + - * / = %");
    }
  }
  printNew();
  if (calc.failure() == CalculationError::DivideByZero) {
    throw CommandFailure("the calculation divides by zero");
  }
  if (calc.failure() != CalculationError::NoError) {
    throw CommandFailure("the result is too large or too small for an amount");
  }

  const std::string result = formatter.stringForObjectValue(calc.value());
  if (options.json) {
    nlohmann::json out;
    out["tape"] = calc.tapeLines();
    out["result"] = result;
    out["value"] = calc.value().stringValue();
    out["locale"] = options.locale;
    std::cout << out.dump(2) << '\n';
  } else {
    std::cout << result << '\n';
  }
}

const SubcommandRegistration registration(100, [](CLI::App& app) {
  auto options = std::make_shared<CalcOptions>();
  auto* calc = app.add_subcommand(
      "calc", "Work out amounts on an adding machine with a tape, as an amount field does");
  calc->footer(
      "Keys: digits, the locale's decimal separator, + - * / (applied left to right), = (total)\n"
      "and % (a rate: \"200 + 10 %\" is 220). Without KEYS, keys are read line by line from\n"
      "stdin. Example: ledgeon calc \"19.99 * 3 + 4.50 =\"");
  calc->add_option("keys", options->keys, "The keys to type, e.g. \"19.99 * 3 + 4.50 =\"");
  calc->add_option("--locale", options->locale,
                   "ICU locale of the amounts (decimal separator, grouping); default en_US");
  calc->add_flag("--auto-decimal", options->autoDecimal,
                 "Read amounts typed without a decimal separator as cents (1999 is 19.99)");
  calc->add_flag("--json", options->json, "Print {\"tape\": [...], \"result\": ...} as JSON");
  calc->callback([options] { runCalc(*options); });
});

}  // namespace

}  // namespace ledgeon::cli
