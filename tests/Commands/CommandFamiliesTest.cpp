#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Commands/Create/CreateCommands.h"
#include "Commands/Delete/DeleteTransactionCommand.h"
#include "Commands/Duplicate/DuplicateLObjectCommand.h"
#include "Commands/Edit/EditCashFlowTagCommand.h"
#include "Commands/Edit/SetPropertyCommands.h"
#include "Commands/GenericBatchCommand.h"
#include "LObjects/LObject.h"
#include "Utilities/Clock.h"
#include "Utilities/Log.h"
#include "support/CommandTestDocument.h"

namespace ledgeon {
namespace {

using testing::CommandTestDocument;

Amount amount(const char* text) { return Amount::fromString(text); }

class CommandFamiliesTest : public ::testing::Test {
 protected:
  DataBase& db() { return document_->dataBase(); }
  UndoManager& undo() { return document_->undoManager(); }

  LObject& makeAccount(const std::string& name) {
    LObject& type = db().createEntity("Checking", {{"name", Value("Checking")}});
    LObject& account = db().createEntity(
        "Account", {{"name", Value(name)}, {"currency", Value("USD")}, {"type", Value(&type)}});
    EXPECT_TRUE(db().commit().ok());
    return account;
  }
  LObject& makeCategory(const std::string& name, LObject* parent = nullptr) {
    EditDict data{{"name", Value(name)}};
    if (parent) data.set("parentCategory", Value(parent));
    LObject& category = db().createEntity("CategoryTag", data);
    EXPECT_TRUE(db().commit().ok());
    return category;
  }
  // A two-line grocery transaction with a category, a tag and a syncID from the cloud.
  LObject& makeSplitTransaction(LObject& account) {
    LObject& food = makeCategory("Food");
    LObject& tag = db().createEntity("UserTag", {{"name", Value("family")}});
    auto create = std::make_shared<CreateCashFlowTransactionCommand>(
        EditDict{{"account", Value(&account)},
                 {"amount", Value(amount("-42.50"))},
                 {"note", Value("Groceries")},
                 {"syncID", Value("cloud-7")}},
        std::vector<EditDict>{{{"amount", Value(amount("-40.00"))},
                               {"categoryTag", Value(&food)},
                               {"userTags", Value(ToManyEdit::adding({&tag}))}},
                              {{"amount", Value(amount("-2.50"))}, {"note", Value("bag")}}});
    EXPECT_TRUE(create->execute());
    return *create->createdObject();
  }

