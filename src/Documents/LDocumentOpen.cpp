// Opening a document, step by step: package, lock, protection, caches and commands, support
// folders, store version, store, cloud environment, country features, populating.
#include <filesystem>
#include <string>

#include "Commands/LCommandManager.h"
#include "Commands/UndoManager.h"
#include "DataBase/DataBase.h"
#include "DataBase/DataBaseNotifications.h"
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
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

namespace fs = std::filesystem;

constexpr size_t kLevelsOfUndo = 25;
constexpr int64_t kFileReadUnknownError = 256;  // the platform's "could not be opened"
constexpr const char* kCloudEnvironmentProperty = "cloudEnvironmentType";

std::string metadataValue(const std::map<std::string, std::string>& metadata,
                          const std::string& key) {
  const auto it = metadata.find(key);
  return it == metadata.end() ? std::string() : it->second;
}

}  // namespace

Result<std::shared_ptr<LDocument>> LDocument::initWithContentsOfURL(const Path& url,
                                                                    const OpenOptions& options) {
  registerPreferenceDefaults(Services::shared().preferences());
  std::error_code ec;
  Path absolute = fs::absolute(url, ec);
  if (ec) absolute = url;
  std::shared_ptr<LDocument> document(new LDocument(absolute.lexically_normal(), options));
  if (auto opened = document->open(); !opened) return opened.error();
  return document;
}

Result<void> LDocument::open() {
  openEvent_.begin = Clock::now();
  if (auto made = makePackage(); !made) {
    closing_ = closed_ = true;
    return made;
  }
  if (auto locked = lockPackage(); !locked) {
    abandonOpen();
    return locked;
  }
  // Steps that can fail once the lock is held give it back through abandonOpen().
  auto steps = [this]() -> Result<void> {
    if (auto refused = refuseEncipheredPackage(); !refused) return refused;
    setUpCachesAndCommandManager();
    if (auto prepared = prepareSupportFolders(); !prepared) return prepared;
    // Scrubbing passwords stored by older versions plugs in here with the keychain.
    if (auto checked = checkStoreVersion(); !checked) return checked;
    if (auto opened = openDataBase(); !opened) return opened;
    settleCloudEnvironment();
    settleCountryFeatures();
    return populate();
  };
  if (auto done = steps(); !done) {
    abandonOpen();
    return done;
  }
  LCommandDocument::setCurrentDocument(shared_from_this());
  scheduleFinishInit();
  openEvent_.end = Clock::now();
  return {};
}

Result<void> LDocument::makePackage() {
  std::error_code ec;
  const fs::file_status status = fs::symlink_status(url_, ec);
  if (newFile_) {
    if (fs::exists(status)) return fileOpenError("Something of that name already exists.");
    // Bare for now, so that the lock can be taken before anything else is written.
    if (!fs::create_directory(url_, ec) || ec) {
      return fileOpenError("The folder cannot be created: " + ec.message());
    }
    createdPackage_ = true;
    return {};
  }
  if (!fs::exists(status)) return fileOpenError("There is no document at " + url_.string() + ".");
  if (!fs::is_directory(fs::status(url_, ec))) {
    LLog("Not a directory: %@", url_.string());
    return fileOpenError(url_.string() + " is not a document package.");
  }
  fs::directory_iterator listing(url_, ec);
  if (ec) {
    LLog("Unable to get contents of pre-existing directory: %@ (%@)", url_.string(), ec.message());
    return fileOpenError("Its contents cannot be read: " + ec.message());
  }
  return {};
}

Result<void> LDocument::lockPackage() {
  auto outcome = lockDocumentPackage(package_, Services::shared().userInterface());
  if (!outcome) return outcome.error();
  lockOutcome_ = *outcome;
  return {};
}

Result<void> LDocument::refuseEncipheredPackage() {
  std::error_code ec;
  if (!fs::exists(package_.catalogPath(), ec)) return {};
  // Password protection plugs in here: read the catalog's metadata, ask for the password and
  // extract the store before going on.
  return fileOpenError(stringWithFormat(kProtectedDocumentInformation, kApplicationName));
}

void LDocument::setUpCachesAndCommandManager() {
  undoManager_ = LCommandManager::createUndoManager();
  undoManager_->setGroupsByEvent(false);
  undoManager_->setLevelsOfUndo(kLevelsOfUndo);
  commandManager_ = std::make_unique<LCommandManager>(*this, *undoManager_);
}

