#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Documents/DocumentLocking.h"
#include "Documents/LDocumentPackage.h"
#include "Subcommand.h"
#include "TerminalUserInterface.h"

namespace ledgeon::cli {

namespace {

struct PackageOptions {
  std::string document;
  bool hold = false;
  bool json = false;
  std::vector<std::string> answers;
};

void createPackage(const PackageOptions& options) {
  LDocumentPackage package(options.document);
  if (auto created = package.createNewFileWithSupportFoldersFor(); !created) {
    throw CommandFailure(created.error().localizedDescription());
  }
  std::cout << "Created document package " << package.documentFullPath() << '\n';
}

// Takes the lock the way opening a document does; with --hold keeps it until stdin ends, so that
// another process can be seen to collide with it.
void lockPackage(const PackageOptions& options) {
  LDocumentPackage package(options.document);
  std::error_code ec;
  if (!std::filesystem::is_directory(package.absoluteURL(), ec)) {
    throw CommandFailure(package.documentFullPath() + ": not a document package");
  }
  auto& terminal = TerminalUserInterface::shared();
  for (const auto& answer : options.answers) terminal.addPresetAnswer(answer);
  auto outcome = lockDocumentPackage(package, terminal);
  if (!outcome) {
    if (outcome.error().isUserCancelled()) {
      throw CommandFailure("The document \u201c" + package.documentName() +
                           "\u201d was not opened: it is locked.");
    }
    throw CommandFailure(outcome.error().localizedDescription());
  }
  std::cout << (*outcome == LockOutcome::kOpenedAnyway ? "Locked anyway " : "Locked ")
            << package.documentFullPath() << " (lock " << package.lockId() << ")" << std::endl;
  if (options.hold) {
    for (std::string line; std::getline(std::cin, line);) {
    }
  }
  package.unlock();
  std::cout << "Unlocked " << package.documentFullPath() << '\n';
}

void listLocks(const PackageOptions& options) {
  LDocumentPackage package(options.document);
  const LFileLockInfo current = LFileLockInfo::currentProcess();
  nlohmann::json locks = nlohmann::json::array();
  for (LFileLockInfo& lock : package.allLocks()) {
    lock.currentOwner(current);
    const bool stale = lock.owner == LockOwner::kStale;
    if (!options.json) {
      std::cout << lock.lockId << "  " << lock.bundleName << " (PID " << lock.pidNumber << ") by "
                << lock.userName << " on " << computerDescription(lock) << " since "
                << lock.createdAt.description() << (stale ? "  [stale]" : "") << '\n';
      continue;
    }
    locks.push_back({{"lockId", lock.lockId},
                     {"pid", lock.pidNumber},
                     {"uid", lock.uidNumber},
                     {"userName", lock.userName},
                     {"fullUserName", lock.fullUserName},
                     {"hostName", lock.hostName},
                     {"application", lock.bundleName},
                     {"createdAt", lock.createdAt.description()},
                     {"stale", stale}});
  }
  if (options.json) std::cout << locks.dump(2) << '\n';
}

// What opening does before it reads the store: clean-up, then permissions checked and repaired.
void repairPackage(const PackageOptions& options) {
  LDocumentPackage package(options.document);
  std::error_code ec;
  if (!std::filesystem::is_directory(package.absoluteURL(), ec)) {
    throw CommandFailure(package.documentFullPath() + ": not a document package");
  }
  LDocumentPackage::cleanUpExtraneousFilesForDocumentPath(package.absoluteURL());
  if (auto updated = package.updateExistingFileAndSupportFolders(); !updated) {
    throw CommandFailure(updated.error().localizedDescription());
  }
  if (package.verifyPackagePermissionsReturningError()) {
    std::cout << "Permissions are fine\n";
    return;
  }
  if (auto fixed = package.fixPackagePermissionsReturningError(); !fixed) {
    throw CommandFailure(fixed.error().localizedDescription());
  }
  std::cout << "Permissions repaired\n";
}

const SubcommandRegistration registration(300, [](CLI::App& app) {
  auto* group = app.add_subcommand("package", "Work on a document package on disk");
  group->require_subcommand(1);
  auto options = std::make_shared<PackageOptions>();

  auto* create = group->add_subcommand("create", "Create an empty document package");
  create->add_option("DOC", options->document, "Path of the new package")->required();
  create->callback([options] { createPackage(*options); });

  auto* lock = group->add_subcommand("lock", "Take the package's lock as opening would");
  lock->add_option("DOC", options->document, "Document package")->required();
  lock->add_flag("--hold", options->hold, "Keep the lock until stdin ends");
  lock->add_option("--answer", options->answers,
                   "Button to press if the document is locked (repeatable): "
                   "\"Try Again\", \"Open Anyway\" or \"Cancel\"");
  lock->callback([options] { lockPackage(*options); });

  auto* locks = group->add_subcommand("locks", "List the package's lock records");
  locks->add_option("DOC", options->document, "Document package")->required();
  locks->add_flag("--json", options->json, "Print JSON");
  locks->callback([options] { listLocks(*options); });

  auto* repair = group->add_subcommand(
      "repair", "Remove left-over files and repair the package's permissions");
  repair->add_option("DOC", options->document, "Document package")->required();
  repair->callback([options] { repairPackage(*options); });
});

}  // namespace

}  // namespace ledgeon::cli
