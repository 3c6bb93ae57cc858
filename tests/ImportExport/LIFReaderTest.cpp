#include <algorithm>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ImportExport/ImportLog.h"
#include "ImportExport/LIFReader.h"
#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

Amount dec(const char* text) { return Amount::fromString(text); }
std::string iso(std::optional<Date> date) {
  return date ? LDateUtilities::ISO8601StringFromDate(*date) : "none";
}

// A file read with a fixed "today", keeping the records and the log.
struct Read {
  explicit Read(const std::string& text, LIFReaderLookups lookups = {})
      : clock(*LDateUtilities::dateWithYear(2026, 6, 15)), log("Import Log", "path") {
    LIFReader reader(log, std::move(lookups));
    reader.setDroppedRecord([this](size_t line, std::string_view rule) {
      dropped.push_back(std::to_string(line) + ": " + std::string(rule));
    });
    records = reader.readText(text);
    stockSplits = reader.accountsWithStockSplits();
    investments = reader.importedInvestments();
  }

  template <typename T>
  std::vector<T> all() const {
    std::vector<T> found;
    for (const auto& record : records) {
      if (const auto* typed = std::get_if<T>(&record)) found.push_back(*typed);
    }
    return found;
  }
  bool logged(const std::string& text) const {
    for (const auto& line : log.textsAtOrAbove(ImportLogSeverity::kDetail)) {
      if (line.find(text) != std::string::npos) return true;
    }
    return false;
  }

  ScopedFixedClock clock;
  ImportLog log;
  std::vector<LIFRecord> records;
  std::vector<std::string> dropped;  // "line: rule"
  std::map<std::string, size_t> stockSplits;
  bool investments = false;
};

constexpr const char* kAccounts =
    "!Option:AutoSwitch\n"
    "!Account\n"
    "NChecking\nTBank\nDEveryday account\n$(1,234.50)\n/12/31/25\n^\n"
    "NVisa\nTCCard\nL5,000\nB-250.00\n^\n"
    "NBrokerage\nTInvst\n^\n"
    "N\nTBank\n^\n"
    "!Clear:AutoSwitch\n";

TEST(LIFReaderTest, AccountListsMapTypesAndBalances) {
  const Read read(kAccounts);
  const auto lists = read.all<LIFAccountList>();
  ASSERT_EQ(lists.size(), 1u);
  const auto& accounts = lists[0].accounts;
  ASSERT_EQ(accounts.size(), 3u);  // the nameless record is ignored
  EXPECT_EQ(accounts[0].name, "Checking");
  EXPECT_EQ(accounts[0].line, 3u);
  EXPECT_EQ(accounts[0].accountType, "CHECKING");
  EXPECT_EQ(accounts[0].description, "Everyday account");
  EXPECT_EQ(accounts[0].statementBalance, dec("-1234.50"));
  EXPECT_EQ(accounts[1].accountType, "CREDITCARD");
  EXPECT_EQ(accounts[1].creditLimit, dec("5000"));
  EXPECT_EQ(accounts[1].statementBalance, dec("-250"));
  EXPECT_EQ(accounts[2].accountType, "BROKERAGENORMAL");
  EXPECT_FALSE(accounts[2].statementBalance);
}

TEST(LIFReaderTest, UnknownAccountTypeEndsTheSection) {
  const Read read(
      "!Account\nNSavings\nTBank\n^\nNHouse\nTProperty\n^\nNLater\nTBank\n^\n"
      "!Type:Bank\nD1/2/26\nT-5\n^\n");
  const auto lists = read.all<LIFAccountList>();
  ASSERT_EQ(lists.size(), 1u);
  ASSERT_EQ(lists[0].accounts.size(), 1u);
  EXPECT_TRUE(read.logged("Unrecognized account type Property"));
  EXPECT_TRUE(read.logged("Line 6: TProperty"));
  const auto transactions = read.all<LIFBankTransaction>();
  ASSERT_EQ(transactions.size(), 1u);
  EXPECT_EQ(transactions[0].account, "Savings");  // the last account read stays current
}

