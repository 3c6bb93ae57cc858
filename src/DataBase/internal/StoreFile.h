#pragma once

#include <filesystem>

#include "Utilities/Result.h"

namespace ledgeon::storefile {

// Checks, by reading only, that `file` is a complete SQLite database: its header is SQLite's
// and the file is as long as the header says. Never writes.
Result<void> checkDatabaseFile(const std::filesystem::path& file);

// Checks, on a read-only connection, that the database is a ledger store of this model version.
Result<void> checkLedgerStore(const std::filesystem::path& file);

}  // namespace ledgeon::storefile
