#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "Commands/CreateLObjectCommand.h"
#include "Commands/LCommandManager.h"
#include "Commands/UndoManager.h"
#include "DataBase/DataBase.h"
#include "DataBase/DataBaseNotifications.h"
#include "DocumentTestEnvironment.h"
#include "Documents/LDocument.h"
#include "Documents/LDocumentStrings.h"
#include "Documents/LedgerQueries.h"
#include "LObjects/Model.h"
#include "Threading/RunLoop.h"
#include "Utilities/Log.h"
#include "Utilities/NotificationCenter.h"

namespace ledgeon {
namespace {

namespace fs = std::filesystem;

std::shared_ptr<LDocument> createDocument(const fs::path& path) {
  auto created = LDocument::createNewDocument(path);
  EXPECT_TRUE(created) << (created ? "" : created.error().description());
  return created ? *created : nullptr;
}

std::shared_ptr<LDocument> openDocument(const fs::path& path) {
  auto opened = LDocument::initWithContentsOfURL(path);
  EXPECT_TRUE(opened) << (opened ? "" : opened.error().description());
  return opened ? *opened : nullptr;
}

size_t lockFileCount(const fs::path& package) {
  std::error_code ec;
  size_t count = 0;
  for (const auto& entry : fs::directory_iterator(package / "locks", ec)) {
    count += entry.path().extension() == ".plist";
  }
  return count;
}

void setStoredModelVersion(const fs::path& store, const std::string& version) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(store.c_str(), &db), SQLITE_OK);
  const std::string sql =
      "UPDATE Z_METADATA SET value = '" + version + "' WHERE key = 'modelVersion'";
  EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(db);
}

TEST(LDocumentTest, NewDocumentHoldsTheAccountTypeTreeOnce) {
  DocumentTestEnvironment environment;
  auto document = createDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(document);
  struct Row {
    const char* className;
    const char* parentClass;  // "" for the top of the tree
    int64_t implicitSign;
  };
  const Row rows[] = {
      {"Checking", "", 1},
      {"Savings", "", 1},
      {"CreditCard", "", -1},
      {"Brokerage", "", 1},
      {"GenericLoan", "", -1},
      {"BrokerageNormal", "Brokerage", 1},
      {"Retirement", "Brokerage", 1},
      {"RetirementRothIRA", "Retirement", 1},
      {"DeferredCompRetirement401K", "DeferredCompRetirement", 1},
      {"Mortgage", "GenericLoan", -1},
      {"StudentLoan", "GenericLoan", -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.className);
    LObject* type = document->ledgerQueries().accountTypeForClass(row.className);
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->className(), row.className);
    EXPECT_EQ(type->integerForKey("implicitSign"), row.implicitSign);
    LObject* parent = type->objectForKey("parent");
    EXPECT_EQ(parent ? parent->className() : std::string(), row.parentClass);
  }
  size_t classes = 0;
  for (const EntityDescription* entity : Model::shared().entities()) {
    classes += entity->isKindOf("AccountType") && entity->name != "AccountType";
  }
  DataBase& db = document->dataBase();
  EXPECT_EQ(db.countForInstancesOfClass("AccountType"), classes);
  EXPECT_EQ(document->ledgerQueries().accountTypeForClass("Account"), nullptr);

  // Reopening adds nothing: every class already has its object.
  const std::string id = document->clientDocumentId();
  document->close();
  document = openDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(document);
  EXPECT_EQ(document->dataBase().countForInstancesOfClass("AccountType"), classes);
  EXPECT_EQ(document->clientDocumentId(), id);
  EXPECT_EQ(id.size(), 36u);
}

