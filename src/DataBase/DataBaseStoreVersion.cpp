// What a store file says about itself before it is opened: its model version, whether this
// program reads it as it is, and the facts recorded in its metadata table.
#include <stdexcept>

#include "DataBase/DataBase.h"
#include "DataBase/internal/SQLite.h"
#include "DataBase/internal/Schema.h"
#include "DataBase/internal/StoreFile.h"
#include "Utilities/Error.h"

namespace ledgeon {

Result<DataBase::StoreVersion> DataBase::getMigrationRequired(const std::filesystem::path& file) {
  if (auto ok = storefile::checkDatabaseFile(file); !ok) return ok.error();
  auto connection = sql::Connection::open(file.string(), SQLITE_OPEN_READONLY);
  if (!connection) return connection.error();
  StoreVersion version;
  try {
    sql::Statement hasTable =
        connection->prepare("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name = ?");
    hasTable.bind(1, std::string_view(schema::kMetadataTable));
    hasTable.step();
    if (hasTable.integer(0) == 0) {
      Error error = Error::make(
          kCocoaErrorDomain, 259,
          file.string() + ": is a SQLite database of another program, not a ledger store");
      error.userInfo[kFilePathErrorKey] = file.string();
      return error;
    }
    sql::Statement select =
        connection->prepare(std::string("SELECT key, value FROM ") + schema::kMetadataTable);
    while (select.step()) version.metadata.emplace(select.text(0), select.text(1));
  } catch (const std::exception& e) {
    Error error = Error::make(kCocoaErrorDomain, 259,
                              file.string() + ": is not a readable ledger store: " + e.what());
    error.userInfo[kFilePathErrorKey] = file.string();
    return error;
  }
  if (auto it = version.metadata.find(schema::kModelVersionKey); it != version.metadata.end()) {
    version.modelVersion = it->second;
  }
  // Only the current model is read; older ones become readable once a migration path from them
  // is registered, and until then they are neither migrated nor opened.
  version.supportedModel = version.modelVersion == Model::kVersionName;
  version.migrationRequired = false;
  return version;
}

void DataBase::setStoreMetadataValue(const std::string& key, const std::string& value) {
  if (key == schema::kModelVersionKey || key.rfind(schema::kEntityHashPrefix, 0) == 0) {
    throw std::logic_error("The model version and entity hashes of a store are not edited");
  }
  sql::Statement insert =
      connection_->prepare(std::string("INSERT OR REPLACE INTO ") + schema::kMetadataTable +
                           " (key, value) VALUES (?, ?)");
  insert.bind(1, std::string_view(key));
  insert.bind(2, std::string_view(value));
  insert.run();
}

}  // namespace ledgeon
