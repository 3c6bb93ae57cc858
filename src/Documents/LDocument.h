#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Commands/LCommandDocument.h"
#include "Documents/DocumentLocking.h"
#include "Documents/LDocumentPackage.h"
#include "Utilities/Date.h"
#include "Utilities/NotificationCenter.h"
#include "Utilities/Result.h"

namespace ledgeon {

class DataBase;
class LCommandManager;
class LedgerQueries;
class LObject;
class Preferences;
class UndoManager;

// One open household ledger: the package on disk (locked while open), its DataBase, its undo
// manager and command manager, and the store-transaction bracket commands run in. Made by
// opening or creating a package, ended by close(). Held by shared_ptr (commands keep a weak
// reference). Main thread only.
class LDocument final : public LCommandDocument, public std::enable_shared_from_this<LDocument> {
 public:
  using Path = std::filesystem::path;

  struct OpenOptions {
    bool newFile = false;  // create and populate a new package at the path
    // Remove the package's folder when the document closes (temporary copies).
    bool deleteParentDirectoryWhenClosed = false;
  };

  // Opens (or, with newFile, creates) the document at `url`: lock, caches, support folders,
  // clean-up, permissions, store version, store, cloud environment, country features, populate.
  // The file-open error names the package and who opened it last; a user who cancels at the
  // lock question gets the user-cancelled error.
  static Result<std::shared_ptr<LDocument>> initWithContentsOfURL(const Path& url,
                                                                  const OpenOptions& options);
  static Result<std::shared_ptr<LDocument>> initWithContentsOfURL(const Path& url) {
    return initWithContentsOfURL(url, OpenOptions{});
  }
  static Result<std::shared_ptr<LDocument>> createNewDocument(const Path& url) {
    return initWithContentsOfURL(url, OpenOptions{.newFile = true});
  }
  ~LDocument() override;
  LDocument(const LDocument&) = delete;
  LDocument& operator=(const LDocument&) = delete;

  // Closes the document: commands and undo dropped, notifications, store closed, lock removed,
  // backup on close as the preferences say. A second call does nothing.
  void close();

  // LCommandDocument. dataBase() after close is a programming error.
  DataBase& dataBase() override;
  LCommandManager* commandManager() override;
  void beginTransaction() override;
  Result<void> endTransaction() override;
  void commandDirtiedDocument() override;

  LDocumentPackage& package() { return package_; }
  UndoManager* undoManager() { return undoManager_.get(); }
  std::string displayName() const;
  bool isNewDocument() const { return newFile_; }
  bool isClosing() const { return closing_; }
  bool isClosed() const { return closed_; }
  bool isDocumentEdited() const { return edited_; }
  size_t transactionDepth() const { return transactionDepth_; }
  LockOutcome lockOutcome() const { return lockOutcome_; }
  bool hasFinishedInit() const { return initFinished_; }

  // Sanitized copies (support copies with personal data removed) are never backed up.
  bool isSanitized() const { return sanitized_; }
  void setSanitized(bool sanitized) { sanitized_ = sanitized; }
  // The identifier that ties this document's backups (their UID) and cloud records together.
  const std::string& clientDocumentId() const { return clientDocumentId_; }
  // A change worth a backup was committed since the last backup on close.
  bool validDatabaseChangeForBackup() const { return validDatabaseChangeForBackup_; }
  void setValidDatabaseChangeForBackup(bool valid) { validDatabaseChangeForBackup_ = valid; }
  bool deleteParentDirectoryWhenClosed() const { return deleteParentDirectoryWhenClosed_; }
  void setDeleteParentDirectoryWhenClosed(bool remove) {
    deleteParentDirectoryWhenClosed_ = remove;
  }

  // The ledger's lookups and balances, with the document's caches (account types, the category
  // tree), dropped when their class changes. Like dataBase(), not after close.
  LedgerQueries& ledgerQueries();
  void clearCacheForClass(const std::string& className);

  // What the open and the close took and did, for measurements and the close report.
  struct OpenEvent {
    Date begin;
    Date end;
    bool repaired = false;  // the store had to be repaired before it opened
  };
  struct CloseEvent {
    Date begin;
    bool backupMade = false;
    std::optional<Date> backupBegin;
    std::optional<Path> backupPath;
  };
  const OpenEvent& openEvent() const { return openEvent_; }
  const CloseEvent& closeEvent() const { return closeEvent_; }

  // The stores of every open document, in the order they were opened.
  static std::vector<DataBase*> openDataBases();
  // The document preferences' defaults: automatic backups, asked about on close.
  static void registerPreferenceDefaults(Preferences& preferences);
  // The full name of each default category of a new document, parents before children.
  static const std::vector<std::string>& defaultCategoryNames();
  // The cloud environment's name for its type code (0 "Production" ...).
  static std::string cloudEnvironmentName(int64_t type);

 private:
  LDocument(Path url, const OpenOptions& options);

  // Opening (LDocumentOpen.cpp), one function per step.
  Result<void> open();
  Result<void> makePackage();
  Result<void> lockPackage();
  Result<void> refuseEncipheredPackage();
  void setUpCachesAndCommandManager();
  Result<void> prepareSupportFolders();
  Result<void> checkStoreVersion();
  Result<void> openDataBase();
  void settleCloudEnvironment();
  void settleCountryFeatures();
  Result<void> populate();
  void scheduleFinishInit();
  void finishInit();
  void abandonOpen();
  Error fileOpenError(const std::string& reason) const;
  void repairDocumentAtURL();

  // Populating (LDocumentPopulate.cpp).
  void populateNewDocument();
  void populateExistingDocument();
  void addMissingAccountTypes();
  void addDefaultCategories();

  // Closing (LDocumentClose.cpp).
  void backupOnClose(const std::string& clientDocumentId);
  bool performAutoBackupOnCloseWithClientDocumentId(const std::string& clientDocumentId);
  void deleteParentDirectory();

  Path url_;
  LDocumentPackage package_;
  bool newFile_ = false;
  bool createdPackage_ = false;
  std::unique_ptr<DataBase> dataBase_;
  std::unique_ptr<UndoManager> undoManager_;
  std::unique_ptr<LCommandManager> commandManager_;
  size_t transactionDepth_ = 0;
  LockOutcome lockOutcome_ = LockOutcome::kLocked;
  bool closing_ = false;
  bool closed_ = false;
  bool edited_ = false;
  bool sanitized_ = false;
  bool initFinished_ = false;
  bool validDatabaseChangeForBackup_ = false;
  bool deleteParentDirectoryWhenClosed_ = false;
  std::string clientDocumentId_;
  std::unique_ptr<LedgerQueries> ledgerQueries_;
  std::vector<ScopedObserver> observers_;
  OpenEvent openEvent_;
  CloseEvent closeEvent_;
};

}  // namespace ledgeon
