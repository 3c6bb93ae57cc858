#pragma once

#include <memory>

#include "Utilities/Result.h"

namespace ledgeon {

class DataBase;
class KVCommand;
class LCommandManager;

// What a command needs of the open document it changes: the store, the command manager and the
// store-transaction bracket. The open document (LDocument) is the one implementation; commands
// never see more of it. Main thread only.
class LCommandDocument {
 public:
  virtual ~LCommandDocument() = default;

  virtual DataBase& dataBase() = 0;
  // Null once the document has begun closing: commands then run without undo registration.
  virtual LCommandManager* commandManager() = 0;

  // Store transactions nest; the outermost end commits once, with one round of notifications.
  // An end whose commit fails returns the error, and the store keeps the uncommitted changes.
  virtual void beginTransaction() = 0;
  virtual Result<void> endTransaction() = 0;

  // A command that changes what the user would save has succeeded.
  virtual void commandDirtiedDocument() = 0;

  // Investments arrived from outside (an import): their securities' prices are due for an
  // update. Kept in the document, so that whatever brings prices up to date next learns of it,
  // even after a reopen.
  void noteShouldUpdateSecurityDataAfterImporting();
  bool securityDataUpdateDue();

  // Runs a command through this document's command manager (directly when there is none).
  bool executeCommand(const std::shared_ptr<KVCommand>& command);

  // The document a command created without one works on: the one the user is working in.
  static std::shared_ptr<LCommandDocument> currentDocument();
  static void setCurrentDocument(const std::shared_ptr<LCommandDocument>& document);
};

// Brackets a scope in a store transaction of a document; the end's commit result is kept for
// callers that need it (an exception passing through still ends the transaction).
class ScopedStoreTransaction final {
 public:
  explicit ScopedStoreTransaction(LCommandDocument& document) : document_(document) {
    document_.beginTransaction();
  }
  ~ScopedStoreTransaction() {
    if (!ended_) (void)document_.endTransaction();
  }
  ScopedStoreTransaction(const ScopedStoreTransaction&) = delete;
  ScopedStoreTransaction& operator=(const ScopedStoreTransaction&) = delete;

  Result<void> end() {
    ended_ = true;
    return document_.endTransaction();
  }

 private:
  LCommandDocument& document_;
  bool ended_ = false;
};

}  // namespace ledgeon
