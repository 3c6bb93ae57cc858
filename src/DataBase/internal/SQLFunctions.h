#pragma once

#include <sqlite3.h>

namespace ledgeon::sql {

// Registers on a connection what the ledger's SQL needs:
//   decimal_cmp(a, b)      -1, 0 or 1 comparing two exact decimal texts (NULL if either is)
//   COLLATE DECIMAL        sorting of exact decimal texts by value
//   string_match(op, value, pattern, caseInsensitive)   the predicate string operators
//   decimal_sum, decimal_min, decimal_max, decimal_avg  exact folds of a to-many relationship's
//                          members, as in-memory evaluation computes them
void registerLedgerFunctions(sqlite3* db);

}  // namespace ledgeon::sql
