#pragma once

#include <functional>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

namespace ledgeon::cli {

// Each subcommand lives in a file of its own and registers itself with a static
// SubcommandRegistration; main() installs them in `order` (the order --help lists them).
struct SubcommandRegistration {
  using Install = std::function<void(CLI::App& app)>;
  SubcommandRegistration(int order, Install install);
};

void installSubcommands(CLI::App& app);

// A failure the user should read: main() prints "ledgeon: <message>" on stderr and exits with 1.
class CommandFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace ledgeon::cli
