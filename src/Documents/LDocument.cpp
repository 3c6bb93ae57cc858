// The open document's lifetime, its store transactions and its caches.
#include "Documents/LDocument.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "Commands/LCommandManager.h"
#include "Commands/UndoManager.h"
#include "DataBase/DataBase.h"
#include "DataBase/DataBaseNotifications.h"
#include "Documents/LDocumentStrings.h"
#include "Documents/LedgerQueries.h"
#include "Documents/internal/OpenDataBases.h"
#include "LObjects/Model.h"
#include "Platform/Preferences.h"
#include "Utilities/Log.h"

namespace ledgeon {

namespace {

std::vector<DataBase*>& openDataBaseList() {
  static std::vector<DataBase*> list;
  return list;
}

}  // namespace

LDocument::LDocument(Path url, const OpenOptions& options)
    : url_(std::move(url)),
      package_(url_),
      newFile_(options.newFile),
      deleteParentDirectoryWhenClosed_(options.deleteParentDirectoryWhenClosed) {}

LDocument::~LDocument() {
  // A document dropped without close() still gives up its lock and its store.
  if (!closing_) close();
}

std::string LDocument::displayName() const {
  return std::filesystem::path(package_.documentName()).stem().string();
}

DataBase& LDocument::dataBase() {
  if (!dataBase_) throw std::logic_error("The document " + package_.documentName() + " is closed");
  return *dataBase_;
}

LCommandManager* LDocument::commandManager() { return closing_ ? nullptr : commandManager_.get(); }

void LDocument::beginTransaction() { ++transactionDepth_; }

Result<void> LDocument::endTransaction() {
  if (transactionDepth_ == 0) {
    throw std::logic_error("endTransaction without a matching beginTransaction");
  }
  if (--transactionDepth_ > 0) return {};
  return dataBase().commit();
}

void LDocument::commandDirtiedDocument() {
  edited_ = true;
  validDatabaseChangeForBackup_ = true;
}

LedgerQueries& LDocument::ledgerQueries() {
  if (!ledgerQueries_) {
    throw std::logic_error("The document " + package_.documentName() + " is closed");
  }
  return *ledgerQueries_;
}

void LDocument::clearCacheForClass(const std::string& className) {
  if (ledgerQueries_) ledgerQueries_->clearCacheForClass(className);
}

std::vector<DataBase*> LDocument::openDataBases() { return openDataBaseList(); }

void LDocument::registerPreferenceDefaults(Preferences& preferences) {
  preferences.registerDefaults({{kAutomateBackupDataKey, true},
                                {kAskToBackupDataKey, true},
                                {kMaximumAutomaticBackupsKey, 10},
                                {kAllowUSFeaturesKey, true},
                                {kAllowCanadaFeaturesKey, false},
                                {kCloudEnvironmentTypeKey, 0}});
}

std::string LDocument::cloudEnvironmentName(int64_t type) {
  static const std::array<const char*, 7> kNames = {
      "Production", "QA", "Stage", "Build", "Custom", "Backdoor", "Pre-Production"};
  if (type < 0 || type >= static_cast<int64_t>(kNames.size())) return "Unknown";
  return kNames[static_cast<size_t>(type)];
}

// Kept here so that open (which adds) and close (which removes) share the list.
namespace documents_internal {

void addOpenDataBase(DataBase* dataBase) { openDataBaseList().push_back(dataBase); }

void removeOpenDataBase(DataBase* dataBase) {
  auto& list = openDataBaseList();
  list.erase(std::remove(list.begin(), list.end(), dataBase), list.end());
}

}  // namespace documents_internal

}  // namespace ledgeon
