#pragma once

#include <sqlite3.h>

namespace ledgeon::sql {

// Registers on a connection what the ledger's SQL needs:
//   decimal_cmp(a, b)                -1, 0 or 1 comparing two exact decimal texts (NULL if either
//   is) COLLATE DECIMAL                  sorting of exact decimal texts by value string_match(op,
//   value, pattern, caseInsensitive)  the predicate string operators
void registerLedgerFunctions(sqlite3* db);

}  // namespace ledgeon::sql
