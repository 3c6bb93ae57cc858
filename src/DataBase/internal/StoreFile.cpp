#include "DataBase/internal/StoreFile.h"

#include <array>
#include <cstring>
#include <fstream>

#include "DataBase/internal/SQLite.h"
#include "DataBase/internal/Schema.h"
#include "Utilities/Error.h"

namespace ledgeon::storefile {

namespace {

constexpr int64_t kNotALedgerStore = 259;  // the platform's "file is not in a readable format"

Error storeError(const std::filesystem::path& file, const std::string& problem) {
  Error error = Error::make(kCocoaErrorDomain, kNotALedgerStore, file.string() + ": " + problem);
  error.userInfo[kFilePathErrorKey] = file.string();
  return error;
}

uint32_t bigEndian(const unsigned char* bytes, int count) {
  uint32_t value = 0;
  for (int i = 0; i < count; ++i) value = (value << 8) | bytes[i];
  return value;
}

}  // namespace

Result<void> checkDatabaseFile(const std::filesystem::path& file) {
  std::error_code ec;
  const auto size = std::filesystem::file_size(file, ec);
  if (ec) return storeError(file, "cannot be read: " + ec.message());
  std::ifstream in(file, std::ios::binary);
  std::array<unsigned char, 100> header{};
  if (!in.read(reinterpret_cast<char*>(header.data()), header.size())) {
    return storeError(file, "is not a ledger store: not a SQLite database (only " +
                                std::to_string(size) + " bytes)");
  }
  if (std::memcmp(header.data(), "SQLite format 3", 16) != 0) {
    return storeError(file, "is not a ledger store: not a SQLite database");
  }
  uint64_t pageSize = bigEndian(&header[16], 2);
  if (pageSize == 1) pageSize = 65536;
  if (pageSize < 512 || (pageSize & (pageSize - 1)) != 0) {
    return storeError(file, "is damaged: the SQLite header gives an impossible page size");
  }
  const uint32_t changeCounter = bigEndian(&header[24], 4);
  const uint32_t pageCount = bigEndian(&header[28], 4);
  const uint32_t validFor = bigEndian(&header[92], 4);
  if (size % pageSize != 0 || (pageCount != 0 && validFor == changeCounter &&
                               size < static_cast<uint64_t>(pageCount) * pageSize)) {
    return storeError(file, "is truncated: " + std::to_string(size) +
                                " bytes, the SQLite header "
                                "promises " +
                                std::to_string(static_cast<uint64_t>(pageCount) * pageSize));
  }
  return {};
}

Result<void> checkLedgerStore(const std::filesystem::path& file) {
  auto connection = sql::Connection::open(file.string(), SQLITE_OPEN_READONLY);
  if (!connection) return connection.error();
  try {
    sql::Statement hasTable =
        connection->prepare("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name = ?");
    hasTable.bind(1, std::string_view(schema::kMetadataTable));
    hasTable.step();
    if (hasTable.integer(0) == 0) {
      return storeError(file, "is a SQLite database of another program, not a ledger store");
    }
    sql::Statement version = connection->prepare(std::string("SELECT value FROM ") +
                                                 schema::kMetadataTable + " WHERE key = ?");
    version.bind(1, std::string_view(schema::kModelVersionKey));
    if (!version.step()) {
      return storeError(file, "is a SQLite database of another program, not a ledger store");
    }
    const std::string stored(version.text(0));
    if (stored != Model::kVersionName) {
      return storeError(file, "is a ledger store of model version \"" + stored +
                                  "\"; this program reads \"" + Model::kVersionName +
                                  "\" (the store needs migrating)");
    }
  } catch (const std::exception& e) {
    return storeError(file, std::string("is not a readable ledger store: ") + e.what());
  }
  return {};
}

}  // namespace ledgeon::storefile
