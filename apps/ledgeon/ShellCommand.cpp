// ledgeon shell DOC, ledgeon accounts DOC and ledgeon transactions DOC: edit a ledger through its
// undoable commands, and print its accounts and transactions.
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "DataBase/DataBase.h"
#include "Documents/LDocument.h"
#include "Documents/LedgerQueries.h"
#include "LedgerListing.h"
#include "LedgerShell.h"
#include "OpenLedger.h"
#include "Subcommand.h"
#include "TerminalUserInterface.h"

namespace ledgeon::cli {

namespace {

struct LedgerOptions {
  std::string document;
  std::string account;
  bool json = false;
  std::vector<std::string> answers;
};

// Reads requests until the input ends or asks to quit. At a terminal a bad request is reported
// and the session goes on; from a script the first bad request ends it with its line number.
void runShell(const LedgerOptions& options) {
  OpenLedger ledger(options.document, options.answers);
  LedgerShell shell(ledger.shared(), *ledger->undoManager(), std::cout);
  const bool interactive = isatty(STDIN_FILENO) != 0;
  if (interactive) {
    std::cout << "Editing " << ledger->displayName() << ". Type help for the requests.\n";
  }
  size_t lineNumber = 0;
  for (std::string line;;) {
    if (interactive) std::cout << "ledgeon> " << std::flush;
    if (!std::getline(std::cin, line)) break;
    ++lineNumber;
    try {
      if (!shell.runLine(line)) break;
    } catch (const CommandFailure& failure) {
      if (!interactive) {
        throw CommandFailure("line " + std::to_string(lineNumber) + ": " + failure.what());
      }
      std::cerr << "error: " << failure.what() << '\n';
    }
  }
}

void listAccounts(const LedgerOptions& options) {
  OpenLedger ledger(options.document, options.answers);
  const auto rows = ledger->ledgerQueries().accountRows();
  writeAccounts(std::cout, rows, options.json);
}

void listTransactions(const LedgerOptions& options) {
  OpenLedger ledger(options.document, options.answers);
  LedgerQueries& queries = ledger->ledgerQueries();
  LObject* account = nullptr;
  if (!options.account.empty()) {
    account = queries.accountNamed(options.account);
    if (!account) throw CommandFailure("no account named \"" + options.account + "\"");
  }
  const auto rows = queries.transactionRows(account);
  writeTransactions(std::cout, rows, options.json);
}

void addDocumentOptions(CLI::App& command, LedgerOptions& options) {
  command.add_option("DOC", options.document, "Document package")->required();
  command.add_option("--answer", options.answers,
                     "Button to press when asked (repeatable): \"Try Again\", \"Open Anyway\" "
                     "or \"Cancel\" if the document is open elsewhere, \"Back Up\" or "
                     "\"Don\u2019t Back Up\" on closing");
}

// A subcommand that prints part of a document, as text or with --json.
CLI::App* addListing(CLI::App& app, const char* name, const char* description,
                     const std::shared_ptr<LedgerOptions>& options,
                     void (*list)(const LedgerOptions&)) {
  auto* command = app.add_subcommand(name, description);
  addDocumentOptions(*command, *options);
  command->add_flag("--json", options->json, "Print JSON");
  command->callback([options, list] { list(*options); });
  return command;
}

const SubcommandRegistration registration(295, [](CLI::App& app) {
  auto options = std::make_shared<LedgerOptions>();
  auto* shell = app.add_subcommand(
      "shell",
      "Edit a document's accounts, categories, tags, payees and transactions, with undo and "
      "redo; reads requests from stdin (type help for them)");
  addDocumentOptions(*shell, *options);
  shell->callback([options] { runShell(*options); });

  addListing(app, "accounts",
             "List a document's accounts with their balances; investment accounts with their "
             "cash and holdings apart",
             options, listAccounts);
  addListing(app, "transactions",
             "List a document's transactions: cash-flow ones with their splits and transfers, "
             "investment ones with action, security, units, price and commission",
             options, listTransactions)
      ->add_option("--account", options->account,
                   "Only this account's transactions and the transfers it receives");
});

}  // namespace

}  // namespace ledgeon::cli
