#include <set>

#include <gtest/gtest.h>

#include "DataBase/LedgerFixture.h"

namespace ledgeon::testing {
namespace {

// Transactions with no split, one split, and several splits with categories, user tags (a
// many-to-many relationship), null and negative amounts; every predicate through a to-many
// relationship must select the same rows compiled to SQL as evaluated in memory.
class ToManyPredicateTest : public LedgerTest {
 protected:
  ToManyPredicateTest() {
    account_ = &makeCheckingAccount("Checking");
    rent_ = &db_->createEntity("CategoryTag", {{"name", Value("Rent")}});
    food_ = &db_->createEntity("CategoryTag", {{"name", Value("Food")}});
    trip_ = &db_->createEntity("UserTag", {{"name", Value("trip")}});
    work_ = &db_->createEntity("UserTag", {{"name", Value("work")}});
    add("none", {});
    add("one", {{"-12.50", rent_, {trip_}}});
    add("two", {{"100", food_, {trip_, work_}}, {"-3", rent_, {}}});
    add("three", {{"40", food_, {work_}}, {nullptr, nullptr, {}}, {"40.00", food_, {}}});
    add("negatives", {{"-1", nullptr, {}}, {"-2", nullptr, {}}});
    commit();
  }

  struct Split {
    const char* amount;
    LObject* category;
    ObjectSet tags;
  };
  void add(const char* note, const std::vector<Split>& splits) {
    LObject& transaction = db_->createEntity("CashFlowTransaction",
                                             {{"account", Value(account_)}, {"note", Value(note)}});
    int64_t sequence = 0;
    for (const Split& split : splits) {
      EditDict data{{"parent", Value(&transaction)}, {"sequenceNumber", Value(sequence++)}};
      if (split.amount) data.set("amount", Value(Amount::fromString(split.amount)));
      if (split.category) data.set("categoryTag", Value(split.category));
      if (!split.tags.empty()) data.set("userTags", Value(ToManyEdit::adding(split.tags)));
      db_->createEntity("CashFlowTransactionEntry", data);
    }
  }

  std::set<std::string> notes(const std::vector<LObject*>& objects) {
    std::set<std::string> result;
    for (LObject* o : objects) result.insert(o->stringForKey("note"));
    return result;
  }

  LObject* account_ = nullptr;
  LObject* rent_ = nullptr;
  LObject* food_ = nullptr;
  LObject* trip_ = nullptr;
  LObject* work_ = nullptr;
};

using Notes = std::set<std::string>;

TEST_F(ToManyPredicateTest, SQLAndInMemoryEvaluationAgree) {
  struct Case {
    const char* format;
    std::vector<Value> arguments;
    Notes expected;
  };
  const std::vector<Case> cases = {
      {"ANY entries.amount > 10", {}, {"two", "three"}},
      {"entries.amount > 10", {}, {"two", "three"}},  // no quantifier means ANY
      {"SOME entries.amount < 0", {}, {"one", "two", "negatives"}},
      {"ALL entries.amount < 0", {}, {"none", "one", "negatives"}},  // vacuous for none
      {"NONE entries.amount < 0", {}, {"none", "three"}},
      {"NOT (ANY entries.amount < 0)", {}, {"none", "three"}},
      {"ANY entries.amount == nil", {}, {"three"}},
      {"ANY entries.amount IN {40, -2}", {}, {"three", "negatives"}},
      {"ANY entries.categoryTag.name == 'Rent'", {}, {"one", "two"}},
      {"ANY entries.categoryTag == %@", {}, {"two", "three"}},
      {"ALL entries.categoryTag.name beginswith[c] 'f'", {}, {"none"}},
      {"entries.@count == 0", {}, {"none"}},
      {"entries.@count >= 2", {}, {"two", "three", "negatives"}},
      {"entries.@sum.amount == 0", {}, {"none"}},
      {"entries.@sum.amount == 97", {}, {"two"}},
      {"entries.@sum.amount == %@", {Value(Amount::fromString("80.00"))}, {"three"}},
      {"entries.@sum.amount < 0", {}, {"one", "negatives"}},
      {"entries.@avg.amount == 40", {}, {"three"}},  // the null split is not averaged
      {"entries.@avg.amount == -1.5", {}, {"negatives"}},
      {"entries.@avg.amount == nil", {}, {"none"}},
      {"entries.@min.amount == -3", {}, {"two"}},
      {"entries.@max.amount > 50", {}, {"two"}},
      {"entries.@max.sequenceNumber == 2", {}, {"three"}},
      {"account.transactions.@count == 5 AND entries.@count == 1", {}, {"one"}},
      {"ANY account.transactions.note == 'two'", {}, {"none", "one", "two", "three", "negatives"}},
      {"ANY entries.amount > 0 AND NONE entries.categoryTag.name == 'Food'", {}, {}},
      {"ANY entries.amount > 0 OR entries.@count == 0", {}, {"none", "two", "three"}},
  };
  const auto everything = db_->instancesOfClass("Transaction");
  ASSERT_EQ(everything.size(), 5u);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.format);
    std::vector<Value> arguments = c.arguments;
    if (std::string(c.format) == "ANY entries.categoryTag == %@") arguments = {Value(food_)};
    auto predicate = Predicate::parse(c.format, arguments);
    ASSERT_TRUE(predicate.ok()) << predicate.error().localizedDescription();
    auto fromSQL = db_->fetch("Transaction", {.predicate = *predicate});
    ASSERT_TRUE(fromSQL.ok()) << fromSQL.error().localizedDescription();
    std::vector<LObject*> inMemory;
    for (LObject* o : everything) {
      if (predicate->evaluate(*o)) inMemory.push_back(o);
    }
    EXPECT_EQ(notes(*fromSQL), c.expected) << predicate->description();
    EXPECT_EQ(notes(inMemory), c.expected) << predicate->description();
    EXPECT_EQ(db_->countForInstancesOfClass("Transaction", *predicate), c.expected.size());
  }
}

