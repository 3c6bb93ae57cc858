// ledgeon criteria: evaluate a targeting rule against this installation or a described one.
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include <fmt/format.h>

#include "Application/CriteriaEvaluator.h"
#include "DemoStep.h"
#include "Subcommand.h"
#include "Utilities/DateFormatter.h"
#include "Utilities/FileContents.h"
#include "Utilities/Resources.h"

namespace ledgeon::cli {

namespace {

struct CriteriaOptions {
  std::string rule;
  std::string environment;
  bool json = false;
};

std::string readText(const std::string& path) {
  auto text = readFileContents(path);
  if (!text) throw CommandFailure(path + ": cannot be read");
  return *std::move(text);
}

template <typename Json>
Json parseJSON(const std::string& path) {
  try {
    return Json::parse(readText(path));
  } catch (const nlohmann::json::parse_error& error) {
    throw CommandFailure(fmt::format("{}: not JSON: {}", path, error.what()));
  }
}

CriteriaEvaluator makeEvaluator(const std::string& rulePath, const std::string& environmentPath) {
  auto rule = parseJSON<CriteriaJSON>(rulePath);
  if (!rule.is_object()) {
    throw CommandFailure(rulePath + ": the rule must be a JSON object of criteria");
  }
  auto environment = CriteriaEvaluatorEnvironment::currentEnvironment();
  if (!environmentPath.empty()) {
    auto described = CriteriaEvaluatorEnvironment::environmentWithJSON(
        parseJSON<nlohmann::json>(environmentPath), std::move(environment));
    if (!described) {
      throw CommandFailure(environmentPath + ": " + described.error().localizedDescription());
    }
    environment = std::move(*described);
  }
  return CriteriaEvaluator(std::move(rule), std::move(environment));
}

std::string timestampText(Date date) {
  static const DateFormatter formatter("yyyy-MM-dd'T'HH:mm:ss'Z'", "en_US_POSIX", "GMT");
  return formatter.stringFromDate(date);
}

void runCriteria(const CriteriaOptions& options, std::ostream& out) {
  auto evaluator = makeEvaluator(options.rule, options.environment);
  const bool satisfied = evaluator.environmentSatisfiesCriteria();
  if (options.json) {
    nlohmann::json stamps = nlohmann::json::array();
    for (Date date : evaluator.timestampsEncountered()) stamps.push_back(timestampText(date));
    out << nlohmann::json{{"satisfied", satisfied}, {"timestampsEncountered", stamps}}.dump(2)
        << "\n";
    return;
  }
  out << (satisfied ? "true" : "false") << "\n";
  for (Date date : evaluator.timestampsEncountered()) out << timestampText(date) << "\n";
}

const SubcommandRegistration registration(610, [](CLI::App& app) {
  auto options = std::make_shared<CriteriaOptions>();
  auto* command = app.add_subcommand(
      "criteria",
      "Evaluate a targeting rule (JSON); print true or false, then the time stamps at which the "
      "answer could change");
  command->add_option("rule", options->rule, "The rule, a JSON file")->required();
  command->add_option("--env", options->environment,
                      "JSON object of environment fields (version, SKUType, isInternal, "
                      "directBIDs, currentDate ...) replacing this installation's");
  command->add_flag("--json", options->json, "Print the result as JSON");
  command->footer("Bucket strings made for a rule are remembered in the preferences.");
  command->callback([options] { runCriteria(*options, std::cout); });
});

void evaluateSampleRule(DemoContext& context) {
  const std::string rule = resourcePath("demo/criteria-rule.json").string();
  const std::string environment = resourcePath("demo/criteria-environment.json").string();
  context.out << "Rule " << rule << ":\n"
              << readText(rule) << "Environment:\n"
              << readText(environment) << "Result:\n";
  runCriteria({rule, environment, false}, context.out);
}

const DemoStepRegistration demoStep(610, "Targeting criteria: evaluate a sample rule",
                                    evaluateSampleRule);

}  // namespace

}  // namespace ledgeon::cli
