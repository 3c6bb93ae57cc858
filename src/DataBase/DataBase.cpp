// Lifetime of the store, the identity map and the object context.
#include "DataBase/DataBase.h"

#include <algorithm>
#include <stdexcept>

#include "DataBase/internal/StoreFile.h"
#include "DataBase/internal/Table.h"
#include "Utilities/Error.h"
#include "Utilities/Log.h"
#include "Utilities/NotificationCenter.h"

namespace ledgeon {

namespace {

Error openError(const std::filesystem::path& file, const std::string& problem) {
  Error error = Error::make(kCocoaErrorDomain, 260, file.string() + ": " + problem);
  error.userInfo[kFilePathErrorKey] = file.string();
  return error;
}

}  // namespace

Result<std::unique_ptr<DataBase>> DataBase::initWithFileURL(const std::filesystem::path& file,
                                                            bool newFile) {
  std::error_code ec;
  const bool exists = std::filesystem::exists(file, ec);
  if (newFile && exists) return openError(file, "a file of that name already exists");
  if (!newFile && !exists) return openError(file, "no ledger store at this path");
  if (!newFile) {
    if (auto ok = storefile::checkDatabaseFile(file); !ok) return ok.error();
    if (auto ok = storefile::checkLedgerStore(file); !ok) return ok.error();
  }
  const int flags = SQLITE_OPEN_READWRITE | (newFile ? SQLITE_OPEN_CREATE : 0);
  auto connection = sql::Connection::open(file.string(), flags);
  if (!connection) return connection.error();
  try {
    connection->exec("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL");
    if (newFile) {
      sql::TransactionGuard transaction(*connection);
      for (const std::string& statement : schema::creationStatements()) {
        connection->exec(statement);
      }
      schema::writeMetadata(*connection);
      transaction.commit();
    }
  } catch (const std::exception& e) {
    return openError(file, std::string("cannot prepare the ledger store: ") + e.what());
  }
  std::unique_ptr<DataBase> db(
      new DataBase(file, std::make_unique<sql::Connection>(std::move(connection).value())));
  try {
    db->loadPrimaryKeyCounters();
    if (!newFile) {
      std::vector<std::string> messages;
      db->performRepairsWithLogMessages(messages);
      for (const std::string& message : messages) LLog("%@", message);
    }
  } catch (const std::exception& e) {
    return openError(file, std::string("cannot read the ledger store: ") + e.what());
  }
  return db;
}

DataBase::DataBase(std::filesystem::path file, std::unique_ptr<sql::Connection> connection)
    : file_(std::move(file)),
      connection_(std::move(connection)),
      mainThread_(std::this_thread::get_id()),
      lock_(mainThread_) {
  openBookmark();
  const Model& model = Model::shared();
  for (const schema::TableLayout& layout : schema::tableLayouts()) {
    auto table = std::make_unique<Table>();
    table->layout = &layout;
    table->slotsByEntity.resize(model.entities().size());
    for (const int id : layout.root->hierarchyIds) {
      const EntityDescription& entity = model.entity(id);
      auto& slots = table->slotsByEntity[static_cast<size_t>(id)];
      for (const PropertyDescription* column : layout.columns) {
        slots.push_back(entity.property(column->name) == column ? column->index : -1);
      }
    }
    tables_.push_back(std::move(table));
  }
}

DataBase::~DataBase() { close(); }

void DataBase::close() {
  {
    std::lock_guard lock(threadDictionariesLock_);
    threadDictionaries_.clear();
  }
  inserted_.clear();
  updated_.clear();
  deleted_.clear();
  documentPropertyCache_.clear();
  for (auto& table : tables_) {
    table->insert = {};
    table->update = {};
    table->selectByPrimaryKey = {};
    table->remove = {};
    table->objects.clear();
  }
  if (connection_) connection_->close();
  closeBookmark();
}

void DataBase::reset() {
  inserted_.clear();
  updated_.clear();
  deleted_.clear();
  documentPropertyCache_.clear();
  modifiedEntityTypes_.clear();
  for (auto& table : tables_) {
    table->objects.clear();
    table->pendingCount = 0;
  }
  loadPrimaryKeyCounters();
}

bool DataBase::hasChanges() const {
  return !inserted_.empty() || !updated_.empty() || !deleted_.empty();
}

size_t DataBase::registeredObjectCount() const {
  size_t count = 0;
  for (const auto& table : tables_) count += table->objects.size();
  return count;
}

std::map<std::string, std::string> DataBase::storeMetadata() {
  std::map<std::string, std::string> metadata;
  sql::Statement select =
      connection_->prepare(std::string("SELECT key, value FROM ") + schema::kMetadataTable);
  while (select.step()) metadata.emplace(select.text(0), select.text(1));
  return metadata;
}

std::map<std::string, DataBase::ObjectCount> DataBase::storedObjectCounts() {
  std::map<std::string, ObjectCount> counts;
  for (const auto& table : tables_) {
    sql::Statement select = connection_->prepare(
        "SELECT Z_ENT, COUNT(*), SUM(IFNULL(\"deletionCount\", 0) != 0) FROM " +
        table->layout->table + " GROUP BY Z_ENT");
    while (select.step()) {
      const EntityDescription& entity = Model::shared().entity(static_cast<int>(select.integer(0)));
      counts[entity.name] = {static_cast<size_t>(select.integer(1)),
                             static_cast<size_t>(select.integer(2))};
    }
  }
  return counts;
}

void DataBase::loadPrimaryKeyCounters() {
  for (auto& table : tables_) {
    sql::Statement max =
        connection_->prepare("SELECT IFNULL(MAX(Z_PK), 0) FROM " + table->layout->table);
    max.step();
    table->nextPrimaryKey = max.integer(0) + 1;
  }
}

DataBase::Table& DataBase::tableFor(const EntityDescription& entity) {
  const auto& roots = Model::shared().roots();
  const auto it = std::find(roots.begin(), roots.end(), entity.root);
  if (it == roots.end()) throw std::logic_error(entity.name + " is not stored");
  return *tables_[static_cast<size_t>(it - roots.begin())];
}

const EntityDescription& DataBase::entityDescriptionForName(std::string_view name) const {
  return Model::shared().requireEntity(name);
}

LObject& DataBase::registerObject(const EntityDescription& entity, int64_t primaryKey, bool fault) {
  Table& table = tableFor(entity);
  auto object = std::make_unique<LObject>(entity, primaryKey, this);
  object->setFault(fault);
  LObject& result = *object;
  table.objects.emplace(primaryKey, std::move(object));
  return result;
}

LObject* DataBase::objectWithPrimaryKey(const EntityDescription& entity, int64_t primaryKey) {
  Table& table = tableFor(entity);
  const auto it = table.objects.find(primaryKey);
  if (it != table.objects.end()) return it->second.get();
  if (primaryKey <= 0 || primaryKey >= table.nextPrimaryKey) return nullptr;
  return &registerObject(entity, primaryKey, true);
}

void DataBase::fillFromRow(LObject& object, const sql::Statement& row) {
  Table& table = tableFor(object.storedEntity());
  const auto& slots = table.slotsByEntity[static_cast<size_t>(object.storedEntity().id)];
  const auto& columns = table.layout->columns;
  size_t present = 0;
  for (size_t i = 0; i < columns.size(); ++i) {
    if (slots[i] >= 0 && !row.isNull(static_cast<int>(i) + 2)) ++present;
  }
  object.reservePrimitiveValues(present);
  for (size_t i = 0; i < columns.size(); ++i) {
    const int column = static_cast<int>(i) + 2;
    if (slots[i] < 0 || row.isNull(column)) continue;
    const PropertyDescription& p = *columns[i];
    Value value = schema::readColumn(row, column, p);
    if (p.isToOne()) value = Value(objectWithPrimaryKey(*p.target, value.asInteger()));
    object.setPrimitiveValue(slots[i], std::move(value));
  }
  object.setFault(false);
}

LObject& DataBase::materialize(const EntityDescription& rootEntity, const sql::Statement& row) {
  Table& table = tableFor(rootEntity);
  const int64_t primaryKey = row.integer(0);
  const EntityDescription& entity = Model::shared().entity(static_cast<int>(row.integer(1)));
  const auto it = table.objects.find(primaryKey);
  if (it != table.objects.end()) {
    LObject& object = *it->second;
    if (object.isFault()) {
      object.setEntity(entity);
      fillFromRow(object, row);
    }
    return object;
  }
  LObject& object = registerObject(entity, primaryKey, false);
  fillFromRow(object, row);
  return object;
}

LObject& DataBase::materializeFault(const EntityDescription& rootEntity,
                                    const sql::Statement& row) {
  Table& table = tableFor(rootEntity);
  const int64_t primaryKey = row.integer(0);
  const auto it = table.objects.find(primaryKey);
  const EntityDescription& entity = Model::shared().entity(static_cast<int>(row.integer(1)));
  if (it != table.objects.end()) {
    if (it->second->isFault()) it->second->setEntity(entity);
    return *it->second;
  }
  LObject& object = registerObject(entity, primaryKey, true);
  object.setEntity(entity);
  return object;
}

LObject& DataBase::insertNewObject(const EntityDescription& entity) {
  if (!entity.parent) throw std::logic_error("LObject itself cannot be inserted");
  Table& table = tableFor(entity);
  LObject& object = registerObject(entity, table.nextPrimaryKey++, false);
  object.setStoreState(LObject::StoreState::Inserted);
  inserted_.push_back(&object);
  ++table.pendingCount;
  modifiedEntityTypes_.insert(entity.name);
  return object;
}

LObject& DataBase::createEntityType(std::string_view entityName) {
  return LObject::createEntityInManagedObjectContext(*this, entityName, {});
}

LObject& DataBase::createEntity(std::string_view entityName, const EditDict& data) {
  return LObject::createEntityInManagedObjectContext(*this, entityName, data);
}

void DataBase::fulfillFault(LObject& object) {
  Table& table = tableFor(object.storedEntity());
  if (!table.selectByPrimaryKey.valid()) {
    table.selectByPrimaryKey =
        connection_->prepare("SELECT " + table.layout->selectColumns + " FROM " +
                             table.layout->table + " t0 WHERE t0.Z_PK = ?");
  }
  sql::Statement& select = table.selectByPrimaryKey;
  select.reset();
  select.bind(1, object.primaryKey());
  object.setFault(false);
  if (!select.step()) {
    LLog("ERROR: %@ has no stored row", object.shortDescription());
    return;
  }
  object.setEntity(Model::shared().entity(static_cast<int>(select.integer(1))));
  fillFromRow(object, select);
  select.reset();
}

void DataBase::objectWillChange(LObject& object, const PropertyDescription& property,
                                const Value& oldValue) {
  modifiedEntityTypes_.insert(object.className());
  switch (object.storeState()) {
    case LObject::StoreState::Inserted:
    case LObject::StoreState::Deleted:
      return;
    case LObject::StoreState::Clean:
      object.setStoreState(LObject::StoreState::Updated);
      ++tableFor(object.entity()).pendingCount;
      break;
    case LObject::StoreState::Updated:
      break;
  }
  updated_[&object].oldValues.try_emplace(property.index, oldValue);
}

void DataBase::deleteEntity(LObject& object) {
  if (object.storeState() == LObject::StoreState::Deleted) return;
  // Nullify: nothing may keep pointing at an object that leaves the store.
  for (const PropertyDescription* p : object.entity().properties) {
    if (p->isToOne()) {
      object.setValueForKey(p->name, Value());
    } else if (p->isToMany()) {
      object.setValueForKey(p->name, Value(ObjectSet{}));
    }
  }
  if (object.storeState() == LObject::StoreState::Clean) ++tableFor(object.entity()).pendingCount;
  if (object.storeState() == LObject::StoreState::Inserted) {
    inserted_.erase(std::find(inserted_.begin(), inserted_.end(), &object));
  }
  updated_.erase(&object);
  object.setStoreState(LObject::StoreState::Deleted);
  deleted_.push_back(&object);
  modifiedEntityTypes_.insert(object.className());
  if (object.className() == "DocumentProperty") {
    documentPropertyCache_.erase(object.stringForKey("name"));
  }
}

ObjectSet DataBase::loadToMany(LObject& object, const PropertyDescription& p) {
  ObjectSet members;
  const bool stored = object.storeState() != LObject::StoreState::Inserted;
  if (p.isManyToMany()) {
    if (!stored) return members;
    const char* mine = p.joinSourceIsFirst ? "first" : "second";
    const char* theirs = p.joinSourceIsFirst ? "second" : "first";
    sql::Statement select =
        connection_->prepare(std::string("SELECT ") + theirs + " FROM " + sql::quoted(p.joinTable) +
                             " WHERE " + mine + " = ?");
    select.bind(1, object.primaryKey());
    while (select.step()) {
      if (LObject* member = objectWithPrimaryKey(*p.target, select.integer(0))) {
        members.push_back(member);
      }
    }
    return members;
  }
  // One-to-many: the objects whose to-one inverse points here, as stored and as pending.
  const PropertyDescription& inverse = *p.inverse;
  const EntityDescription& target = *p.target;
  if (stored) {
    const schema::TableLayout& layout = *tableFor(target).layout;
    std::string ids;
    for (const int id : target.hierarchyIds) ids += (ids.empty() ? "" : ", ") + std::to_string(id);
    sql::Statement select = connection_->prepare(
        "SELECT " + layout.selectColumns + " FROM " + layout.table + " t0 WHERE t0." +
        sql::quoted(inverse.column) + " = ? AND t0.Z_ENT IN (" + ids + ") ORDER BY t0.Z_PK");
    select.bind(1, object.primaryKey());
    while (select.step()) {
      LObject& member = materialize(*target.root, select);
      if (member.storeState() == LObject::StoreState::Clean) members.push_back(&member);
    }
  }
  for (LObject* member : pendingObjectsOfEntity(target)) {
    if (member->primitiveValue(inverse.index).asObject() == &object) members.push_back(member);
  }
  return members;
}

std::vector<LObject*> DataBase::pendingObjectsOfEntity(const EntityDescription& entity) {
  std::vector<LObject*> objects;
  if (tableFor(entity).pendingCount == 0) return objects;
  for (LObject* object : inserted_) {
    if (object->entity().isKindOf(entity)) objects.push_back(object);
  }
  for (const auto& entry : updated_) {
    if (entry.first->entity().isKindOf(entity)) objects.push_back(entry.first);
  }
  std::sort(objects.begin(), objects.end(),
            [](const LObject* a, const LObject* b) { return a->primaryKey() < b->primaryKey(); });
  return objects;
}

bool DataBase::hasPendingChangesFor(const EntityDescription& entity) const {
  const auto& roots = Model::shared().roots();
  const auto it = std::find(roots.begin(), roots.end(), entity.root);
  return tables_[static_cast<size_t>(it - roots.begin())]->pendingCount > 0;
}

void DataBase::clearCacheForClass(const std::string& className) {
  if (className == "DocumentProperty") documentPropertyCache_.clear();
}

NotificationCenter& DataBase::notificationCenter() { return NotificationCenter::defaultCenter(); }

}  // namespace ledgeon