TEST_F(ToManyPredicateTest, ManyToManyRelationshipsAgreeToo) {
  struct Case {
    const char* entity;
    const char* format;
    size_t expected;
  };
  const Case cases[] = {
      {"CashFlowTransactionEntry", "ANY userTags.name == 'trip'", 2},
      {"CashFlowTransactionEntry", "userTags.@count == 2", 1},
      {"CashFlowTransactionEntry", "NONE userTags.name == 'work'", 6},
      {"UserTag", "ANY taggedEntries.amount > 50", 2},
      {"UserTag", "taggedEntries.@sum.amount == 140", 1},
      {"UserTag", "ALL taggedEntries.parent.note IN {'one', 'two'}", 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.format);
    const Predicate predicate = Predicate::withFormat(c.format);
    const auto fromSQL = db_->instancesOfClass(c.entity, {.predicate = predicate});
    size_t inMemory = 0;
    for (LObject* o : db_->instancesOfClass(c.entity)) {
      if (predicate.evaluate(*o)) ++inMemory;
    }
    EXPECT_EQ(fromSQL.size(), c.expected);
    EXPECT_EQ(inMemory, c.expected);
  }
}

TEST_F(ToManyPredicateTest, PendingChangesAreJudgedTheSameWay) {
  // A new split on a committed transaction: the fetch must see it before the commit.
  LObject* none = db_->instancesOfClass("Transaction",
                                        {.predicate = Predicate::withFormat("note == 'none'")})[0];
  db_->createEntity("CashFlowTransactionEntry",
                    {{"parent", Value(none)}, {"amount", Value(Amount::fromInt64(500))}});
  const Predicate predicate = Predicate::withFormat("ANY entries.amount > 400");
  EXPECT_EQ(notes(db_->instancesOfClass("Transaction", {.predicate = predicate})), Notes{"none"});
  commit();
  EXPECT_EQ(notes(db_->instancesOfClass("Transaction", {.predicate = predicate})), Notes{"none"});
}

TEST_F(ToManyPredicateTest, KeyPathsTheStoreCannotAnswerAreErrors) {
  const char* const invalid[] = {
      "ANY entries.userTags.name == 'trip'",  // two to-many relationships
      "ANY amount > 1",                       // ANY without a to-many relationship
      "entries.@sum.note > 1",                // folding text
      "entries.@count.amount > 1",            // continuing after @count
      "entries.@sum > 1",                     // a fold needs its attribute
      "entries.@median.amount > 1",           // no such aggregate
      "amount.@count > 1",                    // an aggregate after an attribute
      "entries.amount == account.transactions.amount",
  };
  for (const char* format : invalid) {
    auto predicate = Predicate::parse(format);
    ASSERT_TRUE(predicate.ok()) << format;
    EXPECT_FALSE(db_->fetch("Transaction", {.predicate = *predicate}).ok()) << format;
  }
  EXPECT_FALSE(db_->fetch("Transaction", {.sortDescriptors = {{"entries.amount"}}}).ok());
}

}  // namespace
}  // namespace ledgeon::testing
