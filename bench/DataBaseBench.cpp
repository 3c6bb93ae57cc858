// The ledger store against bare SQLite doing the same work in the same run. Each group creates N
// cash-flow transactions with two splits each (N is the benchmark's argument: 50,000 and
// 1,000,000), then fetches by a predicate and counts. The floor writes the same rows with prepared
// statements and no object graph.
#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sqlite3.h>

#include "DataBase/DataBase.h"

namespace ledgeon {
namespace {

size_t transactionCount(const benchmark::State& state) {
  return static_cast<size_t>(state.range(0));
}

// Amounts from -999.99 to 999.99 in a fixed cycle, so about half are below zero.
Amount amountFor(size_t i) {
  const auto cents = static_cast<int64_t>((i * 7919) % 199999) - 99999;
  return Amount::fromParts(static_cast<UInt128>(cents < 0 ? -cents : cents), -2, cents < 0);
}

std::filesystem::path freshStore(const char* name, size_t n) {
  const auto folder = std::filesystem::temp_directory_path() / "ledgeon-bench";
  std::filesystem::create_directories(folder);
  const auto file = folder / (std::string(name) + "-" + std::to_string(n) + ".data");
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(file.string() + suffix);
  return file;
}

std::unique_ptr<DataBase> openStore(const std::filesystem::path& file, bool fresh) {
  auto db = DataBase::initWithFileURL(file, fresh);
  if (!db) throw std::runtime_error(db.error().localizedDescription());
  return std::move(db).value();
}

int entityId(const char* name) { return Model::shared().requireEntity(name).id; }

// The transactions and their splits, created through the model and committed.
bool createLedger(DataBase& db, size_t n) {
  LObject& account = db.createEntity("Account", {{"name", Value("Checking")}});
  const Date day(760000000.0);
  for (size_t i = 0; i < n; ++i) {
    const Amount amount = amountFor(i);
    LObject& transaction = db.createEntity(
        "CashFlowTransaction",
        {{"account", Value(&account)}, {"amount", Value(amount)}, {"enteredDate", Value(day)}});
    for (int64_t sequence = 0; sequence < 2; ++sequence) {
      db.createEntity("CashFlowTransactionEntry", {{"parent", Value(&transaction)},
                                                   {"amount", Value(amount)},
                                                   {"sequenceNumber", Value(sequence)}});
    }
  }
  return db.commit().ok();
}

// The store a model run leaves, the input of the fetch and count groups; made here when the
// create group did not run.
std::filesystem::path modelStore(size_t n) {
  const auto file = std::filesystem::temp_directory_path() / "ledgeon-bench" /
                    ("model-" + std::to_string(n) + ".data");
  if (!std::filesystem::exists(file)) {
    auto db = openStore(freshStore("model", n), true);
    if (!createLedger(*db, n)) throw std::runtime_error("cannot create " + file.string());
  }
  return file;
}

void createThroughModel(benchmark::State& state) {
  const size_t n = transactionCount(state);
  for (auto _ : state) {
    state.PauseTiming();
    auto db = openStore(freshStore("model", n), true);
    state.ResumeTiming();
    if (!createLedger(*db, n)) state.SkipWithError("commit failed");
    state.PauseTiming();
    db.reset();  // tearing the graph down is not part of creating it
    state.ResumeTiming();
  }
  state.counters["transactions"] = static_cast<double>(n);
}

void createFloor(benchmark::State& state) {
  const size_t n = transactionCount(state);
  const int transactionEntity = entityId("CashFlowTransaction");
  const int entryEntity = entityId("CashFlowTransactionEntry");
  for (auto _ : state) {
    state.PauseTiming();
    const auto file = freshStore("floor", n);
    openStore(file, true).reset();  // the same schema, made by the store
    sqlite3* db = nullptr;
    sqlite3_open(file.string().c_str(), &db);
    sqlite3_exec(db, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL", nullptr, nullptr,
                 nullptr);
    state.ResumeTiming();
    sqlite3_stmt* transaction = nullptr;
    sqlite3_stmt* entry = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO \"Transaction\" (Z_PK, Z_ENT, creationTimestamp, "
                       "modificationTimestamp, deletionCount, ledgeonId, orderID, account, "
                       "amount, enteredDate) VALUES (?, ?, ?, ?, 0, ?, ?, 1, ?, ?)",
                       -1, &transaction, nullptr);
    sqlite3_prepare_v2(db,
                       "INSERT INTO \"CashFlowTransactionEntry\" (Z_PK, Z_ENT, "
                       "creationTimestamp, modificationTimestamp, deletionCount, ledgeonId, "
                       "parent, amount, sequenceNumber) VALUES (?, ?, ?, ?, 0, ?, ?, ?, ?)",
                       -1, &entry, nullptr);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    int64_t entryKey = 0;
    for (size_t i = 0; i < n; ++i) {
      const auto key = static_cast<int64_t>(i + 1);
      const std::string amount = amountFor(i).stringValue();
      sqlite3_bind_int64(transaction, 1, key);
      sqlite3_bind_int(transaction, 2, transactionEntity);
      sqlite3_bind_double(transaction, 3, 760000000.0);
      sqlite3_bind_double(transaction, 4, 760000000.0);
      sqlite3_bind_int64(transaction, 5, key);
      sqlite3_bind_int64(transaction, 6, key);
      sqlite3_bind_text(transaction, 7, amount.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_double(transaction, 8, 760000000.0);
      sqlite3_step(transaction);
      sqlite3_reset(transaction);
      for (int sequence = 0; sequence < 2; ++sequence) {
        ++entryKey;
        sqlite3_bind_int64(entry, 1, entryKey);
        sqlite3_bind_int(entry, 2, entryEntity);
        sqlite3_bind_double(entry, 3, 760000000.0);
        sqlite3_bind_double(entry, 4, 760000000.0);
        sqlite3_bind_int64(entry, 5, entryKey);
        sqlite3_bind_int64(entry, 6, key);
        sqlite3_bind_text(entry, 7, amount.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_int(entry, 8, sequence);
        sqlite3_step(entry);
        sqlite3_reset(entry);
      }
    }
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_finalize(transaction);
    sqlite3_finalize(entry);
    sqlite3_close(db);
  }
  state.counters["transactions"] = static_cast<double>(n);
}

// Loads the transactions below -500 and every split, from a freshly opened store, and reports
// the heap they take per transaction (with its two splits).
void fetchThroughModel(benchmark::State& state) {
  const auto store = modelStore(transactionCount(state));
  size_t loaded = 0;
  double bytesPerTransaction = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto db = openStore(store, false);
    const size_t heapBefore = mallinfo2().uordblks;
    state.ResumeTiming();
    const auto transactions = db->instancesOfClass(
        "Transaction",
        {.predicate = Predicate::withFormat("amount < %@", Amount::fromInt64(-500))});
    const auto entries = db->instancesOfClass("CashFlowTransactionEntry");
    state.PauseTiming();
    loaded = transactions.size();
    const size_t heapAfter = mallinfo2().uordblks;
    bytesPerTransaction =
        static_cast<double>(heapAfter - heapBefore) / static_cast<double>(entries.size() / 2);
    benchmark::DoNotOptimize(entries.data());
    db.reset();
    state.ResumeTiming();
  }
  state.counters["matched"] = static_cast<double>(loaded);
  state.counters["bytesPerTransactionWithSplits"] = bytesPerTransaction;
}

void fetchFloor(benchmark::State& state) {
  const auto store = modelStore(transactionCount(state));
  size_t matched = 0;
  for (auto _ : state) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(store.string().c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt* select = nullptr;
    // The same rows and columns; the amount test is a plain numeric cast here, the floor.
    sqlite3_prepare_v2(db, "SELECT * FROM \"Transaction\" WHERE CAST(amount AS REAL) < -500", -1,
                       &select, nullptr);
    matched = 0;
    while (sqlite3_step(select) == SQLITE_ROW) {
      for (int c = 0; c < sqlite3_column_count(select); ++c) {
        benchmark::DoNotOptimize(sqlite3_column_text(select, c));
      }
      ++matched;
    }
    sqlite3_finalize(select);
    sqlite3_prepare_v2(db, "SELECT * FROM \"CashFlowTransactionEntry\"", -1, &select, nullptr);
    while (sqlite3_step(select) == SQLITE_ROW) {
      for (int c = 0; c < sqlite3_column_count(select); ++c) {
        benchmark::DoNotOptimize(sqlite3_column_text(select, c));
      }
    }
    sqlite3_finalize(select);
    sqlite3_close(db);
  }
  state.counters["matched"] = static_cast<double>(matched);
}

void countThroughModel(benchmark::State& state) {
  auto db = openStore(modelStore(transactionCount(state)), false);
  const Predicate predicate = Predicate::withFormat("amount < %@", Amount::fromInt64(-500));
  for (auto _ : state) {
    benchmark::DoNotOptimize(db->countForInstancesOfClass("Transaction", predicate));
  }
}

void countFloor(benchmark::State& state) {
  sqlite3* db = nullptr;
  sqlite3_open_v2(modelStore(transactionCount(state)).string().c_str(), &db, SQLITE_OPEN_READONLY,
                  nullptr);
  sqlite3_stmt* count = nullptr;
  sqlite3_prepare_v2(db,
                     "SELECT COUNT(*) FROM \"Transaction\" WHERE CAST(amount AS REAL) < -500 AND "
                     "deletionCount = 0",
                     -1, &count, nullptr);
  for (auto _ : state) {
    sqlite3_step(count);
    benchmark::DoNotOptimize(sqlite3_column_int64(count, 0));
    sqlite3_reset(count);
  }
  sqlite3_finalize(count);
  sqlite3_close(db);
}

// Sizes: a quick run, and the million transactions a long-kept household ledger can reach.
constexpr int64_t kSmall = 50000;
constexpr int64_t kLarge = 1000000;

BENCHMARK(createFloor)
    ->Name("Create/floor")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(createThroughModel)
    ->Name("Create/model")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(fetchFloor)
    ->Name("Fetch/floor")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(fetchThroughModel)
    ->Name("Fetch/model")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(countFloor)
    ->Name("Count/floor")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(countThroughModel)
    ->Name("Count/model")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ledgeon
