#include <fstream>
#include <map>
#include <random>

#include <gtest/gtest.h>
#include <zip.h>

#include "Documents/LDocumentPackage.h"
#include "Utilities/Clock.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

namespace fs = std::filesystem;

void writeFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

std::string randomBytes(std::size_t size, unsigned seed) {
  std::mt19937 generator(seed);
  std::string bytes(size, '\0');
  for (auto& byte : bytes) byte = static_cast<char>(generator() & 0xFF);
  return bytes;
}

// A package with a store, nested attachments, binary and empty files and an empty folder.
fs::path makePackage(const fs::path& folder, const std::string& name = "Home.ledgeon") {
  LDocumentPackage package(folder / name);
  EXPECT_TRUE(package.createNewFileWithSupportFoldersFor());
  writeFile(package.dataBasePath(), randomBytes(300000, 1));
  writeFile(package.attachmentsFolderPath() / "2024" / "receipt one.pdf", randomBytes(5000, 2));
  writeFile(package.attachmentsFolderPath() / "2024" / "empty.txt", "");
  writeFile(package.reportFolderPath() / "Spending.report", std::string(20000, 'a'));
  writeFile(package.absoluteURL() / "locks" / "SOMEONE.plist", "a lock of the original");
  return package.absoluteURL();
}

// Relative path -> content ("/" for folders), lock records left out.
std::map<std::string, std::string> contents(const fs::path& root) {
  std::map<std::string, std::string> result;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string relative = entry.path().lexically_relative(root).generic_string();
    if (relative.rfind("locks/", 0) == 0) continue;
    result[relative] = entry.is_directory() ? "/" : testing::readFile(entry.path());
  }
  return result;
}

TEST(BackupTest, RestoresByteIdenticallyAndUnzipAcceptsIt) {
  testing::TempFolder temp;
  const fs::path package = makePackage(temp.path());
  const fs::path backup = temp / "out" / "Home 2024-03-01.ledgeonbackup";
  ScopedFixedClock clock(Date::fromUnixTime(1709312700.5));
  ASSERT_TRUE(LDocumentPackage::backupPackage(package, backup,
                                              {.originalFilePath = package.string(),
                                               .note = "before import",
                                               .reason = BackupReason::kManual,
                                               .UID = "DOC-1"}));

  auto tested = testing::runProgram({"unzip", "-t", backup.string()});
  EXPECT_EQ(tested.exitStatus, 0) << tested.out << tested.err;
  EXPECT_NE(tested.out.find("No errors detected"), std::string::npos) << tested.out;
  auto printed = testing::runProgram({"unzip", "-p", backup.string(), "*/LedgeonBackupInfo.plist"});
  EXPECT_EQ(printed.exitStatus, 0);
  EXPECT_EQ(printed.out.rfind("bplist00", 0), 0u);

  auto info = LDocumentPackage::backupInfoForBackupPath(backup);
  ASSERT_TRUE(info) << info.error().description();
  EXPECT_EQ(info->dateCreated, Date::fromUnixTime(1709312700.5));
  EXPECT_EQ(info->note, "before import");
  EXPECT_EQ(info->originalFilePath, package.string());
  EXPECT_EQ(info->reason, BackupReason::kManual);
  EXPECT_EQ(info->UID, "DOC-1");

  const fs::path restored = temp / "restored" / "Copy.ledgeon";
  ASSERT_TRUE(LDocumentPackage::restoreBackup(backup, restored));
  EXPECT_EQ(contents(restored), contents(package));
  EXPECT_TRUE(fs::is_directory(restored / "locks"));
  EXPECT_TRUE(fs::is_empty(restored / "locks"));
  EXPECT_FALSE(fs::exists(restored / "LedgeonBackupInfo.plist"));

  // Neither a backup nor a restore overwrites what is there.
  EXPECT_FALSE(LDocumentPackage::backupPackage(package, backup, {}));
  EXPECT_FALSE(LDocumentPackage::restoreBackup(backup, restored));
}

