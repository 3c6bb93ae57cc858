#include "OpenLedger.h"

#include <filesystem>

#include "Documents/LDocument.h"
#include "Subcommand.h"
#include "TerminalUserInterface.h"
#include "Threading/RunLoop.h"

namespace ledgeon::cli {

OpenLedger::OpenLedger(const std::string& path, const std::vector<std::string>& answers,
                       bool newFile) {
  for (const auto& answer : answers) TerminalUserInterface::shared().addPresetAnswer(answer);
  auto opened = LDocument::initWithContentsOfURL(path, {.newFile = newFile});
  if (!opened) {
    if (opened.error().isUserCancelled()) {
      throw CommandFailure("The document \u201c" + std::filesystem::path(path).filename().string() +
                           "\u201d was not opened: it is open elsewhere.");
    }
    throw CommandFailure(opened.error().localizedDescription());
  }
  document_ = *opened;
  // Let the document finish the set-up it deferred until the opener had its turn.
  if (RunLoop* loop = RunLoop::main()) loop->runOnce();
}

OpenLedger::~OpenLedger() { document_->close(); }

}  // namespace ledgeon::cli
