#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ImportExport/ImportTextFileCommand.h"
#include "ImportTestLedger.h"

namespace ledgeon {
namespace {

using testing::ImportTestLedger;

const std::string kTitleRow =
    "\"Date\",\"Description\",\"Original Description\",\"Amount\",\"Transaction Type\","
    "\"Category\",\"Account Name\",\"Labels\",\"Notes\"\n";

CSVRow row(const std::string& date, const std::string& amount, const std::string& type,
           const std::string& category = "") {
  return {{"date", date}, {"amount", amount}, {"transactionType", type}, {"category", category}};
}

TEST(ImportTextFileRowTest, DatesAmountsAndCategoriesOfARow) {
  ImportTestLedger ledger;  // today is 2026-06-15
  struct Case {
    CSVRow row;
    const char* expected;  // "date amount category", or "" for a row left out
  };
  const std::vector<Case> cases = {
      {row("1/02/98", "12.00", "credit"), "1998-01-02 12 "},
      {row("1/02/30", "12.00", "credit"), "2030-01-02 12 "},
      {row("1/02/57", "12.00", "credit"), "1957-01-02 12 "},
      {row("  3/7/2024 ", "$1,234.50", "debit"), "2024-03-07 -1234.5 "},
      {row("3/7/2024", "$1,234.50", "credit"), "2024-03-07 1234.5 "},
      {row("3/7/2024", "-7", "Debit"), "2024-03-07 7 "},  // only "debit" exactly is negated
      {row("3/7/2024", "5", "debit", "uncategorized"), "2024-03-07 -5 "},
      {row("3/7/2024", "5", "debit", "Uncat\u00E9gorized"), "2024-03-07 -5 "},
      {row("3/7/2024", "5", "debit", "Groceries"), "2024-03-07 -5 Groceries"},
      {row("Date", "5", "debit"), ""},
      {row("", "5", "debit"), ""},
      {row("2/30/2024", "5", "debit"), ""},
      {row("3/7/2024", "n/a", "debit"), ""},
      {row("3/7/2024", "", "debit"), ""},
  };
  for (const Case& c : cases) {
    const auto transaction = ImportTextFileCommand::transactionForRow(c.row);
    const std::string got = transaction
                                ? LDateUtilities::ISO8601StringFromDate(*transaction->date) + " " +
                                      transaction->amount.stringValue() + " " +
                                      transaction->lines.front().category
                                : "";
    EXPECT_EQ(got, c.expected) << c.row.at("date") << " " << c.row.at("amount");
  }
}

class ImportTextFileCommandTest : public ::testing::Test, protected ImportTestLedger {
 protected:
  std::shared_ptr<ImportTextFileCommand> import(const std::string& name, const std::string& text) {
    auto command = std::make_shared<ImportTextFileCommand>(writeFile(name, text), document_);
    imported_ = command->execute();
    return command;
  }
  bool imported_ = false;
};

TEST_F(ImportTextFileCommandTest, RowsBecomeTransactionsOfANewAccountNamedAfterTheFile) {
  const std::string text =
      kTitleRow +
      "\"1/05/2024\",\"Corner Cafe\",\"CORNER CAFE #12\",\"4.50\",\"debit\",\"Coffee Shops\","
      "\"Visa\",\"work travel\",\"with Sam\"\n"
      "\n"
      "\"1/06/2024\",\"Payroll\",\"ACME PAYROLL\",\"2,000.00\",\"credit\",\"Uncategorized\","
      "\"Checking\",\"\",\"\"\n";
  auto command = import("export.csv", text);
  ASSERT_TRUE(imported_);
  LObject* account = command->targetAccount();
  ASSERT_NE(account, nullptr);
  EXPECT_EQ(account->stringForKey("name"), "export.csv");
  EXPECT_EQ(account->objectForKey("type")->className(), "LineOfCredit");
  EXPECT_EQ(account->valueForKey("filters").asDictionary().at("visibleColumns"), "fiPy,refn");
  const auto list = transactions("export.csv");
  ASSERT_EQ(list.size(), 2u);
  LObject& cafe = *list[0];
  EXPECT_EQ(cafe.amountForKey("amount").stringValue(), "-4.5");
  EXPECT_EQ(cafe.objectForKey("userPayee")->stringForKey("name"), "Corner Cafe");
  EXPECT_EQ(cafe.objectForKey("fiPayee")->stringForKey("name"), "CORNER CAFE #12");
  EXPECT_EQ(cafe.stringForKey("reference"), "Visa");
  EXPECT_EQ(cafe.stringForKey("dataSource"), "TXTIMPORT");
  EXPECT_EQ(lines(cafe), (std::vector<std::string>{"Coffee Shops|worktravel||-4.5|"}));
  EXPECT_EQ(cafe.stringForKey("note"), "with Sam");
  EXPECT_EQ(lines(*list[1]), (std::vector<std::string>{"|||2000|"}));

  import("export.csv", text);
  ASSERT_TRUE(imported_);
  EXPECT_EQ(transactions("export.csv 2").size(), 2u);
  EXPECT_EQ(count("CategoryTag"), 1u);
}

TEST_F(ImportTextFileCommandTest, FileWithoutUsableRowsFailsAndLeavesNoRow) {
  import("first.csv", kTitleRow +
                          "\"1/05/2024\",\"Cafe\",\"\",\"4.50\",\"debit\",\"\",\"\",\"\","
                          "\"\"\n");
  ASSERT_TRUE(imported_);
  const auto before = storeRows();
  auto command = import("titles.csv", kTitleRow + "\"soon\",\"x\",\"\",\"1\",\"debit\"\n");
  EXPECT_FALSE(imported_);
  EXPECT_EQ(command->targetAccount(), nullptr);  // made, then taken back
  EXPECT_EQ(storeRows(), before);
  ASSERT_EQ(ui_->alertsShown().size(), 1u);
  EXPECT_EQ(ui_->alertsShown()[0].messageText, "Could not import \u201Ctitles.csv\u201D");
}

TEST_F(ImportTextFileCommandTest, ProgressCountsOnlyTheRowsThatBecomeTransactions) {
  const std::string usable = "\"1/05/2024\",\"Cafe\",\"\",\"4.50\",\"debit\"\n";
  const std::string undated = "\"\",\"Cafe\",\"\",\"4.50\",\"debit\"\n";
  const std::string unpriced = "\"1/05/2024\",\"Cafe\",\"\",\"n/a\",\"debit\"\n";
  import("mixed.csv", kTitleRow + usable + undated + usable + unpriced + usable);
  ASSERT_TRUE(imported_);
  EXPECT_EQ(transactions("mixed.csv").size(), 3u);
  const auto& events = ui_->progressEvents();
  EXPECT_NE(std::find(events.begin(), events.end(), "maximum: 3"), events.end());
  EXPECT_NE(std::find(events.begin(), events.end(), "bar: Creating transaction 3 of 3"),
            events.end());
  EXPECT_EQ(std::find(events.begin(), events.end(), "bar: Creating transaction 4 of 3"),
            events.end());
}

TEST_F(ImportTextFileCommandTest, CancelTakesBackTheAccountToo) {
  std::string text;
  for (int i = 0; i < 100; ++i) text += "\"1/05/2024\",\"Cafe\",\"\",\"4.50\",\"debit\"\n";
  ui_->cancelProgressAfter(50);
  const auto before = storeRows();
  auto command = import("big.csv", text);
  EXPECT_FALSE(imported_);
  EXPECT_TRUE(command->userAborted());
  EXPECT_EQ(storeRows(), before);
  EXPECT_EQ(count("Account"), 0u);
}

}  // namespace
}  // namespace ledgeon
