#include "Subcommand.h"

#include <algorithm>
#include <vector>

namespace ledgeon::cli {

namespace {

std::vector<std::pair<int, SubcommandRegistration::Install>>& registry() {
  static std::vector<std::pair<int, SubcommandRegistration::Install>> entries;
  return entries;
}

}  // namespace

SubcommandRegistration::SubcommandRegistration(int order, Install install) {
  registry().emplace_back(order, std::move(install));
}

void installSubcommands(CLI::App& app) {
  auto& entries = registry();
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [order, install] : entries) install(app);
}

}  // namespace ledgeon::cli
