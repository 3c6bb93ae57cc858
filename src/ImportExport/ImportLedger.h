#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Commands/LCommandDocument.h"
#include "Documents/LedgerQueries.h"
#include "ImportExport/ImportTransaction.h"
#include "LObjects/Value.h"
#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

class KVCommand;
class LObject;

// What an import needs of the ledger: objects found by name (cached, since a file names the same
// accounts and categories thousands of times), objects made through the ordinary creation
// commands, and the figures its summary reports. Every command that succeeds is appended to the
// import's list of kept commands. Main thread only.
class ImportLedger final {
 public:
  ImportLedger(std::shared_ptr<LCommandDocument> document, std::string dataSource,
               std::vector<std::shared_ptr<KVCommand>>& keptCommands);

  LCommandDocument& document() { return *sharedDocument(); }
  // The source every object of the import is stamped with, one text shared by all of them.
  const Value& dataSource() const { return dataSource_; }

  // Runs `command` inside the import; keeps it when it succeeds.
  bool run(const std::shared_ptr<KVCommand>& command);
  // Runs `command` inside the import without keeping it: its change outlives an undo.
  bool runUnkept(const std::shared_ptr<KVCommand>& command);

  // Undeleted objects by name; null when there is none.
  LObject* accountNamed(const std::string& name);
  LObject* categoryNamed(const std::string& name);
  LObject* tagNamed(const std::string& name);  // any kind of tag
  LObject* securityNamed(const std::string& name);
  std::vector<LObject*> securitiesWithTicker(const std::string& ticker);
  // The account's position in the security, when it has one.
  LObject* positionFor(LObject& account, LObject& security);

  // The account type object for a type name ("CHECKING", "CREDITLINE", ...): the document's
  // object of the account-type class the name stands for, made when the document has none yet.
  LObject* accountTypeNamed(const std::string& typeName);
  // Creations through the creation commands; null when the command failed.
  LObject* createAccount(EditDict properties);
  LObject* createCategory(EditDict properties);
  LObject* createUserTag(EditDict properties);
  LObject* createSecurity(EditDict properties);
  LObject* createPosition(LObject& account, LObject& security);
  LObject* createInvestmentTransaction(EditDict properties);
  // Resolves the names of `transaction` (categories, tags and payees are made when missing) and
  // creates it with its lines.
  LObject* createCashFlowTransaction(const ImportTransaction& transaction);

  // Transactions this import created, per owning account.
  const std::map<LObject*, size_t>& transactionsCreated() const { return transactionsCreated_; }

  // The ledger's lookups and balances, as they stand during the import.
  LedgerQueries& queries() { return queries_; }

 private:
  LObject* created(const std::shared_ptr<KVCommand>& command);
  LObject* payeeNamed(const std::string& name, const char* entityName, bool create);
  EditDict lineProperties(const ImportSplit& line);
  template <typename Cache>
  LObject* lookup(Cache& cache, const char* entityName, const std::string& key,
                  const char* keyPath = "name");

  // Weak: the ledger lives in an import command, which the document's undo history keeps.
  std::shared_ptr<LCommandDocument> sharedDocument() const { return document_.lock(); }
  std::weak_ptr<LCommandDocument> document_;
  Value dataSource_;
  std::vector<std::shared_ptr<KVCommand>>& keptCommands_;
  LedgerQueries queries_;
  std::map<std::string, LObject*, std::less<>> accounts_;
  std::map<std::string, LObject*, std::less<>> accountTypes_;
  std::map<std::string, LObject*, std::less<>> tags_;
  std::map<std::string, LObject*, std::less<>> securities_;
  std::map<std::string, LObject*, std::less<>> userPayees_;
  std::map<std::string, LObject*, std::less<>> fiPayees_;
  std::map<std::pair<LObject*, LObject*>, LObject*> positions_;
  std::map<LObject*, size_t> transactionsCreated_;
};

}  // namespace ledgeon
