// Repairs run on open: damage earlier versions or crashes could leave in a store.
#include <map>

#include "DataBase/DataBase.h"
#include "DataBase/internal/Table.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

void DataBase::performRepairsWithLogMessages(std::vector<std::string>& messages) {
  performNaNValueRepairs(messages);
  performDocumentPropertyRepairs(messages);
  if (hasChanges()) {
    if (auto ok = commitAndSendNotifications(false); !ok) {
      messages.push_back("Repairs could not be saved: " + ok.error().localizedDescription());
    }
  }
}

// A NaN amount means nothing; zero is what every reader already assumes for a missing amount.
void DataBase::performNaNValueRepairs(std::vector<std::string>& messages) {
  sql::TransactionGuard transaction(*connection_);
  for (const auto& table : tables_) {
    for (const PropertyDescription* p : table->layout->columns) {
      if (!p->isAttribute() || p->type != AttributeType::Amount) continue;
      const std::string column = sql::quoted(p->column);
      sql::Statement repair = connection_->prepare("UPDATE " + table->layout->table + " SET " +
                                                   column + " = '0' WHERE " + column + " = 'NaN'");
      repair.run();
      const int repaired = sqlite3_changes(connection_->handle());
      if (repaired > 0) {
        messages.push_back(stringWithFormat("Repaired %ld NaN values of %@.%@", repaired,
                                            table->layout->root->name, p->name));
      }
    }
  }
  transaction.commit();
}

// Keeps one property per name (the first stored) and makes every identifier counter at least
// the largest identifier in use, so that identifiers are never handed out twice.
void DataBase::performDocumentPropertyRepairs(std::vector<std::string>& messages) {
  std::map<std::string, LObject*> kept;
  for (LObject* property : instancesOfClass(
           "DocumentProperty", {.sortDescriptors = {{"ledgeonId"}}, .includeDeleted = true})) {
    const std::string name = property->stringForKey("name");
    if (kept.emplace(name, property).second) continue;
    messages.push_back(stringWithFormat("Removed a duplicate document property named %@", name));
    deleteEntity(*property);
  }
  documentPropertyCache_.clear();
  for (const EntityDescription* entity : Model::shared().entities()) {
    if (!entity->parent || entity->name == "DocumentProperty") continue;
    const Table& table = tableFor(*entity);
    sql::Statement max = connection_->prepare("SELECT IFNULL(MAX(\"ledgeonId\"), 0) FROM " +
                                              table.layout->table + " WHERE Z_ENT = ?");
    max.bind(1, int64_t{entity->id});
    max.step();
    const int64_t largest = max.integer(0);
    if (largest == 0) continue;
    const std::string name = entity->name + "Id";
    const Value stored = valueForDocumentPropertyNamed(name);
    const int64_t counter =
        stored.kind() == Value::Kind::String ? std::stoll("0" + stored.asString()) : 0;
    if (counter < largest) {
      setValueForDocumentProperty(Value(largest), name);
      messages.push_back(stringWithFormat("Raised the document property %@ from %ld to %ld", name,
                                          counter, largest));
    }
  }
}

}  // namespace ledgeon
