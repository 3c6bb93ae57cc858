// The transaction requests of `ledgeon shell`.
#include <optional>

#include "CliValues.h"
#include "Commands/Create/CreateCommands.h"
#include "Commands/Delete/DeleteTransactionCommand.h"
#include "Commands/Duplicate/DuplicateLObjectCommand.h"
#include "Commands/Edit/SetPropertyCommands.h"
#include "Commands/GenericBatchCommand.h"
#include "DataBase/DataBase.h"
#include "Documents/LDocument.h"
#include "Documents/LedgerQueries.h"
#include "LedgerListing.h"
#include "LedgerShell.h"
#include "Subcommand.h"

namespace ledgeon::cli {

namespace {

int64_t reconcileStatusCode(const std::string& text) {
  for (int64_t code = 0; code <= 2; ++code) {
    if (text == reconcileStatusName(code) || text == std::to_string(code)) return code;
  }
  throw CommandFailure("status \"" + text + "\" is not uncleared, cleared or reconciled");
}

bool isSplitKey(const std::string& key) {
  return key == "category" || key == "tags" || key == "transfer" || key == "memo";
}

}  // namespace

// One split as the request describes it.
struct LedgerShell::SplitRequest {
  Amount amount;
  std::optional<std::string> category;
  std::optional<std::string> tags;
  std::optional<std::string> transfer;
  std::optional<std::string> memo;
};

LObject& LedgerShell::requireTransaction(const std::string& id) {
  int64_t ledgeonId = 0;
  try {
    size_t used = 0;
    ledgeonId = std::stoll(id, &used);
    if (used != id.size()) throw std::invalid_argument(id);
  } catch (const std::exception&) {
    throw CommandFailure("\"" + id + "\" is not a transaction id (a number)");
  }
  const auto found = dataBase().instancesOfClass(
      "CashFlowTransaction",
      {.predicate = Predicate::withFormat("ledgeonId == %@", ledgeonId), .fetchLimit = 1});
  if (found.empty()) throw CommandFailure("no transaction " + id);
  return *found.front();
}

void LedgerShell::transactionRequest(const std::string& verb, const Arguments& arguments) {
  if (verb == "add") return addTransaction(arguments);
  if (verb == "edit") return editTransaction(arguments);
  if (verb == "list") {
    allowOptions(arguments, {}, "transaction list");
    if (arguments.positional.size() > 1) throw CommandFailure("usage: transaction list [ACCOUNT]");
    LObject* account =
        arguments.positional.empty() ? nullptr : &requireAccount(arguments.positional[0]);
    const auto rows = queries().transactionRows(account);
    writeTransactions(out_, rows, arguments.json);
    return;
  }
  if (verb == "delete" || verb == "duplicate") {
    allowOptions(arguments, {}, verb == "delete" ? "transaction delete" : "transaction duplicate");
    requirePositional(arguments, 1, "transaction delete|duplicate ID");
    LObject& transaction = requireTransaction(arguments.positional[0]);
    if (verb == "delete") {
      run(DeleteTransactionCommand::deleteTransactionCommandForTransaction(transaction, document_),
          "the transaction was not deleted");
      out_ << "Deleted transaction " << arguments.positional[0] << '\n';
      return;
    }
    auto duplicate = std::make_shared<DuplicateCashFlowTransactionCommand>(transaction, document_);
    run(duplicate, "the transaction was not duplicated");
    out_ << "Created transaction " << duplicate->duplicate()->integerForKey("ledgeonId") << '\n';
    return;
  }
  throw CommandFailure("usage: transaction add|edit|duplicate|delete|list ...");
}

void LedgerShell::addTransaction(const Arguments& arguments) {
  allowOptions(
      arguments,
      {"payee", "note", "check", "status", "category", "tags", "transfer", "memo", "split"},
      "transaction add");
  requirePositional(arguments, 3, "transaction add ACCOUNT YYYY-MM-DD AMOUNT [options]");
  LObject& account = requireAccount(arguments.positional[0]);
  if (CreateTransactionCommand::transactionClassForAccount(account) != "CashFlowTransaction") {
    throw CommandFailure("account \"" + arguments.positional[0] +
                         "\" holds investment transactions, which the shell does not enter");
  }
  const Date date = parseDateArgument("date", arguments.positional[1]);
  const Amount total = parseAmountArgument("amount", arguments.positional[2]);

  EditDict properties{
      {"account", Value(&account)}, {"enteredDate", Value(date)}, {"amount", Value(total)}};
  std::vector<SplitRequest> splits{{total, {}, {}, {}, {}}};
  bool explicitSplits = false;
  for (const auto& [key, value] : arguments.options) {
    if (key == "split") {
      if (!explicitSplits) splits.clear();
      explicitSplits = true;
      splits.push_back({parseAmountArgument("split", value), {}, {}, {}, {}});
    } else if (isSplitKey(key)) {
      SplitRequest& split = splits.back();
      auto& slot = key == "category" ? split.category
                   : key == "tags"   ? split.tags
                   : key == "memo"   ? split.memo
                                     : split.transfer;
      if (slot) throw CommandFailure(key + "= given twice for one split");
      slot = value;
    } else {
      transactionProperty(key, value, properties);
    }
  }

  std::vector<EditDict> lines = transactionLines(splits, account, total, properties);
  auto create =
      std::make_shared<CreateCashFlowTransactionCommand>(properties, std::move(lines), document_);
  run(create, "the transaction was not created");
  out_ << "Created transaction " << create->createdObject()->integerForKey("ledgeonId") << '\n';
}

std::vector<EditDict> LedgerShell::transactionLines(const std::vector<SplitRequest>& splits,
                                                    LObject& account, const Amount& total,
                                                    EditDict& properties) {
  Amount sum = Amount::zero();
  LObject* transferAccount = nullptr;
  std::vector<EditDict> lines;
  for (const SplitRequest& split : splits) {
    sum = Amount::add(sum, split.amount, RoundingMode::Plain).value;
    EditDict line{{"amount", Value(split.amount)}};
    if (split.category) line.set("categoryTag", Value(&requireCategory(*split.category)));
    if (split.tags) line.set("userTags", Value(ToManyEdit::adding(requireTags(*split.tags))));
    if (split.memo) line.set("note", Value(*split.memo));
    if (split.transfer) {
      LObject& target = requireAccount(*split.transfer);
      if (&target == &account) throw CommandFailure("a transfer goes to another account");
      transferAccount = &target;
      line.set("transfer", Value(*split.transfer));
    }
    lines.push_back(std::move(line));
  }
  if (sum.compare(total) != ComparisonResult::Same) {
    throw CommandFailure("the splits add up to " + sum.stringValue() + ", not " +
                         total.stringValue());
  }
  if (transferAccount) properties.set("targetAccount", Value(transferAccount));
  return lines;
}

bool LedgerShell::transactionProperty(const std::string& key, const std::string& value,
                                      EditDict& properties) {
  if (key == "payee") {
    properties.set("userPayee",
                   value == "-" ? Value() : Value(&requireNamed("UserPayee", "payee", value)));
  } else if (key == "note") {
    properties.set("note", Value(value));
  } else if (key == "check") {
    properties.set("checkNumber", Value(value));
  } else if (key == "status") {
    properties.set("reconcileStatus", Value(reconcileStatusCode(value)));
  } else {
    return false;
  }
  return true;
}

void LedgerShell::editTransaction(const Arguments& arguments) {
  allowOptions(arguments,
               {"date", "amount", "payee", "note", "check", "status", "category", "tags", "memo"},
               "transaction edit");
  requirePositional(arguments, 1, "transaction edit ID [options]");
  LObject& transaction = requireTransaction(arguments.positional[0]);
  const ObjectSet entries = transaction.objectsForKey("entries");
  LObject* onlyLine = entries.size() == 1 ? entries.front() : nullptr;

  EditDict changes;
  EditDict lineChanges;
  for (const auto& [key, value] : arguments.options) {
    if (key == "date") {
      changes.set("enteredDate", Value(parseDateArgument("date", value)));
    } else if (key == "amount") {
      const Amount amount = parseAmountArgument("amount", value);
      changes.set("amount", Value(amount));
      lineChanges.set("amount", Value(amount));
    } else if (transactionProperty(key, value, changes)) {
      continue;
    } else if (key == "category") {
      lineChanges.set("categoryTag", value == "-" ? Value() : Value(&requireCategory(value)));
    } else if (key == "tags") {
      lineChanges.set("userTags", Value(ToManyEdit::replacing(requireTags(value))));
    } else if (key == "memo") {
      lineChanges.set("note", Value(value));
    }
  }
  if (changes.empty() && lineChanges.empty()) {
    throw CommandFailure("transaction edit: nothing to change");
  }
  if (!lineChanges.empty() && !onlyLine) {
    throw CommandFailure("transaction " + arguments.positional[0] + " has " +
                         std::to_string(entries.size()) +
                         " splits: change its amount or splits by deleting and adding it again");
  }
  std::vector<std::shared_ptr<KVCommand>> commands;
  if (!changes.empty()) {
    commands.push_back(
        std::make_shared<SetCashFlowTransactionPropertyCommand>(transaction, changes, document_));
  }
  if (!lineChanges.empty()) {
    commands.push_back(std::make_shared<SetCashFlowTransactionEntryPropertyCommand>(
        *onlyLine, lineChanges, document_));
  }
  run(commands.size() == 1 ? commands.front()
                           : std::make_shared<GenericBatchCommand>(commands, document_),
      "the transaction was not changed");
  out_ << "Changed transaction " << arguments.positional[0] << '\n';
}

}  // namespace ledgeon::cli
