#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DataBase/DataBase.h"
#include "LObjects/LObject.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

class DataBaseRollbackTest : public ::testing::Test {
 protected:
  void SetUp() override {
    db_ = DataBase::initWithFileURL(folder_ / "data", true).value();
    type_ = &db_->createEntity("Checking", {{"name", Value("CHECKING")}});
    account_ = &db_->createEntity(
        "Account", {{"name", Value("Checking")}, {"type", Value(type_)}, {"notes", Value("a")}});
    ASSERT_TRUE(db_->commit().ok());
  }
  std::vector<std::string> names(const char* entity) {
    std::vector<std::string> found;
    for (LObject* object : db_->instancesOfClass(entity, {.includeDeleted = true})) {
      found.push_back(object->stringForKey("name"));
    }
    return found;
  }

  testing::TempFolder folder_;
  std::unique_ptr<DataBase> db_;
  LObject* type_ = nullptr;
  LObject* account_ = nullptr;
};

TEST_F(DataBaseRollbackTest, ChangesInsertsAndRemovalsAllGoBack) {
  LObject& savings =
      db_->createEntity("Account", {{"name", Value("Savings")}, {"type", Value(type_)}});
  db_->createEntity("CashFlowTransaction",
                    {{"account", Value(&savings)}, {"amount", Value(Amount::fromString("5"))}});
  db_->createEntity("CashFlowTransaction",
                    {{"account", Value(account_)}, {"amount", Value(Amount::fromString("7"))}});
  account_->editEntityWithData({{"notes", Value("b")}, {"name", Value("Renamed")}});
  account_->deleteLObject();
  db_->deleteEntity(*type_);
  ASSERT_TRUE(db_->hasChanges());

  db_->rollback();
  EXPECT_FALSE(db_->hasChanges());
  EXPECT_EQ(names("Account"), (std::vector<std::string>{"Checking"}));
  EXPECT_EQ(account_->stringForKey("notes"), "a");
  EXPECT_FALSE(account_->isLObjectDeleted());
  EXPECT_TRUE(account_->objectsForKey("transactions").empty());
  // The removed object came back from its row, links and all.
  EXPECT_EQ(account_->objectForKey("type"), type_);
  EXPECT_EQ(type_->stringForKey("name"), "CHECKING");
  EXPECT_EQ(type_->objectsForKey("accounts"), ObjectSet{account_});
  EXPECT_EQ(db_->countForInstancesOfClass("Transaction"), 0u);
  // Identifiers handed to what was dropped are never seen again, and work goes on.
  LObject& next = db_->createEntity("Account", {{"name", Value("Next")}});
  EXPECT_EQ(next.integerForKey("ledgeonId"), 2);
  ASSERT_TRUE(db_->commit().ok());
  EXPECT_EQ(names("Account"), (std::vector<std::string>{"Checking", "Next"}));
}

TEST_F(DataBaseRollbackTest, NothingPendingIsANoOp) {
  db_->rollback();
  EXPECT_FALSE(db_->hasChanges());
  EXPECT_EQ(account_->stringForKey("name"), "Checking");
}

}  // namespace
}  // namespace ledgeon