TEST(BackupTest, DamagedOrHostileArchivesAreRefusedWithoutLeftOvers) {
  testing::TempFolder temp;
  writeFile(temp / "junk.ledgeonbackup", "PK\x03\x04 not really a zip");
  EXPECT_FALSE(LDocumentPackage::backupInfoForBackupPath(temp / "junk.ledgeonbackup"));
  EXPECT_FALSE(LDocumentPackage::restoreBackup(temp / "junk.ledgeonbackup", temp / "A"));
  EXPECT_FALSE(LDocumentPackage::restoreBackup(temp / "missing.ledgeonbackup", temp / "A"));

  const fs::path hostile = temp / "hostile.ledgeonbackup";
  int code = 0;
  zip_t* archive = zip_open(hostile.c_str(), ZIP_CREATE, &code);
  ASSERT_NE(archive, nullptr);
  const char text[] = "escaped";
  zip_file_add(archive, "Doc.ledgeon/data", zip_source_buffer(archive, text, 7, 0), 0);
  zip_file_add(archive, "Doc.ledgeon/../../escaped", zip_source_buffer(archive, text, 7, 0), 0);
  ASSERT_EQ(zip_close(archive), 0);
  auto restored = LDocumentPackage::restoreBackup(hostile, temp / "out" / "Doc.ledgeon");
  ASSERT_FALSE(restored);
  EXPECT_NE(restored.error().localizedDescription().find("Unsafe member"), std::string::npos);
  EXPECT_FALSE(fs::exists(temp / "escaped"));
  EXPECT_FALSE(fs::exists(temp / "out" / "Doc.ledgeon"));
  EXPECT_TRUE(fs::is_empty(temp / "out"));
  EXPECT_FALSE(LDocumentPackage::backupInfoForBackupPath(hostile));
}

TEST(BackupTest, NamesOfManualAndAutomaticBackups) {
  testing::TempFolder temp;
  const fs::path package = makePackage(temp.path());
  const fs::path folder = temp / "Backups";
  fs::create_directories(folder);
  ScopedFixedClock clock(Date::fromUnixTime(1709312700));  // 2024-03-01 in New York

  const fs::path first = LDocumentPackage::suggestedBackupPathForPackage(package, folder);
  EXPECT_EQ(first, folder / "Home 2024-03-01.ledgeonbackup");
  ASSERT_TRUE(LDocumentPackage::backupPackage(package, first, {}));
  const fs::path second = LDocumentPackage::suggestedBackupPathForPackage(package, folder);
  EXPECT_EQ(second, folder / "Home 2024-03-01 (1).ledgeonbackup");
  writeFile(second, "taken");
  EXPECT_EQ(LDocumentPackage::suggestedBackupPathForPackage(package, folder),
            folder / "Home 2024-03-01 (2).ledgeonbackup");

  EXPECT_EQ(LDocumentPackage::backupPath(folder, "Home.ledgeon", BackupReason::kAutomatic),
            folder / "BACKUP (Automatic) - Home.ledgeonbackup");
  EXPECT_EQ(LDocumentPackage::backupPath(folder, "Home.ledgeon", BackupReason::kPreUpdate),
            folder / "BACKUP (Pre-Update) - Home.ledgeonbackup");
  EXPECT_EQ(LDocumentPackage::backupPath(folder, "Home.ledgeon", BackupReason::kManual),
            folder / "Home.ledgeonbackup");
  writeFile(folder / "BACKUP (Automatic) - Home.ledgeonbackup", "taken");
  EXPECT_EQ(LDocumentPackage::backupPath(folder, "Home.ledgeon", BackupReason::kAutomatic),
            folder / "BACKUP (Automatic) - Home (1).ledgeonbackup");
  EXPECT_EQ(LDocumentPackage::defaultBackupsDirectory().filename(), "Backups");
}

