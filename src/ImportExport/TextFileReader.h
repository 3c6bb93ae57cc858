#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Utilities/Result.h"

namespace ledgeon {

// Reads text files of unknown encoding (exports of other programs: UTF-8, UTF-16 with a byte
// order mark, Windows and Mac code pages) into UTF-8, and splits text into lines.
class TextFileReader final {
 public:
  TextFileReader() = delete;

  // The file's text as UTF-8. Fails when the file cannot be read; an empty file reads as "".
  static Result<std::string> readFile(const std::filesystem::path& path);
  // Bytes of any encoding as UTF-8: valid UTF-8 is kept (its byte order mark dropped), anything
  // else goes through the ICU charset detector and is converted, unmappable bytes becoming
  // U+FFFD. Never fails.
  static std::string decode(std::string bytes);
  // The encoding decode() would read `bytes` in ("UTF-8", "UTF-16LE", "windows-1252", ...).
  static std::string detectEncoding(std::string_view bytes);

  // The lines of `text`, split at LF, CR, CR LF, U+2028 and U+2029; terminators are not part of
  // the lines, and text after the last terminator is a line of its own. The views point into
  // `text`.
  static std::vector<std::string_view> splitLines(std::string_view text);
  // The same lines handed to `receiver` one by one, without a list of them.
  static void forEachLine(std::string_view text,
                          const std::function<void(std::string_view)>& receiver);
};

}  // namespace ledgeon
