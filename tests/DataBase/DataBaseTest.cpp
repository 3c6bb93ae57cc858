#include <gtest/gtest.h>
#include <sqlite3.h>

#include "DataBase/DataBaseNotifications.h"
#include "DataBase/LedgerFixture.h"
#include "LObjects/ClassMetadata.h"
#include "Utilities/Log.h"
#include "Utilities/NotificationCenter.h"

namespace ledgeon::testing {
namespace {

using DataBaseTest = LedgerTest;

void runSQL(const std::filesystem::path& file, const std::string& text) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file.string().c_str(), &db), SQLITE_OK);
  char* message = nullptr;
  const int rc = sqlite3_exec(db, text.c_str(), nullptr, nullptr, &message);
  const std::string error = message ? message : "";
  sqlite3_free(message);
  sqlite3_close(db);
  ASSERT_EQ(rc, SQLITE_OK) << error;
}

TEST_F(DataBaseTest, IdentifiersArePerClassStartAtOneAndAreNeverReused) {
  LObject& first = makeCheckingAccount("First");
  LObject& second = makeCheckingAccount("Second");
  LObject& transaction = makeTransaction(first, "12.50");
  EXPECT_EQ(first.integerForKey("ledgeonId"), 1);
  EXPECT_EQ(second.integerForKey("ledgeonId"), 2);
  EXPECT_EQ(transaction.integerForKey("ledgeonId"), 1);
  EXPECT_EQ(transaction.integerForKey("orderID"), 1);
  commit();
  db_->deleteEntity(second);
  commit();
  reopen();
  EXPECT_EQ(db_->countForInstancesOfClass("Account"), 1u);
  LObject& third = makeCheckingAccount("Third");
  EXPECT_EQ(third.integerForKey("ledgeonId"), 3);
  EXPECT_EQ(db_->valueForDocumentPropertyNamed("AccountId"), Value("3"));
  EXPECT_EQ(makeTransaction(third, "1").integerForKey("orderID"), 2);
}

TEST_F(DataBaseTest, SoftDeletionIsACounterThatNestedDeletesAndUndeletesBalance) {
  LObject& account = makeCheckingAccount("Cash");
  commit();
  std::vector<std::string> posted;
  ScopedObserver observer(NotificationCenter::defaultCenter(), "", [&](const Notification& n) {
    if (n.object == &account) posted.push_back(n.name);
  });
  const Date later(750000100.0);
  ScopedFixedClock clock(later);
  account.deleteLObject();
  account.deleteLObject();
  EXPECT_EQ(account.integerForKey("deletionCount"), 2);
  EXPECT_EQ(account.valueForKey("modificationTimestamp"), Value(later));
  account.undeleteLObject();
  EXPECT_TRUE(account.isLObjectDeleted());
  EXPECT_TRUE(db_->instancesOfClass("Account").empty());
  EXPECT_EQ(db_->instancesOfClass("Account", {.includeDeleted = true}).size(), 1u);
  account.undeleteLObject();
  account.undeleteLObject();  // never below zero
  EXPECT_EQ(account.integerForKey("deletionCount"), 0);
  EXPECT_EQ(posted, (std::vector<std::string>{"DeleteAccount", "DeleteAccount", "AddAccount",
                                              "AddAccount", "AddAccount"}));
  commit();
  reopen();
  EXPECT_EQ(db_->countForInstancesOfClass("Account"), 1u);
}

