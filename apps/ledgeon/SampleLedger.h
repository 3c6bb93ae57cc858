#pragma once

#include <filesystem>

namespace ledgeon::cli {

// Makes a small ledger in the document package `document` (created if missing): three accounts,
// a few categories and payees, eight transactions with their splits and an exchange rate. The
// package must not hold a store yet.
void createSampleLedger(const std::filesystem::path& document);

}  // namespace ledgeon::cli