  ScopedFixedClock clock_{Date(750000000.0)};
  std::shared_ptr<CommandTestDocument> document_ = CommandTestDocument::make();
};

// The menu titles of the family commands: the verb of the family and the entity's undo noun, or
// for property changes the property and the entity's noun.
TEST_F(CommandFamiliesTest, MenuTitlesNameVerbAndEntity) {
  LObject& account = makeAccount("Checking");
  LObject& payee = db().createEntity("UserPayee", {{"name", Value("Grocer")}});
  LObject& tag = db().createEntity("UserTag", {{"name", Value("trip")}});
  ASSERT_TRUE(db().commit().ok());
  struct Case {
    std::shared_ptr<KVCommand> command;
    std::string title;
  };
  const Case cases[] = {
      {std::make_shared<CreateAccountCommand>(EditDict{{"name", Value("Savings")}}),
       "Undo Create Account"},
      {std::make_shared<CreateCategoryTagCommand>(EditDict{{"name", Value("Rent")}}),
       "Undo Create Category"},
      {std::make_shared<CreateSmartCashFlowTransactionCommand>(
           EditDict{{"account", Value(&account)}}, std::vector<EditDict>{}),
       "Undo Create Scheduled Transaction"},
      {std::make_shared<SetAccountPropertyCommand>(account,
                                                   EditDict{{"userDescription", Value("x")}}),
       "Undo Change User Description Account"},
      {std::make_shared<EditUserTagCommand>(tag, EditDict{{"name", Value("holiday")}}),
       "Undo Edit Tag"},
      {std::make_shared<DeleteUserPayeeCommand>(payee), "Undo Delete Payee"},
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(c.command->execute()) << c.title;
    EXPECT_EQ(undo().undoMenuItemTitle(), c.title);
  }
}

TEST_F(CommandFamiliesTest, CreationWithPropertiesThatDontFitIsRefusedAndLogged) {
  LogCapture log;
  struct Case {
    EditDict properties;
    std::string logged;
  };
  const Case cases[] = {
      {{{"currency", Value(int64_t{5})}}, "currency expects text"},
      {{{"colour", Value("red")}}, "colour is not a property of Account"},
      {{{"creditLimit", Value(Amount::notANumber())}}, "creditLimit is not a number (NaN)"},
  };
  for (const Case& c : cases) {
    auto create = std::make_shared<CreateAccountCommand>(c.properties);
    EXPECT_FALSE(create->execute()) << c.logged;
    EXPECT_TRUE(log.contains("ERROR: CreateAccountCommand refused to create Account: " + c.logged))
        << c.logged;
  }
  EXPECT_FALSE(undo().canUndo());
  EXPECT_EQ(db().countForInstancesOfClass("Account"), 0u);
}

TEST_F(CommandFamiliesTest, DeletingATransactionTakesItsLinesAndUndoBringsThemBack) {
  LObject& account = makeAccount("Checking");
  LObject& transaction = makeSplitTransaction(account);
  const ObjectSet lines = transaction.objectsForKey("entries");
  LObject* food = nullptr;
  for (LObject* line : lines) {
    if (LObject* category = line->objectForKey("categoryTag")) food = category;
  }
  ASSERT_NE(food, nullptr);

  auto remove = DeleteTransactionCommand::deleteTransactionCommandForTransaction(transaction);
  EXPECT_EQ(remove->className(), "DeleteCashFlowTransactionCommand");
  ASSERT_TRUE(remove->execute());
  EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Delete Transaction");
  EXPECT_TRUE(transaction.isLObjectDeleted());
  for (LObject* line : lines) EXPECT_TRUE(line->isLObjectDeleted());
  EXPECT_TRUE(food->objectsForKey("cashFlowTransactionEntries").empty());
  EXPECT_EQ(db().countForInstancesOfClass("CashFlowTransactionEntry"), 0u);

  for (int round = 0; round < 2; ++round) {
    undo().undo();
    EXPECT_FALSE(transaction.isLObjectDeleted());
    EXPECT_EQ(transaction.objectForKey("account"), &account);
    EXPECT_EQ(transaction.objectsForKey("entries").size(), 2u);
    for (LObject* line : lines) EXPECT_FALSE(line->isLObjectDeleted());
    EXPECT_EQ(food->objectsForKey("cashFlowTransactionEntries").size(), 1u);
    undo().redo();
    EXPECT_TRUE(transaction.isLObjectDeleted());
  }
}

TEST_F(CommandFamiliesTest, DeleteCommandClassFollowsTheTransactionKind) {
  LObject& account = makeAccount("Checking");
  struct Case {
    const char* entity;
    const char* command;
  };
  for (const Case c : {Case{"CashFlowTransaction", "DeleteCashFlowTransactionCommand"},
                       Case{"SmartCashFlowTransaction", "DeleteSmartCashFlowTransactionCommand"},
                       Case{"InvestmentTransaction", "DeleteInvestmentTransactionCommand"},
                       Case{"Transaction", "DeleteTransactionCommand"}}) {
    LObject& transaction = db().createEntity(c.entity, {{"account", Value(&account)}});
    EXPECT_EQ(DeleteTransactionCommand::deleteTransactionCommandClassForTransaction(transaction),
              c.command);
    auto command = DeleteTransactionCommand::deleteTransactionCommandForTransaction(transaction);
    EXPECT_EQ(command->className(), c.command);
    EXPECT_TRUE(command->execute()) << c.entity;
    EXPECT_TRUE(transaction.isLObjectDeleted()) << c.entity;
  }
}

TEST_F(CommandFamiliesTest, DuplicatedTransactionIsANewObjectWithTheSameSplits) {
  LObject& account = makeAccount("Checking");
  LObject& original = makeSplitTransaction(account);
  auto duplicate = std::make_shared<DuplicateCashFlowTransactionCommand>(original);
  ASSERT_TRUE(duplicate->execute());
  EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Duplicate Transaction");
  LObject* copy = duplicate->duplicate();
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, &original);
  EXPECT_TRUE(copy->valueForKey("syncID").isNull());
  EXPECT_EQ(original.stringForKey("syncID"), "cloud-7");
  EXPECT_NE(copy->integerForKey("ledgeonId"), original.integerForKey("ledgeonId"));
  EXPECT_EQ(copy->integerForKey("orderID"), copy->integerForKey("ledgeonId"));
  EXPECT_EQ(copy->amountForKey("amount"), amount("-42.50"));
  EXPECT_EQ(copy->stringForKey("note"), "Groceries");
  EXPECT_EQ(copy->objectForKey("account"), &account);
  const ObjectSet lines = copy->objectsForKey("entries");
  ASSERT_EQ(lines.size(), 2u);
  for (LObject* line : lines) {
    EXPECT_EQ(line->objectForKey("parent"), copy);
    if (line->integerForKey("sequenceNumber") == 0) {
      EXPECT_EQ(line->amountForKey("amount"), amount("-40.00"));
      EXPECT_EQ(line->objectForKey("categoryTag")->stringForKey("name"), "Food");
      ASSERT_EQ(line->objectsForKey("userTags").size(), 1u);
    } else {
      EXPECT_EQ(line->stringForKey("note"), "bag");
    }
  }
  EXPECT_EQ(original.objectsForKey("entries").size(), 2u);

