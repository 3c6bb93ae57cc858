#include "ImportExport/ImportLIFFileCommand.h"

#include <utility>
#include <variant>

#include "Commands/SetLObjectPropertyCommand.h"
#include "DataBase/DataBase.h"
#include "ImportExport/ImportDropRules.h"
#include "ImportExport/LIFReader.h"
#include "ImportExport/LIFStockSplit.h"
#include "ImportExport/TextFileReader.h"
#include "LObjects/LObject.h"
#include "Platform/Services.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {
namespace {

constexpr const char* kApplicationName = "Ledgeon";
constexpr const char* kDefaultCurrencyCode = "USD";
constexpr size_t kProgressEveryTransactions = 25;

ImportSplit importSplit(const LIFSplit& split) {
  ImportSplit line;
  if (!split.isTransfer()) line.category = split.category;
  if (!split.tag.empty()) line.tags.push_back(split.tag);
  line.note = split.memo;
  line.amount = split.amount;
  line.transfer = split.transferAccount;
  return line;
}

}  // namespace

ImportLIFFileCommand::ImportLIFFileCommand(std::filesystem::path file,
                                           std::shared_ptr<LCommandDocument> document)
    : ImportFileCommand(std::move(file), std::move(document), ImportSummary::Format::kLIF) {
  // A whole history arriving at once in an empty document is not an edit to step back from:
  // success clears the undo history instead of joining it.
  setUndoBehavior(kUndoBehaviorClearsHistory);
}

std::string ImportLIFFileCommand::failureInformativeText() const {
  return stringWithFormat("%@ can only import lif files into empty documents.", kApplicationName);
}

bool ImportLIFFileCommand::allowLIFImport() {
  return requireDocument().dataBase().countForInstancesOfClass("Transaction") == 0;
}

bool ImportLIFFileCommand::importFile() {
  if (file().empty() || !allowLIFImport()) return false;
  ImportLog& log = startLog();
  noteFileKind(ImportFileKind::Kind::kLIF);
  auto text = TextFileReader::readFile(file());
  if (!text) {
    log.add(ImportLogSeverity::kError, text.error().localizedDescription());
    Services::shared().userInterface().runAlert(
        {text.error().localizedDescription(), "", {"OK"}, std::nullopt});
    return false;
  }
  if (text->empty()) return false;

  ledger_.emplace(document(), kDataSource, keptCommands());
  transferTransactionsPending_.clear();
  pendingIndex_.clear();
  splitTransactionsSeen_.clear();
  allSecurityRecords_.clear();
  accountStatementBalances_.clear();
  transactionsCreated_ = 0;
  lineIndex_ = 0;
  barText_.clear();

  LIFReaderLookups lookups;
  lookups.accountExists = [this](const std::string& name) {
    return ledger_->accountNamed(name) != nullptr;
  };
  lookups.categoryExists = [this](const std::string& name) {
    return ledger_->categoryNamed(name) != nullptr;
  };
  lookups.tagExists = [this](const std::string& name) {
    return ledger_->tagNamed(name) != nullptr;
  };
  lookups.securityType = [this](const std::string& name) -> std::optional<int> {
    LObject* security = ledger_->securityNamed(name);
    if (!security) return std::nullopt;
    return static_cast<int>(security->integerForKey("type"));
  };
  LIFReader reader(log, std::move(lookups));
  reader.setProgress([this](size_t index, size_t count, std::string_view line) {
    return readerProgress(index, count, line);
  });
  reader.setDroppedRecord([this](size_t line, std::string_view rule) {
    if (userAborted()) return;
    ++importSummary().recordsRead;
    dropRecord(line, rule);
  });
  startProgress(0);
  reader.readText(*text, [this](LIFRecord&& record) { apply(std::move(record)); });
  text->clear();
  text->shrink_to_fit();
  if (reader.userAborted() || userAborted()) {
    setUserAborted();
    return false;
  }
  finishImport(reader.accountsWithStockSplits(), reader.importedInvestments());
  return true;
}

bool ImportLIFFileCommand::readerProgress(size_t index, size_t count, std::string_view line) {
  lineIndex_ = index;
  if (Progress* progress = progressDialog()) {
    progress->setMaximum(static_cast<double>(count));
    progress->setValue(static_cast<double>(index));
    progress->setText(progressTitle());
    progress->setBarText(stringWithFormat("%@ line %lu of %lu", line, index, count));
  }
  return !pollCancel();
}

void ImportLIFFileCommand::setBarText(const std::string& text) {
  if (text == barText_) return;
  barText_ = text;
  if (Progress* progress = progressDialog()) progress->setBarText(text);
}

void ImportLIFFileCommand::transactionCreated() {
  if (++transactionsCreated_ % kProgressEveryTransactions != 0) return;
  if (Progress* progress = progressDialog()) progress->setValue(static_cast<double>(lineIndex_));
  // A section can hold a household's whole history: the cancel button is heard inside it too.
  (void)pollCancel();
}

