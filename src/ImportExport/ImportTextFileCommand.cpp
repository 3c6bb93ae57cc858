#include "ImportExport/ImportTextFileCommand.h"

#include <cctype>
#include <string_view>
#include <utility>
#include <vector>

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include "DataBase/DataBase.h"
#include "ImportExport/ImportDropRules.h"
#include "ImportExport/ImportLedger.h"
#include "ImportExport/TextFileReader.h"
#include "LObjects/LObject.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {
namespace {

constexpr const char* kDefaultCurrencyCode = "USD";
// How accounts fed by the web service's exports are connected.
constexpr const char* kConnectionType = "WEBSERVICEEXPORT";
constexpr const char* kAccountType = "CREDITLINE";
// A register filter on the transaction date (all dates), so the whole history shows.
constexpr int64_t kTransactionDateFilterType = 10;

const std::vector<std::string>& columnNames() {
  static const std::vector<std::string> names = {
      "date",        "description",     "originalDescription",
      "amount",      "transactionType", "category",
      "accountName", "labels",          "notes"};
  return names;
}

std::string field(const CSVRow& row, const char* name) {
  const auto found = row.find(name);
  return found == row.end() ? std::string() : found->second;
}

std::string trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Equal ignoring case and diacritics, as the user's locale compares. One collator serves every
// row (main thread only).
bool isUncategorized(const std::string& category) {
  static const std::unique_ptr<icu::Collator> collator = [] {
    UErrorCode status = U_ZERO_ERROR;
    // The POSIX locale orders by code point, case included: it stands for no language at all.
    const icu::Locale& current = icu::Locale::getDefault();
    const bool posix = std::string_view(current.getName()).find("POSIX") != std::string_view::npos;
    std::unique_ptr<icu::Collator> made(
        icu::Collator::createInstance(posix ? icu::Locale::getRoot() : current, status));
    if (U_FAILURE(status)) return std::unique_ptr<icu::Collator>();
    made->setStrength(icu::Collator::PRIMARY);
    return made;
  }();
  if (!collator || category.empty()) return false;
  UErrorCode status = U_ZERO_ERROR;
  return collator->compare(icu::UnicodeString::fromUTF8(category),
                           icu::UnicodeString::fromUTF8("Uncategorized"), status) == UCOL_EQUAL;
}

std::vector<std::string> labels(const std::string& text) {
  std::vector<std::string> tags;
  size_t start = 0;
  while (start <= text.size()) {
    const size_t end = text.find(' ', start);
    std::string piece = text.substr(start, end == std::string::npos ? end : end - start);
    if (!piece.empty()) tags.push_back(std::move(piece));
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return tags;
}

}  // namespace

ImportTextFileCommand::ImportTextFileCommand(std::filesystem::path file,
                                             std::shared_ptr<LCommandDocument> document)
    : ImportFileCommand(std::move(file), std::move(document), ImportSummary::Format::kCSV) {}

std::string ImportTextFileCommand::failureInformativeText() const {
  return "Only text files exported from the transactions page of the web service's site can be "
         "imported.";
}

Amount ImportTextFileCommand::amountFromText(const std::string& text) {
  std::string kept;
  for (const char c : text) {
    if ((c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E') {
      kept += c;
    }
  }
  return kept.empty() ? Amount::notANumber() : Amount::fromString(kept);
}

ImportTextFileCommand::RowDateAndAmount ImportTextFileCommand::dateAndAmountForRow(
    const CSVRow& row) {
  RowDateAndAmount values;
  const std::string dateText = trimmed(field(row, "date"));
  if (dateText.empty()) {
    values.skipRule = droprule::kNoDate;
    return values;
  }
  const auto written = LDateUtilities::dateFromMonthDayYearString(dateText);
  const auto date = written ? LDateUtilities::dateByAdjustingYearIfNecessary(*written) : written;
  if (!date) {
    values.skipRule = droprule::kDateUnreadable;
    return values;
  }
  const Amount amount = amountFromText(field(row, "amount"));
  if (amount.isNaN()) {
    values.skipRule = droprule::kAmountNotANumber;
    return values;
  }
  values.date = *date;
  values.amount = amount.abs();
  if (field(row, "transactionType") == "debit") {
    values.amount = values.amount.decimalNumberByNegating();
  }
  return values;
}

bool ImportTextFileCommand::isTitleRow(const CSVRow& row) {
  std::string date = trimmed(field(row, "date"));
  for (char& c : date) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return date == "date";
}

std::optional<ImportTransaction> ImportTextFileCommand::transactionForRow(const CSVRow& row) {
  const RowDateAndAmount values = dateAndAmountForRow(row);
  if (values.skipRule) return std::nullopt;
  std::string category = field(row, "category");
  if (isUncategorized(category)) category.clear();

  ImportTransaction transaction;
  transaction.date = values.date;
  transaction.amount = values.amount;
  transaction.payee = field(row, "description");
  transaction.bankPayee = field(row, "originalDescription");
  transaction.reference = field(row, "accountName");
  ImportSplit line;
  line.category = std::move(category);
  line.tags = labels(field(row, "labels"));
  line.amount = values.amount;
  transaction.note = field(row, "notes");
  transaction.lines.push_back(std::move(line));
  return transaction;
}

size_t ImportTextFileCommand::countRows(CSVParser& parser) {
  ImportSummary& summary = importSummary();
  size_t count = 0;
  bool first = true;
  parser.parseRowsForReceiver([&](CSVRow&& row) {
    const bool title = first && isTitleRow(row);
    first = false;
    if (title) return;
    ++summary.recordsRead;
    const char* skipRule = dateAndAmountForRow(row).skipRule;
    if (skipRule) {
      dropRecord(parser.rowLine(), skipRule);
    } else {
      ++count;
    }
  });
  if (const auto& stop = parser.stop()) {
    summary.readingStopped = stop;
    importLog().add(ImportLogSeverity::kWarning,
                    stringWithFormat("%@, line %lu: reading stopped here (%@); the rest of the "
                                     "file was not read",
                                     summary.fileName, stop->line, stop->reason));
  }
  return count;
}

LObject* ImportTextFileCommand::createTargetAccount(ImportLedger& ledger) {
  const std::string base = file().filename().string();
  std::string name = base;
  for (long suffix = 2; ledger.accountNamed(name); ++suffix) {
    name = stringWithFormat("%@ %ld", base, suffix);
  }
  EditDict properties{{"dataSource", ledger.dataSource()},
                      {"name", Value(name)},
                      {"type", Value(ledger.accountTypeNamed(kAccountType))},
                      {"currency", Value(kDefaultCurrencyCode)},
                      {"usedInReports", Value(true)},
                      {"onlineBankingAccountIsEnabled", Value(false)},
                      {"onlineBankingConnectionType", Value(kConnectionType)}};
  for (const char* key :
       {"onlineBankingAccountNumber", "bankRoutingNumber", "onlineBankingCustomerID",
        "onlineBankingLedgerBalanceDate", "onlineBankingLedgerBalanceAmount"}) {
    properties.set(key, Value());
  }
  return ledger.createAccount(std::move(properties));
}

bool ImportTextFileCommand::doit() {
  if (ImportFileCommand::doit()) return true;
  targetAccount_ = nullptr;  // taken back with everything else
  return false;
}

bool ImportTextFileCommand::importFile() {
  targetAccount_ = nullptr;
  ImportLog& log = startLog();
  noteFileKind(ImportFileKind::Kind::kText);
  auto text = TextFileReader::readFile(file());
  if (!text || text->empty()) {
    if (!text) log.add(ImportLogSeverity::kError, text.error().localizedDescription());
    return false;
  }
  // Two readings of the rows, one to count them for the progress bar and one to create them, so
  // that no more than one row's transaction is held at a time.
  CSVParser parser(std::move(*text), ",", false, columnNames());
  const size_t count = countRows(parser);

  ImportLedger ledger(document(), kDataSource, keptCommands());
  targetAccount_ = createTargetAccount(ledger);
  if (!targetAccount_) return false;
  startProgress(static_cast<double>(count));
  if (count == 0) return false;

  size_t index = 0;
  bool cancelled = false;
  parser.parseRowsForReceiver([&](CSVRow&& row) {
    if (cancelled) return;
    auto transaction = transactionForRow(row);
    if (!transaction) return;
    if (Progress* progress = progressDialog()) {
      progress->setBarText(stringWithFormat("Creating transaction %lu of %lu", index + 1, count));
      progress->setValue(static_cast<double>(index));
    }
    if (index++ % 10 == 0 && pollCancel()) {
      cancelled = true;
      return;
    }
    transaction->line = parser.rowLine();
    transaction->account = targetAccount_;
    if (!ledger.createCashFlowTransaction(*transaction)) {
      dropRecord(transaction->line, droprule::kRefused);
    }
  });
  if (cancelled) return false;
  if (Progress* progress = progressDialog()) progress->setBarText("Done");
  const auto created = ledger.transactionsCreated().find(targetAccount_);
  if (created == ledger.transactionsCreated().end()) return false;
  importSummary().transactionsCreated = created->second;
  log.add(ImportLogSeverity::kInfo,
          stringWithFormat("%@ - %lu transactions\n", targetAccount_->stringForKey("name"),
                           created->second));
  applyRegisterSettings(*targetAccount_);
  return true;
}

void ImportTextFileCommand::applyRegisterSettings(LObject& account) {
  // The register shows every date, and the bank's payee and the reference columns.
  PropertyList filters = account.valueForKey("filters").isNull()
                             ? PropertyList()
                             : account.valueForKey("filters").asDictionary();
  filters["transactionDateFilterType"] = std::to_string(kTransactionDateFilterType);
  filters["visibleColumns"] = "fiPy,refn";
  account.setValueForKey("filters", Value(std::move(filters)));
}

}  // namespace ledgeon
