// Backing up a document package, against Debian's `zip -r` on the same package in the same run.
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include "Documents/LDocumentPackage.h"
#include "ZipTool.h"

namespace {

namespace fs = std::filesystem;
using ledgeon::LDocumentPackage;

void writeFile(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

// A household's package: a 24 MB store of ledger-like rows (compressible, as a real store is),
// 120 scanned receipts (incompressible) and 40 saved reports.
const fs::path& benchPackage() {
  static const fs::path root = [] {
    const fs::path folder =
        fs::temp_directory_path() / ("ledgeon-backup-bench-" + std::to_string(::getpid()));
    fs::remove_all(folder);
    fs::create_directories(folder);
    LDocumentPackage package(folder / "Household.ledgeon");
    if (!package.createNewFileWithSupportFoldersFor()) throw std::runtime_error("no package");
    std::mt19937 random(42);
    std::string store;
    static const char* payees[] = {"Grocer", "Power Company", "Landlord", "Cafe", "Pharmacy"};
    for (long row = 0; store.size() < 24u << 20; ++row) {
      store += std::to_string(row) + "|2024-" + std::to_string(1 + random() % 12) + "-" +
               std::to_string(1 + random() % 28) + "|" + payees[random() % 5] + "|" +
               std::to_string(random() % 100000) + "." + std::to_string(random() % 100) +
               "|Groceries:Food|cleared\n";
    }
    writeFile(package.dataBasePath(), store);
    for (int i = 0; i < 120; ++i) {
      std::string scan(48 * 1024, '\0');
      for (auto& byte : scan) byte = static_cast<char>(random() & 0xFF);
      writeFile(package.attachmentsFolderPath() / ("receipt-" + std::to_string(i) + ".jpg"), scan);
    }
    for (int i = 0; i < 40; ++i) {
      std::string report;
      for (int line = 0; line < 300; ++line) {
        report += "<tr><td>Category " + std::to_string(line) + "</td><td>" +
                  std::to_string(random() % 10000) + ".00</td></tr>\n";
      }
      writeFile(package.reportFolderPath() / ("report-" + std::to_string(i) + ".html"), report);
    }
    return package.absoluteURL();
  }();
  return root;
}

void BM_ZipFloor(benchmark::State& state) {
  const fs::path& package = benchPackage();
  const fs::path archive = package.parent_path() / "floor.zip";
  for (auto _ : state) {
    fs::remove(archive);
    ledgeon::bench::runZip(package, archive);
  }
  state.counters["bytes"] = static_cast<double>(fs::file_size(archive));
}

void BM_Backup(benchmark::State& state) {
  const fs::path& package = benchPackage();
  const fs::path archive = package.parent_path() / "bench.ledgeonbackup";
  for (auto _ : state) {
    fs::remove(archive);
    auto made = LDocumentPackage::backupPackage(package, archive,
                                                {.originalFilePath = package.string(),
                                                 .note = "bench",
                                                 .reason = ledgeon::BackupReason::kManual,
                                                 .UID = "BENCH"});
    if (!made) state.SkipWithError("backup failed");
  }
  state.counters["bytes"] = static_cast<double>(fs::file_size(archive));
}

}  // namespace

BENCHMARK(BM_ZipFloor)->Name("Backup/floor")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Backup)->Name("Backup/ledgeon")->Unit(benchmark::kMillisecond)->UseRealTime();
