#pragma once

#include <string>
#include <string_view>

namespace ledgeon {

// `text` with the ASCII letters lowercased and every other byte as it is: for comparing names a
// format or a user spells in any case (file extensions, headers, button titles), never for text
// shown to a user.
inline std::string asciiLowercased(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

}  // namespace ledgeon
