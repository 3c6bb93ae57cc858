#include "ImportExport/CSVParser.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "Utilities/StringWithFormat.h"

namespace ledgeon {
namespace {

// The line breaks a separator may not contain; the scanner also stops at the Unicode ones.
bool containsLineBreak(std::string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\n' || c == '\r' || c == '\v' || c == '\f') return true;
    if (text.substr(i, 2) == "\xC2\x85" || text.substr(i, 3) == "\xE2\x80\xA8" ||
        text.substr(i, 3) == "\xE2\x80\xA9") {
      return true;
    }
  }
  return false;
}

}  // namespace

CSVParser::CSVParser(std::string csvString, std::string separator, bool hasHeader,
                     std::optional<std::vector<std::string>> fieldNames)
    : csvString_(std::move(csvString)),
      separator_(std::move(separator)),
      hasHeader_(hasHeader),
      fieldNames_(fieldNames ? std::move(*fieldNames) : std::vector<std::string>{}) {
  if (separator_.empty() || separator_.find('"') != std::string::npos ||
      containsLineBreak(separator_)) {
    throw std::logic_error(
        "CSV separator string must not be empty and must not contain the double quote character "
        "or newline characters.");
  }
}

std::vector<CSVRow> CSVParser::arrayOfParsedRows() {
  std::vector<CSVRow> rows;
  parseFile([&rows](CSVRow&& row) { rows.push_back(std::move(row)); });
  return rows;
}

void CSVParser::parseRowsForReceiver(const Receiver& receiver) { parseFile(receiver); }

void CSVParser::parseFile(const Receiver& receiver) {
  position_ = 0;
  countedPosition_ = 0;
  countedLine_ = 1;
  stop_.reset();
  if (hasHeader_) {
    std::vector<std::string> header;
    while (auto name = parseField()) {
      header.push_back(std::move(*name));
      if (!parseSeparator()) break;
    }
    fieldNames_ = std::move(header);
    if (!parseLineSeparator()) return noteStop();
  }
  while (true) {
    const size_t start = position_;
    auto row = parseRecord();
    if (!row) break;
    rowLine_ = lineAt(start);
    receiver(std::move(*row));
    if (!parseLineSeparator()) break;
  }
  noteStop();
}

void CSVParser::noteStop() {
  if (atEnd()) return;
  const size_t line = lineAt(position_);
  if (newlineLengthAt(position_) > 0) {
    stop_ = CSVStop{line, "the text starts with a blank line"};
    return;
  }
  if (csvString_[position_] != '"') {
    stop_ = CSVStop{line, position_ > 0 && csvString_[position_ - 1] == '"'
                              ? "text after the closing quote of a quoted field"
                              : "text that cannot be read as a field"};
    return;
  }
  // A quote where a field starts opens a quoted field that never closes; anywhere else it is a
  // quote inside an unquoted field.
  const bool fieldStart =
      position_ == 0 || newlineLengthAt(position_ - 1) > 0 ||
      (position_ >= separator_.size() &&
       csvString_.compare(position_ - separator_.size(), separator_.size(), separator_) == 0);
  stop_ = CSVStop{line, fieldStart ? "a quoted field is not closed"
                                   : "a double quote inside a field that does not start with one"};
}

size_t CSVParser::lineAt(size_t position) {
  // A line ends at LF, at CR (CR LF counting once), and at the Unicode line and paragraph
  // separators, as a text editor numbers lines.
  for (size_t i = countedPosition_; i < position; ++i) {
    const char c = csvString_[i];
    if (c == '\n' || (c == '\r' && (i + 1 >= csvString_.size() || csvString_[i + 1] != '\n'))) {
      ++countedLine_;
    } else if (c == '\xE2' && (csvString_.compare(i, 3, "\xE2\x80\xA8") == 0 ||
                               csvString_.compare(i, 3, "\xE2\x80\xA9") == 0)) {
      ++countedLine_;
    }
  }
  countedPosition_ = std::max(countedPosition_, position);
  return countedLine_;
}

std::optional<CSVRow> CSVParser::parseRecord() {
  if (atEnd() || newlineLengthAt(position_) > 0) return std::nullopt;
  CSVRow row;
  for (size_t index = 0;; ++index) {
    auto field = parseField();
    if (!field) break;
    row[nameOfField(index)] = std::move(*field);
    if (!parseSeparator()) break;
  }
  return row;
}

const std::string& CSVParser::nameOfField(size_t index) {
  while (fieldNames_.size() <= index) {
    fieldNames_.push_back(stringWithFormat("FIELD_%ld", fieldNames_.size() + 1));
  }
  return fieldNames_[index];
}

std::optional<std::string> CSVParser::parseField() {
  if (auto escaped = parseEscaped()) return escaped;
  std::string text = parseText(false);
  if (!text.empty()) return text;
  // Nothing readable here: an empty field only when something legal follows.
  if (atEnd() || newlineLengthAt(position_) > 0 ||
      csvString_.compare(position_, separator_.size(), separator_) == 0) {
    return std::string();
  }
  return std::nullopt;
}

// A quoted field; the position is left untouched when the field is not one (no opening quote,
// or no closing quote before the text ends).
std::optional<std::string> CSVParser::parseEscaped() {
  if (atEnd() || csvString_[position_] != '"') return std::nullopt;
  const size_t start = position_;
  ++position_;
  std::string value;
  while (true) {
    value += parseText(true);
    if (atEnd()) {
      position_ = start;
      return std::nullopt;
    }
    // At a quote: a doubled one stands for itself, a single one closes the field.
    if (position_ + 1 < csvString_.size() && csvString_[position_ + 1] == '"') {
      value += '"';
      position_ += 2;
      continue;
    }
    ++position_;
    return value;
  }
}

// Characters up to the next quote, line break or separator; inside quotes only the quote stops.
std::string CSVParser::parseText(bool insideQuotes) {
  const size_t start = position_;
  const char separatorHead = separator_.front();
  while (!atEnd()) {
    const char c = csvString_[position_];
    if (c == '"') break;
    if (!insideQuotes) {
      if (newlineLengthAt(position_) > 0) break;
      if (c == separatorHead &&
          (separator_.size() == 1 ||
           csvString_.compare(position_, separator_.size(), separator_) == 0)) {
        break;
      }
    }
    ++position_;
  }
  return csvString_.substr(start, position_ - start);
}

bool CSVParser::parseSeparator() {
  if (csvString_.compare(position_, separator_.size(), separator_) != 0) return false;
  position_ += separator_.size();
  return true;
}

bool CSVParser::parseLineSeparator() {
  const size_t start = position_;
  while (size_t length = newlineLengthAt(position_)) position_ += length;
  return position_ > start;
}

size_t CSVParser::newlineLengthAt(size_t position) const {
  if (position >= csvString_.size()) return 0;
  const auto c = static_cast<unsigned char>(csvString_[position]);
  if (c == '\n' || c == '\r' || c == '\v' || c == '\f') return 1;
  if (c == 0xC2 && csvString_.compare(position, 2, "\xC2\x85") == 0) return 2;
  if (c == 0xE2 && (csvString_.compare(position, 3, "\xE2\x80\xA8") == 0 ||
                    csvString_.compare(position, 3, "\xE2\x80\xA9") == 0)) {
    return 3;
  }
  return 0;
}

}  // namespace ledgeon
