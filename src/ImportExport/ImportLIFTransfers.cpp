// The transfer bookkeeping of ImportLIFFileCommand (a file lists each transfer in both of its
// accounts; exactly one copy is created) and the steps that end an import.
#include <algorithm>
#include <tuple>
#include <utility>

#include "DataBase/DataBase.h"
#include "Documents/LedgerQueries.h"
#include "ImportExport/ImportDropRules.h"
#include "ImportExport/ImportLIFFileCommand.h"
#include "ImportExport/ImportUtilities.h"
#include "LObjects/LObject.h"
#include "Platform/ApplicationPaths.h"
#include "Platform/Services.h"
#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/StringWithFormat.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {
namespace {

constexpr const char* kTransferCategory = "Transfer";

const std::string& categoryKey(const ImportSplit& line) {
  static const std::string transfer = kTransferCategory;
  return line.isTransfer() ? transfer : line.category;
}

bool sameLine(const ImportSplit& a, const ImportSplit& b) {
  return categoryKey(a) == categoryKey(b) && a.transfer == b.transfer &&
         a.amount.compare(b.amount) == ComparisonResult::Same;
}

std::string dateText(const std::optional<Date>& date) {
  return date ? LDateUtilities::ISO8601StringFromDate(*date) : std::string();
}

}  // namespace

TransferTransactionPending* ImportLIFFileCommand::findTransferTransactionPending(
    const std::string&, const std::optional<Date>& date, const Amount& amount, LObject* account) {
  const auto found = pendingIndex_.find({date, account});
  if (found == pendingIndex_.end()) return nullptr;
  const Amount mirror = amount.decimalNumberByNegating();
  for (auto index = found->second.rbegin(); index != found->second.rend(); ++index) {
    auto& pending = transferTransactionsPending_[*index];
    if (pending && pending->transactionAmount.compare(mirror) == ComparisonResult::Same) {
      return &*pending;
    }
  }
  return nullptr;
}

void ImportLIFFileCommand::removePending(TransferTransactionPending* pending) {
  auto& indices = pendingIndex_[{pending->transactionDate, pending->transactionAccount}];
  for (auto index = indices.begin(); index != indices.end(); ++index) {
    if (&*transferTransactionsPending_[*index] == pending) {
      transferTransactionsPending_[*index].reset();
      indices.erase(index);
      return;
    }
  }
}

bool ImportLIFFileCommand::useTransferTransaction(
    const std::string& payeeName, const std::optional<Date>& date, LObject* transactionAccount,
    LObject* targetAccount, const Amount& transactionTotal,
    const ImportTransaction& fullTransaction, bool markEntered) {
  // The first copy waits; the mirror, when it comes, is the one created, unless the first was
  // already created as part of a split transaction.
  if (TransferTransactionPending* mirror =
          findTransferTransactionPending(payeeName, date, transactionTotal, targetAccount)) {
    const bool entered = mirror->transactionEntered;
    removePending(mirror);
    // One of the two records is not created, unless both are split transactions already kept.
    if (!(entered && markEntered)) ++importSummary().transferTwinsMerged;
    return !entered;
  }
  pendingIndex_[{date, transactionAccount}].push_back(transferTransactionsPending_.size());
  transferTransactionsPending_.push_back(TransferTransactionPending{
      payeeName, date, transactionTotal, transactionAccount, fullTransaction, markEntered});
  return false;
}

bool ImportLIFFileCommand::leftToCheckingCopy(const ImportTransaction& transaction,
                                              LObject* account) {
  if (LedgerQueries::isAccountOfKind(account, "Checking")) return false;
  return std::any_of(
      transaction.lines.begin(), transaction.lines.end(), [this](const ImportSplit& line) {
        return line.isTransfer() &&
               LedgerQueries::isAccountOfKind(ledger_->accountNamed(line.transfer), "Checking");
      });
}

bool ImportLIFFileCommand::useThisSplitTransaction(ImportTransaction& transaction,
                                                   const std::string& payeeName,
                                                   const std::optional<Date>& date,
                                                   LObject* account,
                                                   const Amount& transactionTotal) {
  // The checking account's copy of a split transaction is the one kept.
  if (leftToCheckingCopy(transaction, account)) return false;
  // Tags and memos of the lines differ between the two copies; the created transaction loses
  // them too.
  for (ImportSplit& line : transaction.lines) {
    line.tags.clear();
    line.note.clear();
  }
  std::vector<ImportSplit> normalForm = transaction.lines;
  ImportSplit own;
  own.transfer = account->stringForKey("name");
  own.amount = transactionTotal.decimalNumberByNegating();
  normalForm.push_back(std::move(own));
  std::sort(normalForm.begin(), normalForm.end(), [](const ImportSplit& a, const ImportSplit& b) {
    return std::forward_as_tuple(categoryKey(a), a.transfer, a.amount) <
           std::forward_as_tuple(categoryKey(b), b.transfer, b.amount);
  });

  auto& seen = splitTransactionsSeen_[{payeeName, date}];
  for (const auto& form : seen) {
    if (!std::equal(form.begin(), form.end(), normalForm.begin(), normalForm.end(), sameLine)) {
      continue;
    }
    for (const ImportSplit& line : transaction.lines) {
      if (!line.isTransfer()) continue;
      if (TransferTransactionPending* pending = findTransferTransactionPending(
              payeeName, date, line.amount, ledger_->accountNamed(line.transfer))) {
        // A record still waiting is merged here too: it will not be created at the end.
        if (!pending->transactionEntered) ++importSummary().transferTwinsMerged;
        removePending(pending);
      }
    }
    ++importSummary().transferTwinsMerged;
    return false;
  }
  for (const ImportSplit& line : transaction.lines) {
    if (!line.isTransfer()) continue;
    (void)useTransferTransaction(payeeName, date, account, ledger_->accountNamed(line.transfer),
                                 line.amount, transaction, true);
  }
  seen.push_back(std::move(normalForm));
  return true;
}

