#include "LedgerShell.h"

#include <algorithm>
#include <cctype>
#include <iostream>

#include "Commands/Create/CreateCommands.h"
#include "Commands/Delete/DeleteCommands.h"
#include "Commands/Edit/EditCashFlowTagCommand.h"
#include "Commands/Edit/SetPropertyCommands.h"
#include "Commands/GenericBatchCommand.h"
#include "Commands/LCommandDocument.h"
#include "Commands/UndoManager.h"
#include "DataBase/DataBase.h"
#include "Documents/LDocument.h"
#include "Documents/LedgerQueries.h"
#include "ImportCommand.h"
#include "LObjects/Model.h"
#include "LedgerListing.h"
#include "Subcommand.h"

namespace ledgeon::cli {

namespace {

bool isCurrencyCode(const std::string& code) {
  return code.size() == 3 &&
         std::all_of(code.begin(), code.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

const std::string* option(const std::vector<std::pair<std::string, std::string>>& options,
                          std::string_view key) {
  for (const auto& [name, value] : options) {
    if (name == key) return &value;
  }
  return nullptr;
}

}  // namespace

LedgerShell::LedgerShell(std::shared_ptr<LDocument> document, UndoManager& undoManager,
                         std::ostream& out)
    : document_(std::move(document)), undoManager_(undoManager), out_(out) {}

DataBase& LedgerShell::dataBase() { return document_->dataBase(); }
LedgerQueries& LedgerShell::queries() { return document_->ledgerQueries(); }

std::string LedgerShell::helpText() {
  return R"(Requests (one per line; quote words with blanks: payee="Corner Shop"):
  account add NAME [type=Checking] [currency=USD] [notes=TEXT]
  account edit NAME [name=NEW] [type=TYPE] [currency=CODE] [notes=TEXT]
  account delete NAME              (only an account without transactions)
  account list [--json]
  category add NAME|PARENT:NAME    (the parent must exist)
  category edit FULL:NAME [name=NEW] [parent=FULL:NAME|-]
  category delete FULL:NAME        (its splits become uncategorised)
  category list
  tag add|delete NAME    tag edit NAME name=NEW    tag list
  payee add|delete NAME  payee edit NAME name=NEW  payee list
  transaction add ACCOUNT YYYY-MM-DD AMOUNT [payee=P] [note=T] [check=N]
        [status=uncleared|cleared|reconciled] [category=C] [tags=a,b] [transfer=ACCOUNT]
        [memo=T] [split=AMOUNT [category=C] [tags=a,b] [transfer=ACCOUNT] [memo=T]]...
      category, tags, transfer and memo describe the split before them (the whole amount
      when there is no split=); splits must add up to AMOUNT; a transfer moves the money
      into the named account (each split may name its own)
  transaction edit ID [date=D] [amount=A] [payee=P|-] [note=T] [check=N] [status=S]
        [category=C|-] [tags=a,b] [memo=T]   (amount and split fields: one-split only)
  transaction duplicate ID
  transaction delete ID
  transaction list [ACCOUNT] [--json]
  import FILE [format=lif|csv]     a LIF file (clears the undo history) or a CSV export (one
                                   undoable step); prints the log
  undo | redo      undo or redo the last change, printing its menu title
  help | quit
)";
}

std::vector<std::string> LedgerShell::splitWords(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  char quote = 0;
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quote) {
      if (c == quote) {
        quote = 0;
      } else if (c == '\\' && quote == '"' && i + 1 < line.size()) {
        word += line[++i];
      } else {
        word += c;
      }
    } else if (c == '"' || c == '\'') {
      quote = c;
      inWord = true;
    } else if (std::isspace(static_cast<unsigned char>(c))) {
      if (inWord) words.push_back(std::move(word));
      word.clear();
      inWord = false;
    } else {
      word += c;
      inWord = true;
    }
  }
  if (quote) throw CommandFailure(std::string("unclosed quote ") + quote);
  if (inWord) words.push_back(std::move(word));
  return words;
}

