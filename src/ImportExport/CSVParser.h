#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ledgeon {

// One parsed row: field name -> field text.
using CSVRow = std::map<std::string, std::string>;

// Where the grammar stopped before the end of a text, and why: the rest of the text is not read.
struct CSVStop {
  size_t line = 0;  // 1-based
  std::string reason;
};

// A recursive-descent reader of comma-separated text (RFC 4180 and then some: any separator
// string, blank lines skipped, quoted fields holding separators, line breaks and doubled quotes).
// Fields without a name are named "FIELD_<position>" (1-based). Not thread-safe; one per text.
class CSVParser final {
 public:
  using Receiver = std::function<void(CSVRow&& row)>;

  // Throws std::logic_error when the separator is empty or holds a double quote or a line break.
  CSVParser(std::string csvString, std::string separator, bool hasHeader,
            std::optional<std::vector<std::string>> fieldNames = std::nullopt);

  std::vector<CSVRow> arrayOfParsedRows();
  // Hands each row to `receiver` as soon as it is read instead of collecting them.
  void parseRowsForReceiver(const Receiver& receiver);

  // The names in use: the given or header names plus the generated ones appended so far.
  const std::vector<std::string>& fieldNames() const { return fieldNames_; }
  // The 1-based line the row being handed to a receiver starts on.
  size_t rowLine() const { return rowLine_; }
  // After a reading: where it stopped before the end of the text, if it did.
  const std::optional<CSVStop>& stop() const { return stop_; }

 private:
  void parseFile(const Receiver& receiver);
  std::optional<CSVRow> parseRecord();
  std::optional<std::string> parseField();
  std::optional<std::string> parseEscaped();
  std::string parseText(bool insideQuotes);
  bool parseSeparator();
  bool parseLineSeparator();
  size_t newlineLengthAt(size_t position) const;
  bool atEnd() const { return position_ >= csvString_.size(); }
  const std::string& nameOfField(size_t index);
  // The 1-based line of `position`; positions asked for never go back within one reading.
  size_t lineAt(size_t position);
  void noteStop();

  std::string csvString_;
  std::string separator_;
  bool hasHeader_;
  std::vector<std::string> fieldNames_;
  size_t position_ = 0;
  size_t rowLine_ = 0;
  size_t countedPosition_ = 0;
  size_t countedLine_ = 1;
  std::optional<CSVStop> stop_;
};

}  // namespace ledgeon
