#include <cstdlib>
#include <iostream>
#include <vector>

#include "DemoStep.h"
#include "Subcommand.h"

namespace ledgeon::cli {

namespace {

struct DemoStep {
  int order;
  std::string title;
  DemoStepRegistration::Run run;
};

std::vector<DemoStep>& demoSteps() {
  static std::vector<DemoStep> steps;
  return steps;
}

void runDemo(const std::filesystem::path& requestedFolder) {
  namespace fs = std::filesystem;
  const fs::path folder =
      requestedFolder.empty() ? fs::temp_directory_path() / "ledgeon-demo" : requestedFolder;
  std::error_code ec;
  fs::create_directories(folder, ec);
  if (ec) throw CommandFailure(folder.string() + ": cannot be created: " + ec.message());

  auto steps = demoSteps();
  std::stable_sort(steps.begin(), steps.end(),
                   [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
  DemoContext context{std::cout, folder};
  std::cout << "Ledgeon demo (work folder " << folder.string() << ")\n";
  int number = 0;
  for (const auto& step : steps) {
    std::cout << "\n== " << ++number << ". " << step.title << " ==\n";
    step.run(context);
  }
  std::cout << "\nDemo finished: " << number << " steps.\n";
}

const SubcommandRegistration registration(900, [](CLI::App& app) {
  auto* demo = app.add_subcommand(
      "demo", "Build a sample ledger from the bundled sample files and show what Ledgeon does");
  auto folder = std::make_shared<std::filesystem::path>();
  demo->add_option("--work-folder", *folder,
                   "Folder for the sample document (default: a temp folder)");
  demo->callback([folder] { runDemo(*folder); });
});

}  // namespace

DemoStepRegistration::DemoStepRegistration(int order, std::string title, Run run) {
  demoSteps().push_back({order, std::move(title), std::move(run)});
}

}  // namespace ledgeon::cli
