#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "Documents/DocumentLocking.h"
#include "Documents/LDocumentPackage.h"
#include "Platform/Services.h"
#include "Subcommand.h"

namespace ledgeon::cli {

namespace {

namespace fs = std::filesystem;

struct BackupOptions {
  std::string document;
  std::string to;
  std::string note;
  std::string backup;
  std::string destination;
  bool json = false;
};

const char* reasonName(BackupReason reason) {
  switch (reason) {
    case BackupReason::kManual:
      return "manual";
    case BackupReason::kAutomatic:
      return "automatic";
    case BackupReason::kPreUpdate:
      return "pre-update";
  }
  return "other";
}

nlohmann::json infoJson(const fs::path& path, const LBackupInfo& info) {
  return {{"path", path.string()},
          {"dateCreated", info.dateCreated.description()},
          {"note", info.note},
          {"originalFilePath", info.originalFilePath},
          {"reason", static_cast<int64_t>(info.reason)},
          {"reasonName", reasonName(info.reason)},
          {"UID", info.UID}};
}

void backup(const BackupOptions& options) {
  LDocumentPackage package(options.document);
  std::error_code ec;
  if (!fs::is_directory(package.absoluteURL(), ec)) {
    throw CommandFailure(package.documentFullPath() + ": not a document package");
  }
  // Copy a package nobody is writing: take its lock for the time of the backup.
  if (auto locked = lockDocumentPackage(package, Services::shared().userInterface()); !locked) {
    throw CommandFailure(locked.error().isUserCancelled()
                             ? "The document \u201c" + package.documentName() +
                                   "\u201d is open elsewhere; not backed up."
                             : locked.error().localizedDescription());
  }
  const fs::path folder =
      options.to.empty() ? LDocumentPackage::defaultBackupsDirectory() : fs::path(options.to);
  const fs::path target =
      LDocumentPackage::suggestedBackupPathForPackage(package.absoluteURL(), folder);
  auto made = LDocumentPackage::backupPackage(package.absoluteURL(), target,
                                              {.originalFilePath = package.documentFullPath(),
                                               .note = options.note,
                                               .reason = BackupReason::kManual,
                                               .UID = ""});
  package.unlock();
  if (!made) throw CommandFailure(made.error().localizedDescription());
  auto info = LDocumentPackage::backupInfoForBackupPath(target);
  if (!info) throw CommandFailure(info.error().localizedDescription());
  if (options.json) {
    std::cout << infoJson(target, *info).dump(2) << '\n';
  } else {
    std::cout << "Backed up " << package.documentFullPath() << " to " << target.string() << '\n';
  }
}

void listBackups(const BackupOptions& options) {
  std::error_code ec;
  if (!fs::is_directory(options.to, ec)) throw CommandFailure(options.to + ": not a folder");
  std::vector<fs::path> paths;
  for (const auto& entry : fs::directory_iterator(options.to, ec)) {
    if (entry.path().extension() == std::string(".") + kBackupExtension) {
      paths.push_back(entry.path());
    }
  }
  std::sort(paths.begin(), paths.end());
  nlohmann::json list = nlohmann::json::array();
  for (const auto& path : paths) {
    auto info = LDocumentPackage::backupInfoForBackupPath(path);
    if (options.json) {
      list.push_back(info ? infoJson(path, *info)
                          : nlohmann::json{{"path", path.string()},
                                           {"error", info.error().localizedDescription()}});
      continue;
    }
    std::cout << path.filename().string() << '\n';
    if (!info) {
      std::cout << "  unreadable: " << info.error().localizedDescription() << '\n';
      continue;
    }
    std::cout << "  created:  " << info->dateCreated.description() << '\n'
              << "  reason:   " << reasonName(info->reason) << '\n'
              << "  original: " << info->originalFilePath << '\n';
    if (!info->note.empty()) std::cout << "  note:     " << info->note << '\n';
    if (!info->UID.empty()) std::cout << "  UID:      " << info->UID << '\n';
  }
  if (options.json) std::cout << list.dump(2) << '\n';
}

void restore(const BackupOptions& options) {
  if (auto restored = LDocumentPackage::restoreBackup(options.backup, options.destination);
      !restored) {
    throw CommandFailure(restored.error().localizedDescription());
  }
  std::cout << "Restored " << options.backup << " to " << options.destination << '\n';
}

const SubcommandRegistration registration(310, [](CLI::App& app) {
  auto options = std::make_shared<BackupOptions>();
  auto* make = app.add_subcommand("backup", "Back a document up into a zip archive");
  make->add_option("DOC", options->document, "Document package")->required();
  make->add_option("--to", options->to, "Folder for the backup (default: the Backups folder)");
  make->add_option("--note", options->note, "Note stored with the backup");
  make->add_flag("--json", options->json, "Print the backup's information as JSON");
  make->callback([options] { backup(*options); });

  auto* list = app.add_subcommand("backups", "List the backups in a folder with their information");
  list->add_option("DIR", options->to, "Folder of backups")->required();
  list->add_flag("--json", options->json, "Print JSON");
  list->callback([options] { listBackups(*options); });

  auto* restoring = app.add_subcommand("restore", "Unpack a backup into a new document package");
  restoring->add_option("BACKUP", options->backup, "Backup archive")->required();
  restoring->add_option("DEST", options->destination, "Path of the restored package")->required();
  restoring->callback([options] { restore(*options); });
});

}  // namespace

}  // namespace ledgeon::cli