TEST(BackupTest, CountingAndRemovingTheOldestPerPrefixUIDAndReason) {
  testing::TempFolder temp;
  const fs::path package = makePackage(temp.path());
  const fs::path folder = temp / "Backups";
  const std::string prefix = LDocumentPackage::backupPrefixForReason(BackupReason::kAutomatic);
  // Five automatic backups of DOC-1 an hour apart (made out of order), and some that must not
  // be counted with them.
  const int hours[] = {3, 1, 4, 0, 2};
  for (int hour : hours) {
    ScopedFixedClock clock(Date::fromUnixTime(1709312700.0 + 3600.0 * hour));
    const fs::path path =
        LDocumentPackage::backupPath(folder, "Home.ledgeon", BackupReason::kAutomatic);
    ASSERT_TRUE(LDocumentPackage::backupPackage(package, path,
                                                {.originalFilePath = "",
                                                 .note = std::to_string(hour),
                                                 .reason = BackupReason::kAutomatic,
                                                 .UID = "DOC-1"}));
  }
  ASSERT_TRUE(LDocumentPackage::backupPackage(
      package, LDocumentPackage::backupPath(folder, "Home.ledgeon", BackupReason::kAutomatic),
      {.originalFilePath = "", .note = "", .reason = BackupReason::kAutomatic, .UID = "DOC-2"}));
  ASSERT_TRUE(LDocumentPackage::backupPackage(
      package, LDocumentPackage::backupPath(folder, "Home.ledgeon", BackupReason::kPreUpdate),
      {.originalFilePath = "", .note = "", .reason = BackupReason::kPreUpdate, .UID = "DOC-1"}));
  ASSERT_TRUE(LDocumentPackage::backupPackage(
      package, folder / "Home manual.ledgeonbackup",
      {.originalFilePath = "", .note = "", .reason = BackupReason::kAutomatic, .UID = "DOC-1"}));
  writeFile(folder / "notes.txt", "not a backup");
  writeFile(folder / "broken.ledgeonbackup", "not a zip");

  EXPECT_EQ(LDocumentPackage::numberOfBackupsInDirectory(folder), 9u);
  EXPECT_EQ(LDocumentPackage::numberOfBackupsInDirectory(folder, prefix, "DOC-1",
                                                         BackupReason::kAutomatic),
            5u);
  EXPECT_EQ(
      LDocumentPackage::numberOfBackupsInDirectory(folder, "", "DOC-1", BackupReason::kAutomatic),
      6u);

  EXPECT_EQ(LDocumentPackage::remove(3, folder, prefix, "DOC-1", BackupReason::kAutomatic), 3u);
  std::vector<std::string> kept;
  for (const auto& entry : fs::directory_iterator(folder)) {
    auto info = LDocumentPackage::backupInfoForBackupPath(entry.path());
    if (info && info->UID == "DOC-1" && info->reason == BackupReason::kAutomatic &&
        entry.path().filename().string().rfind(prefix, 0) == 0) {
      kept.push_back(info->note);
    }
  }
  std::sort(kept.begin(), kept.end());
  EXPECT_EQ(kept, (std::vector<std::string>{"3", "4"}));
  EXPECT_EQ(LDocumentPackage::numberOfBackupsInDirectory(folder), 6u);
}

TEST(BackupTest, CommandsBackUpListAndRestore) {
  testing::TempFolder home;
  const fs::path package = makePackage(home.path(), "Family.ledgeon");
  const std::string folder = (home / "bk").string();
  auto made =
      testing::runCli({"backup", package.string(), "--to", folder, "--note", "n1"}, home.path());
  ASSERT_EQ(made.exitStatus, 0) << made.err;
  made = testing::runCli({"backup", package.string(), "--to", folder, "--json"}, home.path());
  ASSERT_EQ(made.exitStatus, 0) << made.err;
  EXPECT_NE(made.out.find("(1).ledgeonbackup\""), std::string::npos) << made.out;

  auto listed = testing::runCli({"backups", folder, "--json"}, home.path());
  ASSERT_EQ(listed.exitStatus, 0) << listed.err;
  EXPECT_NE(listed.out.find("\"note\": \"n1\""), std::string::npos) << listed.out;
  EXPECT_NE(listed.out.find("\"reasonName\": \"manual\""), std::string::npos);
  EXPECT_NE(listed.out.find("\"originalFilePath\": \"" + package.string() + "\""),
            std::string::npos);

  fs::path first;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().string().find("(1)") == std::string::npos) first = entry.path();
  }
  const fs::path restored = home / "Restored.ledgeon";
  auto restoring = testing::runCli({"restore", first.string(), restored.string()}, home.path());
  ASSERT_EQ(restoring.exitStatus, 0) << restoring.err;
  EXPECT_EQ(contents(restored), contents(package));
  restoring = testing::runCli({"restore", first.string(), restored.string()}, home.path());
  EXPECT_EQ(restoring.exitStatus, 1);
  EXPECT_NE(restoring.err.find("already exists"), std::string::npos);
}

}  // namespace
}  // namespace ledgeon