LedgerShell::Arguments LedgerShell::parseArguments(const Words& words, size_t first) {
  Arguments arguments;
  for (size_t i = first; i < words.size(); ++i) {
    const std::string& word = words[i];
    const auto equals = word.find('=');
    if (word == "--json") {
      arguments.json = true;
    } else if (equals != std::string::npos && equals > 0) {
      arguments.options.emplace_back(word.substr(0, equals), word.substr(equals + 1));
    } else {
      arguments.positional.push_back(word);
    }
  }
  return arguments;
}

void LedgerShell::requirePositional(const Arguments& arguments, size_t count, const char* usage) {
  if (arguments.positional.size() != count) throw CommandFailure(std::string("usage: ") + usage);
}

void LedgerShell::allowOptions(const Arguments& arguments,
                               std::initializer_list<std::string_view> keys, const char* request) {
  for (const auto& [key, value] : arguments.options) {
    if (std::find(keys.begin(), keys.end(), key) != keys.end()) continue;
    std::string known;
    for (std::string_view k : keys) known += (known.empty() ? "" : ", ") + std::string(k) + "=";
    throw CommandFailure("unknown option " + key + "= (" + request +
                         (known.empty() ? " takes none" : " takes " + known) + ")");
  }
}

bool LedgerShell::runLine(std::string_view line) {
  const Words words = splitWords(line);
  if (words.empty() || words[0].starts_with("#")) return true;
  const std::string& noun = words[0];
  if (noun == "quit" || noun == "exit") return false;
  if (noun == "help") {
    out_ << helpText();
    return true;
  }
  if (noun == "undo" || noun == "redo") {
    if (words.size() != 1) throw CommandFailure("usage: " + noun);
    noun == "undo" ? undo() : redo();
    return true;
  }
  if (noun == "import") {
    importRequest(parseArguments(words, 1));
    return true;
  }
  const std::string verb = words.size() > 1 ? words[1] : std::string();
  const Arguments arguments = parseArguments(words, 2);
  if (noun == "account") {
    accountRequest(verb, arguments);
  } else if (noun == "category") {
    categoryRequest(verb, arguments);
  } else if (noun == "tag") {
    tagRequest(verb, arguments);
  } else if (noun == "payee") {
    payeeRequest(verb, arguments);
  } else if (noun == "transaction") {
    transactionRequest(verb, arguments);
  } else {
    throw CommandFailure("unknown request \"" + noun + "\" (type help for the list)");
  }
  return true;
}

void LedgerShell::importRequest(const Arguments& arguments) {
  requirePositional(arguments, 1, "import FILE [format=lif|csv]");
  allowOptions(arguments, {"format"}, "import");
  std::string format;
  for (const auto& [key, value] : arguments.options) format = value;
  auto command = importCommandForFile(arguments.positional[0], format, document_);
  command->setShowsProgressDialog(false);
  const bool imported = command->execute();
  if (command->log()) out_ << command->log()->plainText();
  if (!imported) throw CommandFailure("could not import \"" + arguments.positional[0] + "\"");
}

void LedgerShell::run(const std::shared_ptr<KVCommand>& command, const std::string& refusal) {
  if (!command->execute()) throw CommandFailure(refusal);
}

void LedgerShell::undo() {
  if (!undoManager_.canUndo()) throw CommandFailure("nothing to undo");
  out_ << undoManager_.undoMenuItemTitle() << '\n';
  undoManager_.undo();
}

void LedgerShell::redo() {
  if (!undoManager_.canRedo()) throw CommandFailure("nothing to redo");
  out_ << undoManager_.redoMenuItemTitle() << '\n';
  undoManager_.redo();
}

LObject* LedgerShell::findNamed(const char* entity, const std::string& name) {
  for (LObject* object : dataBase().instancesOfClass(entity)) {
    if (object->className() == entity && object->stringForKey("name") == name) return object;
  }
  return nullptr;
}

LObject& LedgerShell::requireNamed(const char* entity, const char* noun, const std::string& name) {
  if (LObject* object = findNamed(entity, name)) return *object;
  throw CommandFailure(std::string("no ") + noun + " named \"" + name + "\"");
}