TEST(LIFReaderTest, BankRecordsWithAllFields) {
  const Read read(
      std::string(kAccounts) +
      "!Account\nNChecking\nTBank\n^\n"
      "!Type:Bank\n"
      "D1/ 2'26\nT-1,234.56\nCX\nN1001\nPCity Power\nMJanuary bill\nLUtilities:Power/Home\n^\n"
      "D1/3'26\nU-10.00\nT-10.00\nC*\nPCafe\nLDining\n^\n");
  const auto transactions = read.all<LIFBankTransaction>();
  ASSERT_EQ(transactions.size(), 2u);
  const auto& bill = transactions[0];
  EXPECT_EQ(bill.line, 26u);
  EXPECT_EQ(bill.account, "Checking");
  EXPECT_EQ(iso(bill.date), "2026-01-02");
  EXPECT_EQ(bill.amount, dec("-1234.56"));
  EXPECT_EQ(bill.reconcileStatus, 2);
  EXPECT_EQ(bill.checkNumber, "1001");
  EXPECT_EQ(bill.payee, "City Power");
  EXPECT_EQ(bill.memo, "January bill");
  EXPECT_EQ(bill.category, "Utilities:Power");
  EXPECT_EQ(bill.tag, "Home");
  ASSERT_EQ(bill.splits.size(), 1u);
  EXPECT_EQ(bill.splits[0].category, "Utilities:Power");
  EXPECT_EQ(bill.splits[0].tag, "Home");
  EXPECT_EQ(bill.splits[0].memo, "January bill");
  EXPECT_EQ(bill.splits[0].amount, dec("-1234.56"));
  EXPECT_EQ(transactions[1].reconcileStatus, 1);
  EXPECT_FALSE(read.logged("unknown field code"));  // "U" is known and unused
}

TEST(LIFReaderTest, SplitsAndTransfers) {
  const Read read(std::string(kAccounts) +
                  "!Account\nNVisa\nTCCard\n^\n"
                  "!Type:CCard\n"
                  "D2/1/26\nT-100.00\nPStore\nMMixed\n"
                  "SGroceries/Family\nEFood\n$-60.00\n"
                  "S[Checking]\nEPayment part\n$-40.00\n"
                  "S[Nowhere]\n$0\n"
                  "^\n"
                  "D2/2/26\nT250.00\nPPayment\nL[Checking]\n^\n"
                  "D2/3/26\nT-20.00\nPSelf\nL[Visa]\n^\n"
                  "D2/4/26\nT-20.00\nPUnknown\nL[Savings]/Tag\n^\n");
  const auto transactions = read.all<LIFBankTransaction>();
  ASSERT_EQ(transactions.size(), 4u);
  const auto& split = transactions[0];
  ASSERT_EQ(split.splits.size(), 3u);
  EXPECT_EQ(split.splits[0].category, "Groceries");
  EXPECT_EQ(split.splits[0].tag, "Family");
  EXPECT_EQ(split.splits[0].memo, "Food");
  EXPECT_EQ(split.splits[0].amount, dec("-60"));
  EXPECT_EQ(split.splits[1].category, "Transfer");
  EXPECT_EQ(split.splits[1].transferAccount, "Checking");
  EXPECT_EQ(split.splits[1].memo, "Payment part");
  EXPECT_EQ(split.splits[2].category, "[Nowhere]");  // no such account: a category
  EXPECT_FALSE(split.splits[2].isTransfer());
  EXPECT_TRUE(split.hasTransferSplit);
  EXPECT_EQ(split.splitTransferAccount, "Checking");
  EXPECT_FALSE(split.isTransfer());

  EXPECT_EQ(transactions[1].transferAccount, "Checking");
  EXPECT_EQ(transactions[1].splits[0].category, "Transfer");
  EXPECT_EQ(transactions[1].splits[0].transferAccount, "Checking");
  // The current account in brackets, and an account nobody knows, stay categories, brackets kept.
  EXPECT_EQ(transactions[2].category, "[Visa]");
  EXPECT_FALSE(transactions[2].isTransfer());
  EXPECT_EQ(transactions[3].category, "[Savings]");
  EXPECT_EQ(transactions[3].tag, "Tag");
}

