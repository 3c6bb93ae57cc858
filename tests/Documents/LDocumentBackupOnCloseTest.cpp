#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DataBase/DataBase.h"
#include "DocumentTestEnvironment.h"
#include "Documents/LDocument.h"
#include "Documents/LDocumentStrings.h"
#include "Utilities/Clock.h"

namespace ledgeon {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> backupsIn(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(folder, ec)) {
    if (entry.path().extension() == ".ledgeonbackup") found.push_back(entry.path());
  }
  return found;
}

struct CloseCase {
  const char* name;
  bool automate;
  bool ask;
  bool changed;
  bool sanitized;
  std::optional<ScriptedUserInterface::AlertAnswer> answer;  // set: the question must be asked
  bool expectBackup;
  bool expectAskAfter;
  bool expectChangeStillNoted;
};

TEST(LDocumentBackupOnCloseTest, PreferencesDecideWhetherToAskAndBackUp) {
  const std::string back = kBackUpButton, skip = kDontBackUpButton;
  const CloseCase cases[] = {
      {"automatic backups off", false, true, true, false, std::nullopt, false, true, true},
      {"silent backup", true, false, true, false, std::nullopt, true, false, false},
      {"asked, backs up", true, true, true, false, {{back, false}}, true, true, false},
      {"asked, declines", true, true, true, false, {{skip, false}}, false, true, false},
      {"asked, backs up, stop asking", true, true, true, false, {{back, true}}, true, false, false},
      // The box says "continue to back up": ticked, later closes back up silently even though
      // this one was declined.
      {"asked, declines, stop asking",
       true,
       true,
       true,
       false,
       {{skip, true}},
       false,
       false,
       false},
      {"nothing changed", true, true, false, false, std::nullopt, false, true, false},
      {"sanitized copy", true, false, true, true, std::nullopt, false, false, true},
  };
  for (const CloseCase& c : cases) {
    SCOPED_TRACE(c.name);
    DocumentTestEnvironment environment;
    environment.preferences().setObject(kAutomateBackupDataKey, c.automate);
    environment.preferences().setObject(kAskToBackupDataKey, c.ask);
    if (c.answer) environment.userInterface().addAlertAnswer(*c.answer);
    auto created = LDocument::createNewDocument(environment.path("Family.ledgeon"));
    ASSERT_TRUE(created);
    LDocument& document = **created;
    EXPECT_FALSE(document.validDatabaseChangeForBackup());  // populating is not a change
    if (c.changed) {
      ScopedStoreTransaction transaction(document);
      document.dataBase().createEntity("UserPayee", {{"name", Value("Grocer")}});
      ASSERT_TRUE(transaction.end());
    }
    document.setSanitized(c.sanitized);
    document.close();

    const auto& alerts = environment.userInterface().alertsShown();
    ASSERT_EQ(alerts.size(), c.answer ? 1u : 0u);
    if (c.answer) {
      EXPECT_EQ(alerts[0].messageText, "Do you want to back up?");
      EXPECT_EQ(alerts[0].buttons, (std::vector<std::string>{"Back Up", "Don\u2019t Back Up"}));
      EXPECT_EQ(alerts[0].suppressionTitle, "Don\u2019t ask me again but continue to back up");
    }
    const auto backups = backupsIn(LDocumentPackage::defaultBackupsDirectory());
    EXPECT_EQ(backups.size(), c.expectBackup ? 1u : 0u);
    EXPECT_EQ(document.closeEvent().backupMade, c.expectBackup);
    EXPECT_EQ(environment.preferences().boolForKey(kAskToBackupDataKey), c.expectAskAfter);
    EXPECT_EQ(document.validDatabaseChangeForBackup(), c.expectChangeStillNoted);
    if (c.expectBackup && backups.size() == 1) {
      EXPECT_EQ(backups[0].filename().string().rfind("BACKUP (Automatic) - Family", 0), 0u);
      auto info = LDocumentPackage::backupInfoForBackupPath(backups[0]);
      ASSERT_TRUE(info);
      EXPECT_EQ(info->reason, BackupReason::kAutomatic);
      EXPECT_EQ(info->UID, document.clientDocumentId());
      EXPECT_EQ(info->originalFilePath, environment.path("Family.ledgeon").string());
    }
  }
}

TEST(LDocumentBackupOnCloseTest, BackupRestoresTheClosedDocumentAndKeepsALimitedNumber) {
  DocumentTestEnvironment environment;
  environment.preferences().setObject(kAskToBackupDataKey, false);
  environment.preferences().setObject(kMaximumAutomaticBackupsKey, 2);
  const fs::path path = environment.path("Family.ledgeon");
  auto created = LDocument::createNewDocument(path);
  ASSERT_TRUE(created);
  (*created)->close();
  double now = 1709312700;
  for (const char* payee : {"Grocer", "Landlord", "Pharmacy"}) {
    ScopedFixedClock clock(Date::fromUnixTime(now += 3600));
    auto opened = LDocument::initWithContentsOfURL(path);
    ASSERT_TRUE(opened);
    ScopedStoreTransaction transaction(**opened);
    (*opened)->dataBase().createEntity("UserPayee", {{"name", Value(payee)}});
    ASSERT_TRUE(transaction.end());
    (*opened)->close();
  }
  const auto backups = backupsIn(LDocumentPackage::defaultBackupsDirectory());
  ASSERT_EQ(backups.size(), 2u);

  // The newest backup holds all three payees and opens as a document of its own.
  fs::path newest = backups[0];
  for (const fs::path& backup : backups) {
    auto a = LDocumentPackage::backupInfoForBackupPath(backup);
    auto b = LDocumentPackage::backupInfoForBackupPath(newest);
    ASSERT_TRUE(a && b);
    if (b->dateCreated < a->dateCreated) newest = backup;
  }
  const fs::path restored = environment.path("Restored.ledgeon");
  ASSERT_TRUE(LDocumentPackage::restoreBackup(newest, restored));
  auto reopened = LDocument::initWithContentsOfURL(restored);
  ASSERT_TRUE(reopened) << reopened.error().description();
  EXPECT_EQ((*reopened)->dataBase().countForInstancesOfClass("UserPayee"), 3u);
}

}  // namespace
}  // namespace ledgeon
