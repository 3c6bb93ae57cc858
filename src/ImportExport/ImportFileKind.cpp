#include "ImportExport/ImportFileKind.h"

#include <array>
#include <fstream>
#include <utility>

#include "ImportExport/TextFileReader.h"
#include "Utilities/AsciiText.h"

namespace ledgeon {
namespace {

struct Signature {
  std::string_view bytes;
  const char* name;
};

// Formats people export or download by mistake, known by their first bytes.
constexpr std::array<Signature, 7> kSignatures = {{
    {std::string_view("PK\x03\x04", 4), "a zip archive (a spreadsheet workbook is one)"},
    {"%PDF-", "a PDF document"},
    {std::string_view("\x1F\x8B", 2), "a gzip archive"},
    {std::string_view("SQLite format 3\0", 16), "an SQLite database"},
    {std::string_view("\xD0\xCF\x11\xE0", 4), "an older office document"},
    {std::string_view("\x89PNG", 4), "a PNG image"},
    {std::string_view("\xFF\xD8\xFF", 3), "a JPEG image"},
}};

bool startsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// Control characters other than the white space text files hold; a few in a text file are
// noise, many mean the bytes are not text.
bool looksBinary(std::string_view bytes) {
  size_t controls = 0;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte == 0) return true;
    if ((byte < 0x20 && std::string_view("\t\n\r\f\v\x1A").find(c) == std::string_view::npos) ||
        byte == 0x7F) {
      ++controls;
    }
  }
  return controls * 20 > bytes.size();
}

}  // namespace

Result<ImportFileKind> ImportFileKind::ofFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream || std::filesystem::is_directory(path)) {
    Error error = Error::make(kCocoaErrorDomain, 260,
                              "The file \"" + path.filename().string() + "\" could not be read.");
    error.userInfo[kFilePathErrorKey] = path.string();
    return error;
  }
  std::string head(kHeadLength, '\0');
  stream.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<size_t>(stream.gcount()));
  return ofHead(head);
}

ImportFileKind ImportFileKind::ofHead(std::string_view head) {
  for (const Signature& signature : kSignatures) {
    if (startsWith(head, signature.bytes)) return {Kind::kBinary, signature.name};
  }
  const std::string encoding = TextFileReader::detectEncoding(head);
  const bool wide = startsWith(encoding, "UTF-16") || startsWith(encoding, "UTF-32");
  if (!wide && looksBinary(head)) return {Kind::kBinary};
  const std::string text = TextFileReader::decode(std::string(head));
  if (wide && looksBinary(text)) return {Kind::kBinary};
  return ofText(text);
}

ImportFileKind ImportFileKind::ofText(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r\n\f\v");
  if (first == std::string_view::npos) return {Kind::kEmpty};
  text.remove_prefix(first);
  if (startsWith(text, "!")) return {Kind::kLIF};
  if (startsWith(text, "OFXHEADER")) return {Kind::kOFX1};
  const std::string lower = asciiLowercased(text);
  if (startsWith(lower, "<?xml")) {
    const bool ofx =
        lower.find("ofxheader") != std::string::npos || lower.find("<ofx>") != std::string::npos;
    return {ofx ? Kind::kOFX2 : Kind::kText};
  }
  // SGML statements whose writer left the header out.
  if (lower.find("<ofx>") != std::string::npos) return {Kind::kOFX1};
  return {Kind::kText};
}

std::string ImportFileKind::description() const {
  switch (kind_) {
    case Kind::kLIF:
      return "This file looks like a LIF interchange file";
    case Kind::kOFX1:
      return "This file looks like an OFX statement (OFX 1.x, SGML)";
    case Kind::kOFX2:
      return "This file looks like an OFX statement (OFX 2.x, XML)";
    case Kind::kBinary:
      return binaryName_.empty() ? "This file looks like binary data, not text"
                                 : "This file looks like " + binaryName_ + ", not text";
    case Kind::kEmpty:
    case Kind::kText:
      break;
  }
  return {};
}

}  // namespace ledgeon
