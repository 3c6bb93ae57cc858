#include <fstream>
#include <memory>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unicode/timezone.h>
#include <unistd.h>

#include "Documents/DocumentLocking.h"
#include "Platform/ScriptedUserInterface.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

namespace fs = std::filesystem;

// A process id that certainly belongs to no running process: a child that has been reaped.
int64_t pidOfFinishedProcess() {
  const pid_t child = fork();
  if (child == 0) _exit(0);
  int status = 0;
  waitpid(child, &status, 0);
  return child;
}

struct LockedPackage {
  testing::TempFolder temp;
  LDocumentPackage package{temp / "Home.ledgeon"};
  LockedPackage() { EXPECT_TRUE(package.createNewFileWithSupportFoldersFor()); }

  // Writes a record as if another opener had made it.
  void addLock(const LFileLockInfo& lock) {
    ASSERT_TRUE(lock.writeToFile(package.pathForLockWithLockId(lock.lockId).string()));
  }
};

LFileLockInfo otherOpener(Date createdAt) {
  LFileLockInfo lock = LFileLockInfo::currentProcess();
  lock.pidNumber = getppid();  // alive for as long as the test runs
  lock.createdAt = createdAt;
  return lock;
}

TEST(LFileLockInfoTest, RecordKeepsItsKeysInOrderAndRoundTrips) {
  LFileLockInfo lock = LFileLockInfo::currentProcess();
  EXPECT_EQ(lock.pidNumber, getpid());
  EXPECT_EQ(lock.uidNumber, getuid());
  EXPECT_EQ(lock.lockId.size(), 36u);
  EXPECT_NE(lock.lockId, LFileLockInfo::currentProcess().lockId);
  EXPECT_GT(lock.bootTimestamp.unixTime(), 0);
  EXPECT_FALSE(lock.hostName.empty());
  EXPECT_FALSE(lock.userName.empty());
  const std::vector<std::string> expectedKeys = {
      "lockId",    "pidNumber",        "uidNumber",   "bootTimestamp", "macAddress",
      "createdAt", "bundleIdentifier", "bundleName",  "bundleVersion", "bundleShortVersionString",
      "hostName",  "systemVersion",    "deviceModel", "userName",      "fullUserName"};
  EXPECT_EQ(lock.propertyList().keys(), expectedKeys);

  testing::TempFolder temp;
  const std::string path = (temp / "lock.plist").string();
  lock.createdAt = Date(700000000.25);
  ASSERT_TRUE(lock.writeToFile(path));
  auto written = LPropertyList::fromFile(path);
  ASSERT_TRUE(written);
  EXPECT_EQ(written->keys(), expectedKeys);
  auto read = LFileLockInfo::readFromFile(path);
  ASSERT_TRUE(read) << read.error().description();
  EXPECT_EQ(read->lockId, lock.lockId);
  EXPECT_EQ(read->pidNumber, lock.pidNumber);
  EXPECT_EQ(read->createdAt, lock.createdAt);
  EXPECT_EQ(read->bootTimestamp, lock.bootTimestamp);
  EXPECT_EQ(read->macAddress, lock.macAddress);
  EXPECT_EQ(read->fullUserName, lock.fullUserName);

  for (const char* damaged : {"", "<plist><string>x</string></plist>", "<dict>",
                              "<plist><dict><key>lockId</key><string>a</string></dict></plist>"}) {
    EXPECT_FALSE(LFileLockInfo::readFromData(damaged, "lock.plist")) << damaged;
  }
}

