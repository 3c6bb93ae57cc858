// The checks run on every open must read indexes, not the ledger: their cost may not grow with
// the number of transactions.
#include <string>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "DataBase/LedgerFixture.h"

namespace ledgeon::testing {
namespace {

std::string queryPlan(const std::filesystem::path& store, const std::string& statement) {
  sqlite3* db = nullptr;
  EXPECT_EQ(sqlite3_open_v2(store.c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  sqlite3_stmt* plan = nullptr;
  std::string text;
  if (sqlite3_prepare_v2(db, ("EXPLAIN QUERY PLAN " + statement).c_str(), -1, &plan, nullptr) ==
      SQLITE_OK) {
    while (sqlite3_step(plan) == SQLITE_ROW) {
      text += reinterpret_cast<const char*>(sqlite3_column_text(plan, 3));
      text += '\n';
    }
  } else {
    ADD_FAILURE() << sqlite3_errmsg(db);
  }
  sqlite3_finalize(plan);
  sqlite3_close(db);
  return text;
}

using StoreIndexTest = LedgerTest;

TEST_F(StoreIndexTest, RepairsOnOpenSearchIndexesInsteadOfScanningTheLedger) {
  makeTransaction(makeCheckingAccount("Cash"), "10");
  commit();
  struct Case {
    const char* statement;
    const char* expectedPlan;
  };
  const Case cases[] = {
      {"UPDATE \"Transaction\" SET \"amount\" = '0' WHERE \"amount\" = 'NaN'",
       "USING INDEX Transaction_amount_NaN"},
      {"UPDATE \"Transaction\" SET \"costBasis\" = '0' WHERE \"costBasis\" = 'NaN'",
       "USING INDEX Transaction_costBasis_NaN"},
      {"UPDATE \"CashFlowTransactionEntry\" SET \"amount\" = '0' WHERE \"amount\" = 'NaN'",
       "USING INDEX CashFlowTransactionEntry_amount_NaN"},
      // Searching by class alone would still visit every row of the class.
      {"SELECT IFNULL(MAX(\"ledgeonId\"), 0) FROM \"Transaction\" WHERE Z_ENT = 5",
       "USING COVERING INDEX Transaction_Z_ENT"},
  };
  for (const Case& c : cases) {
    const std::string plan = queryPlan(storePath(), c.statement);
    EXPECT_NE(plan.find(c.expectedPlan), std::string::npos) << c.statement << "\n" << plan;
    EXPECT_EQ(plan.find("SCAN"), std::string::npos) << c.statement << "\n" << plan;
  }
}

}  // namespace
}  // namespace ledgeon::testing
