#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "ImportExport/ImportFileCommand.h"
#include "ImportExport/ImportLedger.h"
#include "ImportExport/ImportTransaction.h"
#include "ImportExport/LIFRecords.h"

namespace ledgeon {

// A transfer side waiting for its mirror in the other account's section.
struct TransferTransactionPending {
  std::string payeeName;
  std::optional<Date> transactionDate;
  Amount transactionAmount;
  LObject* transactionAccount = nullptr;
  ImportTransaction fullTransaction;
  bool transactionEntered = false;  // already created as part of a kept split transaction
};

// Imports a LIF interchange file into a document that holds no transactions yet: accounts,
// categories, tags, securities, prices, bank-style and investment transactions, each made by an
// ordinary creation command stamped "LIFIMPORT". A file lists each transfer in both accounts;
// exactly one copy is kept. Success clears the undo history; undoit and redoit still take the
// whole import back and forth, except the prices, which are applied at the end and stay.
// Main thread only.
class ImportLIFFileCommand final : public ImportFileCommand {
 public:
  static constexpr const char* kDataSource = "LIFIMPORT";

  ImportLIFFileCommand(std::filesystem::path file, std::shared_ptr<LCommandDocument> document);
  std::string className() const override { return "ImportLIFFileCommand"; }

  // True only when the document holds no undeleted transaction.
  bool allowLIFImport();
  bool importFile() override;

  // Transfer bookkeeping. Each returns whether this copy is the one to create.
  bool useTransferTransaction(const std::string& payeeName, const std::optional<Date>& date,
                              LObject* transactionAccount, LObject* targetAccount,
                              const Amount& transactionTotal,
                              const ImportTransaction& fullTransaction, bool markEntered);
  bool useThisSplitTransaction(ImportTransaction& transaction, const std::string& payeeName,
                               const std::optional<Date>& date, LObject* account,
                               const Amount& transactionTotal);
  // The last pending side on `date` of `account` whose amount is -`amount`; the payee is not
  // compared. Null when there is none.
  TransferTransactionPending* findTransferTransactionPending(const std::string& payeeName,
                                                             const std::optional<Date>& date,
                                                             const Amount& amount,
                                                             LObject* account);

  // The log file written in the logs folder, once the import succeeded.
  const std::filesystem::path& logFile() const { return logFile_; }

 protected:
  std::string failureInformativeText() const override;

 private:
  struct PendingKey {
    std::optional<Date> date;
    LObject* account;
    // Spelled out: Clang 14 warns inside a defaulted <=> over std::optional.
    friend bool operator<(const PendingKey& a, const PendingKey& b) {
      return std::tie(a.date, a.account) < std::tie(b.date, b.account);
    }
  };
  struct Quote {
    Date date;
    Amount price;
  };

  // Whether a split transaction of `account` is left to the checking account it transfers to,
  // whose copy is the one kept.
  bool leftToCheckingCopy(const ImportTransaction& transaction, LObject* account);
  void apply(LIFRecord&& record);
  void applyAccounts(const LIFAccountList& list);
  void applyBankTransaction(const LIFBankTransaction& record);
  // Keeps a split transaction with a transfer line when its twin was not kept before; true
  // when it is to be created.
  bool keepSplitTransaction(const LIFBankTransaction& record, ImportTransaction& transaction,
                            LObject* account);
  void applyCategory(const LIFCategory& category);
  void applyTag(const LIFTag& tag);
  void applySecurity(const LIFSecurity& security);
  void applyInvestmentTransaction(const LIFInvestmentTransaction& record);
  void applyStockSplit(const LIFInvestmentTransaction& record, LObject& position,
                       EditDict& properties);
  void createInvestmentTransfer(const LIFInvestmentTransaction& record, LObject& account,
                                LObject& other);
  void transactionCreated();
  void setBarText(const std::string& text);
  bool readerProgress(size_t index, size_t count, std::string_view line);
  void removePending(TransferTransactionPending* pending);

  void finishImport(const std::map<std::string, size_t>& accountsWithStockSplits,
                    bool importedInvestments);
  void createPendingTransfers();
  // Each security's price history, and its latest price and quote date.
  void applyPrices();
  void logAccountBalanceDifferences(ImportLogNode& node);
  void writeLogsAndReport();

  std::optional<ImportLedger> ledger_;
  std::vector<std::optional<TransferTransactionPending>> transferTransactionsPending_;
  std::map<PendingKey, std::vector<size_t>> pendingIndex_;
  // The split transactions with a transfer line that were kept, in normal form, by payee and date.
  std::map<std::pair<std::string, std::optional<Date>>, std::vector<std::vector<ImportSplit>>>
      splitTransactionsSeen_;
  std::map<std::string, std::vector<Quote>> allSecurityRecords_;
  std::map<std::string, Amount> accountStatementBalances_;
  std::string barText_;
  size_t lineIndex_ = 0;
  size_t transactionsCreated_ = 0;
  std::filesystem::path logFile_;
};

}  // namespace ledgeon
