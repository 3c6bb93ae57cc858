#pragma once

namespace ledgeon {
class DataBase;
}  // namespace ledgeon

namespace ledgeon::documents_internal {

// The list behind LDocument::openDataBases(): a store joins it when its document opens and leaves
// it when the document closes.
void addOpenDataBase(DataBase* dataBase);
void removeOpenDataBase(DataBase* dataBase);

}  // namespace ledgeon::documents_internal
