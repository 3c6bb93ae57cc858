#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Documents/LBackupInfo.h"
#include "Documents/LFileLockInfo.h"
#include "Utilities/Result.h"

namespace ledgeon {

// The directory on disk that holds one household's ledger: the store file, the support folders,
// the lock records of its openers and (while protected and closed) the enciphered catalog. Knows
// the layout, guards against a second opener and makes and restores backups. Main thread only.
class LDocumentPackage final {
 public:
  using Path = std::filesystem::path;

  // A package object for the directory at `url`; nothing is created or locked yet.
  explicit LDocumentPackage(Path url);
  static LDocumentPackage initWithURL(Path url) { return LDocumentPackage(std::move(url)); }
  // A moved-from package holds no lock, so only one of the two ever gives it up.
  LDocumentPackage(LDocumentPackage&& other) noexcept;
  LDocumentPackage& operator=(LDocumentPackage&& other) noexcept;
  ~LDocumentPackage();

  // Gives up this opener's lock.
  void close();

  const Path& absoluteURL() const { return absoluteURL_; }
  std::string documentFullPath() const { return absoluteURL_.string(); }
  std::string documentName() const { return absoluteURL_.filename().string(); }
  std::string extension() const;
  Path directoryPath() const { return absoluteURL_.parent_path(); }
  const std::map<std::string, Path>& reportPaths() const { return reportPaths_; }
  const std::string& lockId() const { return lockId_; }

  Path dataBasePath() const;
  Path dataBaseURL() const { return dataBasePath(); }
  Path attachmentsFolderPath() const;
  Path deletedAttachmentsFolderPath() const;
  Path reportFolderPath() const;
  Path categoryExplorerHTMLDirectory() const;
  Path calendarFolderPath() const;
  Path taxesFolderPath() const;
  Path imagesFolderPath() const;
  Path persistentStateFolderPath() const;
  Path modelPiecesPath() const;
  Path alertIconsPath() const;
  Path billerLoginIconsPath() const;
  Path convertedDataPath() const;
  Path catalogPath() const;
  // The saved file of `report` in the reports folder; remembered in reportPaths.
  Path reportPathForReport(const std::string& report);

  static Path dataBasePathForFile(const Path& packagePath);
  static Path packagePathFromDataBasePath(const Path& dataBasePath);
  static Path modelPiecesPathFromDataBasePath(const Path& dataBasePath);
  static bool dataBaseFileExistsInPackage(const Path& packagePath);
  // A downloaded statement (".ofx", ".qfx", ".lfx" ... file) rather than a document package.
  static bool isWebConnectFile(const Path& path);

  // Every folder of a package, relative to it.
  static const std::vector<std::string>& packageFolderNames();

  // Files a module keeps in every package (templates, icons ...): the contents of
  // `supportFolderSourcePath` copied into the package folder named `supportFolderModuleID`.
  struct SupportFileSet {
    std::string supportFolderModuleID;
    Path supportFolderSourcePath;
  };
  // Modules register their sets at start-up, before any package is created or opened.
  static void registerSupportFileSet(SupportFileSet set);
  static std::vector<SupportFileSet> registeredSupportFileSets();

  // Makes a new package at the URL with all its folders and the registered support files;
  // fails when something is there already.
  Result<void> createNewFileWithSupportFoldersFor();
  // Adds the folders an existing package lacks (packages made by older versions) and brings
  // the registered support files up to date.
  Result<void> updateExistingFileAndSupportFolders();
  // Copies every file of the sets, replacing what is there.
  Result<void> moveSupportFilesIntoPackage(const std::vector<SupportFileSet>& sets);
  // Copies the files of the sets that the package lacks or holds in an older version.
  Result<void> updateSupportFilesInPackage(const std::vector<SupportFileSet>& sets);

  // The folder of a module below the package, created when asked; failures are logged.
  std::optional<Path> moduleFolderPath(const std::string& moduleID, bool createIfNecessary);

  // Files cached for an object, stored as "<guid>_<fileName>" in the folder `dirName`.
  Result<void> cacheFileInFilePackageDirName(const std::string& dirName, const std::string& guid,
                                             const std::string& fileName, const std::string& data);
  std::optional<std::string> cachedFileInFilePackageDirName(const std::string& dirName,
                                                            const std::string& guid,
                                                            const std::string& fileName) const;
  bool removeCachedFileDirName(const std::string& dirName, const std::string& guid,
                               const std::string& fileName);

  // The owner must be able to read, write and enter everything in the package.
  Result<void> verifyPackagePermissionsReturningError() const;
  Result<void> fixPackagePermissionsReturningError() const;
  static Result<void> fixApplicationSupportSubfolderPermissions(const Path& folder);

  // Removes what interrupted migrations and file-system duplicates left behind.
  static void cleanUpExtraneousFilesForDocumentPath(const Path& packagePath);

  // Locks (one record per opener in the "locks" folder).
  // Takes the lock unless another opener holds it; then returns the oldest conflicting lock.
  // Stale records (an earlier boot of this computer, a process that is gone) are deleted on the
  // way. Fails only when the lock record cannot be written.
  Result<std::optional<LFileLockInfo>> tryLockAndReturnConflictingLock();
  // Takes the lock whatever others hold ("Open Anyway").
  Result<void> createLock(LFileLockInfo lock);
  void unlock();
  Path lockPath() const;
  // Every readable lock record, oldest first.
  std::vector<LFileLockInfo> allLocks() const;
  bool deleteLock(const LFileLockInfo& lock) const;
  bool deleteLockWithLockId(const std::string& lockId) const;
  Path pathForLockWithLockId(const std::string& lockId) const;
  static Path locksDirPathForDocumentPath(const Path& packagePath);
  static void deleteAllLocksForDocumentPath(const Path& packagePath);

  // Backups (zip archives with the extension "ledgeonbackup").
  static Path defaultBackupsDirectory();
  static Path suggestedBackupPathForPackage(const Path& packagePath, const Path& backupsDirectory);
  static std::string backupPrefixForReason(BackupReason reason);
  // A new, unused path for an automatic backup of the document named `documentName`.
  static Path backupPath(const Path& backupsDirectory, const std::string& documentName,
                         BackupReason reason);
  static std::size_t numberOfBackupsInDirectory(const Path& directory);
  static std::size_t numberOfBackupsInDirectory(const Path& directory, const std::string& prefix,
                                                const std::string& UID, BackupReason reason);
  // Removes the `count` oldest backups that match; returns how many were removed.
  static std::size_t remove(std::size_t count, const Path& directory, const std::string& prefix,
                            const std::string& UID, BackupReason reason);
  struct BackupOptions {
    std::string originalFilePath;
    std::string note;
    BackupReason reason = BackupReason::kManual;
    std::string UID;
  };
  static Result<void> backupPackage(const Path& packagePath, const Path& toPath,
                                    const BackupOptions& options);
  static Result<void> restoreBackup(const Path& backupPath, const Path& toPath);
  static Result<LBackupInfo> backupInfoForBackupPath(const Path& backupPath);

 private:
  Path folder(const char* name) const { return absoluteURL_ / name; }
  Result<void> createPackageFolders();
  Result<void> copySupportFiles(const std::vector<SupportFileSet>& sets,
                                std::filesystem::copy_options how);

  Path absoluteURL_;
  std::map<std::string, Path> reportPaths_;
  std::string lockId_;
};

}  // namespace ledgeon
