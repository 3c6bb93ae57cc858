#include "Documents/LDocumentPackage.h"

#include <algorithm>
#include <fstream>
#include <mutex>
#include <sstream>
#include <utility>

#include "Utilities/AsciiText.h"
#include "Utilities/FileContents.h"
#include "Utilities/Log.h"

namespace ledgeon {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDataFileName = "data";
constexpr const char* kModelPiecesFolder = "modelPieces";
constexpr const char* kAttachmentsFolder = "attachments";
constexpr const char* kDeletedAttachmentsFolder = "deleted attachments";
constexpr const char* kReportsFolder = "reports";
constexpr const char* kCategoryExplorerFolder = "Category Explorer";
constexpr const char* kCalendarsFolder = "calendars";
constexpr const char* kTaxesFolder = "taxes";
constexpr const char* kImagesFolder = "images";
constexpr const char* kAlertIconsFolder = "alertIcons";
constexpr const char* kBillerLoginIconsFolder = "billerLoginIcons";
constexpr const char* kPersistentStateFolder = "persistentStateInformation";
constexpr const char* kConvertedFolder = "converted";
constexpr const char* kLocksFolder = "locks";
constexpr const char* kCatalogFileName = "catalog";

Error packageError(const fs::path& path, const std::string& what) {
  Error error = Error::make(kLErrorDomain, 1, path.string() + ": " + what);
  error.userInfo[kFilePathErrorKey] = path.string();
  return error;
}

// A name usable as one path component: no separators, not "." or "..".
bool isPlainName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

constexpr fs::perms kOwnerReadWrite = fs::perms::owner_read | fs::perms::owner_write;

bool hasOwnerAccess(const fs::file_status& status) {
  const fs::perms perms = status.permissions();
  if ((perms & kOwnerReadWrite) != kOwnerReadWrite) return false;
  return !fs::is_directory(status) || (perms & fs::perms::owner_exec) != fs::perms::none;
}

// u+rwX on `path` and, for a folder, everything below it; the folder is opened up before it is
// entered so that an unreadable folder can be repaired too.
bool grantOwnerAccess(const fs::path& path, std::vector<fs::path>& failures) {
  std::error_code ec;
  const fs::file_status status = fs::symlink_status(path, ec);
  if (ec || !fs::exists(status)) {
    failures.push_back(path);
    return false;
  }
  if (fs::is_symlink(status)) return true;
  fs::perms wanted = kOwnerReadWrite;
  const fs::perms anyExec = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
  if (fs::is_directory(status) || (status.permissions() & anyExec) != fs::perms::none) {
    wanted |= fs::perms::owner_exec;
  }
  fs::permissions(path, wanted, fs::perm_options::add, ec);
  if (ec) {
    failures.push_back(path);
    return false;
  }
  if (!fs::is_directory(status)) return true;
  bool ok = true;
  for (const auto& entry : fs::directory_iterator(path, ec)) {
    ok = grantOwnerAccess(entry.path(), failures) && ok;
  }
  if (ec) {
    failures.push_back(path);
    return false;
  }
  return ok;
}

Result<void> fixPermissionsBelow(const fs::path& root) {
  std::vector<fs::path> failures;
  if (grantOwnerAccess(root, failures)) return {};
  for (const auto& failure : failures) {
    LLog("ERROR: Unable to fix permissions for path: %@", failure.string());
  }
  return packageError(failures.front(), "permissions cannot be repaired");
}

}  // namespace

LDocumentPackage::LDocumentPackage(Path url)
    : absoluteURL_(fs::absolute(std::move(url)).lexically_normal()) {
  // "Doc.ledgeon/" and "Doc.ledgeon" are the same package.
  if (absoluteURL_.filename().empty()) absoluteURL_ = absoluteURL_.parent_path();
}

LDocumentPackage::LDocumentPackage(LDocumentPackage&& other) noexcept
    : absoluteURL_(std::move(other.absoluteURL_)),
      reportPaths_(std::move(other.reportPaths_)),
      lockId_(std::exchange(other.lockId_, std::string())) {}

LDocumentPackage& LDocumentPackage::operator=(LDocumentPackage&& other) noexcept {
  if (this != &other) {
    unlock();
    absoluteURL_ = std::move(other.absoluteURL_);
    reportPaths_ = std::move(other.reportPaths_);
    lockId_ = std::exchange(other.lockId_, std::string());
  }
  return *this;
}

LDocumentPackage::~LDocumentPackage() { close(); }

void LDocumentPackage::close() { unlock(); }

std::string LDocumentPackage::extension() const {
  std::string ext = absoluteURL_.extension().string();
  return ext.empty() ? ext : ext.substr(1);
}

