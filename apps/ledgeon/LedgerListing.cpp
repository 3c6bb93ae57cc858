#include "LedgerListing.h"

#include <fmt/format.h>

#include "CliValues.h"
#include "Utilities/JsonStreamWriter.h"

namespace ledgeon::cli {

namespace {

nlohmann::json dateJson(const std::optional<Date>& date) {
  return date ? nlohmann::json(formatDate(*date)) : nlohmann::json(nullptr);
}

nlohmann::json amountJson(const std::optional<Amount>& amount) {
  return amount ? nlohmann::json(amount->stringValue()) : nlohmann::json(nullptr);
}

nlohmann::json holdingsJson(const AccountRow& row) {
  nlohmann::json holdings = nlohmann::json::array();
  for (const HoldingRow& holding : row.holdings) {
    holdings.push_back({{"security", holding.security},
                        {"ticker", holding.ticker},
                        {"units", holding.units.stringValue()},
                        {"price", amountJson(holding.price)},
                        {"priceDate", dateJson(holding.priceDate)},
                        {"value", holding.value ? nlohmann::json(exactMoneyText(*holding.value,
                                                                                row.fractionDigits))
                                                : nlohmann::json(nullptr)}});
  }
  return holdings;
}

nlohmann::json entriesJson(const TransactionRow& row) {
  nlohmann::json entries = nlohmann::json::array();
  for (const EntryRow& entry : row.entries) {
    entries.push_back({{"category", entry.category},
                       {"tags", entry.tags},
                       {"amount", exactMoneyText(entry.amount, row.fractionDigits)},
                       {"transfer", entry.transfer},
                       {"note", entry.note}});
  }
  return entries;
}

// What an investment transaction did: "Buy Evergreen Fund 15 units @ 45.2 commission 4.95".
std::string investmentText(const TransactionRow& row) {
  const InvestmentRow& investment = *row.investment;
  std::string text = investment.action;
  if (!investment.security.empty()) text += " " + investment.security;
  if (investment.units.isNotZero()) text += " " + investment.units.stringValue() + " units";
  if (investment.price) text += " @ " + investment.price->stringValue();
  if (investment.commission.isNotZero()) {
    text += " commission " + exactMoneyText(investment.commission, row.fractionDigits);
  }
  return text;
}

void printEntries(std::ostream& out, const TransactionRow& row) {
  for (const EntryRow& entry : row.entries) {
    std::string detail =
        fmt::format("         {:>12}  {}", exactMoneyText(entry.amount, row.fractionDigits),
                    entry.category.empty() ? "-" : entry.category);
    if (!entry.tags.empty()) detail += " tags=" + fmt::format("{}", fmt::join(entry.tags, ","));
    if (!entry.transfer.empty()) detail += " transfer=" + entry.transfer;
    if (!entry.note.empty()) detail += "  \"" + entry.note + "\"";
    out << detail << '\n';
  }
}

}  // namespace

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

namespace {

nlohmann::json accountJson(const AccountRow& row) {
  nlohmann::json account = {{"name", row.name},
                            {"type", row.type},
                            {"currency", row.currency},
                            {"balance", exactMoneyText(row.balance, row.fractionDigits)}};
  if (row.investment) {
    account["cash"] = account["balance"];
    account["holdings"] = holdingsJson(row);
  }
  return account;
}

nlohmann::json transactionJson(const TransactionRow& row) {
  nlohmann::json transaction = {{"id", row.id},
                                {"kind", row.investment ? "investment" : "cashFlow"},
                                {"account", row.account},
                                {"date", dateJson(row.date)},
                                {"amount", exactMoneyText(row.amount, row.fractionDigits)},
                                {"payee", row.payee},
                                {"note", row.note},
                                {"checkNumber", row.checkNumber},
                                {"reconcileStatus", row.reconcileStatus},
                                {"transferAccount", row.transferAccount},
                                {"splits", entriesJson(row)}};
  if (const auto& investment = row.investment) {
    transaction["type"] = investment->type;
    transaction["action"] = investment->action;
    transaction["security"] = investment->security;
    transaction["units"] = investment->units.stringValue();
    transaction["price"] = amountJson(investment->price);
    transaction["commission"] = exactMoneyText(investment->commission, row.fractionDigits);
  }
  return transaction;
}

void printAccounts(std::ostream& out, const std::vector<AccountRow>& rows) {
  for (const AccountRow& row : rows) {
    out << fmt::format("{:<24} {:<16} {:<4} {:>14}\n", row.name, row.type, row.currency,
                       exactMoneyText(row.balance, row.fractionDigits));
    if (!row.investment) continue;
    out << fmt::format("    {:<42} {:>14}\n", "cash",
                       exactMoneyText(row.balance, row.fractionDigits));
    for (const HoldingRow& holding : row.holdings) {
      std::string line = "    " + holding.security;
      if (!holding.ticker.empty()) line += " (" + holding.ticker + ")";
      line += ": " + holding.units.stringValue() + " units";
      if (holding.price) {
        line += " @ " + holding.price->stringValue();
        if (holding.priceDate) line += " on " + formatDate(*holding.priceDate);
        line += " = " + formatFixed(*holding.value, row.fractionDigits);
      } else {
        line += ", no price";
      }
      out << line << '\n';
    }
  }
}

void printTransactions(std::ostream& out, const std::vector<TransactionRow>& rows) {
  for (const TransactionRow& row : rows) {
    std::string line =
        fmt::format("{:>5}  {:<10}  {:<16} {:>12}", row.id, row.date ? formatDate(*row.date) : "-",
                    row.account, exactMoneyText(row.amount, row.fractionDigits));
    if (row.investment) line += "  " + investmentText(row);
    if (!row.payee.empty()) line += "  " + row.payee;
    if (!row.transferAccount.empty()) line += "  [transfer " + row.transferAccount + "]";
    if (!row.checkNumber.empty()) line += " #" + row.checkNumber;
    if (row.reconcileStatus != 0) line += " (" + reconcileStatusName(row.reconcileStatus) + ")";
    if (!row.note.empty()) line += "  \"" + row.note + "\"";
    out << line << '\n';
    printEntries(out, row);
  }
}

// One record at a time: the listing never exists as a whole JSON tree.
template <typename Row>
void writeJsonArray(std::ostream& out, const std::vector<Row>& rows,
                    nlohmann::json (*recordJson)(const Row&)) {
  JsonStreamWriter writer(out);
  writer.beginArray();
  for (const Row& row : rows) writer.value(recordJson(row));
  writer.end();
}

}  // namespace

void writeAccounts(std::ostream& out, const std::vector<AccountRow>& rows, bool json) {
  if (json) {
    writeJsonArray(out, rows, accountJson);
  } else {
    printAccounts(out, rows);
  }
}

void writeTransactions(std::ostream& out, const std::vector<TransactionRow>& rows, bool json) {
  if (json) {
    writeJsonArray(out, rows, transactionJson);
  } else {
    printTransactions(out, rows);
  }
}

}  // namespace ledgeon::cli