TEST(LFileLockInfoTest, OwnerByComputerBootProcessAndUser) {
  const LFileLockInfo current = LFileLockInfo::currentProcess();
  auto variant = [&](auto change) {
    LFileLockInfo lock = current;
    lock.pidNumber = getppid();
    change(lock);
    return lock;
  };
  const struct {
    const char* name;
    LFileLockInfo lock;
    LockOwner owner;
  } cases[] = {
      {"this process", variant([](LFileLockInfo& l) { l.pidNumber = getpid(); }),
       LockOwner::kCurrentProcess},
      {"same user, live process", variant([](LFileLockInfo&) {}), LockOwner::kOtherApplication},
      {"other user", variant([](LFileLockInfo& l) { l.uidNumber += 1; }), LockOwner::kOtherUser},
      {"dead process", variant([](LFileLockInfo& l) { l.pidNumber = pidOfFinishedProcess(); }),
       LockOwner::kStale},
      {"earlier boot", variant([](LFileLockInfo& l) {
         l.bootTimestamp = l.bootTimestamp.dateByAddingTimeInterval(-3600);
       }),
       LockOwner::kStale},
      {"other computer, even with a dead process", variant([](LFileLockInfo& l) {
         l.macAddress = "02:00:00:00:00:01";
         l.pidNumber = pidOfFinishedProcess();
       }),
       LockOwner::kOtherComputer},
  };
  for (auto c : cases) EXPECT_EQ(c.lock.currentOwner(current), c.owner) << c.name;
}

TEST(DocumentLockingTest, StaleLocksAreDeletedSilentlyAndTheLockIsTaken) {
  LockedPackage fixture;
  LFileLockInfo crashed = otherOpener(Date(1000));
  crashed.pidNumber = pidOfFinishedProcess();
  LFileLockInfo beforeRestart = otherOpener(Date(2000));
  beforeRestart.bootTimestamp = beforeRestart.bootTimestamp.dateByAddingTimeInterval(-86400);
  fixture.addLock(crashed);
  fixture.addLock(beforeRestart);

  ScriptedUserInterface ui;
  auto outcome = lockDocumentPackage(fixture.package, ui);
  ASSERT_TRUE(outcome);
  EXPECT_EQ(*outcome, LockOutcome::kLocked);
  EXPECT_TRUE(ui.alertsShown().empty());
  const auto locks = fixture.package.allLocks();
  ASSERT_EQ(locks.size(), 1u);
  EXPECT_EQ(locks[0].lockId, fixture.package.lockId());
  EXPECT_EQ(fixture.package.lockPath(),
            fixture.temp / "Home.ledgeon" / "locks" / (locks[0].lockId + ".plist"));

  fixture.package.unlock();
  EXPECT_TRUE(fixture.package.allLocks().empty());
  EXPECT_TRUE(fixture.package.lockId().empty());
}

TEST(DocumentLockingTest, OldestConflictIsReportedAndTheButtonsAreObeyed) {
  LockedPackage fixture;
  LFileLockInfo newer = otherOpener(Date(5000));
  newer.uidNumber += 1;
  LFileLockInfo older = otherOpener(Date(4000));
  fixture.addLock(newer);
  fixture.addLock(older);

  auto conflict = fixture.package.tryLockAndReturnConflictingLock();
  ASSERT_TRUE(conflict);
  ASSERT_TRUE(conflict->has_value());
  EXPECT_EQ((*conflict)->lockId, older.lockId);
  EXPECT_EQ((*conflict)->owner, LockOwner::kOtherApplication);
  EXPECT_TRUE(fixture.package.lockId().empty());

  ScriptedUserInterface cancelling;
  cancelling.addAlertAnswer({kLockTryAgainButton});
  cancelling.addAlertAnswer({kLockCancelButton});
  auto cancelled = lockDocumentPackage(fixture.package, cancelling);
  ASSERT_FALSE(cancelled);
  EXPECT_TRUE(cancelled.error().isUserCancelled());
  ASSERT_EQ(cancelling.alertsShown().size(), 2u);
  EXPECT_EQ(cancelling.alertsShown()[0].buttons,
            (std::vector<std::string>{"Try Again", "Open Anyway", "Cancel"}));
  EXPECT_EQ(fixture.package.allLocks().size(), 2u);

  ScriptedUserInterface anyway;
  anyway.addAlertAnswer({kLockOpenAnywayButton});
  auto opened = lockDocumentPackage(fixture.package, anyway);
  ASSERT_TRUE(opened);
  EXPECT_EQ(*opened, LockOutcome::kOpenedAnyway);
  EXPECT_EQ(fixture.package.allLocks().size(), 3u);
  EXPECT_TRUE(fs::exists(fixture.package.lockPath()));
  fixture.package.close();
  EXPECT_EQ(fixture.package.allLocks().size(), 2u);
}

