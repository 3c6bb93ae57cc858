#include <algorithm>

#include <gtest/gtest.h>

#include "DataBase/LedgerFixture.h"

namespace ledgeon::testing {
namespace {

// Six transactions that between them hold nulls, signs, huge amounts, case and accents, and a
// soft-deleted one; every predicate below must select the same rows in SQL and in memory.
class PredicateTest : public LedgerTest {
 protected:
  PredicateTest() {
    checking_ = &makeCheckingAccount("Checking");
    checking_->editEntityWithData({{"syncWithCloud", Value(1)}});
    savings_ = &makeCheckingAccount("Savings");
    savings_->editEntityWithData({{"syncWithCloud", Value(0)}});
    add("CashFlowTransaction", checking_, "-40.00", "Groceries", 0, "s1");
    add("CashFlowTransaction", checking_, "1000.5", "Salary", 2, nullptr);
    add("CashFlowTransaction", savings_, "0", nullptr, 1, nullptr);
    add("CashFlowTransaction", nullptr, nullptr, "café Ünïcode", -1, nullptr);
    add("CashFlowTransaction", savings_, "99999999999999999999.99", "groceries too", 0, "s5")
        .deleteLObject();
    add("InvestmentTransaction", checking_, "-5", "*star?", 0, nullptr)
        .editEntityWithData({{"type", Value(3)}});
    commit();
  }

  LObject& add(const char* entity, LObject* account, const char* amount, const char* note,
               int status, const char* syncID) {
    EditDict data;
    if (account) data.set("account", Value(account));
    if (amount) data.set("amount", Value(Amount::fromString(amount)));
    if (note) data.set("note", Value(note));
    if (status >= 0) data.set("reconcileStatus", Value(status));
    if (syncID) data.set("syncID", Value(syncID));
    return db_->createEntity(entity, data);
  }

  std::set<std::string> notes(const std::vector<LObject*>& objects) {
    std::set<std::string> result;
    for (LObject* o : objects) {
      result.insert(o->className().substr(0, 3) + ":" + o->valueForKey("note").description());
    }
    return result;
  }

  LObject* checking_ = nullptr;
  LObject* savings_ = nullptr;
};

TEST_F(PredicateTest, SQLAndInMemoryEvaluationAgreeOnEveryRow) {
  struct Case {
    const char* format;
    std::vector<Value> arguments;
    size_t expected;
  };
  const std::vector<Case> cases = {
      {"amount > 0", {}, 2},
      {"amount >= %@", {Value(Amount::zero())}, 3},
      {"amount < -10", {}, 1},
      {"amount == 0", {}, 1},
      {"amount != 0", {}, 5},
      {"amount == nil", {}, 1},
      {"amount != NULL", {}, 5},
      {"amount == 1000.50", {}, 1},
      {"amount > 99999999999999999999.98", {}, 1},
      {"amount > 1000 OR amount < -1", {}, 4},
      {"note like[c] 'groc*'", {}, 2},
      {"note like 'groc*'", {}, 1},
      {"note LIKE '?alary'", {}, 1},
      {"note like '\\*star\\?'", {}, 1},
      {"note contains[c] 'ÜNÏ'", {}, 1},
      {"note beginswith 'Sal'", {}, 1},
      {"note endswith[c] 'TOO'", {}, 1},
      {"note ==[c] 'SALARY'", {}, 1},
      {"note == 'SALARY'", {}, 0},
      {"NOT note contains 'a'", {}, 3},
      {"reconcileStatus IN {1, 2}", {}, 2},
      {"NOT (reconcileStatus IN {1, 2})", {}, 4},
      {"reconcileStatus in %@", {Value(ValueList{Value(0), Value(7)})}, 3},
      {"account.name == 'Checking'", {}, 3},
      {"account.syncWithCloud == 1 AND syncID != nil", {}, 1},
      {"(syncID != NULL AND modificationTimestamp > %@) OR account.syncWithCloud == 0",
       {Value(Date(749999999.0))},
       3},
      {"account == %@", {}, 3},
      {"account IN %@", {}, 2},
      {"%K == %ld", {Value("reconcileStatus"), Value(2)}, 1},
      {"%K beginswith %@", {Value("note"), Value("Gro")}, 1},
      {"account.type.name == 'Checking' && !(type == 3)", {}, 4},
      {"TRUEPREDICATE", {}, 6},
      {"FALSEPREDICATE", {}, 0},
      {"enteredDate == nil AND deletionCount >= 0", {}, 6},
      {"deletionCount == 1", {}, 1},
  };
  const auto everything = db_->instancesOfClass("Transaction", {.includeDeleted = true});
  ASSERT_EQ(everything.size(), 6u);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.format);
    std::vector<Value> arguments = c.arguments;
    if (std::string(c.format) == "account == %@") arguments = {Value(checking_)};
    if (std::string(c.format) == "account IN %@") arguments = {Value(ObjectSet{savings_})};
    auto predicate = Predicate::parse(c.format, arguments);
    ASSERT_TRUE(predicate.ok()) << predicate.error().localizedDescription();
    auto fromSQL = db_->fetch("Transaction", {.predicate = *predicate, .includeDeleted = true});
    ASSERT_TRUE(fromSQL.ok()) << fromSQL.error().localizedDescription();
    std::vector<LObject*> inMemory;
    for (LObject* o : everything) {
      if (predicate->evaluate(*o)) inMemory.push_back(o);
    }
    EXPECT_EQ(notes(*fromSQL), notes(inMemory)) << predicate->description();
    EXPECT_EQ(fromSQL->size(), c.expected);
  }
}

