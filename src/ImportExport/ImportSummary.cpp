#include "ImportExport/ImportSummary.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "ImportExport/ImportLog.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {
namespace {

std::string withoutFinalLineBreak(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

}  // namespace

ImportSummary::ImportSummary(std::string name, Format kind)
    : fileName(std::move(name)), format(kind) {}

void ImportSummary::drop(ImportLog& log, size_t line, std::string_view rule) {
  const auto found = dropped.find(rule);
  if (found == dropped.end()) {
    dropped.emplace(std::string(rule), 1);
  } else {
    ++found->second;
  }
  log.add(ImportLogSeverity::kWarning,
          stringWithFormat(format == Format::kCSV ? "%@, line %lu: row skipped (%@)"
                                                  : "%@, line %lu: record dropped (%@)",
                           fileName, line, std::string(rule)));
}

size_t ImportSummary::droppedTotal() const {
  size_t total = 0;
  for (const auto& [rule, count] : dropped) total += count;
  return total;
}

std::vector<std::string> ImportSummary::lines() const {
  const bool csv = format == Format::kCSV;
  std::vector<std::string> out;
  out.push_back(csv ? stringWithFormat("Rows read: %lu (the title row not counted)", recordsRead)
                    : stringWithFormat("Transaction records read: %lu", recordsRead));
  out.push_back(stringWithFormat("Transactions created: %lu", transactionsCreated));
  if (!csv) out.push_back(stringWithFormat("Transfer twins merged: %lu", transferTwinsMerged));
  out.push_back(stringWithFormat(csv ? "Rows skipped: %lu" : "Records dropped by a rule: %lu",
                                 droppedTotal()));
  for (const auto& [rule, count] : dropped) {
    out.push_back(stringWithFormat("  %@: %lu", rule, count));
  }
  if (!csv) {
    out.push_back(stringWithFormat("Split memos and tags removed: %lu memos, %lu tags",
                                   splitMemosRemoved, splitTagsRemoved));
  }
  for (const std::string& difference : balanceDifferences) {
    out.push_back(withoutFinalLineBreak(difference));
  }
  if (readingStopped) {
    out.push_back(
        stringWithFormat("Reading stopped at line %lu: %@; the rest of the file was "
                         "not read",
                         readingStopped->line, readingStopped->reason));
  }
  if (!fileLooksLike.empty()) out.push_back(fileLooksLike);
  return out;
}

void ImportSummary::addToLog(ImportLog& log) const {
  ImportLogNode& node =
      log.add(ImportLogSeverity::kInfo, stringWithFormat("Summary of %@:", fileName));
  for (const std::string& line : lines()) node.addChild(ImportLogSeverity::kInfo, line);
}

std::string ImportSummary::jsonText() const {
  nlohmann::json json = {{"file", fileName},
                         {"format", format == Format::kCSV ? "csv" : "lif"},
                         {"recordsRead", recordsRead},
                         {"transactionsCreated", transactionsCreated},
                         {"transferTwinsMerged", transferTwinsMerged},
                         {"dropped", droppedTotal()},
                         {"droppedByRule", nlohmann::json::object()},
                         {"splitMemosRemoved", splitMemosRemoved},
                         {"splitTagsRemoved", splitTagsRemoved},
                         {"balanceDifferences", nlohmann::json::array()},
                         {"readingStopped", nullptr},
                         {"fileLooksLike", nullptr}};
  for (const auto& [rule, count] : dropped) json["droppedByRule"][rule] = count;
  for (const std::string& difference : balanceDifferences) {
    json["balanceDifferences"].push_back(withoutFinalLineBreak(difference));
  }
  if (readingStopped) {
    json["readingStopped"] = {{"line", readingStopped->line}, {"reason", readingStopped->reason}};
  }
  if (!fileLooksLike.empty()) json["fileLooksLike"] = fileLooksLike;
  return json.dump();
}

}  // namespace ledgeon