Result<void> LDocument::prepareSupportFolders() {
  // A new package was made bare by the first step; both kinds get every folder and the
  // registered support files here.
  if (auto updated = package_.updateExistingFileAndSupportFolders(); !updated) {
    return fileOpenError(updated.error().localizedDescription());
  }
  LDocumentPackage::cleanUpExtraneousFilesForDocumentPath(package_.absoluteURL());
  if (!package_.verifyPackagePermissionsReturningError()) {
    if (auto fixed = package_.fixPackagePermissionsReturningError(); !fixed) {
      return fileOpenError(fixed.error().localizedDescription());
    }
  }
  const Path support = ApplicationPaths::supportFolder();
  std::error_code ec;
  if (fs::is_directory(support, ec)) {
    (void)LDocumentPackage::fixApplicationSupportSubfolderPermissions(support);
  }
  return {};
}

Result<void> LDocument::checkStoreVersion() {
  if (newFile_) return {};
  const Path store = package_.dataBasePath();
  if (!LDocumentPackage::dataBaseFileExistsInPackage(package_.absoluteURL())) {
    return fileOpenError("The package holds no ledger store (\u201cdata\u201d).");
  }
  auto version = DataBase::getMigrationRequired(store);
  if (!version) {
    repairDocumentAtURL();
    version = DataBase::getMigrationRequired(store);
    if (!version) return fileOpenError(version.error().localizedDescription());
  }
  // Migrating an older store (backed up first) plugs in here once a migration path exists.
  if (version->supportedModel) return {};
  std::string information =
      stringWithFormat(kUnsupportedModelInformation, kApplicationName, LEDGEON_VERSION);
  const auto& metadata = version->metadata;
  const std::string lastOpened = metadataValue(metadata, kLastOpenedTimestampKey);
  if (!lastOpened.empty()) {
    information = stringWithFormat(
        "%@\n\n%@", information,
        stringWithFormat(kLastOpenedByInformation, package_.documentName(), lastOpened,
                         metadataValue(metadata, kLastOpenedApplicationNameKey),
                         metadataValue(metadata, kLastOpenedApplicationVersionKey),
                         metadataValue(metadata, kLastOpenedApplicationBuildKey)));
  }
  Error error = fileOpenError(information);
  error.userInfo["modelVersion"] = version->modelVersion;
  error.userInfo["lastOpenedTimestamp"] = lastOpened;
  return error;
}

Result<void> LDocument::openDataBase() {
  const Path store = package_.dataBasePath();
  auto opened = DataBase::initWithFileURL(store, newFile_);
  if (!opened && !newFile_) {
    repairDocumentAtURL();
    opened = DataBase::initWithFileURL(store, false);
    openEvent_.repaired = static_cast<bool>(opened);
  }
  if (!opened) return fileOpenError(opened.error().localizedDescription());
  dataBase_ = std::move(opened).value();
  ledgerQueries_ = std::make_unique<LedgerQueries>(*dataBase_);
  documents_internal::addOpenDataBase(dataBase_.get());
  try {
    dataBase_->setStoreMetadataValue(kLastOpenedTimestampKey, Clock::now().description());
    dataBase_->setStoreMetadataValue(kLastOpenedApplicationNameKey, kApplicationName);
    dataBase_->setStoreMetadataValue(kLastOpenedApplicationVersionKey, LEDGEON_VERSION);
    dataBase_->setStoreMetadataValue(kLastOpenedApplicationBuildKey, LEDGEON_VERSION);
  } catch (const std::exception& e) {
    return fileOpenError(std::string("The store cannot be written: ") + e.what());
  }
  NotificationCenter& center = dataBase_->notificationCenter();
  const void* sender = dataBase_.get();
  observers_.emplace_back(
      center, kLDataBaseChanging,
      [this](const Notification&) {
        for (const std::string& className : dataBase_->modifiedEntityTypes()) {
          clearCacheForClass(className);
        }
      },
      sender);
  observers_.emplace_back(
      center, kLDataBaseChanged,
      [this](const Notification&) { validDatabaseChangeForBackup_ = true; }, sender);
  return {};
}

