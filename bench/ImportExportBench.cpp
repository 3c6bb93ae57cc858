// Reading import files: a LIF file of 100,000 bank transactions over 5 accounts (30% with splits,
// 10% transfers) and a 100,000-row CSV export. The floor of each is splitting the same text into
// lines, which every reader must at least do.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "ImportExport/CSVParser.h"
#include "ImportExport/ImportLog.h"
#include "ImportExport/LIFReader.h"
#include "ImportExport/TextFileReader.h"

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
