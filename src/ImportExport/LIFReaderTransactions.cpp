// The transaction sections of LIFReader: bank-style records with their splits, and investment
// records with the action table and the rewrites that need no ledger.
#include <algorithm>
#include <utility>

#include "ImportExport/ImportDropRules.h"
#include "ImportExport/LIFFields.h"
#include "ImportExport/LIFReader.h"
#include "ImportExport/internal/LIFText.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

using lif::startsWith;
using lif::value;

namespace {

constexpr const char* kTransferCategory = "Transfer";
constexpr const char* kCheckSplitRatioMemo = "CHECK SPLIT RATIO - MAY BE INCORRECT";

// Codes writers put in bank records that the import has no use for: amount repeated ("U"),
// address lines ("A"), split percentages ("%"), reimbursable flag ("F").
bool isIgnoredBankCode(char code) {
  return code == 'U' || code == 'A' || code == '%' || code == 'F';
}
// Investment codes only the investment reader uses, met when it hands a cash record over.
bool isInvestmentCode(char code) {
  return code == 'Y' || code == 'I' || code == 'Q' || code == 'O';
}
bool isIgnoredInvestmentCode(char code) { return code == 'U' || code == 'P' || code == 'A'; }

}  // namespace

struct LIFReader::BankState {
  LIFBankTransaction record;
  bool open = false;
  bool create = true;
  std::string splitCategory;
  std::string splitTag;
  std::string splitMemo;
  std::string splitTransfer;
  size_t splitLine = 0;
};

struct LIFReader::InvestmentState {
  LIFInvestmentTransaction record;
  size_t firstIndex = 0;
  bool open = false;
  bool hasTransferAmount = false;
};

size_t LIFReader::importBankTransactions(size_t index, bool investmentCashTxn, bool invertSign) {
  if (!investmentCashTxn) {
    log_.add(ImportLogSeverity::kInfo, stringWithFormat("Process account %@", currentAccount_));
  }
  BankState state;
  state.record.date = today_;
  state.record.investmentCash = investmentCashTxn;
  size_t i = investmentCashTxn ? index : index + 1;
  for (; i < lines_.size(); ++i) {
    const Line& line = lines_[i];
    if (startsWith(line.text, "!")) break;
    if (lif::isBlank(line.text)) continue;
    if (!state.open) state.record.line = line.number;
    state.open = true;
    if (line.text.front() == '^') {
      finishBankRecord(state);
      state = BankState();
      state.record.date = today_;
      state.record.investmentCash = investmentCashTxn;
      if (investmentCashTxn) return i + 1;
      continue;
    }
    readBankField(state, line, investmentCashTxn, invertSign);
  }
  if (state.open) {
    if (i >= lines_.size()) {
      problem(lines_.back(), "the last record ends without \"^\"");
      finishBankRecord(state);
    } else {
      drop(state.record.line, droprule::kCutShort);
    }
  }
  return i;
}