TEST(LDocumentTest, NewDocumentHoldsTheHouseholdCategoryTree) {
  DocumentTestEnvironment environment;
  auto document = createDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(document);
  const auto& names = LDocument::defaultCategoryNames();
  EXPECT_EQ(document->dataBase().countForInstancesOfClass("CategoryTag"), names.size());
  for (const std::string fullName : {"Income:Salary", "Housing:Rent", "Food:Groceries",
                                     "Transport:Fuel", "Utilities:Electricity"}) {
    SCOPED_TRACE(fullName);
    LObject* category = document->ledgerQueries().categoryWithFullName(fullName);
    ASSERT_NE(category, nullptr);
    const std::string parentName = fullName.substr(0, fullName.find(':'));
    EXPECT_EQ(category->objectForKey("parentCategory"),
              document->ledgerQueries().categoryWithFullName(parentName));
    EXPECT_EQ(category->stringForKey("name"), fullName.substr(fullName.find(':') + 1));
  }
  // The kinds imported categories get: 2 income, 1 expense.
  EXPECT_EQ(document->ledgerQueries().categoryWithFullName("Income")->integerForKey("type"), 2);
  EXPECT_EQ(document->ledgerQueries().categoryWithFullName("Income:Bonus")->integerForKey("type"),
            2);
  EXPECT_EQ(document->ledgerQueries().categoryWithFullName("Food")->integerForKey("type"), 1);
  // Category ids are unique: imports and the cloud match categories on them.
  std::vector<int64_t> ids;
  for (LObject* category : document->dataBase().instancesOfClass("CategoryTag")) {
    ids.push_back(category->integerForKey("categoryID"));
  }
  std::sort(ids.begin(), ids.end());
  EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
}

TEST(LDocumentTest, OpeningSetsUpCommandsUndoAndTheCurrentDocument) {
  DocumentTestEnvironment environment;
  auto document = createDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(document);
  ASSERT_NE(document->commandManager(), nullptr);
  EXPECT_EQ(&document->commandManager()->document(), document.get());
  ASSERT_NE(document->undoManager(), nullptr);
  EXPECT_EQ(document->undoManager()->levelsOfUndo(), 25u);
  EXPECT_FALSE(document->undoManager()->groupsByEvent());
  EXPECT_EQ(LCommandDocument::currentDocument(), document);
  EXPECT_TRUE(document->hasFinishedInit());
  EXPECT_EQ(LDocument::openDataBases(), std::vector<DataBase*>{&document->dataBase()});
  EXPECT_EQ(lockFileCount(document->package().absoluteURL()), 1u);
  for (const std::string& folder : LDocumentPackage::packageFolderNames()) {
    EXPECT_TRUE(fs::is_directory(document->package().absoluteURL() / folder)) << folder;
  }
}

TEST(LDocumentTest, SetUpFinishesOnTheMainRunLoopAndClosingCancelsIt) {
  DocumentTestEnvironment environment;
  RunLoop loop;
  auto opened = createDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(opened);
  EXPECT_FALSE(opened->hasFinishedInit());  // waits for the opener's turn to end
  loop.runOnce();
  EXPECT_TRUE(opened->hasFinishedInit());
  opened->close();

  auto closedEarly = openDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(closedEarly);
  const size_t pending = loop.pendingCount();
  EXPECT_GE(pending, 1u);
  closedEarly->close();
  EXPECT_EQ(loop.pendingCount(), pending - 1);  // its deferred set-up was dropped
  loop.runOnce();
  EXPECT_FALSE(closedEarly->hasFinishedInit());
}

TEST(LDocumentTest, NestedTransactionsCommitOnceAtTheOutermostEnd) {
  DocumentTestEnvironment environment;
  auto document = createDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(document);
  DataBase& db = document->dataBase();
  int commits = 0;
  ScopedObserver observer(
      NotificationCenter::defaultCenter(), kLDataBaseChanged,
      [&](const Notification&) { ++commits; }, &db);
  document->beginTransaction();
  db.createEntity("UserPayee", {{"name", Value("Grocer")}});
  document->beginTransaction();
  db.createEntity("UserPayee", {{"name", Value("Landlord")}});
  ASSERT_TRUE(document->endTransaction());
  EXPECT_EQ(commits, 0);
  EXPECT_TRUE(db.hasChanges());
  EXPECT_EQ(document->transactionDepth(), 1u);
  ASSERT_TRUE(document->endTransaction());
  EXPECT_EQ(commits, 1);
  EXPECT_FALSE(db.hasChanges());
  EXPECT_TRUE(document->validDatabaseChangeForBackup());
  EXPECT_THROW((void)document->endTransaction(), std::logic_error);

  // What was committed is in the file: another open sees both payees.
  document->close();
  document = openDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(document);
  EXPECT_EQ(document->dataBase().countForInstancesOfClass("UserPayee"), 2u);
  EXPECT_FALSE(document->validDatabaseChangeForBackup());
}