LObject* LedgerShell::findAccount(const std::string& name) { return queries().accountNamed(name); }

LObject& LedgerShell::requireAccount(const std::string& name) {
  if (LObject* account = findAccount(name)) return *account;
  throw CommandFailure("no account named \"" + name + "\"");
}

LObject* LedgerShell::findCategory(const std::string& fullName) {
  return queries().categoryWithFullName(fullName);
}

LObject& LedgerShell::requireCategory(const std::string& fullName) {
  if (LObject* category = findCategory(fullName)) return *category;
  throw CommandFailure("no category named \"" + fullName + "\"");
}

std::vector<LObject*> LedgerShell::requireTags(const std::string& commaSeparated) {
  std::vector<LObject*> tags;
  size_t start = 0;
  while (start <= commaSeparated.size()) {
    const size_t comma = std::min(commaSeparated.find(',', start), commaSeparated.size());
    const std::string name = commaSeparated.substr(start, comma - start);
    if (!name.empty()) tags.push_back(&requireNamed("UserTag", "tag", name));
    start = comma + 1;
  }
  return tags;
}

LObject& LedgerShell::requireAccountType(const std::string& className) {
  const EntityDescription* entity = Model::shared().entity(className);
  if (!entity || !entity->isKindOf("AccountType") || className == "AccountType") {
    throw CommandFailure("\"" + className +
                         "\" is not an account type (Checking, Savings, CreditCard, Brokerage, "
                         "Mortgage ...)");
  }
  if (LObject* type = queries().accountTypeForClass(className)) return *type;
  throw CommandFailure("this document has no account type \"" + className + "\"");
}

EditDict LedgerShell::accountChanges(const Arguments& arguments) {
  EditDict changes;
  if (const std::string* currency = option(arguments.options, "currency")) {
    if (!isCurrencyCode(*currency)) {
      throw CommandFailure("currency \"" + *currency + "\" is not a currency code (USD, EUR ...)");
    }
    changes.set("currency", Value(*currency));
  }
  if (const std::string* type = option(arguments.options, "type")) {
    changes.set("type", Value(&requireAccountType(*type)));
  }
  if (const std::string* notes = option(arguments.options, "notes")) {
    changes.set("notes", Value(*notes));
  }
  return changes;
}

std::shared_ptr<KVCommand> LedgerShell::accountEdit(LObject& account, const EditDict& changes) {
  auto edit = std::make_shared<SetAccountPropertyCommand>(account, changes, document_);
  const Value* newName = changes.find("name");
  if (!newName) return edit;
  std::vector<std::shared_ptr<KVCommand>> commands{edit};
  for (LObject* line : dataBase().instancesOfClass(
           "CashFlowTransactionEntry",
           {.predicate = Predicate::withFormat("transfer == %@", account.stringForKey("name"))})) {
    commands.push_back(std::make_shared<SetCashFlowTransactionEntryPropertyCommand>(
        *line, EditDict{{"transfer", *newName}}, document_));
  }
  if (commands.size() == 1) return edit;
  return std::make_shared<GenericBatchCommand>(std::move(commands), document_);
}

