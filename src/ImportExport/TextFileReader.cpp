#include "ImportExport/TextFileReader.h"

#include <algorithm>
#include <climits>
#include <fstream>
#include <memory>
#include <system_error>
#include <utility>

#include <unicode/ucsdet.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace ledgeon {
namespace {

constexpr std::string_view kUTF8ByteOrderMark = "\xEF\xBB\xBF";
// Code page used when the detector has no opinion: the usual one of older Windows exports.
constexpr const char* kFallbackEncoding = "windows-1252";

bool isValidUTF8(std::string_view bytes) {
  const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
  const auto length = static_cast<int32_t>(bytes.size());
  int32_t i = 0;
  while (i < length) {
    if (data[i] < 0x80) {
      ++i;
      continue;
    }
    UChar32 c = 0;
    U8_NEXT(data, i, length, c);
    if (c < 0) return false;
  }
  return true;
}

struct DetectorCloser {
  void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
};

}  // namespace

Result<std::string> TextFileReader::readFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) {
    Error error = Error::make(kCocoaErrorDomain, 260,
                              "The file \"" + path.filename().string() + "\" could not be read.");
    error.userInfo[kFilePathErrorKey] = path.string();
    return error;
  }
  std::error_code sizeError;
  const auto size = std::filesystem::file_size(path, sizeError);
  std::string bytes(sizeError ? 0 : static_cast<size_t>(size), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<size_t>(stream.gcount()));
  if (stream.bad()) {
    return Error::make(kCocoaErrorDomain, 256,
                       "The file \"" + path.filename().string() + "\" could not be read.");
  }
  return decode(std::move(bytes));
}

std::string TextFileReader::detectEncoding(std::string_view bytes) {
  if (bytes.size() >= 2 && static_cast<uint8_t>(bytes[0]) == 0xFF &&
      static_cast<uint8_t>(bytes[1]) == 0xFE) {
    return "UTF-16LE";
  }
  if (bytes.size() >= 2 && static_cast<uint8_t>(bytes[0]) == 0xFE &&
      static_cast<uint8_t>(bytes[1]) == 0xFF) {
    return "UTF-16BE";
  }
  if (isValidUTF8(bytes)) return "UTF-8";
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UCharsetDetector, DetectorCloser> detector(ucsdet_open(&status));
  if (U_FAILURE(status)) return kFallbackEncoding;
  // The detector reads a sample; the start of a file says as much about its encoding as all of it.
  const auto sample = static_cast<int32_t>(std::min<size_t>(bytes.size(), 1 << 16));
  ucsdet_setText(detector.get(), bytes.data(), sample, &status);
  const UCharsetMatch* match = ucsdet_detect(detector.get(), &status);
  if (U_FAILURE(status) || match == nullptr) return kFallbackEncoding;
  const char* name = ucsdet_getName(match, &status);
  if (U_FAILURE(status) || name == nullptr) return kFallbackEncoding;
  const std::string detected = name;
  // Not UTF-8 (checked above) means the detector's guess is one of the 8-bit code pages; the
  // ISO ones are read as their Windows supersets, which is what such files really are.
  if (detected == "UTF-8") return kFallbackEncoding;
  if (detected == "ISO-8859-1") return kFallbackEncoding;
  return detected;
}

std::string TextFileReader::decode(std::string bytes) {
  const std::string encoding = detectEncoding(bytes);
  if (encoding == "UTF-8") {
    // Kept in place: a decades-long history should not be held twice while it is read.
    if (std::string_view(bytes).substr(0, kUTF8ByteOrderMark.size()) == kUTF8ByteOrderMark) {
      bytes.erase(0, kUTF8ByteOrderMark.size());
    }
    return bytes;
  }
  const auto length = static_cast<int32_t>(std::min<size_t>(bytes.size(), INT32_MAX));
  icu::UnicodeString unicode(bytes.data(), length, encoding.c_str());
  if (unicode.isBogus()) unicode = icu::UnicodeString(bytes.data(), length, kFallbackEncoding);
  if (!unicode.isEmpty() && unicode.charAt(0) == 0xFEFF) unicode.remove(0, 1);
  std::string text;
  unicode.toUTF8String(text);
  return text;
}

std::vector<std::string_view> TextFileReader::splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  forEachLine(text, [&lines](std::string_view line) { lines.push_back(line); });
  return lines;
}

void TextFileReader::forEachLine(std::string_view text,
                                 const std::function<void(std::string_view)>& receiver) {
  size_t start = 0;
  size_t i = 0;
  while (i < text.size()) {
    const char c = text[i];
    size_t terminator = 0;
    if (c == '\n') {
      terminator = 1;
    } else if (c == '\r') {
      terminator = (i + 1 < text.size() && text[i + 1] == '\n') ? 2 : 1;
    } else if (c == '\xE2' && (text.compare(i, 3, "\xE2\x80\xA8") == 0 ||
                               text.compare(i, 3, "\xE2\x80\xA9") == 0)) {
      terminator = 3;
    }
    if (terminator == 0) {
      ++i;
      continue;
    }
    receiver(text.substr(start, i - start));
    i += terminator;
    start = i;
  }
  if (start < text.size()) receiver(text.substr(start));
}

}  // namespace ledgeon
