#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

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

  // What decides whether a row makes a transaction at all: its date (century adjusted) and
  // signed amount, or the rule that leaves it out.
  struct RowDateAndAmount {
    Date date;
    Amount amount = Amount::zero();
    const char* skipRule = nullptr;  // ImportDropRules.h; null for a row that makes one
  };

  // The transaction a row stands for; std::nullopt for a row to leave out.
  static std::optional<ImportTransaction> transactionForRow(const CSVRow& row);
  static RowDateAndAmount dateAndAmountForRow(const CSVRow& row);
  // Whether a row is the export's own title row ("Date", "Description", ...).
  static bool isTitleRow(const CSVRow& row);
  // Only the characters a decimal number can hold, read as a decimal; NaN when none.
  static Amount amountFromText(const std::string& text);

 protected:
  std::string failureInformativeText() const override;

 private:
  // Counts the rows that make transactions; notes the others, and where reading stopped.
  size_t countRows(CSVParser& parser);
  LObject* createTargetAccount(ImportLedger& ledger);
  void applyRegisterSettings(LObject& account);

  LObject* targetAccount_ = nullptr;
};

}  // namespace ledgeon
