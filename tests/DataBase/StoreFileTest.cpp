#include <fstream>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "DataBase/LedgerFixture.h"
#include "Utilities/Log.h"

namespace ledgeon::testing {
namespace {

std::string contents(const std::filesystem::path& file) { return readFile(file); }

void writeFile(const std::filesystem::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

void makeForeignDatabase(const std::filesystem::path& file) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file.string().c_str(), &db), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE recipes (name TEXT); INSERT INTO recipes VALUES ('x')",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(db);
}

// A complete ledger store of a few pages, to damage.
std::string validStoreBytes(const std::filesystem::path& folder) {
  const auto file = folder / "valid";
  {
    auto db = DataBase::initWithFileURL(file, true);
    EXPECT_TRUE(db.ok());
    (*db)->createEntity("Account", {{"name", Value("Cash")}});
    EXPECT_TRUE((*db)->commit().ok());
  }
  sqlite3* db = nullptr;
  sqlite3_open(file.string().c_str(), &db);
  sqlite3_exec(db, "PRAGMA wal_checkpoint(TRUNCATE); PRAGMA journal_mode = DELETE", nullptr,
               nullptr, nullptr);
  sqlite3_close(db);
  return contents(file);
}

TEST(StoreFileTest, BadFilesGiveAClearErrorAndAreNotWritten) {
  TempFolder folder;
  const std::string valid = validStoreBytes(folder.path());
  ASSERT_GT(valid.size(), 8192u);
  struct Case {
    const char* name;
    std::function<void(const std::filesystem::path&)> make;
    const char* message;
  };
  const std::vector<Case> cases = {
      {"text file", [](const auto& f) { writeFile(f, "Date,Amount\n2024-01-01,12.00\n"); },
       "is not a ledger store: not a SQLite database"},
      {"empty file", [](const auto& f) { writeFile(f, ""); }, "not a SQLite database"},
      {"another program's database", [](const auto& f) { makeForeignDatabase(f); },
       "is a SQLite database of another program"},
      {"truncated store", [&](const auto& f) { writeFile(f, valid.substr(0, valid.size() / 2)); },
       "is truncated"},
      {"truncated mid-page", [&](const auto& f) { writeFile(f, valid.substr(0, 5000)); },
       "is truncated"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const auto file = folder / (std::string(c.name) + ".data");
    c.make(file);
    const std::string before = contents(file);
    const auto modified = std::filesystem::last_write_time(file);
    auto db = DataBase::initWithFileURL(file, false);
    ASSERT_FALSE(db.ok());
    EXPECT_NE(db.error().localizedDescription().find(c.message), std::string::npos)
        << db.error().localizedDescription();
    EXPECT_NE(db.error().localizedDescription().find(file.string()), std::string::npos);
    EXPECT_EQ(contents(file), before);
    EXPECT_EQ(std::filesystem::last_write_time(file), modified);
    EXPECT_FALSE(std::filesystem::exists(file.string() + "-wal"));
  }
}

TEST(StoreFileTest, CreatingOverAnExistingFileOrOpeningAMissingOneFails) {
  TempFolder folder;
  writeFile(folder / "data", "keep me");
  EXPECT_FALSE(DataBase::initWithFileURL(folder / "data", true).ok());
  EXPECT_EQ(contents(folder / "data"), "keep me");
  EXPECT_FALSE(DataBase::initWithFileURL(folder / "missing", false).ok());
}

TEST(StoreFileTest, StoreRecordsModelVersionAndEntityHashes) {
  TempFolder folder;
  auto db = DataBase::initWithFileURL(folder / "data", true);
  ASSERT_TRUE(db.ok());
  const auto metadata = (*db)->storeMetadata();
  EXPECT_EQ(metadata.at("modelVersion"), Model::kVersionName);
  EXPECT_EQ(metadata.at("entityHash:Transaction"),
            Model::shared().requireEntity("Transaction").versionHash);
  EXPECT_EQ(metadata.size(), Model::shared().entities().size() + 1);
}

using RepairTest = LedgerTest;

TEST_F(RepairTest, StoredNaNAmountsAndLaggingCountersAreRepairedOnOpen) {
  LObject& account = makeCheckingAccount("Cash");
  makeTransaction(account, "10");
  makeTransaction(account, "20");
  commit();
  db_.reset();
  sqlite3* raw = nullptr;
  sqlite3_open(storePath().string().c_str(), &raw);
  sqlite3_exec(raw,
               "UPDATE \"Transaction\" SET amount = 'NaN' WHERE ledgeonId = 2;"
               "UPDATE \"DocumentProperty\" SET stringValue = '1' WHERE name = "
               "'CashFlowTransactionId'",
               nullptr, nullptr, nullptr);
  sqlite3_close(raw);
  LogCapture log;
  db_ = open(false);
  EXPECT_TRUE(log.contains("Repaired 1 NaN values of Transaction.amount"));
  EXPECT_TRUE(log.contains("Raised the document property CashFlowTransactionId from 1 to 2"));
  EXPECT_EQ(byLedgeonId("CashFlowTransaction", 2)->amountForKey("amount"), Amount::zero());
  EXPECT_EQ(makeTransaction(*byLedgeonId("Account", 1), "1").integerForKey("ledgeonId"), 3);
}

}  // namespace
}  // namespace ledgeon::testing
