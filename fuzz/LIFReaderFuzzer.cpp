// LIF interchange files written by other programs, in any encoding. Whatever the bytes, reading
// must end, every record must name a line of the file, and problems go to the import log.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <variant>

#include "ImportExport/ImportLog.h"
#include "ImportExport/LIFReader.h"
#include "ImportExport/TextFileReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 64 * 1024) return 0;
  using namespace ledgeon;
  const std::string text =
      TextFileReader::decode(std::string(reinterpret_cast<const char*>(data), size));
  const size_t lineCount = TextFileReader::splitLines(text).size();
  ImportLog log("Import Log", "fuzz");
  LIFReaderLookups lookups;
  lookups.accountExists = [](const std::string& name) { return name == "Checking"; };
  LIFReader reader(log, lookups);
  for (const LIFRecord& record : reader.readText(text)) {
    const size_t line = std::visit([](const auto& r) { return r.line; }, record);
    if (line == 0 || line > lineCount) std::abort();
    if (const auto* bank = std::get_if<LIFBankTransaction>(&record)) {
      if (bank->splits.empty() || bank->account.empty()) std::abort();
    }
  }
  if (log.count(ImportLogSeverity::kWarning) > LIFReader::kMaximumReportedProblems + 1) {
    std::abort();
  }
  return 0;
}