void LedgerShell::accountRequest(const std::string& verb, const Arguments& arguments) {
  if (verb == "list") {
    requirePositional(arguments, 0, "account list [--json]");
    const auto rows = queries().accountRows();
    writeAccounts(out_, rows, arguments.json);
    return;
  }
  requirePositional(arguments, 1, "account add|edit|delete NAME [options]");
  const std::string& name = arguments.positional[0];
  EditDict changes = accountChanges(arguments);
  if (verb == "add") {
    allowOptions(arguments, {"type", "currency", "notes"}, "account add");
    if (name.empty()) throw CommandFailure("an account needs a name");
    if (findAccount(name))
      throw CommandFailure("there is already an account named \"" + name + "\"");
    EditDict properties{{"name", Value(name)}};
    if (!changes.contains("type")) properties.set("type", Value(&requireAccountType("Checking")));
    if (!changes.contains("currency")) properties.set("currency", Value("USD"));
    for (const auto& [key, value] : changes) properties.set(key, value);
    run(std::make_shared<CreateAccountCommand>(properties, document_),
        "the account was not created");
    out_ << "Created account " << name << '\n';
  } else if (verb == "edit") {
    allowOptions(arguments, {"name", "type", "currency", "notes"}, "account edit");
    LObject& account = requireAccount(name);
    if (const std::string* newName = option(arguments.options, "name")) {
      if (newName->empty()) throw CommandFailure("an account needs a name");
      if (LObject* other = findAccount(*newName); other && other != &account) {
        throw CommandFailure("there is already an account named \"" + *newName + "\"");
      }
      changes.set("name", Value(*newName));
    }
    if (changes.empty()) throw CommandFailure("account edit: nothing to change");
    run(accountEdit(account, changes), "the account was not changed");
    out_ << "Changed account " << account.stringForKey("name") << '\n';
  } else if (verb == "delete") {
    allowOptions(arguments, {}, "account delete");
    LObject& account = requireAccount(name);
    if (const size_t used = queries().transactionsOfAccount(account).size(); used > 0) {
      throw CommandFailure("account \"" + name + "\" still has " + std::to_string(used) +
                           " transaction(s); delete them first");
    }
    run(std::make_shared<DeleteAccountCommand>(account, document_), "the account was not deleted");
    out_ << "Deleted account " << name << '\n';
  } else {
    throw CommandFailure("usage: account add|edit|delete|list ...");
  }
}

void LedgerShell::listNames(const char* entity) {
  const bool categories = std::string_view(entity) == "CategoryTag";
  std::vector<std::string> names;
  for (LObject* object : dataBase().instancesOfClass(entity)) {
    names.push_back(categories ? LedgerQueries::categoryFullName(object)
                               : object->stringForKey("name"));
  }
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) out_ << name << '\n';
}

void LedgerShell::categoryRequest(const std::string& verb, const Arguments& arguments) {
  if (verb == "list") {
    requirePositional(arguments, 0, "category list");
    return listNames("CategoryTag");
  }
  requirePositional(arguments, 1, "category add|edit|delete FULL:NAME [options]");
  const std::string& fullName = arguments.positional[0];
  if (verb == "add") {
    allowOptions(arguments, {}, "category add");
    const auto colon = fullName.rfind(':');
    const std::string name = colon == std::string::npos ? fullName : fullName.substr(colon + 1);
    if (name.empty()) throw CommandFailure("a category needs a name");
    if (findCategory(fullName)) {
      throw CommandFailure("there is already a category named \"" + fullName + "\"");
    }
    EditDict properties{{"name", Value(name)}};
    if (colon != std::string::npos) {
      properties.set("parentCategory", Value(&requireCategory(fullName.substr(0, colon))));
    }
    run(std::make_shared<CreateCategoryTagCommand>(properties, document_),
        "the category was not created");
    out_ << "Created category " << fullName << '\n';
  } else if (verb == "edit") {
    allowOptions(arguments, {"name", "parent"}, "category edit");
    LObject& category = requireCategory(fullName);
    EditDict changes;
    if (const std::string* name = option(arguments.options, "name"))
      changes.set("name", Value(*name));
    if (const std::string* parent = option(arguments.options, "parent")) {
      changes.set("parentCategory", *parent == "-" ? Value() : Value(&requireCategory(*parent)));
    }
    if (changes.empty()) throw CommandFailure("category edit: nothing to change");
    auto edit = std::make_shared<EditCategoryTagCommand>(category, changes, document_);
    if (!edit->execute()) throw CommandFailure("category not changed: " + edit->failureReason());
    out_ << "Changed category " << LedgerQueries::categoryFullName(&category) << '\n';
  } else if (verb == "delete") {
    allowOptions(arguments, {}, "category delete");
    LObject& category = requireCategory(fullName);
    for (LObject* child : category.objectsForKey("subCategories")) {
      if (!child->isLObjectDeleted()) {
        throw CommandFailure("category \"" + fullName + "\" has subcategories; delete them first");
      }
    }
    run(std::make_shared<DeleteCategoryTagCommand>(category, document_),
        "the category was not deleted");
    out_ << "Deleted category " << fullName << '\n';
  } else {
    throw CommandFailure("usage: category add|edit|delete|list ...");
  }
}