// Pins ICU's default zone for the guard's lifetime, whatever TZ the test runner passed.
class ScopedICUTimeZone {
 public:
  explicit ScopedICUTimeZone(const char* zone) : previous_(icu::TimeZone::createDefault()) {
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone(zone));
  }
  ~ScopedICUTimeZone() { icu::TimeZone::adoptDefault(previous_.release()); }

 private:
  std::unique_ptr<icu::TimeZone> previous_;
};

TEST(DocumentLockingTest, ConflictTextsByKind) {
  ScopedICUTimeZone zone("America/New_York");
  LFileLockInfo lock;
  lock.pidNumber = 4242;
  lock.bundleName = "Ledgeon";
  lock.userName = "sam";
  lock.fullUserName = "Sam Carter";
  lock.hostName = "Sam's Computer";
  lock.deviceModel = "MacBookPro18,3";
  // Friday 1 March 2024, 17:05 GMT: 12:05 PM in the tests' New York zone.
  lock.createdAt = Date::fromUnixTime(1709312700);

  lock.owner = LockOwner::kOtherApplication;
  Alert alert = lockConflictAlert(lock, "Home.ledgeon");
  EXPECT_EQ(alert.messageText,
            "The document “Home.ledgeon” is already open in another application.");
  EXPECT_EQ(alert.informativeText,
            "To open this document, quit the application “Ledgeon” (PID 4242), then click the "
            "“Try Again” button.");

  lock.owner = LockOwner::kOtherUser;
  alert = lockConflictAlert(lock, "Home.ledgeon");
  EXPECT_EQ(alert.messageText, "The document “Home.ledgeon” is already open by another user.");
  EXPECT_EQ(alert.informativeText,
            "To open this document, switch to the Sam Carter (sam) account and quit the "
            "application “Ledgeon” (PID 4242), then click the “Try Again” button.");

  lock.owner = LockOwner::kOtherComputer;
  alert = lockConflictAlert(lock, "Home.ledgeon");
  EXPECT_EQ(alert.messageText,
            "The document “Home.ledgeon” may already be open on a different computer.");
  const std::string expectedStart =
      "This document was last opened in Ledgeon on Sam's Computer (a MacBook Pro) by Sam Carter "
      "at 12:05";
  EXPECT_EQ(alert.informativeText.substr(0, expectedStart.size()), expectedStart)
      << alert.informativeText;
  EXPECT_NE(alert.informativeText.find(" on Friday, March 1, 2024.\n\nOpening a document on "
                                       "multiple computers at the same time will cause "
                                       "corruption and data loss. Before you open this "
                                       "document, verify that you have quit Ledgeon on the "
                                       "other computer and click the “Try Again” button."),
            std::string::npos)
      << alert.informativeText;
}

TEST(DocumentLockingTest, ComputerModelsInWords) {
  const struct {
    const char* model;
    const char* expected;
  } cases[] = {
      {"MacBookPro16,1", "box (a MacBook Pro)"},
      {"MacBookAir10,1", "box (a MacBook Air)"},
      {"MacBook10,1", "box (a MacBook)"},
      {"MacPro7,1", "box (a Mac Pro)"},
      {"Macmini9,1", "box (a Mac mini)"},
      {"iMac21,1", "box (an iMac)"},
      {"Xserve3,1", "box (an Xserve)"},
      {"ThinkPad X1", "box"},
      {"", "box"},
  };
  for (const auto& c : cases) {
    LFileLockInfo lock;
    lock.hostName = "box";
    lock.deviceModel = c.model;
    EXPECT_EQ(computerDescription(lock), c.expected) << c.model;
  }
}

