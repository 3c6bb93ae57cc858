#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Commands/CreateLObjectCommand.h"
#include "ImportExport/ImportLIFFileCommand.h"
#include "ImportTestLedger.h"

namespace ledgeon {
namespace {

using testing::ImportTestLedger;

// Account lists as writers put them: every account first, then one record before each section.
const std::string kAccounts =
    "!Account\nNChecking\nTBank\n$1,000.00\n^\nNSavings\nTBank\n^\nNVisa\nTCCard\n^\n"
    "NBroker\nTInvst\n^\n";
std::string section(const std::string& account, const std::string& type,
                    const std::string& records) {
  return "!Account\nN" + account + "\n^\n!Type:" + type + "\n" + records;
}

class ImportLIFFileCommandTest : public ::testing::Test, protected ImportTestLedger {
 protected:
  std::shared_ptr<ImportLIFFileCommand> import(const std::string& text,
                                               const std::string& name = "family.lif") {
    auto command = std::make_shared<ImportLIFFileCommand>(writeFile(name, text), document_);
    imported_ = command->execute();
    return command;
  }
  std::vector<std::string> amounts(const std::string& account) {
    std::vector<std::string> texts;
    for (LObject* t : transactions(account)) {
      texts.push_back(day(*t) + " " + t->amountForKey("amount").stringValue());
    }
    return texts;
  }
  bool imported_ = false;
};

TEST_F(ImportLIFFileCommandTest, EachTransferIsKeptOnceWhetherListedTwiceOrOnce) {
  auto command = import(kAccounts +
                        section("Checking", "Bank",
                                "D1/15'24\nT-200.00\nPMove\nL[Savings]\n^\n"
                                "D1/20/24\nT-50.00\nPBooks\nLEducation/School\nMFall term\n^\n"
                                "D1/25/24\nT-75\nPOnly once\nL[Visa]\n^\n") +
                        section("Savings", "Bank", "D1/15/24\nT200.00\nPMove\nL[Checking]\n^\n"));
  ASSERT_TRUE(imported_);
  EXPECT_EQ(count("Transaction"), 3u);
  EXPECT_EQ(amounts("Checking"), (std::vector<std::string>{"2024-01-20 -50", "2024-01-25 -75"}));
  // The mirror seen second is the copy created, in the account whose section holds it.
  EXPECT_EQ(amounts("Savings"), (std::vector<std::string>{"2024-01-15 200"}));
  EXPECT_EQ(lines(*transactions("Savings").front()), (std::vector<std::string>{"||Checking|200|"}));
  EXPECT_EQ(lines(*transactions("Checking").front()),
            (std::vector<std::string>{"Education|School||-50|Fall term"}));
  EXPECT_EQ(balance("Checking"), "-325");
  EXPECT_EQ(balance("Savings"), "200");
  EXPECT_EQ(balance("Visa"), "75");
  const auto texts = command->log()->textsAtOrAbove(ImportLogSeverity::kInfo);
  EXPECT_NE(std::find(texts.begin(), texts.end(),
                      "Cash balance doesn't match for account Checking. Balance reported as "
                      "1000, but transactions total -325\n"),
            texts.end());
}

TEST_F(ImportLIFFileCommandTest, SplitWithTransferLineIsKeptOnceInEitherOrder) {
  const std::string checking = section("Checking", "Bank",
                                       "D2/01/24\nT-150\nPStore\nSGroceries/Food\nEweekly\n$-50\n"
                                       "S[Visa]\n$-100\n^\n");
  const std::string visa = section("Visa", "CCard", "D2/01/24\nT100\nPStore\nL[Checking]\n^\n");
  for (const bool checkingFirst : {true, false}) {
    ImportTestLedger ledger;
    auto command = std::make_shared<ImportLIFFileCommand>(
        ledger.writeFile("split.lif",
                         kAccounts + (checkingFirst ? checking + visa : visa + checking)),
        ledger.document_);
    ASSERT_TRUE(command->execute());
    EXPECT_EQ(ledger.count("Transaction"), 1u) << checkingFirst;
    ASSERT_EQ(ledger.transactions("Checking").size(), 1u);
    // The split tags and memos go: the two copies disagree on them.
    EXPECT_EQ(lines(*ledger.transactions("Checking").front()),
              (std::vector<std::string>{"Groceries|||-50|", "||Visa|-100|"}));
    EXPECT_EQ(ledger.balance("Visa"), "100");
  }
}

TEST_F(ImportLIFFileCommandTest, CardSplitWithTransferToCheckingIsLeftToTheCheckingSide) {
  import(
      kAccounts +
      section("Visa", "CCard", "D2/01/24\nT-30\nPStore\nSHousehold\n$-10\nS[Checking]\n$-20\n^\n") +
      section("Checking", "Bank", "D2/01/24\nT20\nPStore\nL[Visa]\n^\n"));
  ASSERT_TRUE(imported_);
  EXPECT_EQ(count("Transaction"), 1u);
  EXPECT_EQ(amounts("Checking"), (std::vector<std::string>{"2024-02-01 20"}));
  EXPECT_TRUE(transactions("Visa").empty());
}

TEST_F(ImportLIFFileCommandTest, BracketedCategoriesAndEmptyRecords) {
  import(kAccounts + section("Checking", "Bank",
                             "D3/01/24\nL[Savings]\nT-40\n^\n"  // "T" after "L": still zero
                             "D3/02/24\nT0\nL[Savings]\n^\n"    // a transfer of nothing
                             "D3/03/24\nT-5\nL[Checking]\n^\n"  // the current account
                             "D3/04/24\nT-6\nL[Nowhere]\n^\n"   // no such account
                             "^\n"));
  ASSERT_TRUE(imported_);
  EXPECT_EQ(amounts("Checking"),
            (std::vector<std::string>{"2024-03-03 -5", "2024-03-04 -6", "2026-06-15 0"}));
  EXPECT_EQ(lines(*transactions("Checking")[0]), (std::vector<std::string>{"[Checking]|||-5|"}));
  EXPECT_EQ(lines(*transactions("Checking")[1]), (std::vector<std::string>{"[Nowhere]|||-6|"}));
  EXPECT_EQ(lines(*transactions("Checking")[2]), (std::vector<std::string>{"|||0|"}));
}

// Symptom: a record whose date did not read was listed on 2001-01-01, and one whose amount was
// "abc" was created with the amount 0.00. Cause: the listing printed a missing date as the
// reference date, and the not-a-number amount, which the store refuses, left the new
// transaction at zero. Fix: such a record is created without a date; a record with an amount
// that is not a number is not created at all, and the log names its file and line.
TEST_F(ImportLIFFileCommandTest, UnreadableDatesStayMissingAndUnreadableAmountsAreNotStored) {
  auto command = import(kAccounts + section("Checking", "Bank",
                                            "D13/45/24\nT-12.50\nPUndated\n^\n"  // line 19
                                            "D1/15/24\nTabc\nPBad amount\n^\n"   // line 23
                                            "D1/16/24\nT-3\nSFood\n$-1\nSFees\n$n/a\n^\n"));
  ASSERT_TRUE(imported_);
  const ObjectSet list = account("Checking").objectsForKey("transactions");
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(day(*list.front()), "none");
  EXPECT_EQ(list.front()->amountForKey("amount").stringValue(), "-12.5");
  EXPECT_EQ(command->summary().dropped.at("amount not a number"), 2u);
  const auto warnings = command->log()->textsAtOrAbove(ImportLogSeverity::kWarning);
  for (const char* text : {"family.lif, line 23: record dropped (amount not a number)",
                           "family.lif, line 27: record dropped (amount not a number)"}) {
    EXPECT_NE(std::find(warnings.begin(), warnings.end(), text), warnings.end()) << text;
  }
}

// Every record is accounted for: created, merged into its transfer twin, or dropped by a rule
// the log names; what the import removes or only compares is counted too.
TEST_F(ImportLIFFileCommandTest, SummaryAccountsForEveryRecord) {
  auto command =
      import(kAccounts +
             section("Checking", "Bank",
                     "D2/01/24\nT-150\nPStore\nSGroceries/Food\nEweekly\n$-50\nS[Visa]\n$-100\n^\n"
                     "D2/02/24\nT-20\nPMove\nL[Savings]\n^\n"
                     "D2/03/24\nL[Savings]\nT-30\n^\n") +  // line 33: amount after the transfer
             section("Visa", "CCard",
                     "D2/01/24\nT100\nPStore\nL[Checking]\n^\n"
                     "D2/04/24\nT-9\nSFees\n$-1\nS[Checking]\n$-8\n^\n") +  // line 46
             section("Savings", "Bank", "D2/02/24\nT20\nPMove\nL[Checking]\n^\n"));
  ASSERT_TRUE(imported_);
  EXPECT_EQ(command->summary().lines(),
            (std::vector<std::string>{
                "Transaction records read: 6", "Transactions created: 2",
                "Transfer twins merged: 2", "Records dropped by a rule: 2",
                "  split transfer to a checking account, whose copy is kept: 1",
                "  transfer read while its amount was still zero: 1",
                "Split memos and tags removed: 1 memos, 1 tags",
                "Cash balance doesn't match for account Checking. Balance reported as 1000, but "
                "transactions total -170"}));
  const auto texts = command->log()->textsAtOrAbove(ImportLogSeverity::kInfo);
  for (const char* text :
       {"family.lif, line 33: record dropped (transfer read while its amount was still zero)",
        "family.lif, line 46: record dropped (split transfer to a checking account, whose copy "
        "is kept)",
        "family.lif, line 19: split memos and tags removed (1 memos, 1 tags): a split "
        "transaction with a transfer line keeps none",
        "Summary of family.lif:"}) {
    EXPECT_NE(std::find(texts.begin(), texts.end(), text), texts.end()) << text;
  }
  // The summary is the last thing the written log says.
  const std::string written = testing::readFile(command->logFile());
  EXPECT_NE(written.find("  Summary of family.lif:\n    Transaction records read: 6\n"),
            std::string::npos);
}

// Two split transactions naming each other whose lines differ are not twins: both are created,
// and the summary counts no merge.
TEST_F(ImportLIFFileCommandTest, SplitCopiesThatDifferAreBothCreated) {
  auto command = import(
      kAccounts +
      section("Checking", "Bank",
              "D2/01/24\nT-150\nPStore\nSGroceries\n$-50\nS[Savings]\n$-100\n^\n") +
      section("Savings", "Bank", "D2/01/24\nT90\nPStore\nS[Checking]\n$100\nSFees\n$-10\n^\n"));
  ASSERT_TRUE(imported_);
  EXPECT_EQ(count("Transaction"), 2u);
  const ImportSummary& summary = command->summary();
  EXPECT_EQ(summary.recordsRead, 2u);
  EXPECT_EQ(summary.transactionsCreated, 2u);
  EXPECT_EQ(summary.transferTwinsMerged, 0u);
}

// A file meant for another reader is read as well as it can be, and the log says what it looks
// like.
TEST_F(ImportLIFFileCommandTest, FileForAnotherReaderIsNamed) {
  auto command = import("OFXHEADER:100\nDATA:OFXSGML\n\n<OFX>\n<SIGNONMSGSRSV1>\n", "bank.ofx");
  ASSERT_TRUE(imported_);
  EXPECT_EQ(command->summary().fileLooksLike,
            "This file looks like an OFX statement (OFX 1.x, SGML)");
  EXPECT_EQ(command->summary().recordsRead, 0u);
  EXPECT_EQ(command->log()->textsAtOrAbove(ImportLogSeverity::kWarning).front(),
            "This file looks like an OFX statement (OFX 1.x, SGML)");
}

TEST_F(ImportLIFFileCommandTest, CategoriesClassesAndTags) {
  import(
      "!Type:Cat\nNAuto/Fuel\nDGas\nT\n^\nNAuto*Fuel\n^\nNSalary\nI\nR256\n^\nNGifts\n^\n"
      "!Type:Class\nNVacation\nDTrips\n^\n!Type:Tag\nNWork\n^\nNVacation\n^\n");
  ASSERT_TRUE(imported_);
  struct Case {
    const char* name;
    bool exists;
    int64_t type;
    int64_t taxRef;
  };
  for (const Case& c : {Case{"Auto/Fuel", true, 1, 9999}, Case{"Auto*Fuel", false, 0, 0},
                        Case{"Salary", true, 2, 256}, Case{"Gifts", true, 1, 0}}) {
    LObject* category = named("CategoryTag", c.name);
    ASSERT_EQ(category != nullptr, c.exists) << c.name;
    if (!category) continue;
    EXPECT_EQ(category->integerForKey("type"), c.type) << c.name;
    EXPECT_EQ(category->integerForKey("taxRefUS"), c.taxRef) << c.name;
    EXPECT_EQ(category->stringForKey("dataSource"), "LIFIMPORT");
  }
  EXPECT_EQ(count("UserTag"), 2u);
  EXPECT_EQ(named("UserTag", "Vacation")->stringForKey("userDescription"), "Trips");
}

TEST_F(ImportLIFFileCommandTest, InvestmentActionsSplitsBondsAndTransfers) {
  auto command = import(
      kAccounts + "!Type:Security\nNAcme Corp\nSACME\nTStock\n^\nNMuni Bond\nSMUNI\nTBond\n^\n" +
      section("Broker", "Invst",
              "D1/02/24\nNBuy\nYAcme Corp\nI10\nQ100\nT1,000\nO5\n^\n"
              "D2/01/24\nNStkSplit\nYAcme Corp\nQ20\n^\n"
              "D3/01/24\nNSplit\nYAcme Corp\nQ100\nMthree for two\n^\n"
              "D4/01/24\nNBuy\nYMuni Bond\nI100\nQ5\nT500\n^\n"
              "D4/02/24\nNSell\nYMuni Bond\nQ1\n^\n"
              "D5/01/24\nNCGLong\nYAcme Corp\nT30\n^\n"
              "D5/02/24\nNCap. Gains Long\nYAcme Corp\nT31\n^\n"
              "D6/01/24\nNXIn\nT250\nL[Checking]\n$250\n^\n"
              "D6/02/24\nNXOut\nT100\n^\n"
              "D7/01/24\nNBuy\nYAcme Corp\nI10\nQ10\nT0\nL[Checking]\n$-100\n^\n"
              "D7/02/24\nNFrobnicate\nYAcme Corp\n^\n"));
  ASSERT_TRUE(imported_);
  EXPECT_TRUE(document_->securityDataUpdateDue());  // prices of what was bought are wanted
  struct Case {
    const char* date;
    int64_t type;
    const char* amount;
    std::optional<int64_t> override;
    const char* ratio;
  };
  const std::vector<Case> cases = {
      {"2024-01-02", 3, "-1000", std::nullopt, ""}, {"2024-02-01", 23, "0", 100, "2:1"},
      {"2024-03-01", 23, "0", 100, "3:2"},          {"2024-04-01", 4, "-500", std::nullopt, ""},
      {"2024-04-02", 17, "0", std::nullopt, ""},    {"2024-05-01", 8, "30", 100, ""},
      {"2024-05-02", 8, "31", std::nullopt, ""},    {"2024-07-01", 3, "-100", std::nullopt, ""}};
  std::vector<LObject*> investments;
  for (LObject* t : transactions("Broker")) {
    if (t->entity().isKindOf("InvestmentTransaction")) investments.push_back(t);
  }
  ASSERT_EQ(investments.size(), cases.size());
  for (size_t i = 0; i < cases.size(); ++i) {
    LObject& t = *investments[i];
    const Case& c = cases[i];
    EXPECT_EQ(day(t), c.date);
    EXPECT_EQ(t.integerForKey("type"), c.type) << c.date;
    EXPECT_EQ(t.amountForKey("amount").compare(Amount::fromString(c.amount)),
              ComparisonResult::Same)
        << c.date << " " << t.amountForKey("amount").stringValue();
    const Value override = t.valueForKey("userStatusOverride");
    EXPECT_EQ(override.isNull() ? std::nullopt : std::optional<int64_t>(override.asInteger()),
              c.override)
        << c.date;
    if (*c.ratio) {
      EXPECT_EQ(t.amountForKey("numerator").stringValue() + ":" +
                    t.amountForKey("denominator").stringValue(),
                c.ratio);
    }
  }
  EXPECT_EQ(investments[2]->stringForKey("note"), "three for two");
  EXPECT_EQ(investments[1]->stringForKey("note"), "CHECK SPLIT RATIO - MAY BE INCORRECT");
  // 100 bought, doubled, half again, then 10 more.
  LObject* position = investments[0]->objectForKey("position");
  ASSERT_NE(position, nullptr);
  EXPECT_EQ(LedgerQueries::unitsForPosition(*position, *LDateUtilities::dateWithYear(2030, 1, 1))
                .compare(Amount::fromString("310")),
            ComparisonResult::Same);
  // The cash records are cash-flow transactions of the investment account.
  std::vector<std::string> cash;
  for (LObject* t : transactions("Broker")) {
    if (!t->entity().isKindOf("InvestmentTransaction")) {
      cash.push_back(day(*t) + " " + t->amountForKey("amount").stringValue());
    }
  }
  EXPECT_EQ(cash, (std::vector<std::string>{"2024-06-01 250", "2024-06-02 -100"}));
  EXPECT_EQ(amounts("Checking"), (std::vector<std::string>{"2024-07-01 -100"}));
  EXPECT_EQ(lines(*transactions("Checking").front()), (std::vector<std::string>{"||Broker|-100|"}));
  const auto warnings = command->log()->textsAtOrAbove(ImportLogSeverity::kWarning);
  EXPECT_NE(std::find(warnings.begin(), warnings.end(), "Transaction type Frobnicate not handled"),
            warnings.end());
}

TEST_F(ImportLIFFileCommandTest, PricesAreAppliedAtTheEndAndOutliveAnUndo) {
  auto command = import(kAccounts +
                        "!Type:Prices\n\"ACME\",12.5,\"1/ 2' 3\"\n\"ACME\",13.0,\"1/3/03\",x\n^\n"
                        "!Type:Security   \nNAcme Corp\nSACME\nTStock\n^\n");
  ASSERT_TRUE(imported_);
  LObject* security = named("Security", "Acme Corp");
  ASSERT_NE(security, nullptr);
  EXPECT_EQ(security->integerForKey("type"), 7);
  ASSERT_EQ(count("SecurityQuote"), 1u);
  LObject* quote = db().instancesOfClass("SecurityQuote").front();
  EXPECT_EQ(day(*quote, "quoteDate"), "2003-01-02");
  EXPECT_EQ(quote->amountForKey("closingPrice").stringValue(), "12.5");
  EXPECT_EQ(quote->objectForKey("security"), security);
  EXPECT_FALSE(document_->securityDataUpdateDue());  // no investment section was read

  command->undoit();
  EXPECT_EQ(count("Account"), 0u);
  EXPECT_EQ(count("SecurityQuote"), 1u);
}

TEST_F(ImportLIFFileCommandTest, SuccessClearsTheUndoHistoryAndTheImportStillUndoesAsOneStep) {
  auto tag = std::make_shared<CreateLObjectCommand>(
      "UserTag", EditDict{{"name", Value("before the import")}}, document_);
  ASSERT_TRUE(tag->execute());
  ASSERT_TRUE(document_->undoManager().canUndo());
  auto command = import(kAccounts + section("Checking", "Bank", "D1/15/24\nT-20\nPCafe\n^\n"));
  ASSERT_TRUE(imported_);
  EXPECT_FALSE(document_->undoManager().canUndo());
  EXPECT_FALSE(document_->undoManager().canRedo());

  const int commits = document_->commits();
  command->undoit();
  EXPECT_EQ(count("Transaction"), 0u);
  EXPECT_EQ(count("Account"), 0u);
  EXPECT_EQ(count("UserTag"), 1u);
  EXPECT_EQ(document_->commits(), commits + 1);
  command->redoit();
  EXPECT_EQ(amounts("Checking"), (std::vector<std::string>{"2024-01-15 -20"}));
  EXPECT_EQ(count("Account"), 4u);
}

TEST_F(ImportLIFFileCommandTest, SuccessWritesBothLogsAndSaysSo) {
  auto command = import(kAccounts + section("Checking", "Bank", "D1/15/24\nT-20\n^\n"));
  ASSERT_TRUE(imported_);
  const auto converted = db().fileURL().parent_path() / "Converted Data" / "logfile.txt";
  ASSERT_TRUE(std::filesystem::exists(converted));
  const std::string text = testing::readFile(converted);
  EXPECT_NE(text.find("Number of transactions created for each account:\n"), std::string::npos);
  EXPECT_NE(text.find("Checking - 1 transactions\n"), std::string::npos);
  EXPECT_NE(text.find("Savings - 0 transactions\n"), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(command->logFile()));
  EXPECT_EQ(command->logFile().parent_path().filename(), "logs");
  ASSERT_EQ(ui_->alertsShown().size(), 1u);
  EXPECT_EQ(ui_->alertsShown()[0].messageText, "Imported \u201Cfamily.lif\u201D");
  EXPECT_EQ(ui_->alertsShown()[0].buttons, (std::vector<std::string>{"OK", "Show Logs"}));
}

TEST_F(ImportLIFFileCommandTest, ShowLogsRevealsTheWrittenLogFile) {
  const std::string file = kAccounts + section("Checking", "Bank", "D1/15/24\nT-20\n^\n");
  ui_->addAlertAnswer({"OK"});
  auto first = import(file);
  ASSERT_TRUE(imported_);
  EXPECT_TRUE(ui_->revealedFiles().empty());
  first->undoit();
  ui_->addAlertAnswer({"Show Logs"});
  auto second = import(file, "again.lif");
  ASSERT_TRUE(imported_);
  EXPECT_EQ(ui_->revealedFiles(), std::vector<std::filesystem::path>{second->logFile()});
  EXPECT_TRUE(std::filesystem::exists(ui_->revealedFiles().front()));
}

TEST_F(ImportLIFFileCommandTest, DocumentWithTransactionsIsRefusedAndLeftAlone) {
  import(kAccounts + section("Checking", "Bank", "D1/15/24\nT-20\n^\n"));
  ASSERT_TRUE(imported_);
  const auto before = storeRows();
  auto again = import(kAccounts + section("Savings", "Bank", "D1/16/24\nT-30\n^\n"), "more.lif");
  EXPECT_FALSE(imported_);
  EXPECT_EQ(storeRows(), before);
  ASSERT_EQ(ui_->alertsShown().size(), 2u);
  EXPECT_EQ(ui_->alertsShown()[1].messageText, "Could not import \u201Cmore.lif\u201D");
  EXPECT_EQ(ui_->alertsShown()[1].informativeText,
            "Ledgeon can only import lif files into empty documents.");
}

TEST_F(ImportLIFFileCommandTest, CancelledImportLeavesEveryRowAsItWas) {
  // Something committed before, so that the rows compared are not all empty.
  LObject& type = db().createEntity("Checking", {{"name", Value("CHECKING")}});
  db().createEntity("Account", {{"name", Value("Checking")}, {"type", Value(&type)}});
  ASSERT_TRUE(db().commit().ok());
  const auto before = storeRows();
  std::string records;
  for (int i = 0; i < 400; ++i) records += "D1/15/24\nT-1\nPShop\nLFood\n^\n";
  ui_->cancelProgressAfter(10);
  auto command = import(kAccounts + section("Checking", "Bank", records));
  EXPECT_FALSE(imported_);
  EXPECT_TRUE(command->userAborted());
  EXPECT_TRUE(command->commands().empty());
  EXPECT_EQ(storeRows(), before);
  EXPECT_TRUE(ui_->alertsShown().empty());
  const auto& events = ui_->progressEvents();
  EXPECT_NE(std::find(events.begin(), events.end(), "text: Import canceled"), events.end());
  EXPECT_NE(std::find(events.begin(), events.end(), "bar: Cleaning up\u2026"), events.end());
  EXPECT_FALSE(document_->undoManager().canUndo());
  // The objects that stayed are usable, and a second import works.
  EXPECT_EQ(account("Checking").objectsForKey("transactions").size(), 0u);
  ui_->cancelProgressAfter(-1);
  import(kAccounts + section("Checking", "Bank", "D1/15/24\nT-20\n^\n"));
  EXPECT_TRUE(imported_);
  EXPECT_EQ(amounts("Checking"), (std::vector<std::string>{"2024-01-15 -20"}));
}

TEST_F(ImportLIFFileCommandTest, BundledHouseholdFileGivesItsLedger) {
  auto command = std::make_shared<ImportLIFFileCommand>(
      std::filesystem::path(LEDGEON_SOURCE_DIR) / "resources/demo/household.lif", document_);
  ASSERT_TRUE(command->execute());
  struct Case {
    const char* account;
    size_t transactions;
    const char* balance;  // of the cash accounts
  };
  // The opening balances are transactions of the file, so the balances are the statement's.
  for (const Case& c : {Case{"Everyday Checking", 6, "4312.18"}, Case{"Rewards Visa", 5, "-612.4"},
                        Case{"Retirement Brokerage", 9, nullptr}, Case{"Car Loan", 1, "-9850"}}) {
    EXPECT_EQ(transactions(c.account).size(), c.transactions) << c.account;
    if (c.balance) {
      EXPECT_EQ(balance(c.account), c.balance) << c.account;
    }
  }
  EXPECT_TRUE(command->summary().balanceDifferences.empty());
  EXPECT_EQ(command->summary().droppedTotal(), 0u);
  EXPECT_EQ(count("SecurityQuote"), 5u);
  EXPECT_EQ(
      named("Security", "Evergreen Index Fund")->amountForKey("latestClosingPrice").stringValue(),
      "46.35");
}

TEST_F(ImportLIFFileCommandTest, UnreadableFileIsReportedThenRefused) {
  auto missing = std::make_shared<ImportLIFFileCommand>(files_ / "missing.lif", document_);
  EXPECT_FALSE(missing->execute());
  ASSERT_EQ(ui_->alertsShown().size(), 2u);  // the reading error, then the failure
  EXPECT_EQ(ui_->alertsShown()[1].messageText, "Could not import \u201Cmissing.lif\u201D");
}

TEST_F(ImportLIFFileCommandTest, BadFilesFailOrImportWhatReadsWithoutHarm) {
  struct Case {
    const char* name;
    std::string text;
    bool imports;
  };
  const std::vector<Case> cases = {
      {"empty", "", false},
      {"binary", std::string("\x00\xff\xfe!Type:Bank\n\x01\x02^\n", 18), true},
      {"truncated", kAccounts + section("Checking", "Bank", "D1/15/24\nT-2"), true},
      {"bad values", kAccounts + section("Checking", "Bank", "D13/45/24\nTabc\nQ1\n^\n"), true},
      {"long line",
       kAccounts + section("Checking", "Bank", "P" + std::string(100000, 'x') + "\n^\n"), true},
  };
  for (const Case& c : cases) {
    ImportTestLedger ledger;
    auto command = std::make_shared<ImportLIFFileCommand>(
        ledger.writeFile(std::string(c.name) + ".lif", c.text), ledger.document_);
    EXPECT_EQ(command->execute(), c.imports) << c.name;
    if (!c.imports) {
      EXPECT_EQ(ledger.storeRows().size(), 1u) << c.name;
    }
  }
}

}  // namespace
}  // namespace ledgeon
