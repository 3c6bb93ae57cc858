// Writing pending changes in one SQL transaction and telling everyone what changed.
#include <algorithm>

#include "DataBase/DataBase.h"
#include "DataBase/DataBaseNotifications.h"
#include "DataBase/internal/Table.h"
#include "LObjects/ClassMetadata.h"
#include "Utilities/Error.h"
#include "Utilities/Log.h"
#include "Utilities/NotificationCenter.h"

namespace ledgeon {

namespace {

bool isDocumentProperty(const LObject& object) { return object.className() == "DocumentProperty"; }

struct ObjectChanges {
  LObject* object;
  std::set<std::string> keys;
  EditDict newValues;
  EditDict oldValues;
};

}  // namespace

void DataBase::writeJoinRows(LObject& object) {
  for (const PropertyDescription* p : object.entity().properties) {
    if (!p->isManyToMany() || !p->joinSourceIsFirst) continue;
    const Value& members = object.primitiveValue(p->index);
    if (members.isNull()) continue;  // never loaded, so never changed
    const std::string table = sql::quoted(p->joinTable);
    sql::Statement clear = connection_->prepare("DELETE FROM " + table + " WHERE first = ?");
    clear.bind(1, object.primaryKey());
    clear.run();
    sql::Statement insert =
        connection_->prepare("INSERT OR IGNORE INTO " + table + " (first, second) VALUES (?, ?)");
    for (const LObject* member : members.asObjects()) {
      insert.reset();
      insert.bind(1, object.primaryKey());
      insert.bind(2, member->primaryKey());
      insert.run();
    }
  }
}

void DataBase::writeChanges() {
  auto bindRow = [this](sql::Statement& statement, LObject& object, int first) {
    Table& table = tableFor(object.entity());
    const auto& slots = table.slotsByEntity[static_cast<size_t>(object.entity().id)];
    for (size_t i = 0; i < slots.size(); ++i) {
      const int parameter = first + static_cast<int>(i);
      if (slots[i] < 0) {
        statement.bindNull(parameter);
      } else {
        schema::bindValue(statement, parameter, object.primitiveValue(slots[i]));
      }
    }
    return first + static_cast<int>(slots.size());
  };
  for (LObject* object : inserted_) {
    Table& table = tableFor(object->entity());
    if (!table.insert.valid()) table.insert = connection_->prepare(table.layout->insertSQL);
    table.insert.reset();
    table.insert.bind(1, object->primaryKey());
    table.insert.bind(2, int64_t{object->entity().id});
    bindRow(table.insert, *object, 3);
    table.insert.run();
    writeJoinRows(*object);
  }
  for (const auto& entry : updated_) {
    LObject& object = *entry.first;
    Table& table = tableFor(object.entity());
    if (!table.update.valid()) table.update = connection_->prepare(table.layout->updateSQL);
    table.update.reset();
    const int last = bindRow(table.update, object, 1);
    table.update.bind(last, object.primaryKey());
    table.update.run();
    writeJoinRows(object);
  }
  for (LObject* object : deleted_) {
    Table& table = tableFor(object->entity());
    if (!table.remove.valid()) {
      table.remove = connection_->prepare("DELETE FROM " + table.layout->table + " WHERE Z_PK = ?");
    }
    table.remove.reset();
    table.remove.bind(1, object->primaryKey());
    table.remove.run();
    for (const PropertyDescription* p : object->entity().properties) {
      if (!p->isManyToMany()) continue;
      sql::Statement clear =
          connection_->prepare("DELETE FROM " + sql::quoted(p->joinTable) +
                               (p->joinSourceIsFirst ? " WHERE first = ?" : " WHERE second = ?"));
      clear.bind(1, object->primaryKey());
      clear.run();
    }
  }
}

Result<void> DataBase::commitAndSendNotifications(bool sendNotifications) {
  if (std::this_thread::get_id() != mainThread_) {
    throw std::logic_error("DataBase::commit called off the main thread");
  }
  if (!hasChanges()) return {};

  // Classify before anything changes state.
  ObjectSet added, changed, deleted;
  std::set<std::string> documentProperties;
  const int deletionSlot =
      Model::shared().requireEntity("LObject").property("deletionCount")->index;
  for (LObject* object : inserted_) {
    if (isDocumentProperty(*object)) {
      documentProperties.insert(object->stringForKey("name"));
    } else if (!object->isLObjectDeleted()) {
      added.push_back(object);
    }
  }
  std::vector<ObjectChanges> changes;
  for (auto& [object, record] : updated_) {
    if (isDocumentProperty(*object)) {
      documentProperties.insert(object->stringForKey("name"));
      continue;
    }
    const auto oldCount = record.oldValues.find(deletionSlot);
    if (oldCount != record.oldValues.end() &&
        oldCount->second.asInteger() != object->integerForKey("deletionCount")) {
      (object->isLObjectDeleted() ? deleted : added).push_back(object);
      continue;
    }
    changed.push_back(object);
    ObjectChanges entry{object, {}, {}, {}};
    for (const auto& [slot, oldValue] : record.oldValues) {
      const PropertyDescription& p = *object->entity().properties[static_cast<size_t>(slot)];
      const Value& now = object->primitiveValue(slot);
      if (now == oldValue && now.kind() == oldValue.kind()) continue;
      entry.keys.insert(p.name);
      entry.newValues.set(p.name, now);
      entry.oldValues.set(p.name, oldValue);
    }
    changes.push_back(std::move(entry));
  }
  for (LObject* object : deleted_) {
    if (isDocumentProperty(*object)) {
      documentProperties.insert(object->stringForKey("name"));
    } else {
      deleted.push_back(object);
    }
  }

  if (sendNotifications) notificationCenter().postNotificationName(kLDataBaseChanging, this);
  lockForCommit();
  try {
    sql::TransactionGuard transaction(*connection_);
    writeChanges();
    transaction.commit();
  } catch (const std::exception& e) {
    unlockForCommit();
    Error error = Error::make(kCocoaErrorDomain, 134030,
                              std::string("The ledger could not be saved: ") + e.what());
    LLog("COMMIT ERROR : %@ \n%@\n", error.localizedDescription(), connection_->lastError());
    if (sendNotifications) {
      notificationCenter().postNotificationName(kLDataBaseChangeFailed, this,
                                                UserInfo{{"error", error}});
    }
    return error;
  }
  unlockForCommit();

  // The hard-deleted objects stay alive until every observer has seen them.
  std::vector<std::unique_ptr<LObject>> departed;
  for (LObject* object : deleted_) {
    Table& table = tableFor(object->entity());
    const auto it = table.objects.find(object->primaryKey());
    if (it != table.objects.end()) {
      departed.push_back(std::move(it->second));
      table.objects.erase(it);
    }
  }
  for (LObject* object : inserted_) object->setStoreState(LObject::StoreState::Clean);
  for (auto& entry : updated_) entry.first->setStoreState(LObject::StoreState::Clean);
  inserted_.clear();
  updated_.clear();
  deleted_.clear();
  for (auto& table : tables_) table->pendingCount = 0;

  if (sendNotifications) {
    UserInfo info{{kAddedObjectsKey, added},
                  {kChangedObjectsKey, changed},
                  {kDeletedObjectsKey, deleted},
                  {kChangedDocumentPropertiesKey, documentProperties}};
    notificationCenter().postNotificationName(kLDataBaseChanged, this, std::move(info));

    std::map<LObject*, std::set<std::string>> changedKeys;
    for (const ObjectChanges& entry : changes) {
      changedKeys[entry.object] = entry.keys;
      for (const EntityDescription* e = &entry.object->entity(); e && e->parent; e = e->parent) {
        const ChangeRegistration* registration = changeRegistrationForClass(e->name);
        if (!registration) continue;
        const bool relevant =
            std::any_of(entry.keys.begin(), entry.keys.end(),
                        [&](const std::string& key) { return registration->keys.count(key) > 0; });
        if (!relevant) continue;
        notificationCenter().postNotificationName(classMetadata(e->name).changeNotificationName,
                                                  entry.object,
                                                  UserInfo{{kChangedObjectKey, entry.object},
                                                           {kChangedValuesKey, entry.newValues},
                                                           {kOldValuesKey, entry.oldValues}});
      }
    }
    for (const EntityDescription* e : Model::shared().entities()) {
      const ChangeRegistration* registration =
          e->parent ? changeRegistrationForClass(e->name) : nullptr;
      if (!registration) continue;
      if (registration->committed) registration->committed(*this);
      for (const auto& [primaryKey, object] : tableFor(*e).objects) {
        if (object->isFault() || object->entity().id != e->id) continue;
        const auto keys = changedKeys.find(object.get());
        object->registeredLObjectChangesCommitted(
            keys == changedKeys.end() ? std::set<std::string>{} : keys->second);
      }
    }
  }
  modifiedEntityTypes_.clear();
  return {};
}

}  // namespace ledgeon