void LDocument::settleCloudEnvironment() {
  const int64_t application =
      Services::shared().preferences().integerForKey(kCloudEnvironmentTypeKey);
  const Value recorded = dataBase_->valueForDocumentPropertyNamed(kCloudEnvironmentProperty);
  if (recorded.isNull()) {
    dataBase_->setValueForDocumentProperty(Value(application), kCloudEnvironmentProperty);
    return;
  }
  const std::string text = recorded.kind() == Value::Kind::String ? recorded.asString() : "";
  if (text == std::to_string(application)) return;
  int64_t documentType = -1;
  try {
    documentType = std::stoll(text);
  } catch (const std::exception&) {
  }
  Alert alert;
  alert.messageText = stringWithFormat(kCloudEnvironmentWarning, package_.documentName(),
                                       cloudEnvironmentName(documentType));
  alert.informativeText = stringWithFormat(kCloudEnvironmentInformation, kApplicationName,
                                           cloudEnvironmentName(application));
  alert.buttons = {"OK"};
  (void)Services::shared().userInterface().runAlert(alert);
}

void LDocument::settleCountryFeatures() {
  Preferences& preferences = Services::shared().preferences();
  for (const char* key : {kAllowUSFeaturesKey, kAllowCanadaFeaturesKey}) {
    const Value recorded = dataBase_->valueForDocumentPropertyNamed(key);
    const bool preferred = preferences.boolForKey(key);
    if (recorded.isNull()) {
      // A document made before the features were recorded takes the user's choice.
      dataBase_->setValueForDocumentProperty(Value(preferred ? 1 : 0), key);
    } else if (recorded.kind() == Value::Kind::String && recorded.asString() == "1" && !preferred) {
      // The document uses the features: the program must offer them while it is open.
      preferences.setObject(key, true);
    }
  }
}

Result<void> LDocument::populate() {
  if (newFile_) {
    populateNewDocument();
    if (auto committed = dataBase_->commit(); !committed) {
      return fileOpenError(committed.error().localizedDescription());
    }
  }
  // For a new document this only records the revision of the one-time fixes: it needs none.
  populateExistingDocument();
  if (dataBase_->hasChanges()) {
    if (auto committed = dataBase_->commit(); !committed) {
      return fileOpenError(committed.error().localizedDescription());
    }
  }
  const Value documentId = dataBase_->valueForDocumentPropertyNamed(kClientDocumentIdProperty);
  clientDocumentId_ = documentId.kind() == Value::Kind::String ? documentId.asString() : "";
  // What opening writes is housekeeping, not a change of the user's worth a backup.
  validDatabaseChangeForBackup_ = false;
  edited_ = false;
  return {};
}

void LDocument::scheduleFinishInit() {
  // The rest of the set-up waits until whoever opened the document has had its turn; without a
  // main run loop on this thread (a tool, a test) it runs at once.
  RunLoop* loop = RunLoop::main();
  if (!loop || !loop->isOwnerThread()) {
    finishInit();
    return;
  }
  std::weak_ptr<LDocument> weak = weak_from_this();
  loop->performAfterDelay(
      [weak] {
        if (auto document = weak.lock()) document->finishInit();
      },
      0, this);
}

void LDocument::finishInit() {
  if (closing_) return;
  initFinished_ = true;
  LLog("Opened %@ (%@ objects loaded)", package_.documentFullPath(),
       dataBase_->registeredObjectCount());
}

void LDocument::repairDocumentAtURL() {
  LLog("Repairing %@", package_.documentFullPath());
  LDocumentPackage::cleanUpExtraneousFilesForDocumentPath(package_.absoluteURL());
  (void)package_.fixPackagePermissionsReturningError();
}

void LDocument::abandonOpen() {
  observers_.clear();
  commandManager_.reset();
  undoManager_.reset();
  if (dataBase_) {
    documents_internal::removeOpenDataBase(dataBase_.get());
    dataBase_->close();
    dataBase_.reset();
  }
  package_.unlock();
  if (createdPackage_) {
    std::error_code ec;
    fs::remove_all(url_, ec);
  }
  closing_ = closed_ = true;
}

Error LDocument::fileOpenError(const std::string& reason) const {
  const std::string message = stringWithFormat(kCouldNotBeOpened, package_.documentName());
  Error error = Error::make(kCocoaErrorDomain, kFileReadUnknownError, message + " " + reason);
  error.userInfo[kFilePathErrorKey] = package_.documentFullPath();
  error.userInfo["applicationIdentifier"] = kApplicationIdentifier;
  error.userInfo["applicationName"] = kApplicationName;
  error.userInfo["applicationVersion"] = LEDGEON_VERSION;
  return error;
}

}  // namespace ledgeon
