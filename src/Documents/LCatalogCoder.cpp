#include "Documents/LCatalogCoder.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>

#include "Utilities/Log.h"

namespace ledgeon {

namespace {

constexpr std::size_t kHeaderSize = 9;

}  // namespace

LCatalogCoder::LCatalogCoder(std::FILE* file, std::string path, bool writing, uint64_t size)
    : file_(file), path_(std::move(path)), writing_(writing), size_(size) {}

LCatalogCoder::~LCatalogCoder() { close(); }

Result<std::unique_ptr<LCatalogCoder>> LCatalogCoder::archiverWithPath(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) {
    return Error::make(kPOSIXErrorDomain, errno,
                       path + ": cannot be written: " + std::strerror(errno));
  }
  return std::unique_ptr<LCatalogCoder>(new LCatalogCoder(file, path, true, 0));
}

Result<std::unique_ptr<LCatalogCoder>> LCatalogCoder::unarchiverWithPath(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  struct stat info {};
  if (!file || ::fstat(::fileno(file), &info) != 0 || !S_ISREG(info.st_mode)) {
    const int error = errno;
    if (file) std::fclose(file);
    return Error::make(kPOSIXErrorDomain, error, path + ": cannot be read as a catalog");
  }
  return std::unique_ptr<LCatalogCoder>(
      new LCatalogCoder(file, path, false, static_cast<uint64_t>(info.st_size)));
}

bool LCatalogCoder::archiveSegmentWithType(uint8_t type, const std::vector<uint8_t>& data) {
  if (!file_ || !writing_) {
    LLog("%@", path_ + ": catalog is not open for writing");
    return false;
  }
  std::array<uint8_t, kHeaderSize> header{};
  header[0] = type;
  const auto length = static_cast<uint64_t>(data.size());
  for (int i = 0; i < 8; ++i) {
    header[static_cast<std::size_t>(1 + i)] = static_cast<uint8_t>(length >> (56 - 8 * i));
  }
  const bool ok = std::fwrite(header.data(), 1, header.size(), file_) == header.size() &&
                  (data.empty() || std::fwrite(data.data(), 1, data.size(), file_) == data.size());
  if (!ok) {
    LLog("%@", path_ + ": cannot write catalog segment: " + std::strerror(errno));
    return false;
  }
  position_ += kHeaderSize + length;
  return true;
}

Error LCatalogCoder::readError(const std::string& what) const {
  Error error = Error::make(kLErrorDomain, 1,
                            path_ + ": " + what + " at offset " + std::to_string(position_));
  error.userInfo[kFilePathErrorKey] = path_;
  return error;
}

Result<LCatalogSegment> LCatalogCoder::unarchiveNextSegmentOfType(uint8_t type) {
  if (!file_ || writing_) return readError("catalog is not open for reading");
  std::array<uint8_t, kHeaderSize> header{};
  if (size_ - position_ < kHeaderSize ||
      std::fread(header.data(), 1, header.size(), file_) != header.size()) {
    return readError("missing catalog segment " + std::to_string(type));
  }
  LCatalogSegment segment;
  segment.type = header[0];
  for (std::size_t i = 1; i < kHeaderSize; ++i) segment.length = (segment.length << 8) | header[i];
  if (segment.type != type) {
    return readError("catalog segment of type " + std::to_string(segment.type) + " where " +
                     std::to_string(type) + " was expected");
  }
  // The length is checked against the file before anything is allocated for it.
  if (segment.length > size_ - position_ - kHeaderSize) {
    return readError("catalog segment " + std::to_string(type) + " is cut short");
  }
  segment.data.resize(static_cast<std::size_t>(segment.length));
  if (segment.length > 0 &&
      std::fread(segment.data.data(), 1, segment.data.size(), file_) != segment.data.size()) {
    return readError("catalog segment " + std::to_string(type) + " cannot be read");
  }
  position_ += kHeaderSize + segment.length;
  return segment;
}

bool LCatalogCoder::atEnd() { return !writing_ && position_ >= size_; }

bool LCatalogCoder::close() {
  if (!file_) return true;
  const bool ok = std::fclose(file_) == 0;
  file_ = nullptr;
  if (!ok && writing_) LLog("%@", path_ + ": cannot complete the catalog");
  return ok;
}

}  // namespace ledgeon
