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

// Rows left out are named with their line and rule, the title row is not one of them, and a
// stray quote that ends the reading says where.
TEST_F(ImportTextFileCommandTest, SummaryCountsRowsAndSaysWhereReadingStopped) {
  const std::string text = kTitleRow +
                           "\"1/05/2024\",\"Cafe\",\"\",\"4.50\",\"debit\"\n"   // line 2
                           "\"\",\"Cafe\",\"\",\"4.50\",\"debit\"\n"            // line 3
                           "\"1/05/2024\",\"Cafe\",\"\",\"n/a\",\"debit\"\n"    // line 4
                           "\"13/45/2024\",\"Cafe\",\"\",\"1.00\",\"debit\"\n"  // line 5
                           "1/06/2024,Joe \"the\" Diner,,5.00,debit\n"          // line 6
                           "\"1/07/2024\",\"Never read\",\"\",\"9.00\",\"debit\"\n";
  auto command = import("mixed.csv", text);
  ASSERT_TRUE(imported_);
  EXPECT_EQ(transactions("mixed.csv").size(), 1u);
  EXPECT_EQ(
      command->summary().lines(),
      (std::vector<std::string>{
          "Rows read: 5 (the title row not counted)", "Transactions created: 1", "Rows skipped: 4",
          "  amount not a number: 2", "  date does not read: 1", "  no date: 1",
          "Reading stopped at line 6: a double quote inside a field that does not start "
          "with one; the rest of the file was not read"}));
  const auto warnings = command->log()->textsAtOrAbove(ImportLogSeverity::kWarning);
  for (const char* line : {"mixed.csv, line 3: row skipped (no date)",
                           "mixed.csv, line 4: row skipped (amount not a number)",
                           "mixed.csv, line 5: row skipped (date does not read)",
                           "mixed.csv, line 6: row skipped (amount not a number)",
                           "mixed.csv, line 6: reading stopped here (a double quote inside a field "
                           "that does not start with one); the rest of the file was not read"}) {
    EXPECT_NE(std::find(warnings.begin(), warnings.end(), line), warnings.end()) << line;
  }
}

// A file meant for another reader is refused as before, and the alert adds what it looks like.
TEST_F(ImportTextFileCommandTest, FileForAnotherReaderIsNamedInTheAlert) {
  struct Case {
    const char* name;
    std::string text;
    const char* looksLike;
  };
  const std::vector<Case> cases = {
      {"bank.ofx", "OFXHEADER:100\r\nDATA:OFXSGML\r\n\r\n<OFX><SIGNONMSGSRSV1>\r\n",
       "This file looks like an OFX statement (OFX 1.x, SGML)."},
      {"bank.qfx", "<?xml version=\"1.0\"?>\n<?OFX OFXHEADER=\"200\"?>\n<OFX></OFX>\n",
       "This file looks like an OFX statement (OFX 2.x, XML)."},
      {"family.csv", "!Type:Bank\nD1/15'24\nT-5.00\n^\n",
       "This file looks like a LIF interchange file."},
      {"export.csv", std::string("PK\x03\x04\x14\x00\x06\x00", 8) + "xl/workbook.xml",
       "This file looks like a zip archive (a spreadsheet workbook is one), not text."},
      {"notes.csv", "just some notes\n", nullptr},
  };
  for (const Case& c : cases) {
    ImportTestLedger ledger;
    auto command =
        std::make_shared<ImportTextFileCommand>(ledger.writeFile(c.name, c.text), ledger.document_);
    EXPECT_FALSE(command->execute()) << c.name;
    ASSERT_EQ(ledger.ui_->alertsShown().size(), 1u) << c.name;
    std::string expected =
        "Only text files exported from the transactions page of the web service's site can be "
        "imported.";
    if (c.looksLike) expected += std::string("\n") + c.looksLike;
    EXPECT_EQ(ledger.ui_->alertsShown()[0].informativeText, expected) << c.name;
    EXPECT_EQ(command->summary().transactionsCreated, 0u) << c.name;
  }
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
