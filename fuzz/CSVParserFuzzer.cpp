// CSV text from other programs' exports. The first byte picks a separator and whether a header is
// read; whatever the rest holds, parsing must end, and every field of every row must be stored
// under one of the parser's field names.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "ImportExport/CSVParser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > 64 * 1024) return 0;
  static const char* const kSeparators[] = {",", ";", "\t", "::", ";;", "|-|"};
  const std::string separator = kSeparators[data[0] % std::size(kSeparators)];
  const bool hasHeader = (data[0] & 0x80) != 0;
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);

  ledgeon::CSVParser parser(text, separator, hasHeader, {{"date", "amount"}});
  size_t rows = 0;
  parser.parseRowsForReceiver([&](ledgeon::CSVRow&& row) {
    ++rows;
    for (const auto& [name, value] : row) {
      const auto& names = parser.fieldNames();
      if (std::find(names.begin(), names.end(), name) == names.end()) std::abort();
      if (value.size() > text.size()) std::abort();
    }
  });
  // Every row but a lone last one ends at a line break.
  if (rows > text.size() + 1) std::abort();
  return 0;
}