LDocumentPackage::Path LDocumentPackage::dataBasePath() const { return folder(kDataFileName); }
LDocumentPackage::Path LDocumentPackage::attachmentsFolderPath() const {
  return folder(kAttachmentsFolder);
}
LDocumentPackage::Path LDocumentPackage::deletedAttachmentsFolderPath() const {
  return folder(kDeletedAttachmentsFolder);
}
LDocumentPackage::Path LDocumentPackage::reportFolderPath() const { return folder(kReportsFolder); }
LDocumentPackage::Path LDocumentPackage::categoryExplorerHTMLDirectory() const {
  return folder(kCategoryExplorerFolder);
}
LDocumentPackage::Path LDocumentPackage::calendarFolderPath() const {
  return folder(kCalendarsFolder);
}
LDocumentPackage::Path LDocumentPackage::taxesFolderPath() const { return folder(kTaxesFolder); }
LDocumentPackage::Path LDocumentPackage::imagesFolderPath() const { return folder(kImagesFolder); }
LDocumentPackage::Path LDocumentPackage::persistentStateFolderPath() const {
  return folder(kPersistentStateFolder);
}
LDocumentPackage::Path LDocumentPackage::modelPiecesPath() const {
  return folder(kModelPiecesFolder);
}
LDocumentPackage::Path LDocumentPackage::alertIconsPath() const {
  return folder(kAlertIconsFolder);
}
LDocumentPackage::Path LDocumentPackage::billerLoginIconsPath() const {
  return folder(kBillerLoginIconsFolder);
}
LDocumentPackage::Path LDocumentPackage::convertedDataPath() const {
  return folder(kConvertedFolder);
}
LDocumentPackage::Path LDocumentPackage::catalogPath() const { return folder(kCatalogFileName); }

LDocumentPackage::Path LDocumentPackage::reportPathForReport(const std::string& report) {
  Path path = reportFolderPath() / report;
  reportPaths_[report] = path;
  return path;
}

LDocumentPackage::Path LDocumentPackage::dataBasePathForFile(const Path& packagePath) {
  return packagePath / kDataFileName;
}

LDocumentPackage::Path LDocumentPackage::packagePathFromDataBasePath(const Path& dataBasePath) {
  return dataBasePath.parent_path();
}

LDocumentPackage::Path LDocumentPackage::modelPiecesPathFromDataBasePath(const Path& dataBasePath) {
  return dataBasePath.parent_path() / kModelPiecesFolder;
}

bool LDocumentPackage::dataBaseFileExistsInPackage(const Path& packagePath) {
  std::error_code ec;
  return fs::is_regular_file(dataBasePathForFile(packagePath), ec);
}

bool LDocumentPackage::isWebConnectFile(const Path& path) {
  static const std::vector<std::string> kExtensions = {".ofx", ".qfx", ".lfx"};
  const std::string ext = asciiLowercased(path.extension().string());
  std::error_code ec;
  return std::find(kExtensions.begin(), kExtensions.end(), ext) != kExtensions.end() &&
         !fs::is_directory(path, ec);
}

const std::vector<std::string>& LDocumentPackage::packageFolderNames() {
  static const std::vector<std::string> kFolders = {kModelPiecesFolder,
                                                    kAttachmentsFolder,
                                                    kDeletedAttachmentsFolder,
                                                    kReportsFolder,
                                                    kCategoryExplorerFolder,
                                                    kCalendarsFolder,
                                                    kTaxesFolder,
                                                    kImagesFolder,
                                                    kAlertIconsFolder,
                                                    kBillerLoginIconsFolder,
                                                    kPersistentStateFolder,
                                                    kConvertedFolder,
                                                    kLocksFolder};
  return kFolders;
}

namespace {

std::mutex& supportFileSetsMutex() {
  static std::mutex mutex;
  return mutex;
}

std::vector<LDocumentPackage::SupportFileSet>& supportFileSets() {
  static std::vector<LDocumentPackage::SupportFileSet> sets;
  return sets;
}

}  // namespace

void LDocumentPackage::registerSupportFileSet(SupportFileSet set) {
  std::lock_guard lock(supportFileSetsMutex());
  supportFileSets().push_back(std::move(set));
}

std::vector<LDocumentPackage::SupportFileSet> LDocumentPackage::registeredSupportFileSets() {
  std::lock_guard lock(supportFileSetsMutex());
  return supportFileSets();
}

Result<void> LDocumentPackage::createNewFileWithSupportFoldersFor() {
  std::error_code ec;
  if (fs::exists(fs::symlink_status(absoluteURL_, ec))) {
    return packageError(absoluteURL_, "already exists");
  }
  if (!fs::create_directory(absoluteURL_, ec) || ec) {
    return packageError(absoluteURL_, "cannot be created: " + ec.message());
  }
  if (auto made = createPackageFolders(); !made) return made;
  return moveSupportFilesIntoPackage(registeredSupportFileSets());
}

Result<void> LDocumentPackage::updateExistingFileAndSupportFolders() {
  if (auto made = createPackageFolders(); !made) return made;
  return updateSupportFilesInPackage(registeredSupportFileSets());
}

Result<void> LDocumentPackage::createPackageFolders() {
  std::error_code ec;
  if (!fs::is_directory(absoluteURL_, ec)) {
    LLog("Not a directory: %@", absoluteURL_.string());
    return packageError(absoluteURL_, "is not a document package");
  }
  for (const auto& name : packageFolderNames()) {
    fs::create_directory(absoluteURL_ / name, ec);
    if (ec) return packageError(absoluteURL_ / name, "cannot be created: " + ec.message());
  }
  return {};
}

