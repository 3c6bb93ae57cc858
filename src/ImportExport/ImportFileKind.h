#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "Utilities/Result.h"

namespace ledgeon {

// What a file looks like from its first few kilobytes: a LIF file, an OFX statement, binary
// data, or other text. Lets an import name a file meant for another reader instead of only
// refusing it. Thread-safe.
class ImportFileKind final {
 public:
  enum class Kind { kEmpty, kText, kLIF, kOFX1, kOFX2, kBinary };

  // The first bytes read.
  static constexpr size_t kHeadLength = 8192;

  // Fails when the file cannot be read.
  static Result<ImportFileKind> ofFile(const std::filesystem::path& path);
  // The kind of a file starting with `head`, in any encoding TextFileReader reads.
  static ImportFileKind ofHead(std::string_view head);

  Kind kind() const { return kind_; }
  // "This file looks like an OFX statement (OFX 1.x, SGML)" ...; empty for text and empty files.
  std::string description() const;

 private:
  ImportFileKind(Kind kind, std::string binaryName = {})
      : kind_(kind), binaryName_(std::move(binaryName)) {}
  static ImportFileKind ofText(std::string_view text);

  Kind kind_;
  std::string binaryName_;  // "a zip archive" ... when the format is known
};

}  // namespace ledgeon
