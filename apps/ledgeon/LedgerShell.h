#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "LObjects/Value.h"
#include "Utilities/Amount.h"

namespace ledgeon {
class DataBase;
class KVCommand;
class LDocument;
class LedgerQueries;
class LObject;
class UndoManager;
}  // namespace ledgeon

namespace ledgeon::cli {

// The interpreter behind `ledgeon shell`: one line is one request ("account add Checking",
// "transaction add Checking 2025-01-31 -42.50 payee=Grocer", "undo"). Every change goes through
// the ledger's undoable commands on the open document, so undo and redo work as in the
// application. A request that cannot be carried out throws CommandFailure and changes nothing.
class LedgerShell final {
 public:
  LedgerShell(std::shared_ptr<LDocument> document, UndoManager& undoManager, std::ostream& out);

  // Returns false when the line ends the session ("quit").
  bool runLine(std::string_view line);
  static std::string helpText();

  // A line split into words: blanks separate, quotes group ("payee=\"Big Store\"").
  static std::vector<std::string> splitWords(std::string_view line);

 private:
  using Words = std::vector<std::string>;
  // The words after the noun and verb: positional ones, key=value options in order, --json.
  struct Arguments {
    Words positional;
    std::vector<std::pair<std::string, std::string>> options;
    bool json = false;
  };
  static Arguments parseArguments(const Words& words, size_t first);
  static void requirePositional(const Arguments& arguments, size_t count, const char* usage);
  static void allowOptions(const Arguments& arguments, std::initializer_list<std::string_view> keys,
                           const char* request);

  void accountRequest(const std::string& verb, const Arguments& arguments);
  // The account properties the options set (currency=, type=, notes=).
  EditDict accountChanges(const Arguments& arguments);
  // The command that changes the account. Transfer lines name their account: a new name goes to
  // them too, in the same undoable step.
  std::shared_ptr<KVCommand> accountEdit(LObject& account, const EditDict& changes);
  // Prints the names of the live objects of `entity`, sorted; categories by full name.
  void listNames(const char* entity);
  void categoryRequest(const std::string& verb, const Arguments& arguments);
  void tagRequest(const std::string& verb, const Arguments& arguments);
  void payeeRequest(const std::string& verb, const Arguments& arguments);
  void transactionRequest(const std::string& verb, const Arguments& arguments);
  struct SplitRequest;
  void addTransaction(const Arguments& arguments);
  // The split lines of a new transaction in `account`; they must add up to `total`. Lines may
  // transfer to different accounts; the transaction's targetAccount is the last line's.
  std::vector<EditDict> transactionLines(const std::vector<SplitRequest>& splits, LObject& account,
                                         const Amount& total, EditDict& properties);
  // Sets what payee= ("-": none), note=, check= and status= say; false for any other key.
  bool transactionProperty(const std::string& key, const std::string& value, EditDict& properties);
  void editTransaction(const Arguments& arguments);
  // A file imported as one undoable step.
  void importRequest(const Arguments& arguments);
  void undo();
  void redo();

  // Runs a command; a refused one fails with `refusal`.
  void run(const std::shared_ptr<KVCommand>& command, const std::string& refusal);

  // Lookups by name among live objects; the require forms fail with a message naming what is
  // missing.
  LObject* findAccount(const std::string& name);
  LObject& requireAccount(const std::string& name);
  LObject* findCategory(const std::string& fullName);
  LObject& requireCategory(const std::string& fullName);
  LObject* findNamed(const char* entity, const std::string& name);
  LObject& requireNamed(const char* entity, const char* noun, const std::string& name);
  LObject& requireTransaction(const std::string& id);
  LObject& requireAccountType(const std::string& className);
  std::vector<LObject*> requireTags(const std::string& commaSeparated);

  DataBase& dataBase();
  LedgerQueries& queries();

  std::shared_ptr<LDocument> document_;
  UndoManager& undoManager_;
  std::ostream& out_;
};

}  // namespace ledgeon::cli
