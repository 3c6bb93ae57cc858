#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Documents/LedgerRows.h"
#include "Utilities/Amount.h"

namespace ledgeon::cli {

// The ledger's rows (LedgerQueries) as text and JSON. Money is exact in JSON; text shows the
// currency's digits at least.

nlohmann::json accountsJson(const std::vector<AccountRow>& rows);
nlohmann::json transactionsJson(const std::vector<TransactionRow>& rows);
void printAccounts(std::ostream& out, const std::vector<AccountRow>& rows);
void printTransactions(std::ostream& out, const std::vector<TransactionRow>& rows);

// `value` exactly, with at least `minimumDigits` fraction digits ("-120" -> "-120.00"); digits
// beyond them are kept, never rounded away.
std::string exactMoneyText(const Amount& value, int minimumDigits);

// The reconcile status codes as words: "uncleared", "cleared", "reconciled".
std::string reconcileStatusName(int64_t status);

}  // namespace ledgeon::cli
