// The listing rows of LedgerQueries: accounts with balances and holdings, transactions with their
// entries as each account sees them.
#include <algorithm>
#include <map>
#include <tuple>

#include "DataBase/DataBase.h"
#include "Documents/InvestmentTransactionType.h"
#include "Documents/LedgerQueries.h"
#include "LObjects/LObject.h"
#include "Utilities/LArithmetic.h"

namespace ledgeon {

namespace {

const std::vector<LObject*> kNoLines;

std::string nameOf(LObject* object) {
  return object ? object->stringForKey("name") : std::string();
}

std::optional<Date> dateFor(LObject& object, std::string_view key) {
  const Value date = object.valueForKey(key);
  if (date.isNull()) return std::nullopt;
  return date.asDate();
}

std::optional<Amount> amountFor(LObject& object, std::string_view key) {
  const Value value = object.valueForKey(key);
  if (value.isNull()) return std::nullopt;
  return decimalNumberFrom(object, key);
}

EntryRow entryRow(LObject& entry) {
  EntryRow row;
  row.category = LedgerQueries::categoryFullName(entry.objectForKey("categoryTag"));
  for (LObject* tag : entry.objectsForKey("userTags")) row.tags.push_back(nameOf(tag));
  std::sort(row.tags.begin(), row.tags.end());
  row.amount = decimalNumberFrom(entry, "amount");
  row.transfer = entry.stringForKey("transfer");
  row.note = entry.stringForKey("note");
  return row;
}

InvestmentRow investmentRow(LObject& transaction) {
  InvestmentRow row;
  row.type = transaction.integerForKey("type");
  row.action = InvestmentTransactionType::actionName(row.type);
  LObject* position = transaction.objectForKey("position");
  row.security = nameOf(position ? position->objectForKey("security") : nullptr);
  row.units = decimalNumberFrom(transaction, "units");
  row.commission = decimalNumberFrom(transaction, "commission");
  // The cost basis is units at the price plus the commission. A split, or units moved in at no
  // cost, has no price.
  const Amount paid =
      decimalNumberFrom(transaction, "costBasis").decimalNumberBySubtracting(row.commission);
  if (row.units.isNotZero() && paid.isNotZero()) {
    const Amount price = Amount::divide(paid, row.units, RoundingMode::Plain).value;
    if (price.isNotNaN()) row.price = price.abs().roundWithScale(6);
  }
  return row;
}

TransactionRow ownRow(LObject& transaction) {
  TransactionRow row;
  row.id = transaction.integerForKey("ledgeonId");
  LObject* account = transaction.objectForKey("account");
  row.account = nameOf(account);
  if (account) {
    row.fractionDigits = LArithmetic::getDecimalsForCurrency(account->stringForKey("currency"));
  }
  row.date = dateFor(transaction, "enteredDate");
  row.amount = decimalNumberFrom(transaction, "amount");
  row.note = transaction.stringForKey("note");
  row.reconcileStatus = transaction.integerForKey("reconcileStatus");
  row.transferAccount = nameOf(transaction.objectForKey("targetAccount"));
  if (transaction.entity().isKindOf("InvestmentTransaction")) {
    row.investment = investmentRow(transaction);
    return row;
  }
  row.payee = nameOf(transaction.objectForKey("userPayee"));
  row.checkNumber = transaction.stringForKey("checkNumber");
  std::vector<LObject*> entries;
  for (LObject* entry : transaction.objectsForKey("entries")) {
    if (!entry->isLObjectDeleted()) entries.push_back(entry);
  }
  LedgerQueries::sortBySequence(entries);
  for (LObject* entry : entries) row.entries.push_back(entryRow(*entry));
  return row;
}

bool byDateThenId(const TransactionRow& a, const TransactionRow& b) {
  if (a.date != b.date) return !a.date || (b.date && *a.date < *b.date);
  return a.id < b.id;
}

}  // namespace

std::vector<HoldingRow> LedgerQueries::holdings(LObject& account) {
  std::vector<HoldingRow> rows;
  for (LObject* position : account.objectsForKey("positions")) {
    if (position->isLObjectDeleted()) continue;
    LObject* security = position->objectForKey("security");
    HoldingRow row;
    row.security = nameOf(security);
    row.units = unitsForPosition(*position);
    if (security) {
      row.ticker = security->stringForKey("ticker");
      row.price = amountFor(*security, "latestClosingPrice");
      row.priceDate = dateFor(*security, "latestQuoteDate");
    }
    if (row.price) row.value = row.units.decimalNumberByMultiplyingBy(*row.price);
    rows.push_back(std::move(row));
  }
  std::sort(rows.begin(), rows.end(), [](const HoldingRow& a, const HoldingRow& b) {
    return std::tie(a.security, a.ticker) < std::tie(b.security, b.ticker);
  });
  return rows;
}

std::vector<AccountRow> LedgerQueries::accountRows() {
  const TransferLines lines = transferLines();
  const AccountsByName accounts = accountsByName();
  std::map<LObject*, Amount> balances;
  for (LObject* transaction : dataBase_.instancesOfClass("Transaction")) {
    if (!isRealTransaction(*transaction)) continue;
    const auto ofTransaction = lines.find(transaction);
    for (const auto& [into, amount] :
         movements(*transaction, ofTransaction == lines.end() ? kNoLines : ofTransaction->second,
                   accounts)) {
      auto& balance = balances.try_emplace(into, Amount::zero()).first->second;
      balance = balance.decimalNumberByAdding(amount);
    }
  }
  std::vector<AccountRow> rows;
  for (LObject* account :
       dataBase_.instancesOfClass("Account", {.sortDescriptors = {{"name"}, {"ledgeonId"}}})) {
    AccountRow row;
    row.account = account;
    row.name = nameOf(account);
    LObject* type = account->objectForKey("type");
    row.type = type ? type->className() : std::string();
    row.currency = account->stringForKey("currency");
    row.fractionDigits = LArithmetic::getDecimalsForCurrency(row.currency);
    const auto balance = balances.find(account);
    row.balance = balance == balances.end() ? Amount::zero() : balance->second;
    row.investment = isInvestmentAccount(*account);
    if (row.investment) row.holdings = holdings(*account);
    rows.push_back(std::move(row));
  }
  return rows;
}

TransactionRow LedgerQueries::receivedRow(LObject& transaction, LObject& account,
                                          const std::vector<LObject*>& lines,
                                          const AccountsByName& accounts) {
  TransactionRow row = ownRow(transaction);
  row.account = nameOf(&account);
  row.transferAccount = nameOf(transaction.objectForKey("account"));
  row.amount = Amount::zero();
  for (const auto& [into, amount] : movements(transaction, lines, accounts)) {
    if (into == &account) row.amount = row.amount.decimalNumberByAdding(amount);
  }
  // Only the lines that pay into this account, as it sees them.
  row.entries.clear();
  for (LObject* line : lines) {
    if (receivingAccount(*line, transaction, accounts) != &account) continue;
    EntryRow entry = entryRow(*line);
    entry.amount = entry.amount.decimalNumberByNegating();
    entry.transfer = row.transferAccount;
    row.entries.push_back(std::move(entry));
  }
  return row;
}

std::vector<TransactionRow> LedgerQueries::transactionRows(LObject* account) {
  std::vector<TransactionRow> rows;
  if (!account) {
    for (LObject* transaction : dataBase_.instancesOfClass(
             "CashFlowTransaction",
             {.prefetchKeyPaths = {"account", "userPayee", "targetAccount", "entries"}})) {
      if (isRealTransaction(*transaction)) rows.push_back(ownRow(*transaction));
    }
    for (LObject* transaction : dataBase_.instancesOfClass(
             "InvestmentTransaction", {.prefetchKeyPaths = {"account", "position.security"}})) {
      rows.push_back(ownRow(*transaction));
    }
  } else {
    for (LObject* transaction : account->objectsForKey("transactions")) {
      if (isRealTransaction(*transaction)) rows.push_back(ownRow(*transaction));
    }
    const AccountsByName accounts = accountsByName();
    for (LObject* transaction : receivedTransactions(*account)) {
      rows.push_back(receivedRow(*transaction, *account, transferLinesOf(*transaction), accounts));
    }
  }
  std::stable_sort(rows.begin(), rows.end(), byDateThenId);
  return rows;
}

}  // namespace ledgeon
