#include <map>
#include <set>

#include <gtest/gtest.h>

#include "DataBase/LedgerFixture.h"

namespace ledgeon::testing {
namespace {

// A committed ledger of two accounts, transactions with categorised and tagged splits, read back
// through a freshly opened store so that nothing starts loaded.
class FetchOptionsTest : public LedgerTest {
 protected:
  FetchOptionsTest() {
    LObject& checking = makeCheckingAccount("Checking");
    LObject& savings = makeCheckingAccount("Savings");
    LObject& rent = db_->createEntity("CategoryTag", {{"name", Value("Rent")}});
    LObject& trip = db_->createEntity("UserTag", {{"name", Value("trip")}});
    for (int i = 0; i < 6; ++i) {
      LObject& transaction = makeTransaction(i % 2 ? checking : savings, std::to_string(i));
      for (LObject* entry : transaction.objectsForKey("entries")) {
        if (i % 3 == 0) entry->editEntityWithData({{"categoryTag", Value(&rent)}});
        if (i % 2 == 0) {
          entry->editEntityWithData({{"userTags", Value(ToManyEdit::adding({&trip}))}});
        }
      }
    }
    db_->createEntity("CashFlowTransaction", {{"note", Value("no account, no splits")}});
    commit();
    reopen();
  }

  static int slotOf(const char* entity, const char* key) {
    return Model::shared().requireEntity(entity).property(key)->index;
  }

  // The ledger identifiers of each transaction's splits, as lazy loading finds them.
  static std::map<int64_t, std::set<int64_t>> splitsOf(const std::vector<LObject*>& transactions) {
    std::map<int64_t, std::set<int64_t>> splits;
    for (LObject* t : transactions) {
      auto& ids = splits[t->integerForKey("ledgeonId")];
      for (LObject* e : t->objectsForKey("entries")) ids.insert(e->integerForKey("ledgeonId"));
    }
    return splits;
  }
};

TEST_F(FetchOptionsTest, FaultsKnowTheirClassAndLoadOnFirstUse) {
  const auto faults =
      db_->instancesOfClass("Transaction", {.sortDescriptors = {{"ledgeonId"}}, .asFaults = true});
  ASSERT_EQ(faults.size(), 7u);
  for (LObject* object : faults) {
    EXPECT_TRUE(object->isFault());
    EXPECT_EQ(object->className(), "CashFlowTransaction");
    EXPECT_TRUE(object->isFault()) << "telling the class must not load the values";
  }
  EXPECT_EQ(faults[3]->amountForKey("amount"), Amount::fromInt64(3));
  EXPECT_FALSE(faults[3]->isFault());
  EXPECT_TRUE(faults[4]->isFault());
  // Objects already loaded stay loaded.
  const auto again = db_->instancesOfClass("Transaction", {.asFaults = true});
  EXPECT_EQ(std::count_if(again.begin(), again.end(), [](LObject* o) { return !o->isFault(); }), 1);
}

TEST_F(FetchOptionsTest, PrefetchedRelationshipsAreLoadedAndMatchLazyLoading) {
  const auto transactions = db_->instancesOfClass(
      "Transaction",
      {.asFaults = true,
       .prefetchKeyPaths = {"account.type", "entries.categoryTag", "entries.userTags"}});
  ASSERT_EQ(transactions.size(), 7u);
  const int entriesSlot = slotOf("Transaction", "entries");
  const int tagsSlot = slotOf("CashFlowTransactionEntry", "userTags");
  size_t categorised = 0, tagged = 0;
  for (LObject* t : transactions) {
    EXPECT_FALSE(t->isFault());
    ASSERT_FALSE(t->primitiveValue(entriesSlot).isNull()) << "entries not prefetched";
    if (LObject* account = t->primitiveValue(slotOf("Transaction", "account")).asObject()) {
      EXPECT_FALSE(account->isFault());
      EXPECT_FALSE(account->objectForKey("type")->isFault());
    }
    for (LObject* entry : t->primitiveValue(entriesSlot).asObjects()) {
      EXPECT_FALSE(entry->isFault());
      ASSERT_FALSE(entry->primitiveValue(tagsSlot).isNull()) << "tags not prefetched";
      if (LObject* category = entry->objectForKey("categoryTag")) {
        EXPECT_FALSE(category->isFault());
        ++categorised;
      }
      for (LObject* tag : entry->primitiveValue(tagsSlot).asObjects()) {
        EXPECT_FALSE(tag->isFault());
        ++tagged;
      }
    }
  }
  EXPECT_EQ(categorised, 2u);
  EXPECT_EQ(tagged, 3u);
  // The same members as a store that loads them one relationship at a time.
  const auto prefetched = splitsOf(transactions);
  reopen();
  EXPECT_EQ(splitsOf(db_->instancesOfClass("Transaction")), prefetched);
}

TEST_F(FetchOptionsTest, PrefetchMergesPendingMembers) {
  LObject* first =
      db_->instancesOfClass("Transaction", {.predicate = Predicate::withFormat("amount == 0")})[0];
  db_->createEntity("CashFlowTransactionEntry", {{"parent", Value(first)}});
  const auto fetched = db_->instancesOfClass(
      "Transaction",
      {.predicate = Predicate::withFormat("amount == 0"), .prefetchKeyPaths = {"entries"}});
  ASSERT_EQ(fetched.size(), 1u);
  EXPECT_EQ(fetched[0]->objectsForKey("entries").size(), 2u);
}

TEST_F(FetchOptionsTest, PrefetchKeyPathsMustNameRelationships) {
  for (const char* keyPath : {"note", "entries.amount", "entries.nothing", "nothing"}) {
    EXPECT_FALSE(db_->fetch("Transaction", {.prefetchKeyPaths = {keyPath}}).ok()) << keyPath;
  }
}

}  // namespace
}  // namespace ledgeon::testing
