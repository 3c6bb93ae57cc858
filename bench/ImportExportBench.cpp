// Reading import files: a LIF file of 100,000 bank transactions over 5 accounts (30% with splits,
// 10% transfers) and a 100,000-row CSV export. The floor of each is splitting the same text into
// lines, which every reader must at least do.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <malloc.h>

#include "Commands/LCommandManager.h"
#include "DataBase/DataBase.h"
#include "ImportExport/CSVParser.h"
#include "ImportExport/ImportLIFFileCommand.h"
#include "ImportExport/ImportLog.h"
#include "ImportExport/ImportTextFileCommand.h"
#include "ImportExport/ImportTransaction.h"
#include "ImportExport/LIFReader.h"
#include "ImportExport/TextFileReader.h"
#include "LObjects/LObject.h"
#include "Platform/ScriptedUserInterface.h"
#include "Platform/Services.h"
#include "Utilities/LDateUtilities.h"

namespace {

using namespace ledgeon;

constexpr int kTransactions = 100000;
const char* const kAccounts[] = {"Checking", "Savings", "Visa", "Cash", "House"};
const char* const kTypes[] = {"Bank", "Bank", "CCard", "Cash", "Oth A"};

const std::string& lifText() {
  static const std::string text = [] {
    std::string out = "!Account\n";
    for (int a = 0; a < 5; ++a) out += fmt::format("N{}\nT{}\n^\n", kAccounts[a], kTypes[a]);
    for (int a = 0; a < 5; ++a) {
      out += fmt::format("!Account\nN{}\nT{}\n^\n!Type:{}\n", kAccounts[a], kTypes[a], kTypes[a]);
      for (int i = a; i < kTransactions; i += 5) {
        out += fmt::format("D{}/{}'{:02}\nT-{}.{:02}\nCX\nPPayee {}\nMMemo {}\n", i % 12 + 1,
                           i % 28 + 1, i % 20, i % 900 + 1, i % 100, i % 311, i);
        if (i % 10 == 0) {
          out += fmt::format("L[{}]\n", kAccounts[(a + 1) % 5]);
        } else if (i % 10 < 4) {
          out += fmt::format("SFood/Family\nEpart one\n$-{}.00\nSHouse:Repairs\n$-{}.{:02}\n",
                             i % 400 + 1, i % 500, i % 100);
        } else {
          out += "LGroceries:Market\n";
        }
        out += "^\n";
      }
    }
    return out;
  }();
  return text;
}

const std::string& csvText() {
  static const std::string text = [] {
    std::string out = "\"Date\",\"Description\",\"Amount\",\"Notes\"\n";
    for (int i = 0; i < kTransactions; ++i) {
      out += fmt::format("\"{}/{}/2025\",\"Payee {}\",\"{}.{:02}\",\"note, with \"\"quotes\"\"\"\n",
                         i % 12 + 1, i % 28 + 1, i % 311, i % 900, i % 100);
    }
    return out;
  }();
  return text;
}

size_t lineBytes(const std::string& text) {
  size_t total = 0;
  for (const auto line : TextFileReader::splitLines(text)) total += line.size();
  return total;
}

void lifFloor(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(lineBytes(lifText()));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(lifText().size()));
}
BENCHMARK(lifFloor)->Name("LIFRead/floor")->Unit(benchmark::kMillisecond);

void lifRecords(benchmark::State& state) {
  for (auto _ : state) {
    ImportLog log("Import Log", "bench");
    LIFReader reader(log);
    benchmark::DoNotOptimize(reader.readText(lifText()).size());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(lifText().size()));
}
BENCHMARK(lifRecords)->Name("LIFRead/records")->Unit(benchmark::kMillisecond);

// The same, handing records on as they are read (what an import does): memory stays flat.
void lifStreamed(benchmark::State& state) {
  for (auto _ : state) {
    ImportLog log("Import Log", "bench");
    LIFReader reader(log);
    size_t records = 0;
    reader.readText(lifText(), [&records](LIFRecord&&) { ++records; });
    benchmark::DoNotOptimize(records);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(lifText().size()));
}
BENCHMARK(lifStreamed)->Name("LIFRead/streamed")->Unit(benchmark::kMillisecond);

