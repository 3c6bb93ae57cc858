#include "Commands/Duplicate/DuplicateLObjectCommand.h"

#include <algorithm>
#include <stdexcept>

#include "Commands/Create/CreateCommands.h"
#include "Commands/LCommandClasses.h"
#include "Commands/MainMenuTags.h"
#include "LObjects/LObject.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {

DuplicateLObjectCommand::DuplicateLObjectCommand(LObject& original,
                                                 std::shared_ptr<LCommandDocument> document)
    : KVCommand(std::move(document)) {
  setSourceArray({&original});
  setObjectClass(original.className());
  setCommandTag(kMainMenuTagDuplicate);
}

bool DuplicateLObjectCommand::doit() {
  LObject* source = original();
  if (!source || source->isLObjectDeleted()) return false;
  ScopedStoreTransaction transaction(requireDocument());
  creation_ = makeCreationCommand(*source);
  dependents_.clear();
  if (!creation_ || !creation_->execute()) {
    (void)transaction.end();
    return false;
  }
  for (auto& dependent : makeDependentCommands(*source, *creation_->createdObject())) {
    if (dependent->execute()) dependents_.push_back(std::move(dependent));
  }
  return transaction.end().ok();
}

void DuplicateLObjectCommand::undoit() {
  if (!creation_) return;
  ScopedStoreTransaction transaction(requireDocument());
  for (auto dependent = dependents_.rbegin(); dependent != dependents_.rend(); ++dependent) {
    (*dependent)->undoit();
  }
  creation_->undoit();
  (void)transaction.end();
}

void DuplicateLObjectCommand::redoit() {
  if (!creation_) return;
  ScopedStoreTransaction transaction(requireDocument());
  creation_->redoit();
  for (const auto& dependent : dependents_) dependent->redoit();
  (void)transaction.end();
}

std::string DuplicateLObjectCommand::commandNoun() {
  return LocalizedString("UndoNoun_" + objectClass());
}

std::shared_ptr<CreateLObjectCommand> DuplicateLObjectCommand::makeCreationCommand(
    LObject& source) {
  return LCommandClasses::createCommandForEntity(
      source.className(), source.propertiesDictionaryForCopy({}, propertiesExcludedFromCopy()),
      document());
}

std::vector<std::shared_ptr<KVCommand>> DuplicateLObjectCommand::makeDependentCommands(LObject&,
                                                                                       LObject&) {
  return {};
}

std::vector<std::shared_ptr<KVCommand>> DuplicateBudgetCommand::makeDependentCommands(
    LObject& original, LObject& copy) {
  std::vector<std::shared_ptr<KVCommand>> lines;
  for (LObject* line : original.objectsForKey("lineItems")) {
    lines.push_back(std::make_shared<CreateBudgetLineItemCommand>(
        line->propertiesDictionaryForCopy({{"budget", Value(&copy)}}, {}), document()));
  }
  return lines;
}

std::set<std::string> DuplicateCashFlowTransactionCommand::propertiesExcludedFromCopy() const {
  return {"openingBalanceAccount",
          "orderID",
          "onlineBankingServerID",
          "fiTransaction",
          "downloadSession",
          "matchSource",
          "matched"};
}

std::shared_ptr<CreateLObjectCommand> DuplicateCashFlowTransactionCommand::makeCreationCommand(
    LObject& original) {
  EditDict properties = original.propertiesDictionaryForCopy({}, propertiesExcludedFromCopy());
  const ObjectSet entries = original.objectsForKey("entries");
  std::vector<LObject*> sorted(entries.begin(), entries.end());
  std::sort(sorted.begin(), sorted.end(), [](LObject* a, LObject* b) {
    return a->integerForKey("sequenceNumber") < b->integerForKey("sequenceNumber");
  });
  std::vector<EditDict> lines;
  for (LObject* entry : sorted) {
    lines.push_back(entry->propertiesDictionaryForCopy({}, {"parent", "sequenceNumber"}));
  }
  std::shared_ptr<CreateCashFlowTransactionCommand> creation;
  if (original.entity().isKindOf(CreateSmartCashFlowTransactionCommand::kEntityClass)) {
    creation = std::make_shared<CreateSmartCashFlowTransactionCommand>(
        std::move(properties), std::move(lines), document());
  } else {
    creation = std::make_shared<CreateCashFlowTransactionCommand>(std::move(properties),
                                                                  std::move(lines), document());
  }
  creation->setDuplicating(true);
  return creation;
}

}  // namespace ledgeon