void ImportLIFFileCommand::apply(LIFRecord&& record) {
  // Once cancelled, the rest of the file is read but no longer applied.
  if (userAborted()) return;
  std::visit(
      [this](const auto& r) {
        using T = std::decay_t<decltype(r)>;
        if constexpr (std::is_same_v<T, LIFAccountList>) {
          applyAccounts(r);
        } else if constexpr (std::is_same_v<T, LIFBankTransaction>) {
          ++importSummary().recordsRead;
          applyBankTransaction(r);
        } else if constexpr (std::is_same_v<T, LIFCategory>) {
          applyCategory(r);
        } else if constexpr (std::is_same_v<T, LIFTag>) {
          applyTag(r);
        } else if constexpr (std::is_same_v<T, LIFSecurity>) {
          applySecurity(r);
        } else if constexpr (std::is_same_v<T, LIFPrice>) {
          setBarText("Importing Prices");
          if (r.date && !r.price.isNaN()) {
            allSecurityRecords_[r.ticker].push_back({*r.date, r.price});
          }
        } else {
          ++importSummary().recordsRead;
          applyInvestmentTransaction(r);
        }
      },
      record);
}

void ImportLIFFileCommand::applyAccounts(const LIFAccountList& list) {
  setBarText("Creating Accounts");
  for (const LIFAccountRecord& record : list.accounts) {
    if (ledger_->accountNamed(record.name)) continue;
    EditDict properties{{"dataSource", ledger_->dataSource()}, {"name", Value(record.name)}};
    if (!record.accountType.empty()) {
      properties.set("type", Value(ledger_->accountTypeNamed(record.accountType)));
    }
    properties.set("userDescription", Value(record.description));
    properties.set("currency", Value(kDefaultCurrencyCode));
    properties.set("onlineBankingAccountIsEnabled", Value(false));
    // No online banking connection comes with a file (the model keeps the bank's identifier
    // as "bankRoutingNumber").
    for (const char* key :
         {"onlineBankingAccountNumber", "bankRoutingNumber", "onlineBankingCustomerID",
          "onlineBankingLedgerBalanceDate", "onlineBankingLedgerBalanceAmount"}) {
      properties.set(key, Value());
    }
    if (record.creditLimit && !record.creditLimit->isNaN()) {
      properties.set("creditLimit", Value(*record.creditLimit));
    }
    LObject* account = ledger_->createAccount(std::move(properties));
    if (account && record.statementBalance) {
      accountStatementBalances_[record.name] = *record.statementBalance;
    }
  }
}

void ImportLIFFileCommand::applyBankTransaction(const LIFBankTransaction& record) {
  LObject* account = ledger_->accountNamed(record.account);
  if (!account) return dropRecord(record.line, droprule::kAccountMissing);
  if (!record.investmentCash) setBarText(stringWithFormat("Account %@", record.account));
  ImportTransaction transaction;
  transaction.line = record.line;
  transaction.account = account;
  transaction.date = record.date;
  transaction.checkNumber = record.checkNumber;
  transaction.amount = record.amount;
  transaction.payee = record.payee;
  transaction.note = record.memo;
  transaction.reconcileStatus = record.reconcileStatus;
  transaction.transferAccount =
      record.hasTransferSplit ? record.splitTransferAccount : record.transferAccount;
  transaction.lines.reserve(record.splits.size());
  for (const LIFSplit& split : record.splits) transaction.lines.push_back(importSplit(split));

  if (record.hasTransferSplit && !keepSplitTransaction(record, transaction, account)) return;
  if (record.isTransfer() && !useTransferTransaction(record.payee, record.date, account,
                                                     ledger_->accountNamed(record.transferAccount),
                                                     record.amount, transaction, false)) {
    return;
  }
  if (!ledger_->createCashFlowTransaction(transaction)) {
    return dropRecord(record.line, droprule::kRefused);
  }
  transactionCreated();
}

bool ImportLIFFileCommand::keepSplitTransaction(const LIFBankTransaction& record,
                                                ImportTransaction& transaction, LObject* account) {
  if (leftToCheckingCopy(transaction, account)) {
    dropRecord(record.line, droprule::kCheckingCopyKept);
    return false;
  }
  size_t memos = 0;
  size_t tags = 0;
  for (const ImportSplit& line : transaction.lines) {
    if (!line.note.empty()) ++memos;
    tags += line.tags.size();
  }
  if (!useThisSplitTransaction(transaction, record.payee, record.date, account, record.amount)) {
    return false;
  }
  if (memos + tags > 0) {
    ImportSummary& summary = importSummary();
    summary.splitMemosRemoved += memos;
    summary.splitTagsRemoved += tags;
    importLog().add(ImportLogSeverity::kInfo,
                    stringWithFormat("%@, line %lu: split memos and tags removed (%lu memos, %lu "
                                     "tags): a split transaction with a transfer line keeps none",
                                     summary.fileName, record.line, memos, tags));
  }
  return true;
}