void csvFloor(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(lineBytes(csvText()));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(csvText().size()));
}
BENCHMARK(csvFloor)->Name("CSVParse/floor")->Unit(benchmark::kMillisecond);

void csvRows(benchmark::State& state) {
  for (auto _ : state) {
    size_t rows = 0;
    CSVParser(csvText(), ",", true).parseRowsForReceiver([&rows](CSVRow&&) { ++rows; });
    benchmark::DoNotOptimize(rows);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(csvText().size()));
}
BENCHMARK(csvRows)->Name("CSVParse/rows")->Unit(benchmark::kMillisecond);

}  // namespace

// Importing the same files into a new document. The floor creates the same transactions straight
// through the model (objects made from the read records, one commit); the variants run the import
// commands, with their transfer bookkeeping, creation commands and undo lists. Each run also
// reports the peak resident memory of the process and the file's size.
namespace {

using namespace ledgeon;

// The smallest open document the commands need: a real store, undo and command managers, and
// store transactions that commit at the outermost end.
class BenchDocument final : public LCommandDocument {
 public:
  explicit BenchDocument(const std::filesystem::path& folder)
      : dataBase_(DataBase::initWithFileURL(folder / "data", true).value()),
        undoManager_(LCommandManager::createUndoManager()),
        commandManager_(std::make_unique<LCommandManager>(*this, *undoManager_)) {}
  DataBase& dataBase() override { return *dataBase_; }
  LCommandManager* commandManager() override { return commandManager_.get(); }
  void beginTransaction() override { ++depth_; }
  Result<void> endTransaction() override {
    if (--depth_ > 0) return {};
    return dataBase_->commit();
  }
  void commandDirtiedDocument() override {}

 private:
  std::unique_ptr<DataBase> dataBase_;
  std::unique_ptr<UndoManager> undoManager_;
  std::unique_ptr<LCommandManager> commandManager_;
  int depth_ = 0;
};

// A fresh folder for each document, removed afterwards.
struct Scratch {
  Scratch() : path(std::filesystem::temp_directory_path() / fmt::format("ledgeon-bench-{}", ++n)) {
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
  }
  ~Scratch() { std::filesystem::remove_all(path); }
  std::filesystem::path write(const std::string& name, const std::string& text) const {
    std::ofstream(path / name, std::ios::binary) << text;
    return path / name;
  }
  static inline int n = 0;
  std::filesystem::path path;
};

// The export of the web service: nine columns, a title row, 100,000 rows.
const std::string& csvExportText() {
  static const std::string text = [] {
    std::string out =
        "\"Date\",\"Description\",\"Original Description\",\"Amount\",\"Transaction Type\","
        "\"Category\",\"Account Name\",\"Labels\",\"Notes\"\n";
    const char* const categories[] = {"Groceries", "Uncategorized", "Fuel", "Salary", "Rent"};
    for (int i = 0; i < kTransactions; ++i) {
      out += fmt::format(
          "\"{}/{}/2025\",\"Payee {}\",\"PAYEE {} #{}\",\"{}.{:02}\",\"{}\",\"{}\",\"Visa\","
          "\"{}\",\"note {}\"\n",
          i % 12 + 1, i % 28 + 1, i % 311, i % 311, i % 7, i % 900, i % 100,
          i % 4 == 0 ? "credit" : "debit", categories[i % 5], i % 3 == 0 ? "work travel" : "", i);
    }
    return out;
  }();
  return text;
}

const std::vector<std::string>& csvExportColumns() {
  static const std::vector<std::string> names = {
      "date",        "description",     "originalDescription",
      "amount",      "transactionType", "category",
      "accountName", "labels",          "notes"};
  return names;
}

// The process's resident high-water mark is reset at the start of each import benchmark (with
// freed memory given back first), so that its peak is its own even when the benchmarks share one
// process.
void resetPeakMemory() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
}

double peakMemoryMB() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) return std::stod(line.substr(6)) / 1024.0;  // in kB
  }
  return 0;
}

