#include "ImportExport/ImportFileCommand.h"

#include <utility>

#include "Commands/MainMenuTags.h"
#include "DataBase/DataBase.h"
#include "Platform/Services.h"
#include "Utilities/StringWithFormat.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {

ImportFileCommand::ImportFileCommand(std::filesystem::path file,
                                     std::shared_ptr<LCommandDocument> document,
                                     ImportSummary::Format format)
    : KVCommand(std::move(document)), file_(std::move(file)), format_(format) {
  // One undo step for the whole file, so a user can take back an import that went wrong.
  // An import that builds a whole ledger says otherwise (ImportLIFFileCommand).
  setUndoBehavior(kUndoBehaviorUndoable);
  setCommandTag(kMainMenuTagImport);
  setFileURL(file_.string());
}

std::string ImportFileCommand::typographicQuotes(std::string text) {
  for (const auto& [from, to] : {std::pair<std::string, std::string>{"<<", "\u201C"},
                                 std::pair<std::string, std::string>{">>", "\u201D"}}) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
      text.replace(at, from.size(), to);
      at += to.size();
    }
  }
  return text;
}

std::string ImportFileCommand::progressTitle() const {
  return typographicQuotes(stringWithFormat("Importing <<%@>>", file_.filename().string()));
}

std::string ImportFileCommand::undoNoun() {
  if (!savedUndoNoun().empty()) return savedUndoNoun();
  return LocalizedString("UndoNoun_Import");
}

std::string ImportFileCommand::commandNoun() { return LocalizedString("UndoNoun_Import"); }

ImportLog& ImportFileCommand::startLog() {
  log_.emplace(LocalizedString("Import_LogWindowTitle"),
               stringWithFormat(LocalizedString("Import_LogWindowPathMsgFormat"), file_.string()));
  return *log_;
}

void ImportFileCommand::startProgress(double maximum) {
  progressMaximum_ = maximum;
  if (!progressDialog_) return;
  progressDialog_->setMaximum(maximum);
  progressDialog_->setText(progressTitle());
}

void ImportFileCommand::dropRecord(size_t line, std::string_view rule) {
  summary_.drop(*log_, line, rule);
}

void ImportFileCommand::noteFileKind(ImportFileKind::Kind expected) {
  const auto kind = ImportFileKind::ofFile(file_);
  if (!kind || kind->kind() == expected || kind->kind() == ImportFileKind::Kind::kText ||
      kind->kind() == ImportFileKind::Kind::kEmpty) {
    return;
  }
  summary_.fileLooksLike = kind->description();
  if (log_) log_->add(ImportLogSeverity::kWarning, summary_.fileLooksLike);
}

void ImportFileCommand::logSummary() {
  if (!log_ || summaryLogged_) return;
  summary_.addToLog(*log_);
  summaryLogged_ = true;
}

bool ImportFileCommand::pollCancel() {
  if (progressDialog_ && progressDialog_->isCancelled()) userAborted_ = true;
  return userAborted_;
}

bool ImportFileCommand::doit() {
  LCommandDocument& document = requireDocument();
  // Only an import that started on a store with nothing pending may roll the store back: the
  // rollback drops every uncommitted change, not only the import's own.
  const bool canRollBack = !document.dataBase().hasChanges();
  commands_.clear();
  userAborted_ = false;
  summary_ = ImportSummary(file_.filename().string(), format_);
  summaryLogged_ = false;
  progressDialog_ = showsProgressDialog_
                        ? Services::shared().userInterface().beginProgress(progressTitle())
                        : nullptr;
  bool imported = false;
  {
    ScopedStoreTransaction transaction(document);
    try {
      imported = importFile();
    } catch (...) {
      cleanUpAfterFailure(canRollBack);
      progressDialog_.reset();
      throw;
    }
    if (!imported) cleanUpAfterFailure(canRollBack);
    if (!transaction.end().ok()) imported = false;
  }
  logSummary();
  progressDialog_.reset();
  return imported;
}

void ImportFileCommand::cleanUpAfterFailure(bool rollBack) {
  if (userAborted_) {
    if (progressDialog_) {
      progressDialog_->setValue(progressMaximum_);
      progressDialog_->setText("Import canceled");
      progressDialog_->setBarText("Cleaning up\u2026");
    }
  } else {
    std::string informative = failureInformativeText();
    if (!summary_.fileLooksLike.empty()) informative += "\n" + summary_.fileLooksLike + ".";
    Services::shared().userInterface().runAlert(
        {typographicQuotes(stringWithFormat("Could not import <<%@>>", file_.filename().string())),
         informative,
         {"OK"},
         std::nullopt});
  }
  // Nothing the import made stays.
  summary_.transactionsCreated = 0;
  if (rollBack) {
    // The objects the kept commands made leave memory with the rollback.
    commands_.clear();
    requireDocument().dataBase().rollback();
  } else {
    undoAllCommands();
    commands_.clear();
  }
}

void ImportFileCommand::undoAllCommands() {
  for (auto command = commands_.rbegin(); command != commands_.rend(); ++command) {
    (*command)->undoit();
  }
}

void ImportFileCommand::undoit() {
  ScopedStoreTransaction transaction(requireDocument());
  undoAllCommands();
  (void)transaction.end();
}

void ImportFileCommand::redoit() {
  ScopedStoreTransaction transaction(requireDocument());
  for (const auto& command : commands_) command->redoit();
  (void)transaction.end();
}

}  // namespace ledgeon
