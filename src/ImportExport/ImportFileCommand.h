#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Commands/KVCommand.h"
#include "ImportExport/ImportFileKind.h"
#include "ImportExport/ImportLog.h"
#include "ImportExport/ImportSummary.h"
#include "Platform/UserInterface.h"

namespace ledgeon {

// What the file imports share: one store transaction around the whole import, the list of the
// creation commands that succeeded (undone and redone as one step), the progress sheet with its
// cancel button, and the way out of a failure. A failed or cancelled import leaves the store as
// it found it: when nothing was pending before, every change is rolled back, so no row of the
// import remains. Main thread only.
class ImportFileCommand : public KVCommand {
 public:
  ImportFileCommand(std::filesystem::path file, std::shared_ptr<LCommandDocument> document,
                    ImportSummary::Format format);

  bool doit() override;
  void undoit() override;
  void redoit() override;
  std::string undoNoun() override;  // "UndoNoun_Import"
  std::string commandNoun() override;

  // The driver each import implements: false when the import failed or was cancelled.
  virtual bool importFile() = 0;
  // Undoes every kept command, last first.
  void undoAllCommands();

  const std::filesystem::path& file() const { return file_; }
  const std::vector<std::shared_ptr<KVCommand>>& commands() const { return commands_; }
  bool userAborted() const { return userAborted_; }
  bool showsProgressDialog() const { return showsProgressDialog_; }
  void setShowsProgressDialog(bool shows) { showsProgressDialog_ = shows; }
  // "Importing “<file name>”".
  std::string progressTitle() const;
  // The import's log; empty until the import started.
  const std::optional<ImportLog>& log() const { return log_; }
  // What the last import did with the file; after a failure nothing it created remains.
  const ImportSummary& summary() const { return summary_; }

 protected:
  // The informative text of the alert shown when the import fails.
  virtual std::string failureInformativeText() const = 0;

  std::vector<std::shared_ptr<KVCommand>>& keptCommands() { return commands_; }
  ImportLog& startLog();
  ImportLog& importLog() { return *log_; }
  ImportSummary& importSummary() { return summary_; }
  // Counts and logs a record (a row) of the file left out by `rule`.
  void dropRecord(size_t line, std::string_view rule);
  // When the file looks like one meant for another reader than `expected`, says so in the log,
  // the summary and the failure alert.
  void noteFileKind(ImportFileKind::Kind expected);
  // Appends the summary to the log, once.
  void logSummary();
  Progress* progressDialog() { return progressDialog_.get(); }
  // Sets the sheet's maximum and text.
  void startProgress(double maximum);
  // The sheet's cancel state, noted in userAborted().
  bool pollCancel();
  void setUserAborted() { userAborted_ = true; }
  // "<<" and ">>" become typographic quotes.
  static std::string typographicQuotes(std::string text);

 private:
  void cleanUpAfterFailure(bool rollBack);

  std::filesystem::path file_;
  std::vector<std::shared_ptr<KVCommand>> commands_;
  std::unique_ptr<Progress> progressDialog_;
  std::optional<ImportLog> log_;
  ImportSummary::Format format_;
  ImportSummary summary_;
  bool summaryLogged_ = false;
  double progressMaximum_ = 0;
  bool showsProgressDialog_ = true;
  bool userAborted_ = false;
};

}  // namespace ledgeon