TEST_F(DataBaseTest, EditDictionaryAndItsInverseRestoreEveryKindOfProperty) {
  LObject& checking = makeCheckingAccount("Checking");
  LObject& savings = makeCheckingAccount("Savings");
  LObject& transaction = makeTransaction(checking, "-40.00", "groceries");
  LObject& red = db_->createEntity("UserTag", {{"name", Value("red")}});
  LObject& blue = db_->createEntity("UserTag", {{"name", Value("blue")}});
  LObject& green = db_->createEntity("UserTag", {{"name", Value("green")}});
  LObject& entry = *transaction.objectsForKey("entries").front();
  entry.editEntityWithData({{"userTags", Value(ToManyEdit::adding({&red, &blue}))}});
  commit();

  struct Case {
    const char* name;
    LObject* object;
    EditDict edit;
  };
  LObject& extra = db_->createEntity("CashFlowTransactionEntry", {{"amount", Value(1)}});
  const std::vector<Case> cases = {
      {"attributes",
       &transaction,
       {{"amount", Value(Amount::fromString("-41.07"))},
        {"note", Value()},
        {"reconcileStatus", Value(2)},
        {"postedDate", Value(Date(750001234.0))}}},
      {"to-one", &transaction, {{"account", Value(&savings)}}},
      {"to-one cleared", &transaction, {{"account", Value()}}},
      {"many-to-many add", &entry, {{"userTags", Value(ToManyEdit::adding({&green, &red}))}}},
      {"many-to-many remove", &entry, {{"userTags", Value(ToManyEdit::removing({&blue}))}}},
      {"many-to-many replace", &entry, {{"userTags", Value(ToManyEdit::replacing({&green}))}}},
      {"one-to-many add", &transaction, {{"entries", Value(ToManyEdit::adding({&extra}))}}},
      {"one-to-many replace", &transaction, {{"entries", Value(ToManyEdit::replacing({&extra}))}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    LObject& object = *c.object;
    std::map<std::string, Value> before;
    for (const auto& [key, value] : c.edit) before[key] = object.valueForKey(key);
    const EditDict undo = object.undoEditDictForDictionary(c.edit);
    object.editEntityWithData(c.edit);
    for (const auto& [key, value] : c.edit) {
      if (value.kind() != Value::Kind::Edit) {
        EXPECT_EQ(object.valueForKey(key), value);
      }
    }
    object.editEntityWithData(undo);
    for (const auto& [key, value] : before) {
      Value now = object.valueForKey(key);
      if (now.kind() == Value::Kind::Objects) {
        ObjectSet a = now.asObjects(), b = value.asObjects();
        std::sort(a.begin(), a.end());
        std::sort(b.begin(), b.end());
        EXPECT_EQ(a, b) << key;
      } else {
        EXPECT_EQ(now, value) << key;
      }
    }
  }
  // Inverses followed every edit: the entry belongs to its transaction again, and extra to none.
  EXPECT_EQ(entry.objectForKey("parent"), &transaction);
  EXPECT_EQ(extra.objectForKey("parent"), nullptr);
  EXPECT_EQ(red.objectsForKey("taggedEntries"), ObjectSet{&entry});
  commit();
  reopen();
  LObject* stored = byLedgeonId("CashFlowTransactionEntry", 1);
  ASSERT_NE(stored, nullptr);
  std::set<std::string> tags;
  for (LObject* tag : stored->objectsForKey("userTags")) tags.insert(tag->stringForKey("name"));
  EXPECT_EQ(tags, (std::set<std::string>{"red", "blue"}));
  EXPECT_EQ(stored->objectForKey("parent")->amountForKey("amount"), Amount::fromString("-40"));
}

TEST_F(DataBaseTest, UnknownKeysAndNaNValuesAreLoggedAndSkipped) {
  LObject& account = makeCheckingAccount("Cash");
  LogCapture log;
  account.editEntityWithData({{"colour", Value("red")},
                              {"creditLimit", Value(Amount::notANumber())},
                              {"notes", Value("kept")}});
  EXPECT_TRUE(log.contains("ERROR: -[Account editEntityWithData:] unknown key: colour"));
  EXPECT_TRUE(log.contains(
      "ERROR: Trying to store a NaN value for the key \"creditLimit\" in the following object: "
      "<Account "));
  EXPECT_EQ(account.stringForKey("notes"), "kept");
  EXPECT_TRUE(account.valueForKey("creditLimit").isNull());
  const EditDict undo = account.undoEditDictForDictionary({{"flavour", Value(1)}});
  EXPECT_TRUE(undo.empty());
  EXPECT_TRUE(log.contains("ERROR: -[Account undoEditDictForDictionary:] unknown key: flavour"));
}

TEST_F(DataBaseTest, CommitClassifiesAddedChangedAndDeletedObjects) {
  LObject& kept = makeCheckingAccount("Kept");
  LObject& toDelete = makeCheckingAccount("ToDelete");
  LObject& toRestore = makeCheckingAccount("ToRestore");
  toRestore.deleteLObject();
  commit();

  UserInfo info;
  std::vector<std::string> order;
  ScopedObserver changing(NotificationCenter::defaultCenter(), kLDataBaseChanging,
                          [&](const Notification&) { order.push_back(kLDataBaseChanging); });
  ScopedObserver changed(NotificationCenter::defaultCenter(), kLDataBaseChanged,
                         [&](const Notification& n) {
                           order.push_back(kLDataBaseChanged);
                           info = std::any_cast<UserInfo>(n.userInfo);
                         });
  LObject& fresh = makeCheckingAccount("Fresh");
  LObject& stillborn = makeCheckingAccount("Stillborn");
  stillborn.deleteLObject();
  kept.editEntityWithData({{"notes", Value("changed")}});
  toDelete.deleteLObject();
  toRestore.undeleteLObject();
  commit();

  auto names = [&](const char* key) {
    std::set<std::string> result;
    for (LObject* o : std::any_cast<ObjectSet>(info.at(key))) {
      result.insert(o->className() + ":" + o->stringForKey("name"));
    }
    return result;
  };
  EXPECT_EQ(order, (std::vector<std::string>{kLDataBaseChanging, kLDataBaseChanged}));
  EXPECT_EQ(names(kAddedObjectsKey),
            (std::set<std::string>{"Account:Fresh", "Account:ToRestore", "Checking:Checking"}));
  EXPECT_EQ(names(kChangedObjectsKey), (std::set<std::string>{"Account:Kept"}));
  EXPECT_EQ(names(kDeletedObjectsKey), (std::set<std::string>{"Account:ToDelete"}));
  EXPECT_EQ(std::any_cast<std::set<std::string>>(info.at(kChangedDocumentPropertiesKey)),
            (std::set<std::string>{"AccountId", "CheckingId"}));
  (void)fresh;
  EXPECT_FALSE(db_->hasChanges());
  order.clear();
  EXPECT_TRUE(db_->commit().ok());
  EXPECT_TRUE(order.empty());  // nothing to commit, nothing posted
}

TEST_F(DataBaseTest, ChangeNotificationsOnlyForRegisteredKeys) {
  LObject& account = makeCheckingAccount("Cash");
  commit();
  bool committedCalled = false;
  registerKeysForChangeNotification(
      "Account", {{"name", "currency"}, [&](LObjectContext&) { committedCalled = true; }});
  std::vector<UserInfo> seen;
  ScopedObserver observer(
      NotificationCenter::defaultCenter(), "ChangeAccount",
      [&](const Notification& n) { seen.push_back(std::any_cast<UserInfo>(n.userInfo)); });
  account.editEntityWithData({{"notes", Value("not registered")}});
  commit();
  EXPECT_TRUE(seen.empty());
  EXPECT_TRUE(committedCalled);
  account.editEntityWithData({{"name", Value("Wallet")}});
  commit();
  unregisterKeysForChangeNotification("Account");
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(std::any_cast<LObject*>(seen[0].at(kChangedObjectKey)), &account);
  const auto changedValues = std::any_cast<EditDict>(seen[0].at(kChangedValuesKey));
  const auto oldValues = std::any_cast<EditDict>(seen[0].at(kOldValuesKey));
  EXPECT_EQ(*changedValues.find("name"), Value("Wallet"));
  EXPECT_EQ(*oldValues.find("name"), Value("Cash"));
}

TEST_F(DataBaseTest, AFailedCommitIsLoggedReportedAndKeepsTheChanges) {
  commit();
  runSQL(storePath(),
         "CREATE TRIGGER refuse BEFORE INSERT ON \"Account\" BEGIN SELECT RAISE(ABORT, "
         "'refused by test'); END;");
  makeCheckingAccount("Refused");
  LogCapture log;
  bool failedPosted = false;
  ScopedObserver observer(NotificationCenter::defaultCenter(), kLDataBaseChangeFailed,
                          [&](const Notification&) { failedPosted = true; });
  const auto result = db_->commit();
  ASSERT_FALSE(result.ok());
  EXPECT_NE(result.error().localizedDescription().find("refused by test"), std::string::npos);
  EXPECT_TRUE(failedPosted);
  EXPECT_TRUE(log.contains("COMMIT ERROR : "));
  EXPECT_TRUE(db_->hasChanges());
  runSQL(storePath(), "DROP TRIGGER refuse");
  commit();
  reopen();
  EXPECT_EQ(db_->countForInstancesOfClass("Account"), 1u);
}

TEST_F(DataBaseTest, ValuesSurviveTheStoreExactly) {
  LObject& account = makeCheckingAccount("Brokerage");
  account.editEntityWithData(
      {{"creditLimit", Value(Amount::fromString("12345678901234567890.123456789"))},
       {"reconcileInfo", Value(PropertyList{{"statementDate", "2024-01-31"}})},
       {"reviewedTimestamp", Value(Date(123456.5))},
       {"syncWithCloud", Value(true)}});
  commit();
  reopen();
  LObject* stored = byLedgeonId("Account", 1);
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(stored->amountForKey("creditLimit").stringValue(), "12345678901234567890.123456789");
  EXPECT_EQ(stored->valueForKey("reconcileInfo").asDictionary().at("statementDate"), "2024-01-31");
  EXPECT_EQ(stored->valueForKey("reviewedTimestamp"), Value(Date(123456.5)));
  EXPECT_EQ(stored->integerForKey("syncWithCloud"), 1);
  EXPECT_EQ(stored->objectForKey("type")->className(), "Checking");
  EXPECT_EQ(stored->valueForKey("creationTimestamp"), Value(Date(750000000.0)));
}

TEST_F(DataBaseTest, FetchesSeePendingChanges) {
  LObject& account = makeCheckingAccount("Main");
  LObject& small = makeTransaction(account, "5");
  LObject& large = makeTransaction(account, "500");
  commit();
  const Predicate over100 = Predicate::withFormat("amount > %@", Amount::fromInt64(100));
  EXPECT_EQ(db_->instancesOfClass("Transaction", {.predicate = over100}), ObjectSet{&large});
  small.editEntityWithData({{"amount", Value(Amount::fromInt64(1000))}});
  large.editEntityWithData({{"amount", Value(Amount::fromInt64(1))}});
  LObject& fresh = makeTransaction(account, "250");
  EXPECT_EQ(db_->instancesOfClass("Transaction",
                                  {.predicate = over100, .sortDescriptors = {{"amount", false}}}),
            (ObjectSet{&small, &fresh}));
  EXPECT_EQ(db_->countForInstancesOfClass("Transaction", over100), 2u);
  EXPECT_EQ(account.objectsForKey("transactions").size(), 3u);
  commit();
  EXPECT_EQ(db_->countForInstancesOfClass("Transaction", over100), 2u);
  EXPECT_EQ(db_->instancesOfClass("Transaction",
                                  {.sortDescriptors = {{"amount", true}}, .fetchLimit = 1}),
            ObjectSet{&large});
}

TEST_F(DataBaseTest, ResetDropsUncommittedWork) {
  makeCheckingAccount("Committed");
  commit();
  makeCheckingAccount("Dropped");
  EXPECT_TRUE(db_->hasChanges());
  db_->reset();
  EXPECT_FALSE(db_->hasChanges());
  EXPECT_EQ(db_->countForInstancesOfClass("Account"), 1u);
  EXPECT_EQ(makeCheckingAccount("Next").integerForKey("ledgeonId"), 2);
}

TEST_F(DataBaseTest, DictionariesGivePlainValuesOfTheCommittedStore) {
  LObject& account = makeCheckingAccount("Main");
  makeTransaction(account, "10.10", "a");
  makeTransaction(account, "20.20", "b");
  commit();
  auto rows = db_->dictionariesForClass("Transaction", {"note", "amount", "account"},
                                        {.sortDescriptors = {{"note", false}}});
  ASSERT_TRUE(rows.ok());
  ASSERT_EQ(rows->size(), 2u);
  EXPECT_EQ(*rows->at(0).find("note"), Value("b"));
  EXPECT_EQ(*rows->at(0).find("amount"), Value(Amount::fromString("20.2")));
  EXPECT_EQ(*rows->at(0).find("account"), Value(account.primaryKey()));
  EXPECT_FALSE(db_->dictionariesForClass("Transaction", {"entries"}).ok());
  EXPECT_FALSE(db_->dictionariesForClass("Nonsense", {}).ok());
}

}  // namespace
}  // namespace ledgeon::testing
