#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ImportExport/CSVParser.h"

namespace ledgeon {

class ImportLog;

// What an import did with a file, in figures a user can check against the file: each record
// read is created, merged into its transfer twin, or left out by a named rule; what the import
// changed or only compared is counted too. Filled as the import goes. Main thread only.
class ImportSummary final {
 public:
  enum class Format { kLIF, kCSV };

  ImportSummary() = default;
  ImportSummary(std::string fileName, Format format);

  // Counts a record (a row of a CSV file) left out by `rule`, and logs it with the file's name
  // and the record's line.
  void drop(ImportLog& log, size_t line, std::string_view rule);
  size_t droppedTotal() const;

  // The summary as text lines, children indented by two spaces.
  std::vector<std::string> lines() const;
  // Appends the summary as the log's last node.
  void addToLog(ImportLog& log) const;
  std::string jsonText() const;

  std::string fileName;
  Format format = Format::kLIF;
  size_t recordsRead = 0;  // transaction records; rows of a CSV file, its title row aside
  size_t transactionsCreated = 0;
  size_t transferTwinsMerged = 0;
  std::map<std::string, size_t, std::less<>> dropped;  // by rule
  size_t splitMemosRemoved = 0;
  size_t splitTagsRemoved = 0;
  // The "Cash balance doesn't match..." lines: statement balances are only compared.
  std::vector<std::string> balanceDifferences;
  std::optional<CSVStop> readingStopped;
  // "This file looks like ..." when the file seems meant for another reader.
  std::string fileLooksLike;
};

}  // namespace ledgeon
