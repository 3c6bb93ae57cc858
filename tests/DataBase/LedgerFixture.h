#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "DataBase/DataBase.h"
#include "Utilities/Clock.h"
#include "support/TestSupport.h"

namespace ledgeon {
inline void PrintTo(const Value& value, std::ostream* os) { *os << value.description(); }
}  // namespace ledgeon

namespace ledgeon::testing {

// A ledger store in a fresh temporary folder, at a fixed "now".
class LedgerTest : public ::testing::Test {
 protected:
  LedgerTest() : clock_(Date(750000000.0)) { db_ = open(true); }

  std::unique_ptr<DataBase> open(bool fresh) {
    auto opened = DataBase::initWithFileURL(storePath(), fresh);
    if (!opened) {
      ADD_FAILURE() << opened.error().localizedDescription();
      return nullptr;
    }
    return std::move(opened).value();
  }
  void reopen() {
    db_.reset();
    db_ = open(false);
  }
  void commit() {
    auto ok = db_->commit();
    ASSERT_TRUE(ok.ok()) << ok.error().localizedDescription();
  }
  std::filesystem::path storePath() const { return folder_ / "data"; }

  LObject& makeCheckingAccount(const std::string& name) {
    LObject& type = db_->createEntity("Checking", {{"name", Value("Checking")}});
    return db_->createEntity(
        "Account", {{"name", Value(name)}, {"currency", Value("USD")}, {"type", Value(&type)}});
  }
  LObject& makeTransaction(LObject& account, const std::string& amount,
                           const std::string& payeeNote = "") {
    LObject& transaction = db_->createEntity(
        "CashFlowTransaction", {{"account", Value(&account)},
                                {"amount", Value(Amount::fromString(amount))},
                                {"note", payeeNote.empty() ? Value() : Value(payeeNote)}});
    db_->createEntity("CashFlowTransactionEntry", {{"parent", Value(&transaction)},
                                                   {"amount", Value(Amount::fromString(amount))},
                                                   {"sequenceNumber", Value(int64_t{0})}});
    return transaction;
  }
  LObject* byLedgeonId(const std::string& entity, int64_t id) {
    const auto found = db_->instancesOfClass(
        entity,
        {.predicate = Predicate::withFormat("ledgeonId == %ld", id), .includeDeleted = true});
    return found.empty() ? nullptr : found.front();
  }

  TempFolder folder_;
  ScopedFixedClock clock_;
  std::unique_ptr<DataBase> db_;
};

}  // namespace ledgeon::testing