TEST(LIFReaderTest, DocumentAccountsCountForTransfers) {
  LIFReaderLookups lookups;
  lookups.accountExists = [](const std::string& name) { return name == "Savings"; };
  const Read read("!Account\nNChecking\nTBank\n^\n!Type:Bank\nD1/1/26\nT-5\nL[Savings]\n^\n",
                  lookups);
  ASSERT_EQ(read.all<LIFBankTransaction>().size(), 1u);
  EXPECT_EQ(read.all<LIFBankTransaction>()[0].transferAccount, "Savings");
}

TEST(LIFReaderTest, ZeroAmountTransfersAreDropped) {
  const Read read(std::string(kAccounts) +
                  "!Account\nNVisa\nTCCard\n^\n"
                  "!Type:CCard\n"
                  "D3/1/26\nT0.00\nL[Checking]\n^\n"   // zero amount: the other side's entry
                  "D3/2/26\nL[Checking]\nT75.00\n^\n"  // "T" after "L": still zero when read
                  "D3/3/26\nT0.00\nLFees\n^\n"         // zero, but not a transfer: kept
                  "^\n");                              // empty record: kept
  const auto transactions = read.all<LIFBankTransaction>();
  ASSERT_EQ(transactions.size(), 2u);
  EXPECT_EQ(read.dropped,
            (std::vector<std::string>{"26: transfer read while its amount was still zero",
                                      "30: transfer read while its amount was still zero"}));
  EXPECT_EQ(transactions[0].category, "Fees");
  const auto& empty = transactions[1];
  EXPECT_EQ(iso(empty.date), "2026-06-15");
  EXPECT_TRUE(empty.amount.isZero());
  ASSERT_EQ(empty.splits.size(), 1u);
  EXPECT_EQ(empty.splits[0].category, "");
  EXPECT_TRUE(empty.splits[0].amount.isZero());
}

TEST(LIFReaderTest, TransactionsWithoutAccountAreSkipped) {
  const Read read("!Type:Bank\nD1/1/26\nT-5\n^\n");
  EXPECT_TRUE(read.all<LIFBankTransaction>().empty());
  EXPECT_EQ(read.dropped, std::vector<std::string>{"2: no account section before it"});
}

TEST(LIFReaderTest, CategoriesTagsAndTheStarSlashRule) {
  LIFReaderLookups lookups;
  lookups.categoryExists = [](const std::string& name) { return name == "Housing/Rent"; };
  lookups.tagExists = [](const std::string& name) { return name == "Old"; };
  const Read read(
      "!Type:Cat\n"
      "NSalary\nDPay\nI\nT\nR450\n^\n"
      "NMedical\nE\nT\nRn/a\n^\n"  // a reference that does not read leaves the bare "T"
      "NHousing*Rent\n^\n"         // exists with "/" for "*"
      "NAuto/Fuel\n^\n"
      "NAuto*Fuel\n^\n"  // defined above in the file
      "NSalary\n^\n"     // repeated
      "N\nDnameless\n^\n"
      "!Type:Class\nNVacation\nDTrips\n^\nNOld\n^\n"
      "!Type:Tag\nNBusiness\n^\n",
      lookups);
  const auto categories = read.all<LIFCategory>();
  ASSERT_EQ(categories.size(), 3u);
  EXPECT_EQ(categories[0].name, "Salary");
  EXPECT_EQ(categories[0].type, 2);
  EXPECT_EQ(categories[0].taxRefUS, 450);
  EXPECT_EQ(categories[0].description, "Pay");
  EXPECT_EQ(categories[1].name, "Medical");
  EXPECT_EQ(categories[1].type, 1);
  EXPECT_EQ(categories[1].taxRefUS, 9999);
  EXPECT_TRUE(read.logged("Line 11: tax reference n/a is not a number"));
  EXPECT_EQ(categories[2].name, "Auto/Fuel");
  const auto tags = read.all<LIFTag>();
  ASSERT_EQ(tags.size(), 2u);
  EXPECT_EQ(tags[0].name, "Vacation");
  EXPECT_EQ(tags[0].description, "Trips");
  EXPECT_EQ(tags[1].name, "Business");
}

