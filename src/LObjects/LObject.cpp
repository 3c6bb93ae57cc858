#include "LObjects/LObject.h"

#include <algorithm>
#include <stdexcept>

#include "LObjects/ClassMetadata.h"
#include "Utilities/Clock.h"
#include "Utilities/Log.h"
#include "Utilities/NotificationCenter.h"

namespace ledgeon {

namespace {

const Value kNull;

bool contains(const ObjectSet& set, const LObject* object) {
  return std::find(set.begin(), set.end(), object) != set.end();
}

bool isNaNAmount(const Value& value) {
  return value.kind() == Value::Kind::Amount && value.asAmount().isNaN();
}

// The value converted to what the attribute stores, or null when it cannot be.
std::optional<Value> coerce(const PropertyDescription& p, const Value& value) {
  using Kind = Value::Kind;
  if (value.isNull()) return value;
  switch (p.type) {
    case AttributeType::String:
      if (value.kind() == Kind::String) return value;
      break;
    case AttributeType::Integer:
      if (value.kind() == Kind::Integer) return value;
      if (value.kind() == Kind::Boolean) return Value(value.asInteger());
      break;
    case AttributeType::Amount:
      if (value.kind() == Kind::Amount) return value;
      if (value.isNumber()) return Value(value.asAmount());
      break;
    case AttributeType::Date:
      if (value.kind() == Kind::Date) return value;
      break;
    case AttributeType::Dictionary:
      if (value.kind() == Kind::Dictionary) return value;
      break;
    case AttributeType::Binary:
      if (value.kind() == Kind::Binary) return value;
      break;
  }
  return std::nullopt;
}

}  // namespace

LObject::LObject(const EntityDescription& entity, int64_t primaryKey, LObjectContext* context)
    : entity_(&entity), primaryKey_(primaryKey), context_(context) {}

const PropertyDescription& LObject::requireProperty(std::string_view key,
                                                    const char* operation) const {
  const PropertyDescription* p = entity_->property(key);
  if (!p) {
    throw std::logic_error(
        stringWithFormat("-[%@ %@]: this class is not key value coding-compliant for the key %@",
                         className(), operation, key));
  }
  return *p;
}

void LObject::fulfill() {
  if (fault_ && context_) context_->fulfillFault(*this);
}

const Value& LObject::primitiveValue(int index) const {
  const Value* value = slots_.find(index);
  return value ? *value : kNull;
}

void LObject::setPrimitiveValue(int index, Value value) { slots_.set(index, std::move(value)); }

void LObject::clearToManyCaches() {
  slots_.eraseIf(
      [this](int slot) { return entity_->properties[static_cast<size_t>(slot)]->isToMany(); });
}

const Value& LObject::slotValue(const PropertyDescription& p) {
  fulfill();
  if (p.isToMany()) {
    const Value& cached = primitiveValue(p.index);
    if (!cached.isNull() || !context_) return cached;
    setPrimitiveValue(p.index, Value(context_->loadToMany(*this, p)));
  }
  return primitiveValue(p.index);
}

void LObject::changeSlot(const PropertyDescription& p, Value value) {
  fulfill();
  const Value& old = primitiveValue(p.index);
  if (old == value && old.kind() == value.kind()) return;
  if (context_) context_->objectWillChange(*this, p, old);
  setPrimitiveValue(p.index, std::move(value));
}

Value LObject::valueForKey(std::string_view key) {
  return slotValue(requireProperty(key, "valueForKey:"));
}

Value LObject::valueForKeyPath(std::string_view keyPath) {
  LObject* object = this;
  while (true) {
    const size_t dot = keyPath.find('.');
    if (dot == std::string_view::npos) return object->valueForKey(keyPath);
    object = object->valueForKey(keyPath.substr(0, dot)).asObject();
    if (!object) return {};
    keyPath.remove_prefix(dot + 1);
  }
}

std::string LObject::stringForKey(std::string_view key) {
  const Value value = valueForKey(key);
  return value.isNull() ? std::string() : value.asString();
}
int64_t LObject::integerForKey(std::string_view key) { return valueForKey(key).asInteger(); }
Amount LObject::amountForKey(std::string_view key) { return valueForKey(key).asAmount(); }
LObject* LObject::objectForKey(std::string_view key) { return valueForKey(key).asObject(); }
ObjectSet LObject::objectsForKey(std::string_view key) { return valueForKey(key).asObjects(); }

void LObject::setValueForKey(std::string_view key, const Value& value) {
  const PropertyDescription& p = requireProperty(key, "setValue:forKey:");
  if (isNaNAmount(value)) {
    LLog("ERROR: Trying to store a NaN value for the key \"%@\" in the following object: %@", key,
         description());
    return;
  }
  switch (p.kind) {
    case PropertyKind::Attribute: {
      auto converted = coerce(p, value);
      if (!converted) {
        LLog("ERROR: -[%@ setValue:forKey:] wrong kind of value for key %@: %@", className(), key,
             value);
        return;
      }
      changeSlot(p, std::move(*converted));
      return;
    }
    case PropertyKind::ToOne: {
      LObject* target = value.kind() == Value::Kind::Object ? value.asObject() : nullptr;
      if ((!value.isNull() && !target) || (target && !target->entity().isKindOf(*p.target))) {
        LLog("ERROR: -[%@ setValue:forKey:] wrong kind of value for key %@: %@", className(), key,
             value);
        return;
      }
      setToOne(p, target);
      return;
    }
    case PropertyKind::ToMany:
      if (value.kind() == Value::Kind::Edit) {
        applyToManyEdit(p, value.asEdit());
      } else if (value.kind() == Value::Kind::Objects || value.isNull()) {
        setToMany(p, value.asObjects());
      } else {
        LLog("ERROR: -[%@ setValue:forKey:] wrong kind of value for key %@: %@", className(), key,
             value);
      }
      return;
  }
}

void LObject::setValueForKeyPath(std::string_view keyPath, const Value& value) {
  const size_t dot = keyPath.rfind('.');
  if (dot == std::string_view::npos) return setValueForKey(keyPath, value);
  const Value holder = valueForKeyPath(keyPath.substr(0, dot));
  if (LObject* object = holder.asObject()) object->setValueForKey(keyPath.substr(dot + 1), value);
}

void LObject::setToOne(const PropertyDescription& p, LObject* target) {
  LObject* old = slotValue(p).asObject();
  if (old == target) return;
  changeSlot(p, Value(target));
  const PropertyDescription& q = *p.inverse;
  if (q.isToOne()) {
    if (old && old->slotValue(q).asObject() == this) old->changeSlot(q, Value());
    if (target) {
      LObject* previous = target->slotValue(q).asObject();
      if (previous && previous != this) previous->changeSlot(p, Value());
      target->changeSlot(q, Value(this));
    }
    return;
  }
  // The other side is a to-many: keep its loaded member list in step; one not loaded yet will
  // be read with this change included.
  for (LObject* holder : {old, target}) {
    if (!holder) continue;
    holder->fulfill();
    const Value& cached = holder->primitiveValue(q.index);
    if (context_) context_->objectWillChange(*holder, q, cached);
    if (cached.isNull()) continue;
    ObjectSet members = cached.asObjects();
    if (holder == old) {
      std::erase(members, this);
    } else if (!contains(members, this)) {
      members.push_back(this);
    }
    holder->setPrimitiveValue(q.index, Value(std::move(members)));
  }
}

void LObject::addToMany(const PropertyDescription& p, LObject* object) {
  if (!object || contains(slotValue(p).asObjects(), object)) return;
  const PropertyDescription& q = *p.inverse;
  if (q.isToOne()) return object->setToOne(q, this);
  ObjectSet mine = slotValue(p).asObjects();
  ObjectSet theirs = object->slotValue(q).asObjects();
  mine.push_back(object);
  if (!contains(theirs, this)) theirs.push_back(this);
  changeSlot(p, Value(std::move(mine)));
  object->changeSlot(q, Value(std::move(theirs)));
}

void LObject::removeFromToMany(const PropertyDescription& p, LObject* object) {
  if (!object || !contains(slotValue(p).asObjects(), object)) return;
  const PropertyDescription& q = *p.inverse;
  if (q.isToOne()) {
    if (object->slotValue(q).asObject() == this) object->setToOne(q, nullptr);
    return;
  }
  ObjectSet mine = slotValue(p).asObjects();
  ObjectSet theirs = object->slotValue(q).asObjects();
  std::erase(mine, object);
  std::erase(theirs, this);
  changeSlot(p, Value(std::move(mine)));
  object->changeSlot(q, Value(std::move(theirs)));
}

void LObject::setToMany(const PropertyDescription& p, const ObjectSet& objects) {
  const ObjectSet current = slotValue(p).asObjects();
  for (LObject* member : current) {
    if (!contains(objects, member)) removeFromToMany(p, member);
  }
  for (LObject* member : objects) addToMany(p, member);
}

void LObject::applyToManyEdit(const PropertyDescription& p, const ToManyEdit& edit) {
  if (edit.replaceObjects) setToMany(p, *edit.replaceObjects);
  if (edit.removeObjects) {
    for (LObject* member : *edit.removeObjects) removeFromToMany(p, member);
  }
  if (edit.addObjects) {
    for (LObject* member : *edit.addObjects) addToMany(p, member);
  }
}

void LObject::touch() {
  changeSlot(*entity_->property("modificationTimestamp"), Value(Clock::now()));
}

LObject& LObject::createEntityInManagedObjectContext(LObjectContext& context,
                                                     std::string_view entityName,
                                                     const EditDict& data) {
  const EntityDescription& entity = Model::shared().requireEntity(entityName);
  LObject& object = context.insertNewObject(entity);
  // One block for the bookkeeping values, the given ones, and the one relationship a new object
  // usually gains next (its parent, or its first line): imports make millions of these.
  constexpr size_t kBookkeepingValues = 5;
  object.reservePrimitiveValues(kBookkeepingValues + data.size() + 1);
  const Date now = Clock::now();
  object.setPrimitiveValue(entity.property("creationTimestamp")->index, Value(now));
  object.setPrimitiveValue(entity.property("modificationTimestamp")->index, Value(now));
  object.setPrimitiveValue(entity.property("deletionCount")->index, Value(int64_t{0}));
  // Identifiers are never reused: the counter lives in the document and only grows.
  const int64_t identifier = context.getAndBumpPropertyNamed(entity.name + "Id");
  object.setPrimitiveValue(entity.property("ledgeonId")->index, Value(identifier));
  if (entity.isKindOf("Transaction")) {
    object.setPrimitiveValue(entity.property("orderID")->index, Value(identifier));
  }
  for (const auto& [keyPath, value] : data) {
    if (keyPath.find('.') != std::string::npos) {
      object.setValueForKeyPath(keyPath, value);
    } else if (!entity.property(keyPath)) {
      LLog("ERROR: -[%@ editEntityWithData:] unknown key: %@", entity.name, keyPath);
    } else {
      object.setValueForKey(keyPath, value);
    }
  }
  return object;
}

void LObject::editEntityWithData(const EditDict& data) {
  for (const auto& [key, value] : data) {
    if (!entity_->property(key)) {
      LLog("ERROR: -[%@ editEntityWithData:] unknown key: %@", className(), key);
      continue;
    }
    setValueForKey(key, value);
  }
  touch();
}

EditDict LObject::undoEditDictForDictionary(const EditDict& data) {
  EditDict undo;
  for (const auto& [key, value] : data) {
    const PropertyDescription* p = entity_->property(key);
    if (!p) {
      LLog("ERROR: -[%@ undoEditDictForDictionary:] unknown key: %@", className(), key);
      continue;
    }
    if (!p->isToMany()) {
      undo.set(key, slotValue(*p));
      continue;
    }
    const ObjectSet current = slotValue(*p).asObjects();
    if (value.kind() != Value::Kind::Edit || value.asEdit().replaceObjects) {
      undo.set(key, Value(ToManyEdit::replacing(current)));
      continue;
    }
    const ToManyEdit& edit = value.asEdit();
    ToManyEdit inverse;
    if (edit.addObjects) {
      ObjectSet added;
      for (LObject* o : *edit.addObjects) {
        if (!contains(current, o)) added.push_back(o);
      }
      inverse.removeObjects = added;
    }
    if (edit.removeObjects) {
      ObjectSet removed;
      for (LObject* o : *edit.removeObjects) {
        if (contains(current, o)) removed.push_back(o);
      }
      inverse.addObjects = removed;
    }
    undo.set(key, Value(std::move(inverse)));
  }
  return undo;
}

void LObject::deleteLObject() {
  touch();
  changeSlot(*entity_->property("deletionCount"), Value(integerForKey("deletionCount") + 1));
  if (context_) {
    context_->clearCacheForClass(className());
    context_->notificationCenter().postNotificationName(
        classMetadata(className()).deleteNotificationName, this);
  }
}

void LObject::undeleteLObject() {
  const int64_t count = integerForKey("deletionCount");
  if (count > 0) {
    touch();
    changeSlot(*entity_->property("deletionCount"), Value(count - 1));
  }
  if (context_) {
    context_->clearCacheForClass(className());
    context_->notificationCenter().postNotificationName(
        classMetadata(className()).addNotificationName, this);
  }
}

bool LObject::isLObjectDeleted() { return integerForKey("deletionCount") != 0; }

void LObject::registeredLObjectChangesCommitted(const std::set<std::string>&) {}

std::string LObject::shortDescription() const {
  return "<" + className() + " " + std::to_string(primaryKey_) + ">";
}

std::string LObject::description() {
  fulfill();
  std::string text = shortDescription() + " {";
  slots_.forEach([&](int index, const Value& value) {
    const PropertyDescription* p = entity_->properties[static_cast<size_t>(index)];
    if (!p->isToMany()) text += " " + p->name + " = " + value.description() + ";";
  });
  return text + " }";
}

Amount decimalNumberFrom(LObject& object, std::string_view key) {
  const Value value = object.valueForKey(key);
  if (value.isNull()) return Amount::zero();
  return value.asAmount();
}

}  // namespace ledgeon
