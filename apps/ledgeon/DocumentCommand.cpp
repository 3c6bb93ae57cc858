// ledgeon new DOC and ledgeon info DOC: create a document, and open one to say what it holds.
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "DataBase/DataBase.h"
#include "Documents/LDocument.h"
#include "Documents/LDocumentStrings.h"
#include "OpenLedger.h"
#include "Subcommand.h"

namespace ledgeon::cli {

namespace {

namespace fs = std::filesystem;

struct DocumentOptions {
  std::string document;
  bool json = false;
  bool hold = false;
  std::vector<std::string> answers;
};

void newDocument(const DocumentOptions& options) {
  size_t accountTypes = 0;
  size_t categories = 0;
  std::string path;
  std::string id;
  {
    OpenLedger document(options.document, options.answers, true);
    DataBase& db = document->dataBase();
    accountTypes = db.countForInstancesOfClass("AccountType");
    categories = db.countForInstancesOfClass("CategoryTag");
    path = document->package().documentFullPath();
    id = document->clientDocumentId();
  }
  if (options.json) {
    std::cout << nlohmann::json{{"package", path},
                                {"clientDocumentId", id},
                                {"accountTypes", accountTypes},
                                {"categories", categories}}
                     .dump(2)
              << '\n';
    return;
  }
  std::cout << "Created " << path << " with " << accountTypes << " account types and " << categories
            << " categories\n";
}

// Who else has the document open, read from its lock records before opening it.
nlohmann::json lockHolders(const LDocumentPackage& package) {
  const LFileLockInfo current = LFileLockInfo::currentProcess();
  nlohmann::json holders = nlohmann::json::array();
  for (LFileLockInfo& lock : package.allLocks()) {
    if (lock.currentOwner(current) == LockOwner::kStale) continue;
    holders.push_back({{"application", lock.bundleName},
                       {"pid", lock.pidNumber},
                       {"userName", lock.userName},
                       {"hostName", lock.hostName},
                       {"since", lock.createdAt.description()}});
  }
  return holders;
}

// The newest backup of the document in the default backups folder, by its id or its path.
nlohmann::json lastBackup(const LDocument& document, const std::string& path) {
  std::optional<LBackupInfo> newest;
  fs::path newestPath;
  std::error_code ec;
  const fs::path folder = LDocumentPackage::defaultBackupsDirectory();
  for (const auto& entry : fs::directory_iterator(folder, ec)) {
    if (entry.path().extension() != std::string(".") + kBackupExtension) continue;
    auto info = LDocumentPackage::backupInfoForBackupPath(entry.path());
    if (!info) continue;
    const bool ours = (!info->UID.empty() && info->UID == document.clientDocumentId()) ||
                      info->originalFilePath == path;
    if (ours && (!newest || newest->dateCreated < info->dateCreated)) {
      newest = *info;
      newestPath = entry.path();
    }
  }
  if (!newest) return nullptr;
  return {{"path", newestPath.string()}, {"dateCreated", newest->dateCreated.description()}};
}

void printInfo(const nlohmann::json& info) {
  std::cout << "Package:        " << info["package"].get<std::string>() << '\n'
            << "Model version:  " << info["modelVersion"].get<std::string>() << '\n'
            << "Document id:    " << info["clientDocumentId"].get<std::string>() << '\n';
  for (const auto& holder : info["lockHolders"]) {
    std::cout << "Also open in:   " << holder["application"].get<std::string>() << " (PID "
              << holder["pid"].get<int64_t>() << ") by " << holder["userName"].get<std::string>()
              << " on " << holder["hostName"].get<std::string>() << '\n';
  }
  if (info["lastBackup"].is_null()) {
    std::cout << "Last backup:    none\n";
  } else {
    std::cout << "Last backup:    " << info["lastBackup"]["dateCreated"].get<std::string>() << "  "
              << info["lastBackup"]["path"].get<std::string>() << '\n';
  }
  if (info["securityDataUpdateDue"].get<bool>()) {
    std::cout << "Security prices: due for an update (investments were imported)\n";
  }
  std::cout << "Objects:\n";
  for (const auto& [entity, count] : info["counts"].items()) {
    std::cout << "  " << entity << ": " << count.get<size_t>() << '\n';
  }
}

void documentInfo(const DocumentOptions& options) {
  const nlohmann::json holders = lockHolders(LDocumentPackage(options.document));
  OpenLedger document(options.document, options.answers);
  DataBase& db = document->dataBase();
  const std::string path = document->package().documentFullPath();
  nlohmann::json counts = nlohmann::json::object();
  for (const auto& [entity, count] : db.storedObjectCounts()) {
    counts[entity] = count.total - count.deleted;
  }
  const auto metadata = db.storeMetadata();
  const auto version = metadata.find("modelVersion");
  const nlohmann::json info = {{"package", path},
                               {"modelVersion", version == metadata.end() ? "" : version->second},
                               {"clientDocumentId", document->clientDocumentId()},
                               {"lockHolders", holders},
                               {"counts", counts},
                               {"lastBackup", lastBackup(*document, path)},
                               {"securityDataUpdateDue", document->securityDataUpdateDue()}};
  if (options.json) {
    std::cout << info.dump(2) << std::endl;
  } else {
    printInfo(info);
    std::cout << std::flush;
  }
  if (options.hold) {
    for (std::string line; std::getline(std::cin, line);) {
    }
  }
}

const SubcommandRegistration registration(290, [](CLI::App& app) {
  auto options = std::make_shared<DocumentOptions>();
  auto* create = app.add_subcommand(
      "new", "Create a document with its account types and household categories");
  create->add_option("DOC", options->document, "Path of the new document package")->required();
  create->add_flag("--json", options->json, "Print JSON");
  create->callback([options] { newDocument(*options); });

  auto* info = app.add_subcommand(
      "info", "Open a document and show its package, lock holders, counts and last backup");
  info->add_option("DOC", options->document, "Document package")->required();
  info->add_flag("--json", options->json, "Print JSON");
  info->add_flag("--hold", options->hold, "Keep the document open until stdin ends");
  info->add_option("--answer", options->answers,
                   "Button to press if the document is open elsewhere (repeatable): "
                   "\"Try Again\", \"Open Anyway\" or \"Cancel\"");
  info->callback([options] { documentInfo(*options); });
});

}  // namespace

}  // namespace ledgeon::cli