TEST(LIFReaderTest, SecuritiesComeFirstUnlessTheirHeaderHasTrailingSpaces) {
  const Read read(
      "!Type:Prices\n\"ACME\",12.5,\"1/ 2'03\"\n^\n"
      "!Type:Security\nNAcme Corp\nSACME\nTStock\n^\nNTreasury 2030\nTBond\n^\n"
      "!Type:Cat\nNFood\n^\n"
      "!Type:Security   \nNLate Fund\nSLATE\nTMutual Fund\n^\n");
  ASSERT_EQ(read.records.size(), 5u);
  const auto* first = std::get_if<LIFSecurity>(&read.records[0]);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->name, "Acme Corp");
  EXPECT_EQ(first->ticker, "ACME");
  EXPECT_EQ(first->type, 7);
  EXPECT_EQ(first->line, 5u);
  EXPECT_EQ(std::get<LIFSecurity>(read.records[1]).type, 2);
  EXPECT_TRUE(std::holds_alternative<LIFPrice>(read.records[2]));
  EXPECT_TRUE(std::holds_alternative<LIFCategory>(read.records[3]));
  const auto* late = std::get_if<LIFSecurity>(&read.records[4]);
  ASSERT_TRUE(late);
  EXPECT_EQ(late->type, 4);
  EXPECT_EQ(late->line, 16u);
}

TEST(LIFReaderTest, PriceLines) {
  const Read read(
      "!Type:Prices\n"
      "\"ACME\",12.5,\"1/ 2'03\"\n"
      "\"ACME\",13,\"12/31/2002\"\n"
      "\"ACME\",1,234,\"1/ 3'03\"\n"  // four parts: ignored
      "\"ACME\",abc,\"1/ 4'03\"\n"
      "^\n");
  const auto prices = read.all<LIFPrice>();
  ASSERT_EQ(prices.size(), 3u);
  EXPECT_EQ(prices[0].ticker, "ACME");
  EXPECT_EQ(prices[0].price, dec("12.5"));
  EXPECT_EQ(iso(prices[0].date), "2003-01-02");
  EXPECT_EQ(iso(prices[1].date), "2002-12-31");
  EXPECT_TRUE(prices[2].price.isNaN());
  EXPECT_TRUE(read.logged("Line 5: price abc is not a number"));
}

constexpr const char* kInvestmentPrelude =
    "!Type:Security\nNAcme Corp\nSACME\nTStock\n^\nNTreasury 2030\nTBond\n^\n"
    "!Account\nNChecking\nTBank\n^\nNBrokerage\nTInvst\n^\n"
    "!Type:Invst\n";

const LIFInvestmentTransaction* findLine(const std::vector<LIFInvestmentTransaction>& all,
                                         size_t line) {
  for (const auto& record : all) {
    if (record.line == line) return &record;
  }
  return nullptr;
}

TEST(LIFReaderTest, InvestmentActionsRewritesAndSigns) {
  struct Case {
    std::string record;
    int type;
    const char* amount;
    bool override100;
  };
  const Case cases[] = {
      {"NBuy\nYAcme Corp\nI10\nQ5\nO1\nT51", 3, "-51", false},
      {"NBuyX\nYTreasury 2030\nI98\nQ1\nT98\nL[Checking]\n$98", 4, "-98", false},  // bond buy
      {"NSell\nYTreasury 2030\nT-99", 20, "99", false},                            // bond sell
      {"NSell\nYAcme Corp\nQ5\nT-60", 19, "60", false},
      {"NBuy\nYAcme Corp\nQ5", 2, "0", false},    // nothing paid: shares in
      {"NSell\nYAcme Corp\nQ5", 17, "0", false},  // nothing received: shares out
      {"NDiv\nYAcme Corp\nT0", 15, "0", false},   // zero: the reinvest form
      {"NCGLong\nYAcme Corp\nT0", 13, "0", true},
      {"NCGLong\nYAcme Corp\nT12", 8, "12", true},
      {"NCap. Gains Long\nYAcme Corp\nT12", 8, "12", false},
      {"NCGShort\nYAcme Corp\nT3", 9, "3", true},
      {"NMargInt\nT4", 6, "-4", false},  // keeps its type without a security
      {"NMiscExp\nYAcme Corp\nT-7", 7, "-7", false},
      {"NShtSell\nYAcme Corp\nT-70", 21, "70", false},
      {"NStkSplit\nYAcme Corp\nQ20", 23, "0", true},
  };
  std::string file = kInvestmentPrelude;
  std::vector<size_t> lines;
  size_t line = 17;
  for (const Case& c : cases) {
    lines.push_back(line);
    file += "D1/5/26\n" + c.record + "\n^\n";
    line += 2 + static_cast<size_t>(std::count(c.record.begin(), c.record.end(), '\n')) + 1;
  }
  const Read read(file);
  const auto all = read.all<LIFInvestmentTransaction>();
  ASSERT_EQ(all.size(), std::size(cases));
  for (size_t i = 0; i < std::size(cases); ++i) {
    const auto* record = findLine(all, lines[i]);
    ASSERT_TRUE(record) << cases[i].record;
    EXPECT_EQ(record->type, cases[i].type) << cases[i].record;
    EXPECT_EQ(record->amount, dec(cases[i].amount)) << cases[i].record;
    EXPECT_EQ(record->userStatusOverride.has_value(), cases[i].override100) << cases[i].record;
    EXPECT_EQ(record->account, "Brokerage");
  }
  EXPECT_EQ(findLine(all, lines[0])->costBasis, dec("51"));
  EXPECT_TRUE(read.investments);
  EXPECT_EQ(read.stockSplits.at("Brokerage"), 1u);
}

