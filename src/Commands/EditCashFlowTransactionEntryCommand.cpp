#include "Commands/EditCashFlowTransactionEntryCommand.h"

#include "DataBase/DataBase.h"
#include "LObjects/LObject.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {

std::string EditCashFlowTransactionEntryCommand::commandNoun() {
  return LocalizedString("UndoNoun_CashFlowTransactionEntry");
}

CreateCashFlowTransactionEntryCommand::CreateCashFlowTransactionEntryCommand(
    LObject& transaction, std::string relationshipKey, std::string entityClass, EditDict properties,
    std::shared_ptr<LCommandDocument> document)
    : EditCashFlowTransactionEntryCommand(std::move(document)),
      transaction_(transaction),
      relationshipKey_(std::move(relationshipKey)),
      properties_(std::move(properties)) {
  setObjectClass(std::move(entityClass));
}

bool CreateCashFlowTransactionEntryCommand::doit() {
  ScopedStoreTransaction transaction(requireDocument());
  entry_ = &LObject::createEntityInManagedObjectContext(requireDocument().dataBase(), objectClass(),
                                                        properties_);
  transaction_.editEntityWithData({{relationshipKey_, Value(ToManyEdit::adding({entry_}))}});
  setSourceArray({entry_});
  return transaction.end().ok();
}

void CreateCashFlowTransactionEntryCommand::undoit() {
  if (!entry_) return;
  ScopedStoreTransaction transaction(requireDocument());
  retraction_.retract(*entry_, document());
  (void)transaction.end();
}

void CreateCashFlowTransactionEntryCommand::redoit() {
  if (!entry_) return;
  ScopedStoreTransaction transaction(requireDocument());
  retraction_.restore(*entry_);
  (void)transaction.end();
}

}  // namespace ledgeon
