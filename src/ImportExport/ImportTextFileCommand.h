#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "ImportExport/CSVParser.h"
#include "ImportExport/ImportFileCommand.h"
#include "ImportExport/ImportTransaction.h"

namespace ledgeon {

class ImportLedger;

// Imports the transaction export of a web-based finance service (a CSV file with the columns
// date, description, original description, amount, type, category, account name, labels, notes)
// into one new account named after the file, stamped "TXTIMPORT". Rows whose date or amount do
// not read are left out; a file without one usable row fails. Main thread only.
class ImportTextFileCommand final : public ImportFileCommand {
 public:
  static constexpr const char* kDataSource = "TXTIMPORT";

  ImportTextFileCommand(std::filesystem::path file, std::shared_ptr<LCommandDocument> document);
  std::string className() const override { return "ImportTextFileCommand"; }

  bool doit() override;
  bool importFile() override;
  // The account made by the import; null until then or when it failed.
  LObject* targetAccount() const { return targetAccount_; }

  // The transaction a row stands for; std::nullopt for a row to leave out.
  static std::optional<ImportTransaction> transactionForRow(const CSVRow& row);
  // The row's date (century adjusted) and signed amount: what decides whether it makes a
  // transaction at all.
  static std::optional<std::pair<Date, Amount>> dateAndAmountForRow(const CSVRow& row);
  // Only the characters a decimal number can hold, read as a decimal; NaN when none.
  static Amount amountFromText(const std::string& text);

 protected:
  std::string failureInformativeText() const override;

 private:
  LObject* createTargetAccount(ImportLedger& ledger);
  void applyRegisterSettings(LObject& account);

  LObject* targetAccount_ = nullptr;
};

}  // namespace ledgeon