TEST(LIFReaderTest, StockSplitsAndInvestmentTransfers) {
  const Read read(std::string(kInvestmentPrelude) +
                  "D1/6/26\nNStkSplit\nYAcme Corp\nQ20\n^\n"
                  "D1/7/26\nNSplit\nYAcme Corp\nQ50\nMthree for two\n^\n"
                  "D1/8/26\nNDiv\nYAcme Corp\nT0\nL[Checking]\n$25.00\n^\n"
                  "D1/9/26\nNDiv\nYAcme Corp\nT0\nL[Elsewhere]\n$5.00\n^\n");
  const auto all = read.all<LIFInvestmentTransaction>();
  ASSERT_EQ(all.size(), 4u);
  EXPECT_EQ(all[0].splitForm, LIFStockSplitForm::kNewSharesPerTen);
  EXPECT_EQ(all[0].quantity, dec("20"));
  EXPECT_EQ(all[0].memo, "CHECK SPLIT RATIO - MAY BE INCORRECT");
  EXPECT_EQ(all[1].splitForm, LIFStockSplitForm::kAddedShares);
  EXPECT_EQ(all[1].memo, "three for two");
  EXPECT_EQ(read.stockSplits.at("Brokerage"), 2u);
  EXPECT_EQ(all[2].type, 10);  // an "L" text keeps the cash form
  EXPECT_EQ(all[2].transferAccount, "Checking");
  EXPECT_EQ(all[2].amount, dec("25"));
  EXPECT_EQ(all[3].transferAccount, "");
  EXPECT_TRUE(all[3].amount.isZero());
  EXPECT_TRUE(read.logged("Account Elsewhere not created yet"));
}

TEST(LIFReaderTest, CashRecordsOfInvestmentSections) {
  const Read read(std::string(kInvestmentPrelude) +
                  "D1/10/26\nNXIn\nT500\nL[Checking]\nPDeposit\n$500\n^\n"
                  "D1/11/26\nNXOut\nT200\nL[Checking]\n$200\n^\n"
                  "D1/12/26\nNCash\nT-15\nMFee\n^\n"
                  "D1/13/26\nNDiv\nT8\n^\n"  // no security: cash
                  "D1/14/26\nNGrant\nYAcme Corp\nT1\n^\n");
  const auto cash = read.all<LIFBankTransaction>();
  ASSERT_EQ(cash.size(), 4u);
  for (const auto& record : cash) {
    EXPECT_TRUE(record.investmentCash);
    EXPECT_EQ(record.account, "Brokerage");
  }
  EXPECT_EQ(cash[0].amount, dec("500"));
  EXPECT_EQ(cash[0].checkNumber, "");
  EXPECT_EQ(cash[0].transferAccount, "Checking");
  EXPECT_EQ(cash[0].payee, "Deposit");
  EXPECT_EQ(cash[1].amount, dec("-200"));  // money out, written positive
  EXPECT_EQ(cash[1].checkNumber, "");
  EXPECT_EQ(cash[2].amount, dec("-15"));
  EXPECT_EQ(cash[2].checkNumber, "Cash");
  EXPECT_EQ(cash[2].memo, "Fee");
  EXPECT_EQ(cash[3].amount, dec("8"));
  EXPECT_TRUE(read.all<LIFInvestmentTransaction>().empty());
  EXPECT_TRUE(read.logged("Transaction type Grant not handled"));
  EXPECT_EQ(read.dropped, std::vector<std::string>{"39: investment action not handled"});
}

