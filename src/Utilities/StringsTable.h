#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "Utilities/Result.h"

namespace ledgeon {

// A table of "key" = "value"; pairs, the format of the program's localised string tables.
class StringsTable final {
 public:
  // Reads the text of a table; a syntax error names its line.
  static Result<StringsTable> parse(std::string_view text, std::string_view sourceName);
  static Result<StringsTable> load(const std::string& path);

  std::optional<std::string> lookup(std::string_view key) const;
  size_t size() const { return entries_.size(); }

 private:
  std::map<std::string, std::string, std::less<>> entries_;
};

// The user-visible text of `key` in the string table `table` of the resources folder; the key
// itself when the table or the key is missing.
std::string LocalizedString(std::string_view key, std::string_view table = "LFrameworkUtilities");

}  // namespace ledgeon