void ImportLIFFileCommand::finishImport(
    const std::map<std::string, size_t>& accountsWithStockSplits, bool importedInvestments) {
  createPendingTransfers();
  importSummary().transactionsCreated = transactionsCreated_;
  applyPrices();
  if (importedInvestments) requireDocument().noteShouldUpdateSecurityDataAfterImporting();
  ImportLog& log = importLog();
  logAccountBalanceDifferences(log.root());
  if (!accountsWithStockSplits.empty()) {
    ImportLogNode& node = log.add(ImportLogSeverity::kInfo, "Accounts with stock splits:\n");
    for (const auto& [name, count] : accountsWithStockSplits) {
      node.addChild(ImportLogSeverity::kInfo,
                    stringWithFormat("%@- %@ splits\n", name, std::to_string(count)));
    }
  }
  ImportLogNode& counts =
      log.add(ImportLogSeverity::kInfo, "Number of transactions created for each account:\n");
  for (LObject* account :
       requireDocument().dataBase().instancesOfClass("Account", {.sortDescriptors = {{"name"}}})) {
    const auto created = ledger_->transactionsCreated().find(account);
    const size_t count = created == ledger_->transactionsCreated().end() ? 0 : created->second;
    counts.addChild(
        ImportLogSeverity::kInfo,
        stringWithFormat("%@ - %lu transactions\n", account->stringForKey("name"), count));
  }
  logSummary();
  writeLogsAndReport();
}

void ImportLIFFileCommand::createPendingTransfers() {
  for (auto& pending : transferTransactionsPending_) {
    if (!pending || pending->transactionEntered) continue;
    const ImportTransaction& transaction = pending->fullTransaction;
    importLog().add(
        ImportLogSeverity::kDetail,
        stringWithFormat("Use transaction account name %@, %@ %@ %@",
                         transaction.account->stringForKey("name"), pending->payeeName,
                         dateText(pending->transactionDate), pending->transactionAmount));
    if (ledger_->createCashFlowTransaction(transaction)) {
      transactionCreated();
    } else {
      dropRecord(transaction.line, droprule::kRefused);
    }
  }
  transferTransactionsPending_.clear();
  pendingIndex_.clear();
}

void ImportLIFFileCommand::applyPrices() {
  DataBase& dataBase = requireDocument().dataBase();
  for (auto& [ticker, quotes] : allSecurityRecords_) {
    std::stable_sort(quotes.begin(), quotes.end(),
                     [](const Quote& a, const Quote& b) { return a.date < b.date; });
    for (LObject* security : ledger_->securitiesWithTicker(ticker)) {
      // Price history stays when the import is undone: it is not kept with the commands.
      for (const Quote& quote : quotes) {
        dataBase.createEntity("SecurityQuote", {{"dataSource", ledger_->dataSource()},
                                                {"security", Value(security)},
                                                {"closingPrice", Value(quote.price)},
                                                {"highestPrice", Value(quote.price)},
                                                {"lowestPrice", Value(quote.price)},
                                                {"volume", Value(Amount::zero())},
                                                {"quoteDate", Value(quote.date)}});
      }
      if (!quotes.empty()) {
        security->setValueForKey("latestClosingPrice", Value(quotes.back().price));
        security->setValueForKey("latestQuoteDate", Value(quotes.back().date));
      }
    }
  }
}

void ImportLIFFileCommand::logAccountBalanceDifferences(ImportLogNode& node) {
  for (const auto& [name, reported] : accountStatementBalances_) {
    LObject* account = ledger_->accountNamed(name);
    if (!account || reported.isNaN()) continue;
    const Amount total = ledger_->queries().balanceOfAccount(*account);
    if (total.compare(reported) == ComparisonResult::Same) continue;
    std::string difference = stringWithFormat(
        "Cash balance doesn't match for account %@. Balance reported as %@, but transactions "
        "total %@\n",
        name, reported, total);
    importSummary().balanceDifferences.push_back(difference);
    node.addChild(ImportLogSeverity::kInfo, std::move(difference));
  }
}

void ImportLIFFileCommand::writeLogsAndReport() {
  const std::filesystem::path package = requireDocument().dataBase().fileURL().parent_path();
  const std::filesystem::path logs = ApplicationPaths::ensureFolder(ApplicationPaths::logsFolder());
  auto written =
      ImportUtilities::writeLIFImportLogs(importLog(), file(), package, logs, Clock::now());
  logFile_ = written ? *written : file();
  if (!written) importLog().add(ImportLogSeverity::kError, written.error().localizedDescription());
  UserInterface& userInterface = Services::shared().userInterface();
  const AlertResponse response = userInterface.runAlert(
      {stringWithFormat(LocalizedString("Import_SuccessMessageFormat"), file().filename().string()),
       stringWithFormat(LocalizedString("Import_ImportSuccessFormat"), transactionsCreated_),
       {"OK", "Show Logs"},
       std::nullopt});
  if (response.buttonIndex == 1) userInterface.revealInFileManager(logFile_);
}

}  // namespace ledgeon
