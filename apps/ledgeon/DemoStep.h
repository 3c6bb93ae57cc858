#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

namespace ledgeon::cli {

// What a demo step works with: where to print and a scratch folder for the sample document.
struct DemoContext {
  std::ostream& out;
  std::filesystem::path workFolder;
};

// `ledgeon demo` runs every registered step in `order`; each capability adds its own step in a
// file of its own, showing what it does on the bundled sample data.
struct DemoStepRegistration {
  using Run = std::function<void(DemoContext& context)>;
  DemoStepRegistration(int order, std::string title, Run run);
};

}  // namespace ledgeon::cli