// Two real processes: one holds the document, the other is refused with the holder's details,
// and gets in once the first has let go.
TEST(DocumentLockingTest, SecondProcessSeesTheConflict) {
  testing::TempFolder home;
  const std::string document = (home / "Shared.ledgeon").string();
  ASSERT_EQ(testing::runCli({"package", "create", document}, home.path()).exitStatus, 0);

  testing::BackgroundCli holder({"package", "lock", document, "--hold"}, home.path());
  ASSERT_EQ(holder.readLine().rfind("Locked ", 0), 0u);

  auto refused = testing::runCli({"package", "lock", document}, home.path());
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_NE(refused.err.find("The document “Shared.ledgeon” is already open in another "
                             "application.\nTo open this document, quit the application "
                             "“Ledgeon” (PID " +
                             std::to_string(holder.pid()) +
                             "), then click the “Try Again” button.\n[1] Try Again  [2] Open "
                             "Anyway  [3] Cancel\n> Cancel"),
            std::string::npos)
      << refused.err;

  auto listed = testing::runCli({"package", "locks", document, "--json"}, home.path());
  EXPECT_NE(listed.out.find("\"pid\": " + std::to_string(holder.pid())), std::string::npos)
      << listed.out;

  EXPECT_EQ(holder.finish(), 0);
  auto admitted = testing::runCli({"package", "lock", document}, home.path());
  EXPECT_EQ(admitted.exitStatus, 0) << admitted.err;
  EXPECT_EQ(admitted.err, "");
}

// A holder that is killed leaves its record behind; the next opener removes it without asking.
TEST(DocumentLockingTest, LockOfAKilledProcessIsRemovedSilently) {
  testing::TempFolder home;
  const std::string document = (home / "Shared.ledgeon").string();
  ASSERT_EQ(testing::runCli({"package", "create", document}, home.path()).exitStatus, 0);
  {
    testing::BackgroundCli holder({"package", "lock", document, "--hold"}, home.path());
    ASSERT_EQ(holder.readLine().rfind("Locked ", 0), 0u);
    kill(holder.pid(), SIGKILL);
    EXPECT_EQ(holder.finish(), 128 + SIGKILL);
  }
  ASSERT_EQ(LDocumentPackage(document).allLocks().size(), 1u);
  auto admitted = testing::runCli({"package", "lock", document}, home.path());
  EXPECT_EQ(admitted.exitStatus, 0) << admitted.err;
  EXPECT_EQ(admitted.err, "");
  EXPECT_TRUE(LDocumentPackage(document).allLocks().empty());
}

// Many processes racing for one free document: never more than one gets it, and none leaves a
// record behind.
TEST(DocumentLockingTest, RacingOpenersNeverShareTheDocument) {
  testing::TempFolder home;
  const std::string document = (home / "Raced.ledgeon").string();
  ASSERT_EQ(testing::runCli({"package", "create", document}, home.path()).exitStatus, 0);
  std::vector<std::unique_ptr<testing::BackgroundCli>> racers;
  for (int i = 0; i < 4; ++i) {
    racers.push_back(std::make_unique<testing::BackgroundCli>(
        std::vector<std::string>{"package", "lock", document, "--hold"}, home.path()));
  }
  int holders = 0;
  for (auto& racer : racers) {
    const std::string line = racer->readLine();
    if (line.rfind("Locked ", 0) == 0) ++holders;
  }
  EXPECT_LE(holders, 1);
  for (auto& racer : racers) racer->finish();
  EXPECT_TRUE(LDocumentPackage(document).allLocks().empty());
}

}  // namespace
}  // namespace ledgeon