TEST_F(PredicateTest, SoftDeletedObjectsAreLeftOutUnlessAskedFor) {
  const Predicate p = Predicate::withFormat("note contains[c] %@", "groceries");
  EXPECT_EQ(db_->countForInstancesOfClass("Transaction", p), 1u);
  EXPECT_EQ(db_->countForInstancesOfClass("Transaction", p, true), 2u);
}

TEST_F(PredicateTest, SortsByKeyPathsAndLimits) {
  const auto sorted = db_->instancesOfClass(
      "Transaction", {.predicate = Predicate::withFormat("amount != nil"),
                      .sortDescriptors = {{"account.name", false}, {"amount", true}},
                      .fetchLimit = 3});
  ASSERT_EQ(sorted.size(), 3u);
  EXPECT_EQ(sorted[0]->stringForKey("note"), "");           // Savings, 0
  EXPECT_EQ(sorted[1]->stringForKey("note"), "Groceries");  // Checking, -40
  EXPECT_EQ(sorted[2]->stringForKey("note"), "*star?");     // Checking, -5
}

TEST(PredicateSyntaxTest, ErrorsNameTheirPosition) {
  struct Case {
    const char* format;
    std::vector<Value> arguments;
    const char* message;
  };
  const std::vector<Case> cases = {
      {"amount >", {}, "position 8: expected a key path or a value"},
      {"(amount > 5", {}, "position 11: expected \")\""},
      {"amount ~ 5", {}, "position 7: expected a comparison operator"},
      {"note like[x] 'a'", {}, "position 10: unknown operator option"},
      {"note == 'abc", {}, "position 12: unterminated string"},
      {"amount > %@", {}, "position 11: more format arguments than values given"},
      {"%K == 1", {Value(3)}, "position 0: %K needs a key path given as text"},
      {"amount == 5 AND", {}, "position 15: expected a key path or a value"},
      {"amount == 5 extra", {}, "position 12: unexpected text"},
      {"amount IN 5", {}, "IN needs a list"},
      {"1 == 2", {}, "a comparison needs a key path"},
      {"amount > 1.2.3", {}, "position 9: malformed number"},
  };
  for (const Case& c : cases) {
    auto result = Predicate::parse(c.format, c.arguments);
    ASSERT_FALSE(result.ok()) << c.format;
    EXPECT_NE(result.error().localizedDescription().find(c.message), std::string::npos)
        << c.format << " gave: " << result.error().localizedDescription();
  }
}

TEST_F(PredicateTest, KeysThePredicateCannotUseAreErrorsNotCrashes) {
  for (const char* format :
       {"colour == 1", "entries.userTags.name == 1", "note.length > 1", "account.nonsense == 1"}) {
    auto result = db_->fetch("Transaction", {.predicate = Predicate::withFormat(format)});
    EXPECT_FALSE(result.ok()) << format;
  }
  EXPECT_FALSE(db_->fetch("Transaction", {.sortDescriptors = {{"nope"}}}).ok());
}

}  // namespace
}  // namespace ledgeon::testing