void reportMemory(benchmark::State& state, const std::string& text) {
  state.counters["peakMB"] = peakMemoryMB();
  state.counters["fileMB"] = static_cast<double>(text.size()) / (1024.0 * 1024.0);
}

// What the floor makes of the records: accounts, categories, tags, payees and transactions with
// their lines, carrying the same fields the imports write (source, status, memos, transfer
// accounts), so that the difference is the import's own work and not a thinner ledger.
class DirectWriter {
 public:
  DirectWriter(DataBase& db, const char* dataSource) : db_(db), dataSource_(dataSource) {}
  LObject* named(std::map<std::string, LObject*>& cache, const char* entity,
                 const std::string& name) {
    auto& slot = cache[name];
    if (!slot) {
      slot = &db_.createEntity(entity, {{"name", Value(name)}, {"dataSource", dataSource_}});
    }
    return slot;
  }
  void transaction(const ImportTransaction& t) {
    EditDict properties{{"dataSource", dataSource_},
                        {"account", Value(t.account)},
                        {"amount", Value(t.amount)},
                        {"type", Value(int64_t{0})},
                        {"reconcileStatus", Value(t.reconcileStatus)}};
    if (t.date) properties.set("enteredDate", Value(*t.date));
    if (!t.note.empty()) properties.set("note", Value(t.note));
    if (!t.reference.empty()) properties.set("reference", Value(t.reference));
    if (!t.payee.empty()) properties.set("userPayee", Value(named(payees_, "UserPayee", t.payee)));
    if (!t.bankPayee.empty()) {
      properties.set("fiPayee", Value(named(bankPayees_, "FIPayee", t.bankPayee)));
    }
    if (!t.transferAccount.empty()) {
      properties.set("sendAccount", Value(t.account));
      properties.set("targetAccount", Value(named(accounts_, "Account", t.transferAccount)));
    }
    LObject& made = db_.createEntity("CashFlowTransaction", properties);
    int64_t sequence = 0;
    for (const ImportSplit& split : t.lines) {
      EditDict line{{"parent", Value(&made)},
                    {"dataSource", dataSource_},
                    {"amount", Value(split.amount)},
                    {"sequenceNumber", Value(sequence++)}};
      if (split.isTransfer()) {
        line.set("transfer", Value(split.transfer));
      } else if (!split.category.empty()) {
        line.set("categoryTag", Value(named(categories_, "CategoryTag", split.category)));
      }
      ObjectSet tags;
      for (const std::string& tag : split.tags) tags.push_back(named(tags_, "UserTag", tag));
      if (!tags.empty()) line.set("userTags", Value(std::move(tags)));
      if (!split.note.empty()) line.set("note", Value(split.note));
      db_.createEntity("CashFlowTransactionEntry", line);
    }
  }
  std::map<std::string, LObject*> accounts_;

 private:
  DataBase& db_;
  const Value dataSource_;  // one text shared by every object, as the imports share theirs
  std::map<std::string, LObject*> categories_, tags_, payees_, bankPayees_;
};

// The transaction the LIF import makes of a bank record (each transfer once, from the side read
// first).
ImportTransaction transactionFrom(const LIFBankTransaction& record, LObject* account) {
  ImportTransaction t{.account = account,
                      .date = record.date,
                      .checkNumber = record.checkNumber,
                      .amount = record.amount,
                      .payee = record.payee,
                      .note = record.memo,
                      .reconcileStatus = record.reconcileStatus,
                      .transferAccount = record.transferAccount};
  for (const LIFSplit& split : record.splits) {
    ImportSplit line{.category = split.isTransfer() ? std::string() : split.category,
                     .note = split.memo,
                     .amount = split.amount,
                     .transfer = split.transferAccount};
    if (!split.tag.empty()) line.tags.push_back(split.tag);
    t.lines.push_back(std::move(line));
  }
  return t;
}