void LedgerShell::tagRequest(const std::string& verb, const Arguments& arguments) {
  if (verb == "list") {
    requirePositional(arguments, 0, "tag list");
    return listNames("UserTag");
  }
  requirePositional(arguments, 1, "tag add|edit|delete NAME [name=NEW]");
  const std::string& name = arguments.positional[0];
  if (verb == "add") {
    allowOptions(arguments, {}, "tag add");
    if (findNamed("UserTag", name))
      throw CommandFailure("there is already a tag named \"" + name + "\"");
    if (name.empty() || name.find(',') != std::string::npos) {
      throw CommandFailure("a tag needs a name without commas");
    }
    run(std::make_shared<CreateUserTagCommand>(EditDict{{"name", Value(name)}}, document_),
        "the tag was not created");
    out_ << "Created tag " << name << '\n';
  } else if (verb == "edit") {
    allowOptions(arguments, {"name"}, "tag edit");
    LObject& tag = requireNamed("UserTag", "tag", name);
    const std::string* newName = option(arguments.options, "name");
    if (!newName) throw CommandFailure("tag edit: nothing to change");
    auto edit =
        std::make_shared<EditUserTagCommand>(tag, EditDict{{"name", Value(*newName)}}, document_);
    if (!edit->execute()) throw CommandFailure("tag not changed: " + edit->failureReason());
    out_ << "Changed tag " << *newName << '\n';
  } else if (verb == "delete") {
    allowOptions(arguments, {}, "tag delete");
    run(std::make_shared<DeleteUserTagCommand>(requireNamed("UserTag", "tag", name), document_),
        "the tag was not deleted");
    out_ << "Deleted tag " << name << '\n';
  } else {
    throw CommandFailure("usage: tag add|edit|delete|list ...");
  }
}

void LedgerShell::payeeRequest(const std::string& verb, const Arguments& arguments) {
  if (verb == "list") {
    requirePositional(arguments, 0, "payee list");
    return listNames("UserPayee");
  }
  requirePositional(arguments, 1, "payee add|edit|delete NAME [name=NEW]");
  const std::string& name = arguments.positional[0];
  if (verb == "add") {
    allowOptions(arguments, {}, "payee add");
    if (name.empty()) throw CommandFailure("a payee needs a name");
    if (findNamed("UserPayee", name)) {
      throw CommandFailure("there is already a payee named \"" + name + "\"");
    }
    run(std::make_shared<CreateUserPayeeCommand>(EditDict{{"name", Value(name)}}, document_),
        "the payee was not created");
    out_ << "Created payee " << name << '\n';
  } else if (verb == "edit") {
    allowOptions(arguments, {"name"}, "payee edit");
    LObject& payee = requireNamed("UserPayee", "payee", name);
    const std::string* newName = option(arguments.options, "name");
    if (!newName || newName->empty()) throw CommandFailure("payee edit: give name=NEW");
    if (LObject* other = findNamed("UserPayee", *newName); other && other != &payee) {
      throw CommandFailure("there is already a payee named \"" + *newName + "\"");
    }
    run(std::make_shared<SetUserPayeePropertyCommand>(payee, EditDict{{"name", Value(*newName)}},
                                                      document_),
        "the payee was not changed");
    out_ << "Changed payee " << *newName << '\n';
  } else if (verb == "delete") {
    allowOptions(arguments, {}, "payee delete");
    run(std::make_shared<DeleteUserPayeeCommand>(requireNamed("UserPayee", "payee", name),
                                                 document_),
        "the payee was not deleted");
    out_ << "Deleted payee " << name << '\n';
  } else {
    throw CommandFailure("usage: payee add|edit|delete|list ...");
  }
}

}  // namespace ledgeon::cli
