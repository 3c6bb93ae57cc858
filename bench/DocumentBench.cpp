// Opening and closing documents of 10,000, 100,000 and 1,000,000 transactions, and backing them
// up against Debian's `zip -r` of the same package in the same run.
//
// DocumentOpen/floor is the 10,000-transaction document; the 100k and 1M variants' ratios to it
// are the growth of the open time with the ledger (opening must not load the ledger, so they stay
// far below 10x and 100x). DocumentBackup<size>/floor is `zip -r` of that package.
//
// The documents are generated once through the DataBase and kept below the build folder
// (bench/documents next to this program); delete that folder to generate them again.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include "DataBase/DataBase.h"
#include "Documents/LDocument.h"
#include "Documents/LedgerQueries.h"
#include "LObjects/Value.h"
#include "Utilities/Amount.h"
#include "Utilities/LDateUtilities.h"
#include "ZipTool.h"

namespace {

namespace fs = std::filesystem;
using namespace ledgeon;

constexpr long kChunk = 25000;  // transactions per commit while generating

fs::path cacheFolder() { return fs::read_symlink("/proc/self/exe").parent_path() / "documents"; }

// Keeps lock records, backups and support folders of the runs out of the real home folder.
void useScratchHome() {
  static const bool done = [] {
    const fs::path home = cacheFolder() / "home";
    fs::create_directories(home);
    ::setenv("LEDGEON_HOME", home.c_str(), 1);
    return true;
  }();
  (void)done;
}

void addTransactions(DataBase& db, long first, long count) {
  LObject* account = db.instancesOfClass("Account").front();
  const std::vector<LObject*> categories = db.instancesOfClass("CategoryTag");
  const std::vector<LObject*> payees = db.instancesOfClass("UserPayee");
  for (long i = first; i < first + count; ++i) {
    const Date day =
        *LDateUtilities::dateWithYear(static_cast<int>(2000 + i / 40000),
                                      static_cast<int>(1 + i % 12), static_cast<int>(1 + i % 28));
    const Amount amount = Amount::fromString((i % 7 == 0 ? "" : "-") + std::to_string(i % 900) +
                                             "." + std::to_string(10 + i % 90));
    const size_t pick = static_cast<size_t>(i);
    LObject& transaction = db.createEntity("CashFlowTransaction",
                                           {{"account", Value(account)},
                                            {"enteredDate", Value(day)},
                                            {"amount", Value(amount)},
                                            {"userPayee", Value(payees[pick % payees.size()])},
                                            {"note", Value("Generated " + std::to_string(i))},
                                            {"reconcileStatus", Value(static_cast<int>(i % 3))}});
    db.createEntity("CashFlowTransactionEntry",
                    {{"parent", Value(&transaction)},
                     {"amount", Value(amount)},
                     {"categoryTag", Value(categories[pick % categories.size()])},
                     {"sequenceNumber", Value(0)}});
  }
}

// The package of a document of `transactions` transactions, generated on first use.
fs::path documentOf(long transactions) {
  useScratchHome();
  const fs::path package = cacheFolder() / ("Ledger-" + std::to_string(transactions) + ".ledgeon");
  const fs::path ready = cacheFolder() / ("Ledger-" + std::to_string(transactions) + ".ready");
  if (fs::exists(ready)) return package;
  fs::remove_all(package);
  fs::create_directories(cacheFolder());
  std::cerr << "Generating a document of " << transactions << " transactions..." << std::endl;
  {
    auto created = LDocument::createNewDocument(package);
    if (!created) throw std::runtime_error(created.error().localizedDescription());
    DataBase& db = (*created)->dataBase();
    db.createEntity("Account",
                    {{"name", Value("Everyday Checking")},
                     {"currency", Value("USD")},
                     {"type", Value((*created)->ledgerQueries().accountTypeForClass("Checking"))}});
    for (const char* payee : {"Corner Grocer", "Power Company", "Landlord", "Cafe", "Pharmacy"}) {
      db.createEntity("UserPayee", {{"name", Value(payee)}});
    }
    if (!db.commit()) throw std::runtime_error("cannot commit the generated account");
    (*created)->close();
  }
  auto store = DataBase::initWithFileURL(LDocumentPackage::dataBasePathForFile(package), false);
  if (!store) throw std::runtime_error(store.error().localizedDescription());
  for (long first = 0; first < transactions; first += kChunk) {
    addTransactions(**store, first, std::min(kChunk, transactions - first));
    if (!(*store)->commit()) throw std::runtime_error("cannot commit generated transactions");
    (*store)->reset();  // keep memory flat: the committed objects are not needed any more
  }
  (*store)->close();
  std::ofstream(ready) << transactions << '\n';
  return package;
}

void openAndClose(benchmark::State& state, long transactions) {
  const fs::path package = documentOf(transactions);
  size_t loaded = 0;
  for (auto _ : state) {
    auto opened = LDocument::initWithContentsOfURL(package);
    if (!opened) {
      state.SkipWithError(opened.error().localizedDescription().c_str());
      return;
    }
    loaded = (*opened)->dataBase().registeredObjectCount();
    (*opened)->close();
  }
  state.counters["transactions"] = static_cast<double>(transactions);
  state.counters["objectsLoaded"] = static_cast<double>(loaded);
  state.counters["storeBytes"] =
      static_cast<double>(fs::file_size(LDocumentPackage::dataBasePathForFile(package)));
}

void zipFloor(benchmark::State& state, long transactions) {
  const fs::path package = documentOf(transactions);
  const fs::path archive = cacheFolder() / "floor.zip";
  for (auto _ : state) {
    fs::remove(archive);
    ledgeon::bench::runZip(package, archive);
  }
  state.counters["bytes"] = static_cast<double>(fs::file_size(archive));
}

void backUp(benchmark::State& state, long transactions) {
  const fs::path package = documentOf(transactions);
  const fs::path archive = cacheFolder() / "bench.ledgeonbackup";
  for (auto _ : state) {
    fs::remove(archive);
    auto made = LDocumentPackage::backupPackage(package, archive,
                                                {.originalFilePath = package.string(),
                                                 .note = "bench",
                                                 .reason = BackupReason::kManual,
                                                 .UID = "BENCH"});
    if (!made) state.SkipWithError("backup failed");
  }
  state.counters["bytes"] = static_cast<double>(fs::file_size(archive));
}

struct Size {
  long transactions;
  const char* label;
};

const bool registered = [] {
  const Size sizes[] = {{10000, "10k"}, {100000, "100k"}, {1000000, "1M"}};
  for (const Size& size : sizes) {
    const long n = size.transactions;
    const std::string open =
        n == 10000 ? "DocumentOpen/floor" : std::string("DocumentOpen/") + size.label;
    benchmark::RegisterBenchmark(open.c_str(), openAndClose, n)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    const std::string group = std::string("DocumentBackup") + size.label;
    benchmark::RegisterBenchmark((group + "/floor").c_str(), zipFloor, n)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark((group + "/ledgeon").c_str(), backUp, n)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
  }
  return true;
}();

}  // namespace