TEST(LIFReaderTest, BadLinesAreLoggedWithTheirNumbers) {
  std::string file =
      "!Account\nNChecking\nTBank\n^\n"
      "!Type:Bank\n"
      "D14/45/26\nTlots\nZzz\n^\n"  // lines 6, 7, 8
      "!Type:Wobble\nstray\n"       // lines 10, 11
      "!Type:Memorized\nT5\n^\n"    // skipped quietly
      "!Type:Bank\nD1/1/26\nT5\n";  // record cut off by the end of the file, lines 15-17
  file.insert(file.find("stray"), std::string(5000, 'x') + "\n");
  const Read read(file);
  EXPECT_TRUE(read.logged("Line 6: date 14/45/26 could not be read"));
  EXPECT_TRUE(read.logged("Line 7: amount lots is not a number"));
  EXPECT_TRUE(read.logged("Line 8: unknown field code: Zzz"));
  EXPECT_TRUE(read.logged("Unknown section !Type:Wobble skipped"));
  EXPECT_TRUE(read.logged("Line 11: very long line (5000 characters)"));
  EXPECT_TRUE(read.logged("Line 18: the last record ends without \"^\""));
  // The record of lines 6-9 has no amount that reads: it is left out, never stored as zero.
  const auto transactions = read.all<LIFBankTransaction>();
  ASSERT_EQ(transactions.size(), 1u);
  EXPECT_EQ(read.dropped, std::vector<std::string>{"6: amount not a number"});
  EXPECT_EQ(transactions[0].amount, dec("5"));
}

TEST(LIFReaderTest, RecordsLeftOutAreReportedWithLineAndRule) {
  struct Case {
    std::string records;  // after the prelude, from line 17
    std::string dropped;  // "" when the record is read
    std::string date;     // of a record read
  };
  const std::vector<Case> cases = {
      {"D1/5/26\nNBuy\nYAcme Corp\nIabc\nQ5\nT51\n^\n", "17: amount not a number", ""},
      {"D1/5/26\nNBuy\nYAcme Corp\nQ5\nT51\nO1.2.3\n^\n", "17: amount not a number", ""},
      {"D1/5/26\nNXIn\nTlots\n^\n", "17: amount not a number", ""},
      {"D1/5/26\nNGrant\nYAcme Corp\nT1\n^\n", "17: investment action not handled", ""},
      {"D1/5/26\nNBuy\nYAcme Corp\nQ5\n!Type:Cat\nNFood\n^\n",
       "17: not ended by \"^\" before the next section", ""},
      {"!Type:Bank\nD1/5/26\nT2\nS[Checking]\n$1\nSFood\n$x\n^\n", "18: amount not a number", ""},
      {"!Type:Bank\nD1/5/26\nT2\n!Type:Cat\n", "18: not ended by \"^\" before the next section",
       ""},
      {"D02/30/26\nNBuy\nYAcme Corp\nQ5\nT51\n^\n", "", "none"},
  };
  for (const Case& c : cases) {
    const Read read(std::string(kInvestmentPrelude) + c.records);
    EXPECT_EQ(read.dropped,
              c.dropped.empty() ? std::vector<std::string>{} : std::vector<std::string>{c.dropped})
        << c.records;
    if (c.dropped.empty()) {
      ASSERT_EQ(read.all<LIFInvestmentTransaction>().size(), 1u) << c.records;
      EXPECT_EQ(iso(read.all<LIFInvestmentTransaction>()[0].date), c.date);
    }
  }
}