void LIFReader::readBankField(BankState& state, const Line& line, bool investmentCashTxn,
                              bool invertSign) {
  LIFBankTransaction& record = state.record;
  const std::string_view field = value(line.text);
  const char code = line.text.front();
  switch (code) {
    case 'D':
      record.date = dateAt(line, field);
      break;
    case 'T': {
      const Amount amount = amountAt(line, field);
      record.amount = invertSign ? amount.decimalNumberByNegating() : amount;
      break;
    }
    case 'C':
      record.reconcileStatus = LIFFields::reconcileStatus(field);
      break;
    case 'N':
      record.checkNumber =
          investmentCashTxn && (startsWith(field, "XIn") || startsWith(field, "XOut"))
              ? std::string()
              : std::string(field);
      break;
    case 'P':
      record.payee = std::string(field);
      break;
    case 'M':
      record.memo = std::string(field);
      break;
    case 'L': {
      auto parts = LIFFields::categoryParts(field);
      record.tag = std::move(parts.tag);
      const auto account = LIFFields::bracketedName(parts.category);
      if (account && *account != currentAccount_ && accountExists(*account)) {
        // A transfer of nothing is the other side's bookkeeping entry: it is not recreated.
        if (record.amount.isZero()) {
          state.create = false;
        } else {
          record.transferAccount = *account;
        }
      } else {
        record.category = std::move(parts.category);
      }
      break;
    }
    case 'S': {
      auto parts = LIFFields::categoryParts(field);
      state.splitLine = line.number;
      state.splitTag = std::move(parts.tag);
      state.splitTransfer.clear();
      state.splitCategory.clear();
      const auto account = LIFFields::bracketedName(parts.category);
      if (account && *account != currentAccount_ && accountExists(*account)) {
        state.splitTransfer = *account;
        record.hasTransferSplit = true;
        record.splitTransferAccount = *account;
      } else {
        state.splitCategory = std::move(parts.category);
      }
      break;
    }
    case 'E':
      state.splitMemo = std::string(field);
      break;
    case '$': {
      const Amount amount = amountAt(line, field);
      if (investmentCashTxn) {
        record.amount = invertSign ? amount.decimalNumberByNegating() : amount;
        break;
      }
      const bool transfer = !state.splitTransfer.empty();
      record.splits.push_back({state.splitLine == 0 ? line.number : state.splitLine,
                               transfer ? kTransferCategory : std::move(state.splitCategory),
                               std::move(state.splitTag), std::move(state.splitMemo), amount,
                               std::move(state.splitTransfer)});
      state.splitCategory.clear();
      state.splitTag.clear();
      state.splitMemo.clear();
      state.splitTransfer.clear();
      state.splitLine = 0;
      break;
    }
    default:
      if (isIgnoredBankCode(code) || (investmentCashTxn && isInvestmentCode(code))) break;
      problem(line, "unknown field code");
      break;
  }
}

void LIFReader::finishBankRecord(BankState& state) {
  LIFBankTransaction& record = state.record;
  if (currentAccount_.empty()) return drop(record.line, droprule::kNoAccount);
  if (!state.create) return drop(record.line, droprule::kZeroTransfer);
  const bool notANumber = record.amount.isNaN() ||
                          std::any_of(record.splits.begin(), record.splits.end(),
                                      [](const LIFSplit& split) { return split.amount.isNaN(); });
  if (notANumber) return drop(record.line, droprule::kAmountNotANumber);
  record.account = currentAccount_;
  if (record.splits.empty()) {
    record.splits.push_back({record.line, record.isTransfer() ? kTransferCategory : record.category,
                             record.tag, record.memo, record.amount, record.transferAccount});
  }
  emit(std::move(record));
}

void LIFReader::drop(size_t line, std::string_view rule) {
  if (dropped_) dropped_(line, rule);
}

size_t LIFReader::importInvestmentTransactions(size_t index) {
  const std::string account = currentAccount_;
  log_.add(ImportLogSeverity::kInfo, stringWithFormat("Process account %@", account));
  size_t splits = 0;
  InvestmentState state;
  size_t i = index + 1;
  for (; i < lines_.size() && !startsWith(lines_[i].text, "!"); ++i) {
    const Line& line = lines_[i];
    if (lif::isBlank(line.text)) continue;
    if (!state.open) {
      state.record.line = line.number;
      state.record.date = today_;
      state.firstIndex = i;
      state.open = true;
    }
    if (line.text.front() == '^') {
      finishInvestmentRecord(state, splits);
      state = InvestmentState();
      continue;
    }
    readInvestmentField(state, line);
  }
  if (state.open) {
    if (i >= lines_.size()) {
      problem(lines_.back(), "the last record ends without \"^\"");
      finishInvestmentRecord(state, splits);
    } else {
      drop(state.record.line, droprule::kCutShort);
    }
  }
  if (splits > 0) accountsWithStockSplits_[account] = splits;
  return i;
}

