#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Commands/CommandFamilyEntity.h"
#include "Commands/CreateLObjectCommand.h"

namespace ledgeon {

// Makes a copy of an entity through the entity's own creation command: the copy shares the
// original's attributes and links but none of its identifiers (ledgeonId, guid, syncID), so the
// cloud service sees a new object. Undo retracts the copy; redo brings back the very same copy.
class DuplicateLObjectCommand : public KVCommand {
 public:
  LEDGEON_COMMAND_CLASS(DuplicateLObjectCommand, KVCommand)
  explicit DuplicateLObjectCommand(LObject& original,
                                   std::shared_ptr<LCommandDocument> document = nullptr);

  bool doit() override;
  void undoit() override;
  void redoit() override;
  std::string commandNoun() override;  // the original's undo noun: "Duplicate Transaction"

  LObject* original() const { return firstSource(); }
  LObject* duplicate() const { return creation_ ? creation_->createdObject() : nullptr; }

 protected:
  // The properties of the original that the copy does not take, besides the identifiers.
  virtual std::set<std::string> propertiesExcludedFromCopy() const { return {}; }
  // The command that creates the copy: the entity's creation command with the copied properties.
  virtual std::shared_ptr<CreateLObjectCommand> makeCreationCommand(LObject& original);
  // Copies of what belongs to the original (a budget's lines), made once the copy exists.
  virtual std::vector<std::shared_ptr<KVCommand>> makeDependentCommands(LObject& original,
                                                                        LObject& copy);

 private:
  std::shared_ptr<CreateLObjectCommand> creation_;
  std::vector<std::shared_ptr<KVCommand>> dependents_;
};

// Duplicates a budget with its lines.
class DuplicateBudgetCommand : public DuplicateLObjectCommand {
 public:
  LEDGEON_COMMAND_CLASS(DuplicateBudgetCommand, DuplicateLObjectCommand)
  static constexpr const char* kEntityClass = "Budget";
  explicit DuplicateBudgetCommand(LObject& budget,
                                  std::shared_ptr<LCommandDocument> document = nullptr)
      : DuplicateLObjectCommand(requireEntityOfClass(budget, kEntityClass, kClassName),
                                std::move(document)) {}

 protected:
  std::vector<std::shared_ptr<KVCommand>> makeDependentCommands(LObject& original,
                                                                LObject& copy) override;
};

// Duplicates a cash-flow transaction with its split lines. The copy is a new transaction: it is
// not an account's opening balance, not matched to a download, and has no syncID.
class DuplicateCashFlowTransactionCommand : public DuplicateLObjectCommand {
 public:
  LEDGEON_COMMAND_CLASS(DuplicateCashFlowTransactionCommand, DuplicateLObjectCommand)
  static constexpr const char* kEntityClass = "CashFlowTransaction";
  explicit DuplicateCashFlowTransactionCommand(LObject& transaction,
                                               std::shared_ptr<LCommandDocument> document = nullptr)
      : DuplicateLObjectCommand(requireEntityOfClass(transaction, kEntityClass, kClassName),
                                std::move(document)) {}

 protected:
  std::set<std::string> propertiesExcludedFromCopy() const override;
  std::shared_ptr<CreateLObjectCommand> makeCreationCommand(LObject& original) override;
};

}  // namespace ledgeon