  const int64_t copyId = copy->integerForKey("ledgeonId");
  undo().undo();
  EXPECT_TRUE(copy->isLObjectDeleted());
  EXPECT_EQ(account.objectsForKey("transactions").size(), 1u);
  undo().redo();
  EXPECT_FALSE(copy->isLObjectDeleted());
  EXPECT_EQ(copy->integerForKey("ledgeonId"), copyId);
  EXPECT_EQ(copy->objectsForKey("entries"), lines);
}

TEST_F(CommandFamiliesTest, DuplicatedBudgetTakesItsLines) {
  LObject& rent = makeCategory("Rent");
  LObject& budget = db().createEntity("Budget", {{"name", Value("2025")}});
  db().createEntity("BudgetLineItem", {{"budget", Value(&budget)}, {"categoryTag", Value(&rent)}});
  ASSERT_TRUE(db().commit().ok());
  auto duplicate = std::make_shared<DuplicateBudgetCommand>(budget);
  ASSERT_TRUE(duplicate->execute());
  LObject* copy = duplicate->duplicate();
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->stringForKey("name"), "2025");
  ASSERT_EQ(copy->objectsForKey("lineItems").size(), 1u);
  EXPECT_EQ(copy->objectsForKey("lineItems")[0]->objectForKey("categoryTag"), &rent);
  EXPECT_EQ(budget.objectsForKey("lineItems").size(), 1u);
  undo().undo();
  EXPECT_EQ(db().countForInstancesOfClass("BudgetLineItem"), 1u);
  EXPECT_EQ(db().countForInstancesOfClass("Budget"), 1u);
}

TEST_F(CommandFamiliesTest, BatchIsOneUndoStepOfTheCommandsThatSucceeded) {
  LObject& account = makeAccount("Checking");
  auto good = std::make_shared<CreateUserPayeeCommand>(EditDict{{"name", Value("Grocer")}});
  auto bad = std::make_shared<CreateUserPayeeCommand>(EditDict{{"name", Value(int64_t{3})}});
  auto edit =
      std::make_shared<SetAccountPropertyCommand>(account, EditDict{{"name", Value("Main")}});
  auto batch = std::make_shared<GenericBatchCommand>(
      std::vector<std::shared_ptr<KVCommand>>{good, bad, edit});
  const int commitsBefore = document_->commits();
  ASSERT_TRUE(batch->execute());
  EXPECT_EQ(document_->commits(), commitsBefore + 1);
  EXPECT_EQ(batch->succeededCommands().size(), 2u);
  EXPECT_EQ(undo().undoLevelCount(), 1u);
  EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Create Payee");
  EXPECT_EQ(db().countForInstancesOfClass("UserPayee"), 1u);
  EXPECT_EQ(account.stringForKey("name"), "Main");

  undo().undo();
  EXPECT_EQ(db().countForInstancesOfClass("UserPayee"), 0u);
  EXPECT_EQ(account.stringForKey("name"), "Checking");
  EXPECT_FALSE(good->done());
  undo().redo();
  EXPECT_EQ(db().countForInstancesOfClass("UserPayee"), 1u);
  EXPECT_EQ(account.stringForKey("name"), "Main");

  auto named = std::make_shared<GenericBatchCommand>(std::vector<std::shared_ptr<KVCommand>>{
      std::make_shared<CreateUserPayeeCommand>(EditDict{{"name", Value("Baker")}})});
  named->setBatchUndoNoun("Import");
  ASSERT_TRUE(named->execute());
  EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Import");
  auto empty = std::make_shared<GenericBatchCommand>(std::vector<std::shared_ptr<KVCommand>>{bad});
  EXPECT_FALSE(empty->execute());
  EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Import");
}

TEST_F(CommandFamiliesTest, CategoryEditsKeepTheTreeSound) {
  LObject& food = makeCategory("Food");
  LObject& groceries = makeCategory("Groceries", &food);
  LObject& dining = makeCategory("Dining", &food);
  struct Case {
    LObject* category;
    EditDict changes;
    std::string refusal;  // empty: accepted
  };
  const Case cases[] = {
      {&food,
       {{"parentCategory", Value(&groceries)}},
       "parentCategory would make the category its own parent"},
      {&food,
       {{"parentCategory", Value(&food)}},
       "parentCategory would make the category its own parent"},
      {&dining,
       {{"name", Value("Groceries")}},
       "name is already used by another category with the same parent"},
      {&dining, {{"name", Value("")}}, "name must not be empty"},
      {&dining, {{"name", Value(int64_t{1})}}, "name expects text"},
      {&dining, {{"name", Value("Food")}}, ""},  // Food is not a sibling
      {&dining, {{"parentCategory", Value()}}, ""},
  };
  for (const Case& c : cases) {
    const std::string nameBefore = c.category->stringForKey("name");
    LObject* parentBefore = c.category->objectForKey("parentCategory");
    auto edit = std::make_shared<EditCategoryTagCommand>(*c.category, c.changes);
    EXPECT_EQ(edit->execute(), c.refusal.empty()) << c.refusal;
    EXPECT_EQ(edit->failureReason(), c.refusal);
    if (c.refusal.empty()) {
      EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Edit Category");
      undo().undo();
    }
    EXPECT_EQ(c.category->stringForKey("name"), nameBefore);
    EXPECT_EQ(c.category->objectForKey("parentCategory"), parentBefore);
  }
}

}  // namespace
}  // namespace ledgeon