void LIFReader::readInvestmentField(InvestmentState& state, const Line& line) {
  LIFInvestmentTransaction& record = state.record;
  const std::string_view field = value(line.text);
  const char code = line.text.front();
  switch (code) {
    case 'D':
      record.date = dateAt(line, field);
      break;
    case 'N':
      record.action = std::string(field);
      record.type = LIFFields::investmentType(field);
      if (record.type == 0) {
        logAtLine(ImportLogSeverity::kWarning,
                  stringWithFormat("Transaction type %@ not handled", field), line);
      }
      break;
    case 'Y':
      record.security = std::string(field);
      break;
    case 'I':
      record.price = amountAt(line, field);
      break;
    case 'Q':
      record.quantity = amountAt(line, field);
      break;
    case 'T':
      record.amount = amountAt(line, field);
      break;
    case 'C':
      record.reconcileStatus = LIFFields::reconcileStatus(field);
      break;
    case 'M':
      record.memo = std::string(field);
      break;
    case 'O':
      record.commission = amountAt(line, field);
      break;
    case 'L':
      record.transferText = std::string(field);
      break;
    case '$':
      record.transferAmount = amountAt(line, field);
      break;
    default:
      if (!isIgnoredInvestmentCode(code)) problem(line, "unknown field code");
      break;
  }
}

void LIFReader::finishInvestmentRecord(InvestmentState& state, size_t& splits) {
  LIFInvestmentTransaction& record = state.record;
  if (record.security.empty() && record.type != 6) record.type = 1;
  if (record.type == 0) return drop(record.line, droprule::kActionNotHandled);
  if (record.type == 1) {
    const bool invertSign = startsWith(record.action, "XOut") && !record.amount.isNegative();
    importBankTransactions(state.firstIndex, true, invertSign);
    return;
  }
  if (currentAccount_.empty()) return drop(record.line, droprule::kNoAccount);
  const bool notANumber = record.price.isNaN() || record.quantity.isNaN() ||
                          record.amount.isNaN() || record.commission.isNaN() ||
                          (record.transferAmount && record.transferAmount->isNaN());
  if (notANumber) return drop(record.line, droprule::kAmountNotANumber);
  record.account = currentAccount_;
  record.costBasis = record.price.decimalNumberByMultiplyingBy(record.quantity)
                         .decimalNumberByAdding(record.commission);
  if (securityTypeNamed(record.security) == 2) {
    if (record.type == 3) record.type = 4;
    if (record.type == 19) record.type = 20;
  }
  if (record.amount.isZero() && record.transferText.empty()) {
    switch (record.type) {
      case 3:
      case 4:
        record.type = 2;
        break;
      case 19:
      case 20:
        record.type = 17;
        break;
      case 8:
      case 9:
      case 10:
      case 11:
        record.type += 5;
        break;
      default:
        break;
    }
  }
  const int type = record.type;
  if ((type >= 3 && type <= 7 && record.amount.isPositive()) ||
      (type >= 19 && type <= 21 && record.amount.isNegative())) {
    record.amount = record.amount.decimalNumberByNegating();
  }
  if (type == 23) {
    record.splitForm = startsWith(record.action, "StkSplit") ? LIFStockSplitForm::kNewSharesPerTen
                                                             : LIFStockSplitForm::kAddedShares;
    if (record.memo.empty()) record.memo = kCheckSplitRatioMemo;
    ++splits;
  }
  if (record.amount.isZero() && !record.transferText.empty() && record.transferAmount) {
    std::string name;
    for (const char c : record.transferText) {
      if (c != '[' && c != ']') name += c;
    }
    if (accountExists(name)) {
      record.transferAccount = name;
      record.amount = *record.transferAmount;
    } else {
      logAtLine(ImportLogSeverity::kInfo, stringWithFormat("Account %@ not created yet", name),
                lines_[state.firstIndex]);
    }
  }
  if (type == 23 || startsWith(record.action, "CGLong") || startsWith(record.action, "CGShort")) {
    record.userStatusOverride = 100;
  }
  emit(std::move(record));
}

}  // namespace ledgeon