Result<void> LDocumentPackage::moveSupportFilesIntoPackage(
    const std::vector<SupportFileSet>& sets) {
  return copySupportFiles(sets, fs::copy_options::overwrite_existing);
}

Result<void> LDocumentPackage::updateSupportFilesInPackage(
    const std::vector<SupportFileSet>& sets) {
  return copySupportFiles(sets, fs::copy_options::update_existing);
}

Result<void> LDocumentPackage::copySupportFiles(const std::vector<SupportFileSet>& sets,
                                                fs::copy_options how) {
  for (const auto& set : sets) {
    auto target = moduleFolderPath(set.supportFolderModuleID, true);
    if (!target) {
      return packageError(absoluteURL_ / set.supportFolderModuleID, "cannot be created");
    }
    std::error_code ec;
    fs::copy(set.supportFolderSourcePath, *target, how | fs::copy_options::recursive, ec);
    if (ec) {
      return packageError(set.supportFolderSourcePath,
                          "support files cannot be copied: " + ec.message());
    }
  }
  return {};
}

std::optional<LDocumentPackage::Path> LDocumentPackage::moduleFolderPath(
    const std::string& moduleID, bool createIfNecessary) {
  if (!isPlainName(moduleID)) {
    LLog("Could not create folder for moduleID '%@', error = %@", moduleID,
         "not a valid folder name");
    return std::nullopt;
  }
  Path path = absoluteURL_ / moduleID;
  std::error_code ec;
  if (createIfNecessary && !fs::is_directory(path, ec)) {
    fs::create_directories(path, ec);
    if (ec) {
      LLog("Could not create folder for moduleID '%@', error = %@", moduleID, ec.message());
      return std::nullopt;
    }
  }
  return path;
}

Result<void> LDocumentPackage::cacheFileInFilePackageDirName(const std::string& dirName,
                                                             const std::string& guid,
                                                             const std::string& fileName,
                                                             const std::string& data) {
  auto folderPath = moduleFolderPath(dirName, true);
  if (!folderPath || !isPlainName(guid + "_" + fileName)) {
    return packageError(absoluteURL_ / dirName, "cannot hold the cached file " + fileName);
  }
  const Path path = *folderPath / stringWithFormat("%@_%@", guid, fileName);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(data.data(), static_cast<std::streamsize>(data.size()));
  if (!out.flush()) return packageError(path, "cannot be written");
  return {};
}

std::optional<std::string> LDocumentPackage::cachedFileInFilePackageDirName(
    const std::string& dirName, const std::string& guid, const std::string& fileName) const {
  if (!isPlainName(dirName) || !isPlainName(guid + "_" + fileName)) return std::nullopt;
  return readFileContents(absoluteURL_ / dirName / stringWithFormat("%@_%@", guid, fileName));
}

bool LDocumentPackage::removeCachedFileDirName(const std::string& dirName, const std::string& guid,
                                               const std::string& fileName) {
  if (!isPlainName(dirName) || !isPlainName(guid + "_" + fileName)) return false;
  std::error_code ec;
  return fs::remove(absoluteURL_ / dirName / stringWithFormat("%@_%@", guid, fileName), ec);
}

Result<void> LDocumentPackage::verifyPackagePermissionsReturningError() const {
  std::error_code ec;
  const fs::file_status rootStatus = fs::status(absoluteURL_, ec);
  if (ec) return packageError(absoluteURL_, "cannot be read: " + ec.message());
  if (!hasOwnerAccess(rootStatus)) return packageError(absoluteURL_, "is not accessible");
  fs::recursive_directory_iterator it(absoluteURL_, ec);
  for (; !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
    const fs::file_status status = it->symlink_status(ec);
    if (ec) break;
    if (fs::is_symlink(status)) continue;
    if (!hasOwnerAccess(status)) return packageError(it->path(), "is not accessible");
  }
  if (ec) return packageError(absoluteURL_, "cannot be listed: " + ec.message());
  return {};
}

Result<void> LDocumentPackage::fixPackagePermissionsReturningError() const {
  return fixPermissionsBelow(absoluteURL_);
}

Result<void> LDocumentPackage::fixApplicationSupportSubfolderPermissions(const Path& folder) {
  return fixPermissionsBelow(folder);
}

void LDocumentPackage::cleanUpExtraneousFilesForDocumentPath(const Path& packagePath) {
  std::error_code ec;
  std::vector<Path> leftOvers;
  for (const auto& entry : fs::directory_iterator(packagePath, ec)) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("DBMigrationtemp_", 0) == 0 || name.rfind("data (", 0) == 0 ||
        name == "olddata") {
      leftOvers.push_back(entry.path());
    }
  }
  if (ec) {
    LLog("Unable to get contents of pre-existing directory: %@ (%@)", packagePath.string(),
         ec.message());
    return;
  }
  for (const auto& path : leftOvers) {
    fs::remove_all(path, ec);
    if (ec) LLog("ERROR: Could not remove %@: %@", path.string(), ec.message());
  }
}

}  // namespace ledgeon
