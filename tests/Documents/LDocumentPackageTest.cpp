#include <fstream>

#include <gtest/gtest.h>

#include "Documents/LDocumentPackage.h"
#include "Utilities/Log.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

namespace fs = std::filesystem;

void writeFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

TEST(LDocumentPackageTest, NewPackageHasEveryFolderOfTheLayout) {
  testing::TempFolder temp;
  LDocumentPackage package(temp / "Home.ledgeon");
  ASSERT_TRUE(package.createNewFileWithSupportFoldersFor());
  const char* folders[] = {"modelPieces",
                           "attachments",
                           "deleted attachments",
                           "reports",
                           "Category Explorer",
                           "calendars",
                           "taxes",
                           "images",
                           "alertIcons",
                           "billerLoginIcons",
                           "persistentStateInformation",
                           "converted",
                           "locks"};
  for (const char* folder : folders) {
    EXPECT_TRUE(fs::is_directory(temp / "Home.ledgeon" / folder)) << folder;
  }
  EXPECT_EQ(package.packageFolderNames().size(), std::size(folders));
  // A second creation at the same place must not touch the first.
  EXPECT_FALSE(LDocumentPackage(temp / "Home.ledgeon").createNewFileWithSupportFoldersFor());
}

TEST(LDocumentPackageTest, PathsAndClassOperations) {
  LDocumentPackage package("/docs/Home.ledgeon/");
  EXPECT_EQ(package.documentName(), "Home.ledgeon");
  EXPECT_EQ(package.extension(), "ledgeon");
  EXPECT_EQ(package.directoryPath(), fs::path("/docs"));
  const struct {
    fs::path actual;
    const char* expected;
  } cases[] = {
      {package.dataBasePath(), "/docs/Home.ledgeon/data"},
      {package.attachmentsFolderPath(), "/docs/Home.ledgeon/attachments"},
      {package.deletedAttachmentsFolderPath(), "/docs/Home.ledgeon/deleted attachments"},
      {package.reportFolderPath(), "/docs/Home.ledgeon/reports"},
      {package.categoryExplorerHTMLDirectory(), "/docs/Home.ledgeon/Category Explorer"},
      {package.calendarFolderPath(), "/docs/Home.ledgeon/calendars"},
      {package.taxesFolderPath(), "/docs/Home.ledgeon/taxes"},
      {package.imagesFolderPath(), "/docs/Home.ledgeon/images"},
      {package.persistentStateFolderPath(), "/docs/Home.ledgeon/persistentStateInformation"},
      {package.modelPiecesPath(), "/docs/Home.ledgeon/modelPieces"},
      {package.alertIconsPath(), "/docs/Home.ledgeon/alertIcons"},
      {package.billerLoginIconsPath(), "/docs/Home.ledgeon/billerLoginIcons"},
      {package.convertedDataPath(), "/docs/Home.ledgeon/converted"},
      {package.catalogPath(), "/docs/Home.ledgeon/catalog"},
      {package.reportPathForReport("Spending.report"),
       "/docs/Home.ledgeon/reports/Spending.report"},
      {LDocumentPackage::dataBasePathForFile("/d/A.ledgeon"), "/d/A.ledgeon/data"},
      {LDocumentPackage::packagePathFromDataBasePath("/d/A.ledgeon/data"), "/d/A.ledgeon"},
      {LDocumentPackage::modelPiecesPathFromDataBasePath("/d/A.ledgeon/data"),
       "/d/A.ledgeon/modelPieces"},
      {LDocumentPackage::locksDirPathForDocumentPath("/d/A.ledgeon"), "/d/A.ledgeon/locks"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.actual, fs::path(c.expected));
  EXPECT_EQ(package.reportPaths().at("Spending.report"),
            fs::path("/docs/Home.ledgeon/reports/Spending.report"));

  testing::TempFolder temp;
  writeFile(temp / "bank.QFX", "OFXHEADER:100");
  writeFile(temp / "A.ledgeon" / "data", "store");
  fs::create_directories(temp / "folder.ofx");
  EXPECT_TRUE(LDocumentPackage::isWebConnectFile(temp / "bank.QFX"));
  EXPECT_FALSE(LDocumentPackage::isWebConnectFile(temp / "folder.ofx"));
  EXPECT_FALSE(LDocumentPackage::isWebConnectFile(temp / "A.ledgeon"));
  EXPECT_TRUE(LDocumentPackage::dataBaseFileExistsInPackage(temp / "A.ledgeon"));
  EXPECT_FALSE(LDocumentPackage::dataBaseFileExistsInPackage(temp.path()));
}

TEST(LDocumentPackageTest, ModuleFoldersAndCachedFiles) {
  testing::TempFolder temp;
  LDocumentPackage package(temp / "Home.ledgeon");
  ASSERT_TRUE(package.createNewFileWithSupportFoldersFor());

  EXPECT_EQ(package.moduleFolderPath("budgets", false), temp / "Home.ledgeon" / "budgets");
  EXPECT_FALSE(fs::exists(temp / "Home.ledgeon" / "budgets"));
  EXPECT_TRUE(package.moduleFolderPath("budgets", true));
  EXPECT_TRUE(fs::is_directory(temp / "Home.ledgeon" / "budgets"));

  writeFile(temp / "Home.ledgeon" / "blocked", "a file where a folder should be");
  LogCapture log;
  EXPECT_FALSE(package.moduleFolderPath("blocked/inner", true));
  EXPECT_FALSE(package.moduleFolderPath("images/x", true));
  ASSERT_FALSE(log.lines().empty());
  EXPECT_EQ(
      log.lines()[0].rfind("Could not create folder for moduleID 'blocked/inner', error = ", 0), 0u)
      << log.lines()[0];

  const std::string bytes("PNG\0x", 5);
  ASSERT_TRUE(package.cacheFileInFilePackageDirName("images", "GUID-1", "logo.png", bytes));
  EXPECT_TRUE(fs::is_regular_file(temp / "Home.ledgeon" / "images" / "GUID-1_logo.png"));
  EXPECT_EQ(package.cachedFileInFilePackageDirName("images", "GUID-1", "logo.png"), bytes);
  EXPECT_FALSE(package.cachedFileInFilePackageDirName("images", "GUID-2", "logo.png"));
  EXPECT_FALSE(package.cachedFileInFilePackageDirName("images", "..", "/etc/passwd"));
  EXPECT_TRUE(package.removeCachedFileDirName("images", "GUID-1", "logo.png"));
  EXPECT_FALSE(package.cachedFileInFilePackageDirName("images", "GUID-1", "logo.png"));
  EXPECT_FALSE(package.removeCachedFileDirName("images", "GUID-1", "logo.png"));
}

TEST(LDocumentPackageTest, PermissionsAreVerifiedAndRepaired) {
  testing::TempFolder temp;
  LDocumentPackage package(temp / "Home.ledgeon");
  ASSERT_TRUE(package.createNewFileWithSupportFoldersFor());
  writeFile(temp / "Home.ledgeon" / "data", "store");
  writeFile(temp / "Home.ledgeon" / "attachments" / "deep" / "receipt.pdf", "%PDF");
  ASSERT_TRUE(package.verifyPackagePermissionsReturningError());

  fs::permissions(temp / "Home.ledgeon" / "data", fs::perms::owner_read);
  fs::permissions(temp / "Home.ledgeon" / "attachments" / "deep" / "receipt.pdf", fs::perms::none);
  fs::permissions(temp / "Home.ledgeon" / "attachments" / "deep", fs::perms::none);
  auto verified = package.verifyPackagePermissionsReturningError();
  ASSERT_FALSE(verified);

  ASSERT_TRUE(package.fixPackagePermissionsReturningError());
  EXPECT_TRUE(package.verifyPackagePermissionsReturningError());
  const auto deep = fs::status(temp / "Home.ledgeon" / "attachments" / "deep").permissions();
  EXPECT_EQ(deep & fs::perms::owner_all, fs::perms::owner_all);
  const auto pdf =
      fs::status(temp / "Home.ledgeon" / "attachments" / "deep" / "receipt.pdf").permissions();
  // X: files that nobody could execute stay not executable.
  EXPECT_EQ(pdf & fs::perms::owner_all, fs::perms::owner_read | fs::perms::owner_write);

  LogCapture log;
  EXPECT_FALSE(LDocumentPackage::fixApplicationSupportSubfolderPermissions(temp / "missing"));
  EXPECT_TRUE(
      log.contains("ERROR: Unable to fix permissions for path: " + (temp / "missing").string()));
}

TEST(LDocumentPackageTest, CleanUpRemovesOnlyLeftOvers) {
  testing::TempFolder temp;
  const fs::path root = temp / "Home.ledgeon";
  const struct {
    const char* name;
    bool directory;
    bool removed;
  } entries[] = {
      {"data", false, false},
      {"DBMigrationtemp_12", false, true},
      {"DBMigrationtemp_dir", true, true},
      {"data (1)", false, true},
      {"data (conflicted copy)", false, true},
      {"olddata", false, true},
      {"olddata2", false, false},
      {"database", false, false},
      {"dataset (1)", false, false},
      {"attachments", true, false},
  };
  for (const auto& e : entries) {
    if (e.directory) {
      writeFile(root / e.name / "inside", "x");
    } else {
      writeFile(root / e.name, "x");
    }
  }
  LDocumentPackage::cleanUpExtraneousFilesForDocumentPath(root);
  for (const auto& e : entries) EXPECT_EQ(!fs::exists(root / e.name), e.removed) << e.name;
}

TEST(LDocumentPackageTest, SupportFilesAreCopiedAndBroughtUpToDate) {
  testing::TempFolder temp;
  const fs::path source = temp / "templates";
  writeFile(source / "budget.html", "v1");
  writeFile(source / "icons" / "bank.png", "png");
  const std::vector<LDocumentPackage::SupportFileSet> sets = {{"budgetTemplates", source}};
  LDocumentPackage package(temp / "Home.ledgeon");
  ASSERT_TRUE(package.createNewFileWithSupportFoldersFor());
  ASSERT_TRUE(package.moveSupportFilesIntoPackage(sets));
  const fs::path copied = temp / "Home.ledgeon" / "budgetTemplates";
  EXPECT_EQ(testing::readFile(copied / "budget.html"), "v1");
  EXPECT_EQ(testing::readFile(copied / "icons" / "bank.png"), "png");

  // The user's edit survives an update unless the shipped file is newer.
  writeFile(copied / "icons" / "bank.png", "edited");
  writeFile(source / "budget.html", "v2");
  fs::last_write_time(source / "budget.html",
                      fs::last_write_time(copied / "budget.html") + std::chrono::hours(1));
  fs::last_write_time(source / "icons" / "bank.png",
                      fs::last_write_time(copied / "icons" / "bank.png") - std::chrono::hours(1));
  ASSERT_TRUE(package.updateSupportFilesInPackage(sets));
  EXPECT_EQ(testing::readFile(copied / "budget.html"), "v2");
  EXPECT_EQ(testing::readFile(copied / "icons" / "bank.png"), "edited");

  ASSERT_TRUE(package.moveSupportFilesIntoPackage(sets));
  EXPECT_EQ(testing::readFile(copied / "icons" / "bank.png"), "png");
  EXPECT_FALSE(package.moveSupportFilesIntoPackage({{"other", temp / "missing"}}));
}

}  // namespace
}  // namespace ledgeon
