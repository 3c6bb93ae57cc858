#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ImportExport/ImportLIFFileCommand.h"
#include "ImportTestLedger.h"
#include "LIFLedgerGenerator.h"

namespace ledgeon {
namespace {

using testing::ExpectedLine;
using testing::ExpectedTransaction;
using testing::GeneratedLIFFile;
using testing::ImportTestLedger;

// The seeds to run: LEDGEON_LIF_SEEDS="FIRST-LAST" (or one number) for a longer search, else a
// fixed set quick enough for every test run.
std::vector<uint32_t> seeds() {
  std::vector<uint32_t> list;
  if (const char* wanted = std::getenv("LEDGEON_LIF_SEEDS")) {
    const std::string text = wanted;
    const size_t dash = text.find('-');
    const auto first = static_cast<uint32_t>(std::stoul(text.substr(0, dash)));
    const auto last = dash == std::string::npos
                          ? first
                          : static_cast<uint32_t>(std::stoul(text.substr(dash + 1)));
    for (uint32_t seed = first; seed <= last; ++seed) list.push_back(seed);
    return list;
  }
  for (uint32_t seed = 1; seed <= 20; ++seed) list.push_back(seed);
  return list;
}

ExpectedTransaction actualTransaction(LObject& transaction) {
  ExpectedTransaction t;
  t.account = transaction.objectForKey("account")->stringForKey("name");
  t.date = ImportTestLedger::day(transaction);
  t.amount = transaction.amountForKey("amount").stringValue();
  LObject* payee = transaction.objectForKey("userPayee");
  t.payee = payee ? payee->stringForKey("name") : "";
  t.note = transaction.stringForKey("note");
  t.checkNumber = transaction.stringForKey("checkNumber");
  t.reconcileStatus = transaction.integerForKey("reconcileStatus");
  LObject* target = transaction.objectForKey("targetAccount");
  t.targetAccount = target ? target->stringForKey("name") : "";
  std::vector<LObject*> entries = transaction.objectsForKey("entries");
  std::sort(entries.begin(), entries.end(), [](LObject* a, LObject* b) {
    return a->integerForKey("sequenceNumber") < b->integerForKey("sequenceNumber");
  });
  for (LObject* entry : entries) {
    ExpectedLine line;
    LObject* category = entry->objectForKey("categoryTag");
    line.category = category ? category->stringForKey("name") : "";
    for (LObject* tag : entry->objectsForKey("userTags"))
      line.tags.push_back(tag->stringForKey("name"));
    std::sort(line.tags.begin(), line.tags.end());
    line.transfer = entry->stringForKey("transfer");
    line.amount = entry->amountForKey("amount").stringValue();
    line.note = entry->stringForKey("note");
    t.lines.push_back(std::move(line));
  }
  return t;
}

std::vector<std::string> sortedDescriptions(const std::vector<ExpectedTransaction>& transactions) {
  std::vector<std::string> texts;
  for (const ExpectedTransaction& t : transactions) texts.push_back(t.description());
  std::sort(texts.begin(), texts.end());
  return texts;
}

// Random files with the ledger the import rules give them: after the import every transaction,
// its lines and every balance are that ledger, and the summary accounts for every record.
TEST(LIFImportPropertyTest, ImportedLedgerIsTheGeneratedOne) {
  std::map<std::string, size_t> features;
  for (const uint32_t seed : seeds()) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const GeneratedLIFFile generated = testing::generateLIFFile(seed);
    for (const auto& [feature, count] : generated.features) features[feature] += count;
    for (const auto& [rule, count] : generated.dropped) features[rule] += count;
    ImportTestLedger ledger;
    auto command = std::make_shared<ImportLIFFileCommand>(
        ledger.writeFile("generated.lif", generated.text), ledger.document_);
    ASSERT_TRUE(command->execute()) << generated.text;

    std::vector<ExpectedTransaction> actual;
    for (LObject* transaction : ledger.db().instancesOfClass("CashFlowTransaction")) {
      actual.push_back(actualTransaction(*transaction));
    }
    EXPECT_EQ(sortedDescriptions(actual), sortedDescriptions(generated.ledger)) << generated.text;

    const auto expectedBalances = generated.balances();
    auto actualBalances = testing::balancesOf(actual);
    for (const std::string& name : generated.accounts) {
      actualBalances.try_emplace(name, Amount::zero());
      const Amount& expected = expectedBalances.at(name);
      EXPECT_EQ(actualBalances.at(name).compare(expected), ComparisonResult::Same) << name;
      EXPECT_EQ(LedgerQueries(ledger.db()).balanceOfAccount(ledger.account(name)).compare(expected),
                ComparisonResult::Same)
          << name;
    }

    const ImportSummary& summary = command->summary();
    EXPECT_EQ(summary.recordsRead, generated.records);
    EXPECT_EQ(summary.transactionsCreated, generated.ledger.size());
    EXPECT_EQ(summary.transferTwinsMerged, generated.merged);
    const std::map<std::string, size_t> dropped(summary.dropped.begin(), summary.dropped.end());
    EXPECT_EQ(dropped, generated.dropped);
    EXPECT_EQ(summary.recordsRead,
              summary.transactionsCreated + summary.transferTwinsMerged + summary.droppedTotal());
    EXPECT_EQ(summary.splitMemosRemoved, generated.memosRemoved);
    EXPECT_EQ(summary.splitTagsRemoved, generated.tagsRemoved);
    EXPECT_EQ(summary.balanceDifferences.size(), generated.balanceDifferences);
    if (::testing::Test::HasFailure()) return;
  }
  if (std::getenv("LEDGEON_LIF_SEEDS")) return;
  // The fixed seeds write every kind of record at least once.
  for (const char* feature :
       {"date that does not read", "check number", "transfer listed in both accounts",
        "transfer listed once", "split without transfer lines", "split transferring to one account",
        "split transferring to two accounts", "split left to the checking account's copy",
        "amount not a number", "transfer read while its amount was still zero"}) {
    EXPECT_GT(features[feature], 0u) << feature;
  }
}

}  // namespace
}  // namespace ledgeon