void ImportLIFFileCommand::applyCategory(const LIFCategory& category) {
  setBarText("Importing categories");
  EditDict properties{{"dataSource", ledger_->dataSource()},
                      {"name", Value(category.name)},
                      {"userDescription", Value(category.description)},
                      {"type", Value(category.type)}};
  if (category.taxRefUS) properties.set("taxRefUS", Value(*category.taxRefUS));
  for (const char* flag : {"editable", "userAssignable", "budgetable", "trendable"}) {
    properties.set(flag, Value(true));
  }
  ledger_->createCategory(std::move(properties));
}

void ImportLIFFileCommand::applyTag(const LIFTag& tag) {
  setBarText("Importing Tags");
  ledger_->createUserTag({{"dataSource", ledger_->dataSource()},
                          {"name", Value(tag.name)},
                          {"userDescription", Value(tag.description)}});
}

void ImportLIFFileCommand::applySecurity(const LIFSecurity& security) {
  EditDict properties{{"name", Value(security.name)},
                      {"ticker", Value(security.ticker)},
                      {"type", Value(security.type)}};
  if (LObject* existing = ledger_->securityNamed(security.name)) {
    ledger_->run(
        std::make_shared<SetLObjectPropertyCommand>(*existing, std::move(properties), document()));
    return;
  }
  properties.set("dataSource", ledger_->dataSource());
  ledger_->createSecurity(std::move(properties));
}

void ImportLIFFileCommand::applyInvestmentTransaction(const LIFInvestmentTransaction& record) {
  LObject* account = ledger_->accountNamed(record.account);
  if (!account) return dropRecord(record.line, droprule::kAccountMissing);
  setBarText(stringWithFormat("Investment Account %@", record.account));
  LObject* security = ledger_->securityNamed(record.security);
  if (!security) {
    security = ledger_->createSecurity(
        {{"name", Value(record.security)}, {"dataSource", ledger_->dataSource()}});
  }
  if (!security) return dropRecord(record.line, droprule::kSecurityMissing);
  LObject* position = ledger_->positionFor(*account, *security);
  // Units on a date are summed from a position's transactions, so every holding gets one.
  if (!position) position = ledger_->createPosition(*account, *security);
  if (!position) return dropRecord(record.line, droprule::kRefused);

  EditDict properties{{"dataSource", ledger_->dataSource()}, {"account", Value(account)}};
  if (record.date) properties.set("enteredDate", Value(*record.date));
  properties.set("type", Value(record.type));
  properties.set("units", Value(record.quantity));
  properties.set("costBasis", Value(record.costBasis));
  properties.set("amount", Value(record.amount));
  properties.set("reconcileStatus", Value(record.reconcileStatus));
  properties.set("note", Value(record.memo));
  properties.set("commission", Value(record.commission));
  properties.set("position", Value(position));
  if (record.splitForm != LIFStockSplitForm::kNone) {
    applyStockSplit(record, *position, properties);
  }
  if (record.userStatusOverride) {
    properties.set("userStatusOverride", Value(*record.userStatusOverride));
  }
  if (!ledger_->createInvestmentTransaction(std::move(properties))) {
    return dropRecord(record.line, droprule::kRefused);
  }
  transactionCreated();
  if (!record.transferAccount.empty()) {
    if (LObject* other = ledger_->accountNamed(record.transferAccount)) {
      createInvestmentTransfer(record, *account, *other);
    }
  }
}

void ImportLIFFileCommand::applyStockSplit(const LIFInvestmentTransaction& record,
                                           LObject& position, EditDict& properties) {
  const Amount before = LedgerQueries::unitsForPosition(
      position, record.date.value_or(LDateUtilities::currentDate()));
  const LIFStockSplit split = LIFStockSplit::forUnits(before, record.quantity, record.splitForm);
  if (split.newUnits.isNaN() || split.numerator.isNaN() || split.denominator.isNaN()) {
    importLog().add(ImportLogSeverity::kWarning,
                    stringWithFormat("Line %lu: split of %@ without units before it; ratio not set",
                                     record.line, record.security));
    return;
  }
  // The split's units are those it added, so that a position's units stay the sum of its
  // transactions.
  properties.set("units", Value(split.newUnits.decimalNumberBySubtracting(before)));
  properties.set("numerator", Value(split.numerator));
  properties.set("denominator", Value(split.denominator));
}

void ImportLIFFileCommand::createInvestmentTransfer(const LIFInvestmentTransaction& record,
                                                    LObject& account, LObject& other) {
  const Amount amount = record.transferAmount.value_or(Amount::zero());
  ImportTransaction transfer;
  transfer.line = record.line;
  transfer.account = &other;
  transfer.date = record.date;
  transfer.amount = amount;
  transfer.payee = record.security;
  transfer.note = record.memo;
  transfer.transferAccount = account.stringForKey("name");
  ImportSplit line;
  line.amount = amount;
  line.transfer = transfer.transferAccount;
  transfer.lines.push_back(std::move(line));
  if (!ledger_->createCashFlowTransaction(transfer)) {
    importLog().add(
        ImportLogSeverity::kWarning,
        stringWithFormat("%@, line %lu: the ledger refused the transfer to %@",
                         importSummary().fileName, record.line, other.stringForKey("name")));
    return;
  }
  transactionCreated();
}

}  // namespace ledgeon
