#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Commands/CreateCashFlowTransactionCommand.h"
#include "Commands/DeleteLObjectCommand.h"
#include "Commands/KeptCreationsCommand.h"
#include "Commands/SetLObjectPropertyCommand.h"
#include "LObjects/LObject.h"
#include "Utilities/Clock.h"
#include "support/CommandTestDocument.h"

namespace ledgeon {
namespace {

using testing::CommandTestDocument;

// A command whose work is a function; it records its own undo and redo.
class ScriptedCommand : public KVCommand {
 public:
  ScriptedCommand(std::shared_ptr<LCommandDocument> document, std::function<bool()> work,
                  std::vector<std::string>* journal, std::string name)
      : KVCommand(std::move(document)),
        work_(std::move(work)),
        journal_(journal),
        name_(std::move(name)) {}
  std::string className() const override { return "ScriptedCommand"; }
  std::string commandNoun() override { return name_; }
  bool doit() override {
    journal_->push_back("do " + name_);
    return work_();
  }
  void undoit() override {
    journal_->push_back("undo " + name_);
    for (auto it = children_.rbegin(); it != children_.rend(); ++it) (*it)->undoit();
  }
  void adopt(std::shared_ptr<KVCommand> child) { children_.push_back(std::move(child)); }

 private:
  std::function<bool()> work_;
  std::vector<std::string>* journal_;
  std::string name_;
  std::vector<std::shared_ptr<KVCommand>> children_;
};

class CommandLayerTest : public ::testing::Test {
 protected:
  std::shared_ptr<ScriptedCommand> scripted(std::string name, bool succeeds = true) {
    return std::make_shared<ScriptedCommand>(
        document_, [succeeds] { return succeeds; }, &journal_, std::move(name));
  }
  LObject& makeAccount(const std::string& name) {
    DataBase& db = document_->dataBase();
    LObject& type = db.createEntity("Checking", {{"name", Value("Checking")}});
    LObject& account = db.createEntity(
        "Account", {{"name", Value(name)}, {"currency", Value("USD")}, {"type", Value(&type)}});
    EXPECT_TRUE(db.commit().ok());
    return account;
  }