TEST(LDocumentTest, CommandsRunThroughTheDocumentAndUndoAcrossCommits) {
  DocumentTestEnvironment environment;
  const fs::path path = environment.path("Home.ledgeon");
  auto document = createDocument(path);
  ASSERT_TRUE(document);
  int commits = 0;
  ScopedObserver observer(
      NotificationCenter::defaultCenter(), kLDataBaseChanged,
      [&](const Notification&) { ++commits; }, &document->dataBase());
  // Made without a document: the command works on the current one.
  auto create = std::make_shared<CreateLObjectCommand>("UserPayee",
                                                       EditDict{{"name", Value("Corner Grocer")}});
  ASSERT_TRUE(create->execute());
  EXPECT_EQ(commits, 1);
  EXPECT_TRUE(document->isDocumentEdited());
  EXPECT_EQ(document->undoManager()->undoMenuItemTitle().rfind("Undo ", 0), 0u);
  const int64_t id = create->createdObject()->integerForKey("ledgeonId");
  document->undoManager()->undo();
  EXPECT_EQ(document->dataBase().countForInstancesOfClass("UserPayee"), 0u);
  document->undoManager()->redo();
  EXPECT_EQ(document->dataBase().countForInstancesOfClass("UserPayee"), 1u);
  EXPECT_EQ(commits, 3);
  document->close();

  document = openDocument(path);
  ASSERT_TRUE(document);
  const auto payees = document->dataBase().instancesOfClass("UserPayee");
  ASSERT_EQ(payees.size(), 1u);
  EXPECT_EQ(payees[0]->integerForKey("ledgeonId"), id);
  EXPECT_FALSE(document->undoManager()->canUndo());  // the history does not outlive the document
}

TEST(LDocumentTest, ClosingPostsNotificationsInOrderAndGivesEverythingBack) {
  DocumentTestEnvironment environment;
  auto document = createDocument(environment.path("Home.ledgeon"));
  ASSERT_TRUE(document);
  const fs::path package = document->package().absoluteURL();
  std::vector<std::string> seen;
  auto record = [&](const Notification& n) {
    EXPECT_EQ(n.object, document.get());
    seen.push_back(n.name + (document->commandManager() ? " with commands" : "") +
                   (LCommandDocument::currentDocument() ? " current" : ""));
  };
  ScopedObserver will(NotificationCenter::defaultCenter(), kLDocumentWillCloseNotification, record);
  ScopedObserver did(NotificationCenter::defaultCenter(), kLDocumentDidCloseNotification, record);
  document->close();
  document->close();
  EXPECT_EQ(seen, (std::vector<std::string>{"LDocumentWillCloseNotification current",
                                            "LDocumentDidCloseNotification"}));
  EXPECT_TRUE(document->isClosed());
  EXPECT_EQ(document->commandManager(), nullptr);
  EXPECT_EQ(document->undoManager(), nullptr);
  EXPECT_EQ(LCommandDocument::currentDocument(), nullptr);
  EXPECT_TRUE(LDocument::openDataBases().empty());
  EXPECT_THROW(document->dataBase(), std::logic_error);
  EXPECT_EQ(lockFileCount(package), 0u);
}

TEST(LDocumentTest, TemporaryCopyIsRemovedWhenClosed) {
  DocumentTestEnvironment environment;
  const fs::path path = environment.path("Copy.ledgeon");
  createDocument(path)->close();
  auto opened = LDocument::initWithContentsOfURL(path, {.deleteParentDirectoryWhenClosed = true});
  ASSERT_TRUE(opened);
  EXPECT_TRUE(fs::exists(path));
  (*opened)->close();
  EXPECT_FALSE(fs::exists(path));
}

struct RefusalCase {
  const char* name;
  std::function<fs::path(DocumentTestEnvironment&)> prepare;
  bool newFile;
  std::vector<std::string> expectedTexts;
  const char* expectedLog;
};

