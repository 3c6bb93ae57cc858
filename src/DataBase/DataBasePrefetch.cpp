// Loading many objects in a few queries: faults a batch at a time, and the objects of
// relationships named by a fetch's prefetch key paths.
#include <algorithm>
#include <unordered_map>

#include "DataBase/DataBase.h"
#include "DataBase/internal/Table.h"
#include "Utilities/Error.h"

namespace ledgeon {

namespace {

// Primary keys per statement: well inside SQLite's limits on statement length.
constexpr size_t kBatch = 500;

std::string keyList(const std::vector<LObject*>& objects, size_t begin, size_t end) {
  std::string list;
  for (size_t i = begin; i < end; ++i) {
    list += (list.empty() ? "" : ", ") + std::to_string(objects[i]->primaryKey());
  }
  return list;
}

std::string entityList(const EntityDescription& entity) {
  std::string ids;
  for (const int id : entity.hierarchyIds) ids += (ids.empty() ? "" : ", ") + std::to_string(id);
  return ids;
}

}  // namespace

Result<void> DataBase::validatePrefetchKeyPath(const EntityDescription& entity,
                                               std::string_view keyPath) const {
  const EntityDescription* current = &entity;
  std::string_view rest = keyPath;
  while (true) {
    const size_t dot = rest.find('.');
    const std::string_view key = rest.substr(0, dot);
    const PropertyDescription* p = current->property(key);
    if (!p || p->isAttribute()) {
      return Error::make(kLErrorDomain, 2,
                         "cannot prefetch \"" + std::string(keyPath) + "\": " + current->name +
                             " has no relationship \"" + std::string(key) + "\"");
    }
    if (dot == std::string_view::npos) return {};
    current = p->target;
    rest.remove_prefix(dot + 1);
  }
}

void DataBase::fulfillFaults(const std::vector<LObject*>& objects) {
  // Faults by table; the rows of each table are read in batches.
  std::unordered_map<const EntityDescription*, std::vector<LObject*>> faults;
  for (LObject* object : objects) {
    if (object && object->isFault()) faults[object->storedEntity().root].push_back(object);
  }
  for (auto& [root, pending] : faults) {
    const schema::TableLayout& layout = *tableFor(*root).layout;
    for (size_t begin = 0; begin < pending.size(); begin += kBatch) {
      const size_t end = std::min(pending.size(), begin + kBatch);
      sql::Statement select =
          connection_->prepare("SELECT " + layout.selectColumns + " FROM " + layout.table +
                               " t0 WHERE t0.Z_PK IN (" + keyList(pending, begin, end) + ")");
      while (select.step()) materialize(*root, select);
    }
    for (LObject* object : pending) {
      if (object->isFault()) fulfillFault(*object);  // no stored row: logged there
    }
  }
}

void DataBase::prefetchToMany(const std::vector<LObject*>& owners, const PropertyDescription& p,
                              std::vector<LObject*>& members) {
  // Owners whose members are not known yet and come only from the store. With pending changes
  // in the members' table, the ordinary loading merges them in.
  std::vector<LObject*> stored;
  for (LObject* owner : owners) {
    if (!owner->primitiveValue(p.index).isNull()) continue;
    if (owner->storeState() == LObject::StoreState::Inserted || hasPendingChangesFor(*p.target)) {
      owner->valueForKey(p.name);
    } else {
      stored.push_back(owner);
    }
  }
  std::unordered_map<LObject*, ObjectSet> found;
  for (size_t begin = 0; begin < stored.size(); begin += kBatch) {
    const size_t end = std::min(stored.size(), begin + kBatch);
    const std::string keys = keyList(stored, begin, end);
    if (p.isManyToMany()) {
      const char* mine = p.joinSourceIsFirst ? "first" : "second";
      const char* theirs = p.joinSourceIsFirst ? "second" : "first";
      sql::Statement select = connection_->prepare(std::string("SELECT ") + mine + ", " + theirs +
                                                   " FROM " + sql::quoted(p.joinTable) + " WHERE " +
                                                   mine + " IN (" + keys + ") ORDER BY " + theirs);
      while (select.step()) {
        LObject* owner = objectWithPrimaryKey(*p.owner, select.integer(0));
        LObject* member = objectWithPrimaryKey(*p.target, select.integer(1));
        if (owner && member) found[owner].push_back(member);
      }
      continue;
    }
    const schema::TableLayout& layout = *tableFor(*p.target).layout;
    const std::string column = "t0." + sql::quoted(p.inverse->column);
    sql::Statement select = connection_->prepare(
        "SELECT " + layout.selectColumns + " FROM " + layout.table + " t0 WHERE " + column +
        " IN (" + keys + ") AND t0.Z_ENT IN (" + entityList(*p.target) + ") ORDER BY t0.Z_PK");
    while (select.step()) {
      LObject& member = materialize(*p.target->root, select);
      if (LObject* owner = member.primitiveValue(p.inverse->index).asObject()) {
        found[owner].push_back(&member);
      }
    }
  }
  for (LObject* owner : stored) {
    auto it = found.find(owner);
    owner->setPrimitiveValue(p.index, Value(it == found.end() ? ObjectSet{} : it->second));
  }
  for (LObject* owner : owners) {
    for (LObject* member : owner->primitiveValue(p.index).asObjects()) members.push_back(member);
  }
}

void DataBase::prefetchKeyPath(const std::vector<LObject*>& objects, std::string_view keyPath) {
  std::vector<LObject*> current = objects;
  while (!current.empty()) {
    const size_t dot = keyPath.find('.');
    const std::string key(keyPath.substr(0, dot));
    fulfillFaults(current);
    std::vector<LObject*> next;
    // Objects of different entities may hold the key as different properties.
    std::unordered_map<const PropertyDescription*, std::vector<LObject*>> byProperty;
    for (LObject* object : current) {
      if (const PropertyDescription* p = object->entity().property(key)) {
        byProperty[p].push_back(object);
      }
    }
    for (auto& [p, owners] : byProperty) {
      if (p->isToOne()) {
        for (LObject* owner : owners) next.push_back(owner->primitiveValue(p->index).asObject());
      } else if (p->isToMany()) {
        prefetchToMany(owners, *p, next);
      }
    }
    std::sort(next.begin(), next.end());
    next.erase(std::unique(next.begin(), next.end()), next.end());
    std::erase(next, nullptr);
    if (dot == std::string_view::npos) {
      fulfillFaults(next);
      return;
    }
    current = std::move(next);
    keyPath.remove_prefix(dot + 1);
  }
}

}  // namespace ledgeon