  ScopedFixedClock clock_{Date(750000000.0)};
  std::shared_ptr<CommandTestDocument> document_ = CommandTestDocument::make();
  std::vector<std::string> journal_;
};

TEST_F(CommandLayerTest, FailedCommandLeavesNoUndoEntryAndIsPopped) {
  auto failing = scripted("A", false);
  EXPECT_FALSE(failing->execute());
  EXPECT_FALSE(failing->done());
  EXPECT_FALSE(document_->undoManager().canUndo());
  EXPECT_TRUE(document_->commandManager()->commandStack().empty());
  EXPECT_FALSE(KVCommand::isPrivateStateEnabled("ScriptedCommand"));
  EXPECT_EQ(document_->edits(), 0);
}

TEST_F(CommandLayerTest, NestedCommandsAreUndoneByTheirParent) {
  std::shared_ptr<ScriptedCommand> outer;
  outer = std::make_shared<ScriptedCommand>(
      document_,
      [&] {
        EXPECT_TRUE(KVCommand::isPrivateStateEnabled("ScriptedCommand"));
        auto inner = scripted("inner");
        EXPECT_TRUE(inner->execute());
        EXPECT_EQ(document_->commandManager()->commandStack().size(), 1u);  // inner popped
        outer->adopt(inner);
        return true;
      },
      &journal_, "outer");
  ASSERT_TRUE(outer->execute());
  EXPECT_EQ(document_->undoManager().undoLevelCount(), 1u);
  document_->undoManager().undo();
  EXPECT_EQ(journal_,
            (std::vector<std::string>{"do outer", "do inner", "undo outer", "undo inner"}));
  EXPECT_FALSE(document_->undoManager().canUndo());
  EXPECT_TRUE(document_->undoManager().canRedo());
}

TEST_F(CommandLayerTest, UndoHistoryKeepsTwentyFiveLevels) {
  for (int i = 1; i <= 26; ++i) ASSERT_TRUE(scripted(std::to_string(i))->execute());
  auto& undo = document_->undoManager();
  EXPECT_EQ(undo.undoLevelCount(), 25u);
  while (undo.canUndo()) undo.undo();
  EXPECT_EQ(journal_.back(), "undo 2");  // the first command was forgotten
}

TEST_F(CommandLayerTest, UndoBehaviours) {
  struct Case {
    int64_t behavior;
    size_t levelsAfter;
  };
  for (const Case c :
       {Case{kUndoBehaviorUndoable, 3}, Case{kUndoBehaviorClearsHistory, 0}, Case{7, 2}}) {
    document_->commandManager()->clear();
    ASSERT_TRUE(scripted("a")->execute());
    ASSERT_TRUE(scripted("b")->execute());
    auto command = scripted("c");
    command->setUndoBehavior(c.behavior);
    ASSERT_TRUE(command->execute());
    EXPECT_EQ(document_->undoManager().undoLevelCount(), c.levelsAfter) << c.behavior;
  }
  // The class-wide default applies to commands that don't choose.
  KVCommand::setDefaultUndoBehavior("ScriptedCommand", kUndoBehaviorClearsHistory);
  EXPECT_EQ(scripted("d")->undoBehavior(), kUndoBehaviorClearsHistory);
  KVCommand::setDefaultUndoBehavior("ScriptedCommand", kUndoBehaviorUndoable);
}

TEST_F(CommandLayerTest, ClosingAWindowDropsItsActions) {
  auto sheet = std::make_shared<LCommandWindow>(LCommandWindow{"Edit Account"});
  auto onSheet = scripted("on sheet");
  onSheet->setCommandWindow(sheet);
  onSheet->setInvalidateWhenCommandWindowCloses(true);
  auto tiedButKept = scripted("kept");
  tiedButKept->setCommandWindow(sheet);  // not invalidated with the window
  ASSERT_TRUE(scripted("before")->execute());
  ASSERT_TRUE(onSheet->execute());
  ASSERT_TRUE(tiedButKept->execute());
  EXPECT_NE(document_->commandManager()->commandTargetForWindow(sheet, false), nullptr);
  document_->commandManager()->windowWillClose(*sheet);
  EXPECT_EQ(document_->commandManager()->commandTargetForWindow(sheet, false), nullptr);
  auto& undo = document_->undoManager();
  EXPECT_EQ(undo.undoLevelCount(), 2u);
  while (undo.canUndo()) undo.undo();
  EXPECT_EQ(journal_, (std::vector<std::string>{"do before", "do on sheet", "do kept", "undo kept",
                                                "undo before"}));
}

TEST_F(CommandLayerTest, DeferredMessagesRunBeforeTheNextCommand) {
  auto first = scripted("first");
  ASSERT_TRUE(first->execute());
  first->performAfterDelay([&] { journal_.push_back("later"); }, 3600);
  first->performAfterDelay([&] { journal_.push_back("soon"); }, 60);
  EXPECT_EQ(KVCommand::pendingDeferredMessageCount(), 2u);
  KVCommand::executeDueDeferredMessages();  // nothing is due yet
  EXPECT_EQ(KVCommand::pendingDeferredMessageCount(), 2u);
  ASSERT_TRUE(scripted("second")->execute());
  EXPECT_EQ(journal_, (std::vector<std::string>{"do first", "soon", "later", "do second"}));
  EXPECT_EQ(KVCommand::pendingDeferredMessageCount(), 0u);
}

TEST_F(CommandLayerTest, CreateUndoRedoBringsBackTheSameTransactionAndSplits) {
  LObject& account = makeAccount("Checking");
  auto create = std::make_shared<CreateCashFlowTransactionCommand>(
      EditDict{{"account", Value(&account)},
               {"amount", Value(Amount::fromString("-42.50"))},
               {"note", Value("Groceries")},
               {"importSourceFileID", Value("file-1")}},
      std::vector<EditDict>{{{"amount", Value(Amount::fromString("-40.00"))}},
                            {{"amount", Value(Amount::fromString("-2.50"))}}});
  const int commitsBefore = document_->commits();
  ASSERT_TRUE(create->execute());
  EXPECT_EQ(document_->commits(), commitsBefore + 1);  // one store transaction for all of it
  LObject* transaction = create->createdObject();
  ASSERT_NE(transaction, nullptr);
  const int64_t ledgeonId = transaction->integerForKey("ledgeonId");
  const ObjectSet entries = transaction->objectsForKey("entries");
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1]->integerForKey("sequenceNumber"), 1);
  EXPECT_EQ(document_->undoManager().undoMenuItemTitle(), "Undo Create Transaction");

  auto& undo = document_->undoManager();
  for (int round = 0; round < 2; ++round) {
    undo.undo();
    EXPECT_TRUE(transaction->isLObjectDeleted());
    EXPECT_TRUE(account.objectsForKey("transactions").empty());
    EXPECT_EQ(undo.redoMenuItemTitle(), "Redo Create Transaction");
    undo.redo();
    EXPECT_FALSE(transaction->isLObjectDeleted());
    EXPECT_EQ(transaction->integerForKey("ledgeonId"), ledgeonId);
    EXPECT_EQ(transaction->objectForKey("account"), &account);
    EXPECT_EQ(transaction->objectsForKey("entries"), entries);
    for (LObject* entry : entries) EXPECT_FALSE(entry->isLObjectDeleted());
  }
  EXPECT_EQ(transaction->amountForKey("amount"), Amount::fromString("-42.50"));
  EXPECT_EQ(document_->dataBase().countForInstancesOfClass("CashFlowTransactionEntry"), 2u);
}

TEST_F(CommandLayerTest, SetAndDeleteRestoreExactly) {
  LObject& account = makeAccount("Savings");
  auto create = std::make_shared<CreateCashFlowTransactionCommand>(
      EditDict{{"account", Value(&account)}, {"amount", Value(Amount::fromString("10"))}},
      std::vector<EditDict>{{{"amount", Value(Amount::fromString("10"))}}});
  ASSERT_TRUE(create->execute());
  LObject& transaction = *create->createdObject();

  auto edit = std::make_shared<SetLObjectPropertyCommand>(
      transaction, EditDict{{"note", Value("Rent")}, {"reconcileStatus", Value(2)}});
  ASSERT_TRUE(edit->execute());
  EXPECT_EQ(document_->undoManager().undoActionName(), "Change Note Transaction");
  document_->undoManager().undo();
  EXPECT_TRUE(transaction.valueForKey("note").isNull());
  EXPECT_EQ(transaction.integerForKey("reconcileStatus"), 0);

  auto remove = std::make_shared<DeleteLObjectCommand>(transaction);
  ASSERT_TRUE(remove->execute());
  EXPECT_TRUE(transaction.isLObjectDeleted());
  EXPECT_EQ(transaction.objectForKey("account"), nullptr);
  EXPECT_EQ(document_->undoManager().undoMenuItemTitle(), "Undo Delete Transaction");
  document_->undoManager().undo();
  EXPECT_FALSE(transaction.isLObjectDeleted());
  EXPECT_EQ(transaction.objectForKey("account"), &account);
  EXPECT_EQ(transaction.objectsForKey("entries").size(), 1u);
}

TEST_F(CommandLayerTest, KeptCreationsUndoAndRedoLikeTheCommandsThatMadeThem) {
  LObject& account = makeAccount("Checking");
  auto kept = std::make_shared<KeptCreationsCommand>();
  std::vector<LObject*> transactions;
  for (const char* amount : {"-5", "-7"}) {
    auto create = std::make_shared<CreateCashFlowTransactionCommand>(
        EditDict{{"account", Value(&account)}, {"amount", Value(Amount::fromString(amount))}},
        std::vector<EditDict>{{{"amount", Value(Amount::fromString(amount))}}});
    create->setUndoBehavior(2);  // made inside the batch, not undoable by itself
    ASSERT_TRUE(create->execute());
    ASSERT_TRUE(KeptCreationsCommand::canKeep(*create));
    kept->keep(*create);
    transactions.push_back(create->createdObject());
  }
  EXPECT_EQ(kept->objectCount(), 4u);  // each transaction and its line
  EXPECT_FALSE(KeptCreationsCommand::canKeep(*scripted("other")));

  for (int round = 0; round < 2; ++round) {
    kept->undoit();
    for (LObject* transaction : transactions) {
      EXPECT_TRUE(transaction->isLObjectDeleted());
      EXPECT_TRUE(transaction->objectsForKey("entries").empty());
    }
    EXPECT_TRUE(account.objectsForKey("transactions").empty());
    kept->redoit();
    EXPECT_EQ(account.objectsForKey("transactions"), transactions);
    for (LObject* transaction : transactions) {
      EXPECT_FALSE(transaction->isLObjectDeleted());
      ASSERT_EQ(transaction->objectsForKey("entries").size(), 1u);
      EXPECT_FALSE(transaction->objectsForKey("entries")[0]->isLObjectDeleted());
    }
  }
}

}  // namespace
}  // namespace ledgeon
