// Closing a document, step by step, and the backup made on close.
#include <filesystem>
#include <string>

#include "Commands/LCommandManager.h"
#include "Commands/UndoManager.h"
#include "DataBase/DataBase.h"
#include "Documents/LDocument.h"
#include "Documents/LDocumentStrings.h"
#include "Documents/LedgerQueries.h"
#include "Documents/internal/OpenDataBases.h"
#include "Platform/ApplicationPaths.h"
#include "Platform/Preferences.h"
#include "Platform/Services.h"
#include "Platform/UserInterface.h"
#include "Threading/RunLoop.h"
#include "Utilities/Clock.h"
#include "Utilities/Log.h"
#include "Utilities/NotificationCenter.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace fs = std::filesystem;

void LDocument::close() {
  if (closing_) return;
  closeEvent_ = CloseEvent{};
  closeEvent_.begin = Clock::now();
  const bool sanitized = sanitized_;
  const std::string clientDocumentId = clientDocumentId_;
  // Whether to encipher on close is decided here once password protection plugs in.

  closing_ = true;
  if (commandManager_) commandManager_->clear();
  commandManager_.reset();
  undoManager_.reset();

  // Cloud sync sessions of the document are cancelled here once cloud sync plugs in.
  if (RunLoop* loop = RunLoop::main(); loop && loop->isOwnerThread()) {
    loop->cancelPerformRequests(this);
  }
  // Security quote updates are stopped here once they exist.

  NotificationCenter& center = NotificationCenter::defaultCenter();
  center.postNotificationName(kLDocumentWillCloseNotification, this);
  if (LCommandDocument::currentDocument().get() == this) {
    LCommandDocument::setCurrentDocument(nullptr);
  }
  closed_ = true;
  center.postNotificationName(kLDocumentDidCloseNotification, this);
  observers_.clear();

  if (dataBase_) {
    documents_internal::removeOpenDataBase(dataBase_.get());
    ledgerQueries_.reset();
    dataBase_->close();
    dataBase_.reset();
  }
  package_.close();

  if (!sanitized && validDatabaseChangeForBackup_) backupOnClose(clientDocumentId);

  LLog("Closed %@ (backup made: %@)", package_.documentFullPath(),
       closeEvent_.backupMade ? "yes" : "no");
  if (deleteParentDirectoryWhenClosed_) deleteParentDirectory();
}

void LDocument::backupOnClose(const std::string& clientDocumentId) {
  Preferences& preferences = Services::shared().preferences();
  if (!preferences.boolForKey(kAutomateBackupDataKey)) return;  // the change stays noted
  bool backUp = true;
  if (preferences.boolForKey(kAskToBackupDataKey)) {
    Alert alert;
    alert.messageText = kBackupQuestion;
    alert.buttons = {kBackUpButton, kDontBackUpButton};
    alert.suppressionTitle = kBackupSuppressionTitle;
    const AlertResponse response = Services::shared().userInterface().runAlert(alert);
    // The box reads "don't ask, but continue to back up": ticking it turns later closes into
    // silent backups whichever button was pressed this time.
    if (response.suppressionChecked) {
      preferences.setObject(kAskToBackupDataKey, false);
      if (auto saved = preferences.synchronize(); !saved) {
        LLog("ERROR: %@", saved.error().localizedDescription());
      }
    }
    backUp = response.buttonIndex == 0;
  }
  if (backUp) {
    closeEvent_.backupBegin = Clock::now();
    closeEvent_.backupMade = performAutoBackupOnCloseWithClientDocumentId(clientDocumentId);
    // The backup analytics event is sent here once analytics plugs in.
  }
  validDatabaseChangeForBackup_ = false;
}

bool LDocument::performAutoBackupOnCloseWithClientDocumentId(const std::string& clientDocumentId) {
  const Path folder = ApplicationPaths::ensureFolder(LDocumentPackage::defaultBackupsDirectory());
  const Path target =
      LDocumentPackage::backupPath(folder, package_.documentName(), BackupReason::kAutomatic);
  auto made = LDocumentPackage::backupPackage(
      package_.absoluteURL(), target,
      {.originalFilePath = package_.documentFullPath(),
       .note = stringWithFormat("Automatic backup on closing %@", package_.documentName()),
       .reason = BackupReason::kAutomatic,
       .UID = clientDocumentId});
  if (!made) {
    LLog("ERROR: %@", made.error().localizedDescription());
    return false;
  }
  closeEvent_.backupPath = target;
  const int64_t keep = Services::shared().preferences().integerForKey(kMaximumAutomaticBackupsKey);
  const std::string prefix = LDocumentPackage::backupPrefixForReason(BackupReason::kAutomatic);
  const size_t count = LDocumentPackage::numberOfBackupsInDirectory(
      folder, prefix, clientDocumentId, BackupReason::kAutomatic);
  if (keep > 0 && count > static_cast<size_t>(keep)) {
    LDocumentPackage::remove(count - static_cast<size_t>(keep), folder, prefix, clientDocumentId,
                             BackupReason::kAutomatic);
  }
  return true;
}

void LDocument::deleteParentDirectory() {
  std::error_code ec;
  if (!fs::exists(package_.absoluteURL(), ec)) return;
  fs::remove_all(package_.absoluteURL(), ec);
  if (ec) LLog("%@", ec.message());
}

}  // namespace ledgeon
