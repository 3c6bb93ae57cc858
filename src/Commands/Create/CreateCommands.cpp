#include "Commands/Create/CreateCommands.h"

#include "Utilities/StringsTable.h"

namespace ledgeon {

std::string CreateSmartCashFlowTransactionCommand::commandNoun() {
  return LocalizedString("UndoNoun_SmartCashFlowTransaction");
}

}  // namespace ledgeon
