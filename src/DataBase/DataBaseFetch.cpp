// Fetches: SQL over the committed store, merged with the pending changes in memory.
#include <algorithm>
#include <stdexcept>

#include "DataBase/DataBase.h"
#include "DataBase/internal/QueryBuilder.h"
#include "DataBase/internal/Table.h"
#include "Utilities/Error.h"

namespace ledgeon {

namespace {

Result<const EntityDescription*> findEntity(std::string_view name) {
  const EntityDescription* entity = Model::shared().entity(name);
  if (!entity || !entity->parent) {
    return Error::make(kLErrorDomain, 3, "unknown entity \"" + std::string(name) + "\"");
  }
  return entity;
}

// Whether a valid key path goes through a to-many relationship (sorting cannot).
bool throughToMany(const EntityDescription& entity, std::string_view keyPath) {
  const EntityDescription* current = &entity;
  while (current) {
    const size_t dot = keyPath.find('.');
    const PropertyDescription* p = current->property(keyPath.substr(0, dot));
    if (!p || p->isToMany()) return p != nullptr;
    if (dot == std::string_view::npos) return false;
    current = p->target;
    keyPath.remove_prefix(dot + 1);
  }
  return false;
}

void sortInMemory(std::vector<LObject*>& objects, const std::vector<SortDescriptor>& sorts) {
  std::stable_sort(objects.begin(), objects.end(), [&sorts](LObject* a, LObject* b) {
    for (const SortDescriptor& sort : sorts) {
      const int order =
          compareValues(a->valueForKeyPath(sort.keyPath), b->valueForKeyPath(sort.keyPath));
      if (order != 0) return sort.ascending ? order < 0 : order > 0;
    }
    return a->primaryKey() < b->primaryKey();
  });
}

// Rows of plain values of the committed store, on any connection.
Result<std::vector<EditDict>> queryDictionaries(sql::Connection& connection,
                                                const EntityDescription& entity,
                                                const std::vector<std::string>& propertyNames,
                                                const FetchOptions& options) {
  std::vector<const PropertyDescription*> properties;
  if (propertyNames.empty()) {
    for (const PropertyDescription* p : entity.properties) {
      if (!p->isToMany()) properties.push_back(p);
    }
  }
  for (const std::string& name : propertyNames) {
    const PropertyDescription* p = entity.property(name);
    if (!p || p->isToMany()) {
      return Error::make(kLErrorDomain, 2,
                         entity.name + " has no attribute or to-one relationship \"" + name + "\"");
    }
    properties.push_back(p);
  }
  std::string columns = "t0.Z_PK";
  for (const PropertyDescription* p : properties) columns += ", t0." + sql::quoted(p->column);
  try {
    sql::QueryBuilder builder(entity);
    sql::Statement select = connection.prepare(builder.select(columns, options, true));
    builder.bindAll(select);
    std::vector<EditDict> rows;
    while (select.step()) {
      EditDict row;
      for (size_t i = 0; i < properties.size(); ++i) {
        row.set(properties[i]->name,
                schema::readColumn(select, static_cast<int>(i) + 1, *properties[i]));
      }
      rows.push_back(std::move(row));
    }
    return rows;
  } catch (const std::exception& e) {
    return Error::make(kLErrorDomain, 4, std::string("fetch failed: ") + e.what());
  }
}

}  // namespace

Result<void> DataBase::validateOptions(const EntityDescription& entity,
                                       const FetchOptions& options) const {
  if (auto ok = options.predicate.validate(entity); !ok) return ok;
  for (const SortDescriptor& sort : options.sortDescriptors) {
    auto keyPredicate = Predicate::parse("%K == nil", {Value(sort.keyPath)});
    if (!keyPredicate) return keyPredicate.error();
    if (auto ok = keyPredicate->validate(entity); !ok) return ok;
    if (throughToMany(entity, sort.keyPath)) {
      return Error::make(kLErrorDomain, 2,
                         "cannot sort by \"" + sort.keyPath +
                             "\": it goes through a to-many "
                             "relationship");
    }
  }
  for (const std::string& keyPath : options.prefetchKeyPaths) {
    if (auto ok = validatePrefetchKeyPath(entity, keyPath); !ok) return ok;
  }
  return {};
}

Result<std::vector<LObject*>> DataBase::fetch(std::string_view entityName,
                                              const FetchOptions& options) {
  auto found = findEntity(entityName);
  if (!found) return found.error();
  const EntityDescription& entity = **found;
  if (auto ok = validateOptions(entity, options); !ok) return ok.error();
  const bool pending = hasPendingChangesFor(entity);
  std::vector<LObject*> objects;
  try {
    sql::QueryBuilder builder(entity);
    const Table& table = tableFor(entity);
    const std::string& columns =
        options.asFaults ? std::string("t0.Z_PK, t0.Z_ENT") : table.layout->selectColumns;
    sql::Statement select = connection_->prepare(builder.select(columns, options, !pending));
    builder.bindAll(select);
    while (select.step()) {
      LObject& object = options.asFaults ? materializeFault(*entity.root, select)
                                         : materialize(*entity.root, select);
      if (!pending || object.storeState() == LObject::StoreState::Clean) objects.push_back(&object);
    }
  } catch (const std::exception& e) {
    return Error::make(kLErrorDomain, 4, std::string("fetch failed: ") + e.what());
  }
  if (pending) {
    for (LObject* object : pendingObjectsOfEntity(entity)) {
      if (!options.includeDeleted && object->isLObjectDeleted()) continue;
      if (options.predicate.evaluate(*object)) objects.push_back(object);
    }
    sortInMemory(objects, options.sortDescriptors);
    if (options.fetchLimit > 0 && objects.size() > options.fetchLimit) {
      objects.resize(options.fetchLimit);
    }
  }
  for (const std::string& keyPath : options.prefetchKeyPaths) prefetchKeyPath(objects, keyPath);
  return objects;
}

std::vector<LObject*> DataBase::instancesOfClass(std::string_view entityName,
                                                 const FetchOptions& options) {
  auto objects = fetch(entityName, options);
  if (!objects) throw std::logic_error(objects.error().localizedDescription());
  return std::move(objects).value();
}

size_t DataBase::countForInstancesOfClass(std::string_view entityName, const Predicate& predicate,
                                          bool includeDeleted) {
  const EntityDescription& entity = Model::shared().requireEntity(entityName);
  const FetchOptions options{.predicate = predicate, .includeDeleted = includeDeleted};
  if (auto ok = validateOptions(entity, options); !ok) {
    throw std::logic_error(ok.error().localizedDescription());
  }
  if (hasPendingChangesFor(entity)) return instancesOfClass(entityName, options).size();
  sql::QueryBuilder builder(entity);
  std::string text = builder.select("COUNT(*)", options, false);
  text.erase(text.rfind(" ORDER BY"));
  sql::Statement count = connection_->prepare(text);
  builder.bindAll(count);
  count.step();
  return static_cast<size_t>(count.integer(0));
}

Result<std::vector<EditDict>> DataBase::dictionariesForClass(
    std::string_view entityName, const std::vector<std::string>& propertyNames,
    const FetchOptions& options) {
  auto found = findEntity(entityName);
  if (!found) return found.error();
  if (auto ok = validateOptions(**found, options); !ok) return ok.error();
  return queryDictionaries(*connection_, **found, propertyNames, options);
}

Result<std::vector<EditDict>> DataBase::backgroundDictionariesForClass(
    std::string_view entityName, const std::vector<std::string>& propertyNames,
    const FetchOptions& options) {
  if (!isCurrentThreadLockedForBackgroundReading()) {
    throw std::logic_error("background reading without lockForBackgroundReading");
  }
  auto found = findEntity(entityName);
  if (!found) return found.error();
  if (auto ok = validateOptions(**found, options); !ok) return ok.error();
  return queryDictionaries(backgroundConnection(), **found, propertyNames, options);
}

Result<size_t> DataBase::backgroundCountForInstancesOfClass(std::string_view entityName,
                                                            const Predicate& predicate) {
  if (!isCurrentThreadLockedForBackgroundReading()) {
    throw std::logic_error("background reading without lockForBackgroundReading");
  }
  auto found = findEntity(entityName);
  if (!found) return found.error();
  const FetchOptions options{.predicate = predicate};
  if (auto ok = validateOptions(**found, options); !ok) return ok.error();
  try {
    sql::QueryBuilder builder(**found);
    std::string text = builder.select("COUNT(*)", options, false);
    text.erase(text.rfind(" ORDER BY"));
    sql::Statement count = backgroundConnection().prepare(text);
    builder.bindAll(count);
    count.step();
    return static_cast<size_t>(count.integer(0));
  } catch (const std::exception& e) {
    return Error::make(kLErrorDomain, 4, std::string("count failed: ") + e.what());
  }
}

sql::Connection& DataBase::backgroundConnection() {
  std::lock_guard lock(threadDictionariesLock_);
  auto& connection = threadDictionaries_[std::this_thread::get_id()];
  if (!connection) {
    auto opened = sql::Connection::open(bookmarkedFileURL().string(), SQLITE_OPEN_READONLY);
    if (!opened) throw std::runtime_error(opened.error().localizedDescription());
    connection = std::make_unique<sql::Connection>(std::move(opened).value());
  }
  return *connection;
}

void DataBase::releaseBackgroundConnection() {
  std::lock_guard lock(threadDictionariesLock_);
  threadDictionaries_.erase(std::this_thread::get_id());
}

}  // namespace ledgeon