TEST(LIFReaderTest, GarbageIsReportedAndCapped) {
  std::string garbage = "!Account\nNChecking\nTBank\n^\n!Type:Bank\n";
  for (long i = 0; i < 400000; ++i) garbage += static_cast<char>((i * 7919 + 13) % 256);
  const Read read(garbage);
  EXPECT_LE(read.log.count(ImportLogSeverity::kWarning), LIFReader::kMaximumReportedProblems + 1);
  EXPECT_TRUE(read.logged("further problems were not listed"));
}

TEST(LIFReaderTest, ReadsFilesInOtherEncodings) {
  testing::TempFolder folder;
  const std::string latin1 =
      "!Account\nNCaf\xE9 account\nTBank\n^\n!Type:Bank\nD1/1/26\nT-3\nPCaf\xE9\n^\n";
  {
    std::ofstream out(folder / "latin1.lif", std::ios::binary);
    out << latin1;
  }
  ImportLog log("Import Log", "path");
  LIFReader reader(log);
  auto records = reader.readFile(folder / "latin1.lif");
  ASSERT_TRUE(records);
  const auto* transaction = std::get_if<LIFBankTransaction>(&records->back());
  ASSERT_TRUE(transaction);
  EXPECT_EQ(transaction->payee, "Caf\xC3\xA9");
  EXPECT_EQ(transaction->account, "Caf\xC3\xA9 account");
  { std::ofstream out(folder / "empty.lif", std::ios::binary); }
  EXPECT_FALSE(reader.readFile(folder / "empty.lif"));
  EXPECT_FALSE(reader.readFile(folder / "missing.lif"));
}

TEST(LIFReaderTest, CancelStopsTheReading) {
  std::string file = "!Account\nNChecking\nTBank\n^\n";
  for (int i = 0; i < 200; ++i) file += "!Type:Bank\nD1/1/26\nT-1\n^\n";
  ImportLog log("Import Log", "path");
  LIFReader reader(log);
  size_t asked = 0;
  reader.setProgress([&](size_t, size_t, std::string_view) { return ++asked < 3; });
  const auto records = reader.readText(file);
  EXPECT_TRUE(reader.userAborted());
  EXPECT_LT(records.size(), 50u);
}

}  // namespace
}  // namespace ledgeon

namespace ledgeon {
namespace {

// The bundled sample reads cleanly: the demo must not show a log full of warnings.
TEST(LIFReaderTest, BundledSampleReadsWithoutProblems) {
  ImportLog log("Import Log", "household.lif");
  LIFReader reader(log);
  const auto records = reader.readFile(std::filesystem::path(LEDGEON_SOURCE_DIR) / "resources" /
                                       "demo" / "household.lif");
  ASSERT_TRUE(records);
  EXPECT_EQ(log.count(ImportLogSeverity::kWarning), 0u) << log.plainText();
  size_t bank = 0;
  size_t investments = 0;
  size_t prices = 0;
  for (const auto& record : *records) {
    bank += std::holds_alternative<LIFBankTransaction>(record);
    investments += std::holds_alternative<LIFInvestmentTransaction>(record);
    prices += std::holds_alternative<LIFPrice>(record);
  }
  EXPECT_EQ(bank, 16u);  // 8 checking, 5 card, 1 loan, 2 brokerage cash
  EXPECT_EQ(investments, 7u);
  EXPECT_EQ(prices, 5u);
  EXPECT_EQ(reader.accountsWithStockSplits().at("Retirement Brokerage"), 1u);
}

}  // namespace
}  // namespace ledgeon

namespace ledgeon {
namespace {

TEST(LIFReaderTest, StreamedRecordsComeInTheSameOrder) {
  const std::string file = testing::readFile(std::filesystem::path(LEDGEON_SOURCE_DIR) /
                                             "resources" / "demo" / "household.lif");
  ImportLog log("Import Log", "household.lif");
  LIFReader reader(log);
  const auto collected = reader.readText(file);
  std::vector<size_t> streamed;
  reader.readText(file, [&](LIFRecord&& record) {
    streamed.push_back(std::visit([](const auto& r) { return r.line; }, record));
  });
  ASSERT_EQ(streamed.size(), collected.size());
  for (size_t i = 0; i < collected.size(); ++i) {
    EXPECT_EQ(streamed[i], std::visit([](const auto& r) { return r.line; }, collected[i]));
  }
}

}  // namespace
}  // namespace ledgeon
