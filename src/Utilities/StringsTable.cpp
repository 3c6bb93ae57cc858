#include "Utilities/StringsTable.h"

#include <fstream>
#include <mutex>
#include <sstream>

#include <fmt/format.h>

#include "Utilities/FileContents.h"
#include "Utilities/Log.h"
#include "Utilities/Resources.h"

namespace ledgeon {

namespace {

class StringsReader {
 public:
  StringsReader(std::string_view text, std::string_view source) : text_(text), source_(source) {}

  Result<StringsTable> read(std::map<std::string, std::string, std::less<>>& entries) {
    for (;;) {
      skipSpaceAndComments();
      if (pos_ >= text_.size()) return failure_ ? Result<StringsTable>(*failure_) : StringsTable{};
      auto key = quoted();
      if (!key) break;
      skipSpaceAndComments();
      if (!expect('=')) break;
      skipSpaceAndComments();
      auto value = quoted();
      if (!value) break;
      skipSpaceAndComments();
      if (!expect(';')) break;
      entries[*key] = *value;
    }
    return *failure_;
  }

 private:
  void skipSpaceAndComments() {
    while (pos_ < text_.size()) {
      const char c = text_[pos_];
      if (c == '\n') {
        ++line_;
        ++pos_;
      } else if (c == ' ' || c == '\t' || c == '\r') {
        ++pos_;
      } else if (text_.substr(pos_, 2) == "//") {
        while (pos_ < text_.size() && text_[pos_] != '\n') ++pos_;
      } else if (text_.substr(pos_, 2) == "/*") {
        const size_t end = text_.find("*/", pos_ + 2);
        const size_t stop = end == std::string_view::npos ? text_.size() : end + 2;
        for (size_t i = pos_; i < stop; ++i) line_ += text_[i] == '\n' ? 1 : 0;
        pos_ = stop;
      } else {
        return;
      }
    }
  }

  bool expect(char c) {
    if (pos_ < text_.size() && text_[pos_] == c) {
      ++pos_;
      return true;
    }
    fail(fmt::format("expected '{}'", c));
    return false;
  }

  std::optional<std::string> quoted() {
    if (pos_ >= text_.size() || text_[pos_] != '"') {
      fail("expected a quoted string");
      return std::nullopt;
    }
    std::string out;
    for (++pos_; pos_ < text_.size(); ++pos_) {
      char c = text_[pos_];
      if (c == '"') {
        ++pos_;
        return out;
      }
      if (c == '\n') ++line_;
      if (c == '\\' && pos_ + 1 < text_.size()) {
        c = text_[++pos_];
        if (c == 'n') c = '\n';
        if (c == 't') c = '\t';
      }
      out += c;
    }
    fail("unterminated string");
    return std::nullopt;
  }

  void fail(const std::string& what) {
    if (!failure_) {
      failure_ = Error::make(kLErrorDomain, 1, fmt::format("{}:{}: {}", source_, line_, what));
    }
  }

  std::string_view text_;
  std::string_view source_;
  size_t pos_ = 0;
  int line_ = 1;
  std::optional<Error> failure_;
};

}  // namespace

Result<StringsTable> StringsTable::parse(std::string_view text, std::string_view sourceName) {
  StringsTable table;
  auto read = StringsReader(text, sourceName).read(table.entries_);
  if (!read) return read.error();
  return table;
}

Result<StringsTable> StringsTable::load(const std::string& path) {
  auto text = readFileContents(path);
  if (!text) return Error::make(kLErrorDomain, 2, fmt::format("{}: cannot be read", path));
  return parse(*text, path);
}

std::optional<std::string> StringsTable::lookup(std::string_view key) const {
  if (auto it = entries_.find(key); it != entries_.end()) return it->second;
  return std::nullopt;
}

std::string LocalizedString(std::string_view key, std::string_view table) {
  static std::mutex mutex;
  static std::map<std::string, StringsTable, std::less<>> tables;
  std::lock_guard lock(mutex);
  auto it = tables.find(table);
  if (it == tables.end()) {
    auto loaded = StringsTable::load(resourcePath(std::string(table) + ".strings").string());
    if (!loaded) LLog("ERROR: %@", loaded.error().localizedDescription());
    it = tables.emplace(std::string(table), loaded ? std::move(*loaded) : StringsTable{}).first;
  }
  return it->second.lookup(key).value_or(std::string(key));
}

}  // namespace ledgeon
