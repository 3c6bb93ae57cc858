#include "LedgerListing.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>

#include "CliValues.h"
#include "DataBase/DataBase.h"
#include "LObjects/LObject.h"
#include "Utilities/LArithmetic.h"

namespace ledgeon::cli {

namespace {

Amount plus(const Amount& a, const Amount& b) {
  return Amount::add(a, b, RoundingMode::Plain).value;
}
Amount negated(const Amount& a) {
  return Amount::subtract(Amount::zero(), a, RoundingMode::Plain).value;
}

std::string nameOf(LObject* object) {
  return object ? object->stringForKey("name") : std::string();
}

std::vector<LObject*> sortedLines(LObject& transaction) {
  const ObjectSet entries = transaction.objectsForKey("entries");
  std::vector<LObject*> lines;
  for (LObject* line : entries) {
    if (!line->isLObjectDeleted()) lines.push_back(line);
  }
  std::sort(lines.begin(), lines.end(), [](LObject* a, LObject* b) {
    return a->integerForKey("sequenceNumber") < b->integerForKey("sequenceNumber");
  });
  return lines;
}

SplitRow splitRow(LObject& line) {
  SplitRow row;
  row.category = categoryFullName(line.objectForKey("categoryTag"));
  for (LObject* tag : line.objectsForKey("userTags")) row.tags.push_back(nameOf(tag));
  std::sort(row.tags.begin(), row.tags.end());
  row.amount = line.amountForKey("amount");
  row.transfer = line.stringForKey("transfer");
  row.note = line.stringForKey("note");
  return row;
}

// What a transfer moves into its receiving account: the opposite of its transfer lines, or of the
// whole transaction when no line says which part is the transfer.
Amount receivedAmount(LObject& transaction) {
  Amount received = Amount::zero();
  bool anyLine = false;
  for (LObject* line : sortedLines(transaction)) {
    if (line->stringForKey("transfer").empty()) continue;
    anyLine = true;
    received = plus(received, negated(line->amountForKey("amount")));
  }
  return anyLine ? received : negated(transaction.amountForKey("amount"));
}

TransactionRow ownRow(LObject& transaction) {
  TransactionRow row;
  row.id = transaction.integerForKey("ledgeonId");
  row.account = nameOf(transaction.objectForKey("account"));
  const Value entered = transaction.valueForKey("enteredDate");
  if (!entered.isNull()) row.date = entered.asDate();
  row.amount = transaction.amountForKey("amount");
  row.payee = nameOf(transaction.objectForKey("userPayee"));
  row.note = transaction.stringForKey("note");
  row.checkNumber = transaction.stringForKey("checkNumber");
  row.reconcileStatus = transaction.integerForKey("reconcileStatus");
  if (LObject* account = transaction.objectForKey("account")) {
    row.fractionDigits = LArithmetic::getDecimalsForCurrency(account->stringForKey("currency"));
  }
  row.transferAccount = nameOf(transaction.objectForKey("targetAccount"));
  for (LObject* line : sortedLines(transaction)) row.splits.push_back(splitRow(*line));
  return row;
}

// The receiving account's view of a transfer.
TransactionRow receivedRow(LObject& transaction) {
  TransactionRow row = ownRow(transaction);
  row.account = nameOf(transaction.objectForKey("targetAccount"));
  row.transferAccount = nameOf(transaction.objectForKey("account"));
  row.amount = receivedAmount(transaction);
  std::vector<SplitRow> received;
  for (SplitRow& split : row.splits) {
    if (split.transfer.empty()) continue;
    split.amount = negated(split.amount);
    split.transfer = row.transferAccount;
    received.push_back(std::move(split));
  }
  row.splits = std::move(received);
  return row;
}

}  // namespace

std::string categoryFullName(LObject* category) {
  std::string name;
  for (LObject* c = category; c; c = c->objectForKey("parentCategory")) {
    name = name.empty() ? nameOf(c) : nameOf(c) + ":" + name;
  }
  return name;
}

std::string exactMoneyText(const Amount& value, int minimumDigits) {
  std::string text = value.stringValue();
  if (value.isNaN() || minimumDigits <= 0) return text;
  auto point = text.find('.');
  if (point == std::string::npos) {
    text += '.';
    point = text.size() - 1;
  }
  const auto have = static_cast<int>(text.size() - point - 1);
  if (have < minimumDigits) text.append(static_cast<size_t>(minimumDigits - have), '0');
  return text;
}

std::string reconcileStatusName(int64_t status) {
  switch (status) {
    case 1:
      return "cleared";
    case 2:
      return "reconciled";
    default:
      return "uncleared";
  }
}

std::vector<AccountRow> accountRows(DataBase& dataBase) {
  std::map<LObject*, Amount> balances;
  for (LObject* transaction : dataBase.instancesOfClass("Transaction")) {
    if (LObject* account = transaction->objectForKey("account")) {
      auto& balance = balances.try_emplace(account, Amount::zero()).first->second;
      balance = plus(balance, transaction->amountForKey("amount"));
    }
    if (LObject* target = transaction->objectForKey("targetAccount")) {
      auto& balance = balances.try_emplace(target, Amount::zero()).first->second;
      balance = plus(balance, receivedAmount(*transaction));
    }
  }
  std::vector<AccountRow> rows;
  for (LObject* account :
       dataBase.instancesOfClass("Account", {.sortDescriptors = {{"name", true}}})) {
    LObject* type = account->objectForKey("type");
    const auto balance = balances.find(account);
    const std::string currency = account->stringForKey("currency");
    rows.push_back({nameOf(account), type ? type->className() : std::string(), currency,
                    balance == balances.end() ? Amount::zero() : balance->second,
                    LArithmetic::getDecimalsForCurrency(currency)});
  }
  return rows;
}

std::vector<TransactionRow> transactionRows(DataBase& dataBase, LObject* account) {
  std::vector<TransactionRow> rows;
  for (LObject* transaction : dataBase.instancesOfClass("CashFlowTransaction")) {
    LObject* own = transaction->objectForKey("account");
    if (!account || own == account) rows.push_back(ownRow(*transaction));
    if (account && own != account && transaction->objectForKey("targetAccount") == account) {
      rows.push_back(receivedRow(*transaction));
    }
  }
  std::stable_sort(rows.begin(), rows.end(), [](const TransactionRow& a, const TransactionRow& b) {
    if (a.date != b.date) return a.date < b.date;
    return a.id < b.id;
  });
  return rows;
}

nlohmann::json accountsJson(const std::vector<AccountRow>& rows) {
  nlohmann::json out = nlohmann::json::array();
  for (const AccountRow& row : rows) {
    out.push_back({{"name", row.name},
                   {"type", row.type},
                   {"currency", row.currency},
                   {"balance", exactMoneyText(row.balance, row.fractionDigits)}});
  }
  return out;
}

nlohmann::json transactionsJson(const std::vector<TransactionRow>& rows) {
  nlohmann::json out = nlohmann::json::array();
  for (const TransactionRow& row : rows) {
    nlohmann::json splits = nlohmann::json::array();
    for (const SplitRow& split : row.splits) {
      splits.push_back({{"category", split.category},
                        {"tags", split.tags},
                        {"amount", exactMoneyText(split.amount, row.fractionDigits)},
                        {"transfer", split.transfer},
                        {"note", split.note}});
    }
    out.push_back({{"id", row.id},
                   {"account", row.account},
                   {"date", row.date ? nlohmann::json(formatDate(*row.date)) : nullptr},
                   {"amount", exactMoneyText(row.amount, row.fractionDigits)},
                   {"payee", row.payee},
                   {"note", row.note},
                   {"checkNumber", row.checkNumber},
                   {"reconcileStatus", row.reconcileStatus},
                   {"transferAccount", row.transferAccount},
                   {"splits", splits}});
  }
  return out;
}

void printAccounts(std::ostream& out, const std::vector<AccountRow>& rows) {
  for (const AccountRow& row : rows) {
    out << fmt::format("{:<24} {:<16} {:<4} {:>14}\n", row.name, row.type, row.currency,
                       exactMoneyText(row.balance, row.fractionDigits));
  }
}

void printTransactions(std::ostream& out, const std::vector<TransactionRow>& rows) {
  for (const TransactionRow& row : rows) {
    std::string line =
        fmt::format("{:>5}  {:<10}  {:<16} {:>12}", row.id, row.date ? formatDate(*row.date) : "-",
                    row.account, exactMoneyText(row.amount, row.fractionDigits));
    if (!row.payee.empty()) line += "  " + row.payee;
    if (!row.transferAccount.empty()) line += "  [transfer " + row.transferAccount + "]";
    if (!row.checkNumber.empty()) line += " #" + row.checkNumber;
    if (row.reconcileStatus != 0) line += " (" + reconcileStatusName(row.reconcileStatus) + ")";
    if (!row.note.empty()) line += "  \"" + row.note + "\"";
    out << line << '\n';
    for (const SplitRow& split : row.splits) {
      std::string detail =
          fmt::format("         {:>12}  {}", exactMoneyText(split.amount, row.fractionDigits),
                      split.category.empty() ? "-" : split.category);
      if (!split.tags.empty()) detail += " tags=" + fmt::format("{}", fmt::join(split.tags, ","));
      if (!split.transfer.empty()) detail += " transfer=" + split.transfer;
      if (!split.note.empty()) detail += "  \"" + split.note + "\"";
      out << detail << '\n';
    }
  }
}

}  // namespace ledgeon::cli