TEST(LDocumentTest, RefusesWhatItCannotOpenAndLeavesNoLockBehind) {
  const RefusalCase cases[] = {
      {"missing",
       [](DocumentTestEnvironment& e) { return e.path("Gone.ledgeon"); },
       false,
       {"The document \u201cGone.ledgeon\u201d could not be opened.", "There is no document"},
       ""},
      {"plain file",
       [](DocumentTestEnvironment& e) {
         std::ofstream(e.path("Plain.ledgeon")) << "not a package";
         return e.path("Plain.ledgeon");
       },
       false,
       {"\u201cPlain.ledgeon\u201d could not be opened.", "is not a document package"},
       "Not a directory: "},
      {"new over existing",
       [](DocumentTestEnvironment& e) {
         createDocument(e.path("Twice.ledgeon"))->close();
         return e.path("Twice.ledgeon");
       },
       true,
       {"already exists"},
       ""},
      {"enciphered",
       [](DocumentTestEnvironment& e) {
         createDocument(e.path("Secret.ledgeon"))->close();
         std::ofstream(e.path("Secret.ledgeon") / "catalog") << "segments";
         return e.path("Secret.ledgeon");
       },
       false,
       {"protected with a password", "cannot open protected documents"},
       ""},
      {"no store",
       [](DocumentTestEnvironment& e) {
         LDocumentPackage package(e.path("Empty.ledgeon"));
         EXPECT_TRUE(package.createNewFileWithSupportFoldersFor());
         return e.path("Empty.ledgeon");
       },
       false,
       {"holds no ledger store"},
       ""},
      {"newer model",
       [](DocumentTestEnvironment& e) {
         createDocument(e.path("Newer.ledgeon"))->close();
         setStoredModelVersion(e.path("Newer.ledgeon") / "data", "Ledgeon 9");
         return e.path("Newer.ledgeon");
       },
       false,
       {"The document \u201cNewer.ledgeon\u201d could not be opened. Choose Ledgeon > Check for "
        "Updates to make sure you have the latest version of Ledgeon. You are currently using "
        "version " LEDGEON_VERSION ".\n\n\u201cNewer.ledgeon\u201d was last opened on ",
        " by Ledgeon " LEDGEON_VERSION " (Build " LEDGEON_VERSION ")."},
       ""},
  };
  for (const RefusalCase& c : cases) {
    SCOPED_TRACE(c.name);
    DocumentTestEnvironment environment;
    const fs::path path = c.prepare(environment);
    LogCapture log;
    auto opened = LDocument::initWithContentsOfURL(path, {.newFile = c.newFile});
    ASSERT_FALSE(opened);
    const std::string text = opened.error().localizedDescription();
    for (const std::string& expected : c.expectedTexts) {
      EXPECT_NE(text.find(expected), std::string::npos) << text;
    }
    EXPECT_EQ(opened.error().userInfo.at(kFilePathErrorKey), path.string());
    if (*c.expectedLog) {
      EXPECT_TRUE(log.contains(c.expectedLog));
    }
    EXPECT_EQ(lockFileCount(path), 0u);
    EXPECT_TRUE(LDocument::openDataBases().empty());
    EXPECT_EQ(LCommandDocument::currentDocument(), nullptr);
  }
}

TEST(LDocumentTest, OpeningCleansUpLeftOversAndRepairsPermissions) {
  DocumentTestEnvironment environment;
  const fs::path path = environment.path("Worn.ledgeon");
  createDocument(path)->close();
  std::ofstream(path / "DBMigrationtemp_123") << "interrupted";
  std::ofstream(path / "olddata") << "old";
  fs::remove_all(path / "calendars");  // a folder an older version did not make
  fs::permissions(path / "reports", fs::perms::owner_read | fs::perms::owner_exec);
  auto document = openDocument(path);
  ASSERT_TRUE(document);
  EXPECT_FALSE(fs::exists(path / "DBMigrationtemp_123"));
  EXPECT_FALSE(fs::exists(path / "olddata"));
  EXPECT_TRUE(fs::is_directory(path / "calendars"));
  EXPECT_NE(fs::status(path / "reports").permissions() & fs::perms::owner_write, fs::perms::none);
}

