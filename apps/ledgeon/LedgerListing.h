#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "Documents/LedgerRows.h"
#include "Utilities/Amount.h"

namespace ledgeon::cli {

// The ledger's rows (LedgerQueries) as text and JSON. Money is exact in JSON; text shows the
// currency's digits at least.

// The rows as text lines, or with `json` as one JSON array written a record at a time.
void writeAccounts(std::ostream& out, const std::vector<AccountRow>& rows, bool json);
void writeTransactions(std::ostream& out, const std::vector<TransactionRow>& rows, bool json);

// `value` exactly, with at least `minimumDigits` fraction digits ("-120" -> "-120.00"); digits
// beyond them are kept, never rounded away.
std::string exactMoneyText(const Amount& value, int minimumDigits);

// The reconcile status codes as words: "uncleared", "cleared", "reconciled".
std::string reconcileStatusName(int64_t status);

}  // namespace ledgeon::cli
