// Taking back every uncommitted change, so that the store and the loaded objects are as the last
// commit left them, while every object that existed then stays at the same address.
#include <algorithm>
#include <memory>
#include <vector>

#include "DataBase/DataBase.h"
#include "DataBase/internal/Table.h"

namespace ledgeon {

void DataBase::rollback() {
  // The committed key counters tell stored objects (below them) from new ones.
  loadPrimaryKeyCounters();
  // Changed objects get their committed values back; a to-many slot gets its old member list,
  // which is cleared below with the other caches anyway.
  for (auto& [object, record] : updated_) {
    for (auto& [slot, oldValue] : record.oldValues) object->setPrimitiveValue(slot, oldValue);
    object->setStoreState(LObject::StoreState::Clean);
  }
  // A pending removal of a stored object lost its values when they were nullified: reading the
  // row again restores them.
  std::vector<LObject*> reloaded;
  for (LObject* object : deleted_) {
    Table& table = tableFor(object->storedEntity());
    if (object->primaryKey() < table.nextPrimaryKey) reloaded.push_back(object);
  }
  // New objects leave memory; nothing that stays may point at them once the caches are cleared
  // (their links into stored objects were either restored above or live in to-many caches).
  std::vector<std::unique_ptr<LObject>> discarded;
  auto discard = [&](LObject* object) {
    Table& table = tableFor(object->storedEntity());
    const auto it = table.objects.find(object->primaryKey());
    if (it != table.objects.end() && it->second.get() == object) {
      discarded.push_back(std::move(it->second));
      table.objects.erase(it);
    }
  };
  for (LObject* object : inserted_) discard(object);
  for (LObject* object : deleted_) {
    if (std::find(reloaded.begin(), reloaded.end(), object) == reloaded.end()) discard(object);
  }
  inserted_.clear();
  updated_.clear();
  deleted_.clear();
  documentPropertyCache_.clear();
  modifiedEntityTypes_.clear();
  for (auto& table : tables_) {
    table->pendingCount = 0;
    for (auto& [primaryKey, object] : table->objects) object->clearToManyCaches();
  }
  for (LObject* object : reloaded) {
    std::vector<int> slots;
    object->forEachPrimitiveValue([&slots](int slot, const Value&) { slots.push_back(slot); });
    for (const int slot : slots) object->setPrimitiveValue(slot, Value());
    object->setStoreState(LObject::StoreState::Clean);
    object->setFault(true);
  }
}

}  // namespace ledgeon