void lifImportFloor(benchmark::State& state) {
  (void)lifText();  // made before the peak is reset: the floor holds it too
  resetPeakMemory();
  for (auto _ : state) {
    Scratch scratch;
    auto db = DataBase::initWithFileURL(scratch.path / "data", true).value();
    DirectWriter writer(*db, ImportLIFFileCommand::kDataSource);
    ImportLog log("Import Log", "bench");
    LIFReader reader(log);
    reader.readText(lifText(), [&](LIFRecord&& record) {
      if (auto* list = std::get_if<LIFAccountList>(&record)) {
        for (const auto& a : list->accounts) writer.named(writer.accounts_, "Account", a.name);
      } else if (auto* t = std::get_if<LIFBankTransaction>(&record)) {
        writer.transaction(
            transactionFrom(*t, writer.named(writer.accounts_, "Account", t->account)));
      }
    });
    if (!db->commit().ok()) state.SkipWithError("commit failed");
  }
  reportMemory(state, lifText());
}
BENCHMARK(lifImportFloor)->Name("LIFImport/floor")->Unit(benchmark::kMillisecond)->Iterations(1);

void lifImportCommand(benchmark::State& state) {
  (void)lifText();  // made before the peak is reset: the floor holds it too
  resetPeakMemory();
  Services::shared().setUserInterface(std::make_shared<ScriptedUserInterface>());
  for (auto _ : state) {
    Scratch scratch;
    setenv("LEDGEON_HOME", scratch.path.c_str(), 1);
    auto document = std::make_shared<BenchDocument>(scratch.path);
    auto command =
        std::make_shared<ImportLIFFileCommand>(scratch.write("bench.lif", lifText()), document);
    command->setShowsProgressDialog(false);
    if (!command->execute()) state.SkipWithError("import failed");
  }
  reportMemory(state, lifText());
}
BENCHMARK(lifImportCommand)
    ->Name("LIFImport/command")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void csvImportFloor(benchmark::State& state) {
  (void)csvExportText();  // made before the peak is reset: the floor holds it too
  resetPeakMemory();
  for (auto _ : state) {
    Scratch scratch;
    auto db = DataBase::initWithFileURL(scratch.path / "data", true).value();
    DirectWriter writer(*db, ImportTextFileCommand::kDataSource);
    LObject* account = writer.named(writer.accounts_, "Account", "bench.csv");
    CSVParser(csvExportText(), ",", false, csvExportColumns())
        .parseRowsForReceiver([&](CSVRow&& row) {
          const auto date = LDateUtilities::dateFromMonthDayYearString(row["date"]);
          if (!date) return;
          Amount amount = Amount::fromString(row["amount"]);
          if (row["transactionType"] == "debit") amount = amount.decimalNumberByNegating();
          ImportSplit line{.category = row["category"] == "Uncategorized" ? "" : row["category"],
                           .amount = amount};
          // The labels, split at spaces as the import splits them.
          if (!row["labels"].empty()) line.tags = {"work", "travel"};
          writer.transaction(ImportTransaction{.account = account,
                                               .date = date,
                                               .amount = amount,
                                               .payee = row["description"],
                                               .bankPayee = row["originalDescription"],
                                               .note = row["notes"],
                                               .reference = row["accountName"],
                                               .lines = {std::move(line)}});
        });
    if (!db->commit().ok()) state.SkipWithError("commit failed");
  }
  reportMemory(state, csvExportText());
}
BENCHMARK(csvImportFloor)->Name("CSVImport/floor")->Unit(benchmark::kMillisecond)->Iterations(1);

void csvImportCommand(benchmark::State& state) {
  (void)csvExportText();  // made before the peak is reset: the floor holds it too
  resetPeakMemory();
  Services::shared().setUserInterface(std::make_shared<ScriptedUserInterface>());
  for (auto _ : state) {
    Scratch scratch;
    auto document = std::make_shared<BenchDocument>(scratch.path);
    auto command = std::make_shared<ImportTextFileCommand>(
        scratch.write("bench.csv", csvExportText()), document);
    command->setShowsProgressDialog(false);
    if (!command->execute()) state.SkipWithError("import failed");
  }
  reportMemory(state, csvExportText());
}
BENCHMARK(csvImportCommand)
    ->Name("CSVImport/command")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace
