#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Commands/CreateCashFlowTransactionCommand.h"
#include "LObjects/LObject.h"
#include "Utilities/Clock.h"
#include "support/CommandTestDocument.h"

namespace ledgeon {
namespace {

// Regression: importing 100,000 transactions took hours. Cause: adding the first line to a new
// transaction loaded its "entries" by searching every pending object of the store. Fix: a
// transaction made by the command starts with no lines. These checks keep the shortcut honest:
// with many transactions pending at once, each still holds exactly its own lines.
TEST(CreateCashFlowTransactionLinesTest, PendingTransactionsEachHoldTheirOwnLines) {
  ScopedFixedClock clock{Date(750000000.0)};
  auto document = testing::CommandTestDocument::make();
  DataBase& db = document->dataBase();
  document->beginTransaction();  // everything stays pending until the end
  std::vector<LObject*> made;
  for (int i = 0; i < 5; ++i) {
    std::vector<EditDict> lines;
    for (int j = 0; j <= i; ++j) {
      lines.push_back({{"amount", Value(Amount::fromInt64(i * 10 + j))}});
    }
    auto command = std::make_shared<CreateCashFlowTransactionCommand>(
        EditDict{{"amount", Value(Amount::fromInt64(i))}}, std::move(lines), document);
    ASSERT_TRUE(command->execute());
    made.push_back(command->createdObject());
  }
  for (int i = 0; i < 5; ++i) {
    std::vector<std::string> amounts;
    for (LObject* entry : made[static_cast<size_t>(i)]->objectsForKey("entries")) {
      EXPECT_EQ(entry->objectForKey("parent"), made[static_cast<size_t>(i)]);
      amounts.push_back(entry->amountForKey("amount").stringValue());
    }
    EXPECT_EQ(amounts.size(), static_cast<size_t>(i + 1));
  }
  ASSERT_TRUE(document->endTransaction().ok());
  EXPECT_EQ(db.countForInstancesOfClass("CashFlowTransactionEntry"), 15u);
  // Read back from the store, the lines are where they were.
  for (int i = 0; i < 5; ++i) {
    made[static_cast<size_t>(i)]->clearToManyCaches();
    EXPECT_EQ(made[static_cast<size_t>(i)]->objectsForKey("entries").size(),
              static_cast<size_t>(i + 1));
  }
}

}  // namespace
}  // namespace ledgeon
