#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "DataBase/LedgerFixture.h"
#include "Utilities/Log.h"

namespace ledgeon::testing {
namespace {

using ReaderCommitterTest = LedgerTest;

// Every commit adds one transaction and its one split, so a reader that ever sees the two counts
// differ has seen half a commit.
TEST_F(ReaderCommitterTest, ReadersNeverSeeHalfACommitAndNobodyDeadlocks) {
  LObject& account = makeCheckingAccount("Main");
  commit();
  std::atomic<bool> done{false};
  std::atomic<int> reads{0};
  std::atomic<int> torn{0};
  std::atomic<int> failures{0};
  auto reader = [&] {
    while (!done) {
      db_->lockForBackgroundReading();
      auto transactions = db_->backgroundCountForInstancesOfClass("Transaction");
      std::this_thread::yield();
      auto entries = db_->backgroundCountForInstancesOfClass("CashFlowTransactionEntry");
      db_->unlockForBackgroundReading();
      if (!transactions.ok() || !entries.ok()) {
        ++failures;
      } else if (*transactions != *entries) {
        ++torn;
      }
      ++reads;
    }
    db_->releaseBackgroundConnection();
  };
  std::thread first(reader);
  std::thread second(reader);
  for (int i = 0; i < 40; ++i) {
    makeTransaction(account, std::to_string(i));
    commit();
  }
  while (reads < 20) std::this_thread::yield();
  done = true;
  first.join();
  second.join();
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(db_->countForInstancesOfClass("Transaction"), 40u);
}

TEST_F(ReaderCommitterTest, MisuseOfTheLocksIsLogged) {
  LogCapture log;
  db_->unlockForBackgroundReading();
  EXPECT_TRUE(log.contains("ERROR: Trying to call -unlockForBackgroundReader: when not locked"));
  std::thread([&] { db_->lockForCommit(); }).join();
  EXPECT_TRUE(
      log.contains("ERROR: Trying to call -lockForCommit on a thread other than the main thread"));
  EXPECT_FALSE(db_->isCurrentThreadLockedForBackgroundReading());
  db_->lockForBackgroundReading();
  EXPECT_TRUE(db_->isCurrentThreadLockedForBackgroundReading());
  db_->unlockForBackgroundReading();
}

}  // namespace
}  // namespace ledgeon::testing
