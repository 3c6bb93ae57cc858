#include <exception>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "Platform/ApplicationPaths.h"
#include "Platform/Preferences.h"
#include "Platform/Services.h"
#include "Subcommand.h"
#include "TerminalUserInterface.h"
#include "Threading/RunLoop.h"
#include "Utilities/Log.h"

namespace {

void installServices() {
  using namespace ledgeon;
  auto preferences = std::make_shared<Preferences>(ApplicationPaths::preferencesFile());
  if (auto loaded = preferences->load(); !loaded) {
    std::cerr << "ledgeon: " << loaded.error().localizedDescription() << '\n';
  }
  Services::shared().setPreferences(std::move(preferences));
  ledgeon::cli::TerminalUserInterface::shared();  // installs itself as the user interface
  Log::setLogFile(ApplicationPaths::logsFolder() / "ledgeon.log");
}

}  // namespace

// Exit status: 0 success, 1 a failure the user should read about, 2 a usage error.
int main(int argc, char** argv) {
  ledgeon::RunLoop mainLoop;  // the main thread's: documents and downloads hand it their work
  CLI::App app{"Ledgeon: a household's money in one exact, undoable ledger.", "ledgeon"};
  app.set_version_flag("--version", std::string("ledgeon ") + LEDGEON_VERSION);
  app.require_subcommand(1);
  app.add_flag_callback(
      "--verbose", [] { ledgeon::Log::setEchoToStandardError(true); },
      "Echo the program's log lines on stderr");
  ledgeon::cli::installSubcommands(app);

  try {
    installServices();
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int status = app.exit(e);
    return status == 0 ? 0 : 2;
  } catch (const ledgeon::cli::CommandFailure& e) {
    std::cerr << "ledgeon: " << e.what() << '\n';
    return 1;
  } catch (const std::exception& e) {
    std::cerr << "ledgeon: internal error: " << e.what() << '\n';
    return 1;
  }
  return 0;
}