TEST(LDocumentTest, CancellingTheLockQuestionIsAUserCancel) {
  DocumentTestEnvironment environment;
  const fs::path path = environment.path("Held.ledgeon");
  createDocument(path)->close();
  LFileLockInfo holder = LFileLockInfo::currentProcess();
  holder.pidNumber = getppid();  // a live process of this user: another application
  LDocumentPackage package(path);
  ASSERT_TRUE(holder.writeToFile(package.pathForLockWithLockId(holder.lockId).string()));
  environment.userInterface().addAlertAnswer({"Cancel"});
  auto opened = LDocument::initWithContentsOfURL(path);
  ASSERT_FALSE(opened);
  EXPECT_TRUE(opened.error().isUserCancelled());
  ASSERT_EQ(environment.userInterface().alertsShown().size(), 1u);
  EXPECT_EQ(environment.userInterface().alertsShown()[0].messageText,
            "The document \u201cHeld.ledgeon\u201d is already open in another application.");
  EXPECT_EQ(lockFileCount(path), 1u);  // only the holder's

  environment.userInterface().addAlertAnswer({"Open Anyway"});
  auto anyway = LDocument::initWithContentsOfURL(path);
  ASSERT_TRUE(anyway);
  EXPECT_EQ((*anyway)->lockOutcome(), LockOutcome::kOpenedAnyway);
  EXPECT_EQ(lockFileCount(path), 2u);
  (*anyway)->close();
  EXPECT_EQ(lockFileCount(path), 1u);
}

TEST(LDocumentTest, StaleLocksAreRemovedWithoutAsking) {
  DocumentTestEnvironment environment;
  const fs::path path = environment.path("Stale.ledgeon");
  createDocument(path)->close();
  LDocumentPackage package(path);
  LFileLockInfo crashed = LFileLockInfo::currentProcess();
  crashed.pidNumber = 0x3FFFFF;  // above any pid this machine hands out
  LFileLockInfo beforeRestart = LFileLockInfo::currentProcess();
  beforeRestart.pidNumber = getppid();
  beforeRestart.bootTimestamp = Date::fromUnixTime(beforeRestart.bootTimestamp.unixTime() - 86400);
  for (const LFileLockInfo& lock : {crashed, beforeRestart}) {
    ASSERT_TRUE(lock.writeToFile(package.pathForLockWithLockId(lock.lockId).string()));
  }
  auto document = openDocument(path);
  ASSERT_TRUE(document);
  EXPECT_TRUE(environment.userInterface().alertsShown().empty());
  EXPECT_EQ(document->lockOutcome(), LockOutcome::kLocked);
  EXPECT_EQ(lockFileCount(path), 1u);
}

TEST(LDocumentTest, CloudEnvironmentIsRecordedOnceAndAMismatchWarns) {
  DocumentTestEnvironment environment;
  const fs::path path = environment.path("Cloud.ledgeon");
  environment.preferences().setObject(kCloudEnvironmentTypeKey, 2);
  createDocument(path)->close();
  EXPECT_TRUE(environment.userInterface().alertsShown().empty());
  environment.preferences().setObject(kCloudEnvironmentTypeKey, 0);
  environment.userInterface().addAlertAnswer({"OK"});
  auto document = openDocument(path);
  ASSERT_TRUE(document);
  ASSERT_EQ(environment.userInterface().alertsShown().size(), 1u);
  const Alert& alert = environment.userInterface().alertsShown()[0];
  EXPECT_EQ(alert.messageText, "Warning: \u201cCloud.ledgeon\u201d uses the Stage environment.");
  EXPECT_EQ(alert.informativeText,
            "This build of Ledgeon can only be used with the Production environment.");
  EXPECT_EQ(alert.buttons, std::vector<std::string>{"OK"});
}

TEST(LDocumentTest, CountryFeaturesSettleBetweenDocumentAndPreferences) {
  DocumentTestEnvironment environment;
  const fs::path path = environment.path("Maple.ledgeon");
  environment.preferences().setObject(kAllowCanadaFeaturesKey, true);
  auto document = createDocument(path);
  ASSERT_TRUE(document);
  EXPECT_EQ(document->dataBase().valueForDocumentPropertyNamed(kAllowCanadaFeaturesKey).asString(),
            "1");
  document->close();
  // A user who turned the features off still gets them while a document that uses them is open.
  environment.preferences().setObject(kAllowCanadaFeaturesKey, false);
  document = openDocument(path);
  ASSERT_TRUE(document);
  EXPECT_TRUE(environment.preferences().boolForKey(kAllowCanadaFeaturesKey));
  EXPECT_EQ(document->dataBase().valueForDocumentPropertyNamed(kAllowUSFeaturesKey).asString(),
            "1");
}

}  // namespace
}  // namespace ledgeon
