#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "Utilities/Result.h"

namespace ledgeon {

// One segment of a catalog: its type, its length and its bytes.
struct LCatalogSegment {
  uint8_t type = 0;
  uint64_t length = 0;
  std::vector<uint8_t> data;
};

// Segment types of a catalog, in the order they are written.
enum class LCatalogSegmentType : uint8_t {
  kMark = 10,             // "Ledgeon"
  kMetadata = 20,         // public metadata, archived, not enciphered
  kDocumentKey = 30,      // the document key under the password-derived key
  kRecoveryKey = 40,      // the document key under a public key (only when one is named)
  kPrivateMetadata = 50,  // enciphered
  kDataBase = 60,         // the store file, enciphered
  kContents = 70,         // "contents.zip", enciphered
};

inline constexpr const char* kCatalogMark = "Ledgeon";

// Reads or writes the catalog container: a flat run of segments, each a 1-byte type, an 8-byte
// big-endian length and that many bytes, with no file header. A reader asks for the type it
// expects next. One coder, one direction, one thread.
class LCatalogCoder final {
 public:
  // Creates or truncates the file at `path` for writing.
  static Result<std::unique_ptr<LCatalogCoder>> archiverWithPath(const std::string& path);
  // Opens the existing file at `path` for reading.
  static Result<std::unique_ptr<LCatalogCoder>> unarchiverWithPath(const std::string& path);

  ~LCatalogCoder();
  LCatalogCoder(const LCatalogCoder&) = delete;
  LCatalogCoder& operator=(const LCatalogCoder&) = delete;

  // Appends one segment; a write failure is logged and returns false.
  bool archiveSegmentWithType(uint8_t type, const std::vector<uint8_t>& data);
  bool archiveSegmentWithType(LCatalogSegmentType type, const std::vector<uint8_t>& data) {
    return archiveSegmentWithType(static_cast<uint8_t>(type), data);
  }
  // Reads the next segment, which must be of `type` and complete.
  Result<LCatalogSegment> unarchiveNextSegmentOfType(uint8_t type);
  Result<LCatalogSegment> unarchiveNextSegmentOfType(LCatalogSegmentType type) {
    return unarchiveNextSegmentOfType(static_cast<uint8_t>(type));
  }
  // True when a reader has consumed the whole file.
  bool atEnd();
  // Flushes and closes the file; false when the written catalog could not be completed.
  bool close();

 private:
  LCatalogCoder(std::FILE* file, std::string path, bool writing, uint64_t size);
  Error readError(const std::string& what) const;

  std::FILE* file_ = nullptr;
  std::string path_;
  bool writing_ = false;
  uint64_t size_ = 0;      // of the file being read
  uint64_t position_ = 0;  // of the next segment
};

}  // namespace ledgeon
