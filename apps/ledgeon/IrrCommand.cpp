#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "CliValues.h"
#include "DemoStep.h"
#include "Investments/IRRStream.h"
#include "Subcommand.h"

namespace ledgeon::cli {

namespace {

struct IrrOptions {
  std::string start;
  std::string end;
  std::vector<std::string> flows;
  bool json = false;
};

// What the computation gave, in the words the user reads.
struct IrrReport {
  std::optional<Amount> irr;
  Amount roi;
};

IRRStream streamFromOptions(const IrrOptions& options) {
  const auto [startDate, startValue] = parseDatedAmountArgument("--start", options.start);
  const auto [endDate, endValue] = parseDatedAmountArgument("--end", options.end);
  if (endDate < startDate) {
    throw CommandFailure("--end " + formatDate(endDate) + " is before --start " +
                         formatDate(startDate));
  }
  IRRStream stream(startDate, startValue, endDate, endValue);
  for (const auto& flow : options.flows) {
    const auto [date, amount] = parseDatedAmountArgument("--flow", flow);
    if (date < startDate || endDate < date) {
      throw CommandFailure("--flow \"" + flow + "\" is outside the period " +
                           formatDate(startDate) + " to " + formatDate(endDate));
    }
    stream.addIRRStreamEvent(date, amount);
  }
  return stream;
}

bool isNoBracket(const Amount& rate) { return rate == Amount::minusOne(); }

std::string percentText(const Amount& fraction) {
  return formatFixed(fraction.roundedDisplayPercentage(), 2) + " %";
}

std::string irrText(const std::optional<Amount>& irr) {
  if (!irr) return "no answer";
  if (isNoBracket(*irr)) return "not available";
  return percentText(*irr) + " a year";
}

nlohmann::json irrJson(const IrrReport& report) {
  nlohmann::json json;
  if (!report.irr) {
    json["irr"] = nullptr;
  } else {
    json["irr"] = isNoBracket(*report.irr) ? std::string("-1.0") : report.irr->stringValue();
  }
  if (report.roi.isNaN()) {
    json["roi"] = nullptr;
  } else {
    json["roi"] = report.roi.stringValue();
  }
  return json;
}

IrrReport computeReport(IRRStream& stream) {
  IrrReport report;
  report.irr = stream.calculateIrrFromStream();
  // Every flow inside the period counts toward the return on investment.
  report.roi = stream.calculateRoiWithRequiredMinimumDate(
      stream.startingDate().dateByAddingTimeInterval(-1));
  return report;
}

void printReport(std::ostream& out, const IrrReport& report) {
  out << "Internal rate of return: " << irrText(report.irr) << '\n';
  out << "Return on investment: "
      << (report.roi.isNaN() ? std::string("not available") : percentText(report.roi)) << '\n';
}

void runIrr(const IrrOptions& options) {
  IRRStream stream = streamFromOptions(options);
  const IrrReport report = computeReport(stream);
  if (options.json) {
    std::cout << irrJson(report).dump(2) << '\n';
  } else {
    printReport(std::cout, report);
  }
}

const SubcommandRegistration registration(700, [](CLI::App& app) {
  auto* irr = app.add_subcommand(
      "irr", "Annualised internal rate of return and return on investment of dated cash flows");
  auto options = std::make_shared<IrrOptions>();
  irr->add_option("--start", options->start,
                  "DATE:VALUE, the value at the start of the period (positive)")
      ->required();
  irr->add_option("--end", options->end, "DATE:VALUE, the value at the end of the period")
      ->required();
  irr->add_option("--flow", options->flows,
                  "DATE:AMOUNT, a cash flow: money taken out positive, money put in negative "
                  "(repeatable)");
  irr->add_flag("--json", options->json, "Print {\"irr\", \"roi\"} as JSON");
  irr->footer(
      "Example: ledgeon irr --start 2023-01-01:1000 --flow 2023-07-01:-500 --end "
      "2024-01-01:1600");
  irr->callback([options] { runIrr(*options); });
});

const DemoStepRegistration demoStep(710, "Investment return", [](DemoContext& context) {
  IrrOptions options;
  options.start = "2023-01-01:10000";
  options.end = "2024-12-31:13150";
  options.flows = {"2023-04-01:-1500", "2023-10-01:-1500", "2024-06-30:750"};
  context.out << "A holding worth 10,000.00 on 2023-01-01, 3,000.00 added in two lots, 750.00\n"
                 "taken out, worth 13,150.00 on 2024-12-31:\n";
  IRRStream stream = streamFromOptions(options);
  printReport(context.out, computeReport(stream));
});

}  // namespace

}  // namespace ledgeon::cli
