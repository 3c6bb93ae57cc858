#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "Utilities/Result.h"

namespace ledgeon {

// How much a line of an import log matters. Stored codes: the values are fixed.
enum class ImportLogSeverity : int { kDetail = 1, kInfo = 2, kWarning = 3, kError = 4 };

// One node of an import log: a text, its severity and the nodes below it.
struct ImportLogNode {
  ImportLogSeverity severity = ImportLogSeverity::kInfo;
  std::string text;
  std::vector<ImportLogNode> children;

  ImportLogNode& addChild(ImportLogSeverity childSeverity, std::string childText);
};

// The tree-shaped report of one import: a root titled for the import, the file's path below it,
// then one node per notable event, in the order they happened. Main thread only.
class ImportLog final {
 public:
  ImportLog(std::string title, std::string filePathLine);

  ImportLogNode& root() { return root_; }
  const ImportLogNode& root() const { return root_; }
  // Appends below the root.
  ImportLogNode& add(ImportLogSeverity severity, std::string text);
  // Texts of every node at or above `severity`, depth first (for tests and summaries).
  std::vector<std::string> textsAtOrAbove(ImportLogSeverity severity) const;
  size_t count(ImportLogSeverity severity) const;

  // The plain-text form: one line per node, depth first, indented by two spaces per level below
  // the root; warnings and errors start with "WARNING: " and "ERROR: ". A node text that already
  // ends with a line break (summary lines do) gets no second one.
  std::string plainText() const;
  // The tree as JSON: {"severity": 2, "text": "...", "children": [...]}.
  std::string jsonText() const;

 private:
  ImportLogNode root_;
};

}  // namespace ledgeon
