#pragma once

#include <memory>

#include "Commands/LCommandDocument.h"
#include "Commands/LCommandManager.h"
#include "DataBase/DataBase.h"
#include "support/TestSupport.h"

namespace ledgeon::testing {

// The smallest open document a command needs: a real store in a temporary folder, a real undo
// manager and command manager, and store transactions that commit at the outermost end. Counts
// commits so that tests can check batching.
class CommandTestDocument final : public LCommandDocument {
 public:
  static std::shared_ptr<CommandTestDocument> make() {
    auto document = std::make_shared<CommandTestDocument>();
    LCommandDocument::setCurrentDocument(document);
    return document;
  }

  CommandTestDocument()
      : dataBase_(DataBase::initWithFileURL(folder_ / "data", true).value()),
        undoManager_(LCommandManager::createUndoManager()),
        commandManager_(std::make_unique<LCommandManager>(*this, *undoManager_)) {}

  DataBase& dataBase() override { return *dataBase_; }
  LCommandManager* commandManager() override { return commandManager_.get(); }
  void beginTransaction() override { ++depth_; }
  Result<void> endTransaction() override {
    if (--depth_ > 0) return {};
    ++commits_;
    return dataBase_->commit();
  }
  void commandDirtiedDocument() override { ++edits_; }

  UndoManager& undoManager() { return *undoManager_; }
  int commits() const { return commits_; }
  int edits() const { return edits_; }
  int depth() const { return depth_; }

 private:
  TempFolder folder_;
  std::unique_ptr<DataBase> dataBase_;
  std::unique_ptr<UndoManager> undoManager_;
  std::unique_ptr<LCommandManager> commandManager_;
  int depth_ = 0;
  int commits_ = 0;
  int edits_ = 0;
};

}  // namespace ledgeon::testing
