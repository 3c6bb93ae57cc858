// ledgeon import DOC FILE: a LIF file or a CSV transaction export into a document.
#include "ImportCommand.h"

#include <iostream>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "CliValues.h"
#include "DataBase/DataBase.h"
#include "DemoStep.h"
#include "Documents/LDocument.h"
#include "Documents/LedgerQueries.h"
#include "ImportExport/ImportFileKind.h"
#include "ImportExport/ImportLIFFileCommand.h"
#include "ImportExport/ImportTextFileCommand.h"
#include "LObjects/LObject.h"
#include "OpenLedger.h"
#include "Subcommand.h"
#include "TerminalUserInterface.h"
#include "Utilities/Resources.h"

namespace ledgeon::cli {

std::string formatOfFile(const std::string& file) {
  const auto kind = ImportFileKind::ofFile(file);
  if (!kind) throw CommandFailure(kind.error().localizedDescription());
  if (kind->kind() == ImportFileKind::Kind::kEmpty) {
    throw CommandFailure("\"" + file + "\" is empty");
  }
  return kind->kind() == ImportFileKind::Kind::kLIF ? "lif" : "csv";
}

std::shared_ptr<ImportFileCommand> importCommandForFile(
    const std::string& file, const std::string& format,
    const std::shared_ptr<LCommandDocument>& document) {
  const std::string chosen = format.empty() ? formatOfFile(file) : format;
  if (chosen == "lif") return std::make_shared<ImportLIFFileCommand>(file, document);
  if (chosen == "csv") return std::make_shared<ImportTextFileCommand>(file, document);
  throw CommandFailure("unknown format \"" + format + "\" (lif or csv)");
}

namespace {

struct ImportOptions {
  std::string document;
  std::string file;
  std::string format;
  bool json = false;
  bool showLogs = false;
};

void runImport(const ImportOptions& options) {
  OpenLedger document(options.document);
  auto command = importCommandForFile(options.file, options.format, document.shared());
  // The question a successful LIF import ends with: "OK", or "Show Logs" to be shown the log
  // file. Only that question: a CSV import does not ask it, and closing asks its own.
  TerminalUserInterface& terminal = TerminalUserInterface::shared();
  terminal.setStandingAnswer(options.showLogs ? "Show Logs" : "OK");
  const bool imported = command->execute();
  terminal.setStandingAnswer("");
  if (const auto& log = command->log()) {
    if (options.json) {
      const nlohmann::json out = {
          {"log", nlohmann::json::parse(log->jsonText())},
          {"summary", nlohmann::json::parse(command->summary().jsonText())}};
      std::cout << out.dump(2) << "\n";
    } else {
      std::cout << log->plainText();
    }
  }
  if (!imported) {
    throw CommandFailure(command->userAborted() ? "the import was cancelled"
                                                : "could not import \"" + options.file + "\"");
  }
}

const SubcommandRegistration registration(620, [](CLI::App& app) {
  auto options = std::make_shared<ImportOptions>();
  auto* import = app.add_subcommand(
      "import",
      "Import a LIF file (into a document without transactions; clears the undo history) or a "
      "CSV transaction export (one undoable step), and print the import log");
  import->add_option("document", options->document, "The document package")->required();
  import->add_option("file", options->file, "The file to import")->required();
  import->add_option("--format", options->format, "lif or csv (default: recognised from the file)")
      ->check(CLI::IsMember({"lif", "csv"}));
  import->add_flag("--json", options->json,
                   "Print {\"log\": the import log as a JSON tree, \"summary\": its figures}");
  import->add_flag("--show-logs", options->showLogs,
                   "After a LIF import, show the written log file (its path, and its folder in "
                   "the file manager on a desktop)");
  import->callback([options] { runImport(*options);
});
});

void showImport(DemoContext& context) {
  auto& out = context.out;
  const auto path = context.workFolder / "Imported.ledgeon";
  std::filesystem::remove_all(path);
  auto created = LDocument::createNewDocument(path);
  if (!created) {
    out << created.error().localizedDescription() << "\n";
    return;
  }
  std::shared_ptr<LDocument> document = *created;
  LCommandDocument::setCurrentDocument(document);
  TerminalUserInterface::shared().addPresetAnswer("OK");
  const auto sample = resourcePath("demo/household.lif");
  auto command = std::make_shared<ImportLIFFileCommand>(sample, document);
  command->setShowsProgressDialog(false);
  if (!command->execute()) {
    out << "The import failed\n";
    document->close();
    return;
  }
  out << "Imported " << sample.filename().string() << " into " << path.string() << ":\n";
  for (LObject* account :
       document->dataBase().instancesOfClass("Account", {.sortDescriptors = {{"name"}}})) {
    out << "  " << account->stringForKey("name") << ": "
        << formatMoney(document->ledgerQueries().balanceOfAccount(*account)) << "\n";
  }
  for (const std::string& line : command->summary().lines()) out << "  " << line << "\n";
  out << "Try: ledgeon import " << path.string() << " "
      << resourcePath("demo/transactions.csv").string() << "\n";
  command.reset();
  // The demo's scratch document needs no backup, and a demo asks nothing.
  TerminalUserInterface::shared().addPresetAnswer("Don\u2019t Back Up");
  document->close();
}

const DemoStepRegistration demoStep(400, "Importing a LIF file", showImport);

}  // namespace

}  // namespace ledgeon::cli
