// Named document values, stored as DocumentProperty objects.
#include <charconv>

#include "DataBase/DataBase.h"
#include "Utilities/Clock.h"

namespace ledgeon {

namespace {

std::string storedText(const Value& value) {
  return value.kind() == Value::Kind::String ? value.asString() : value.description();
}

}  // namespace

LObject* DataBase::getDocumentPropertyNamed(std::string_view name) {
  const auto cached = documentPropertyCache_.find(name);
  if (cached != documentPropertyCache_.end()) return cached->second;
  const auto found = instancesOfClass(
      "DocumentProperty",
      {.predicate = Predicate::withFormat("name == %@", std::string(name)), .fetchLimit = 1});
  if (found.empty()) return nullptr;
  documentPropertyCache_[std::string(name)] = found.front();
  return found.front();
}

Value DataBase::valueForDocumentPropertyNamed(std::string_view name) {
  LObject* property = getDocumentPropertyNamed(name);
  return property ? property->valueForKey("stringValue") : Value();
}

void DataBase::setValueForDocumentProperty(const Value& value, std::string_view name) {
  LObject* property = getDocumentPropertyNamed(name);
  if (!property) {
    const EntityDescription& entity = Model::shared().requireEntity("DocumentProperty");
    property = &insertNewObject(entity);
    const Date now = Clock::now();
    property->setPrimitiveValue(entity.property("creationTimestamp")->index, Value(now));
    property->setPrimitiveValue(entity.property("deletionCount")->index, Value(int64_t{0}));
    property->setPrimitiveValue(entity.property("name")->index, Value(std::string(name)));
    documentPropertyCache_[std::string(name)] = property;
  }
  property->setValueForKey("stringValue", value.isNull() ? Value() : Value(storedText(value)));
  property->setValueForKey("modificationTimestamp", Value(Clock::now()));
}

int64_t DataBase::getAndBumpPropertyNamed(const std::string& name) {
  int64_t current = 0;
  const Value stored = valueForDocumentPropertyNamed(name);
  if (stored.kind() == Value::Kind::String) {
    const std::string& text = stored.asString();
    std::from_chars(text.data(), text.data() + text.size(), current);
  }
  setValueForDocumentProperty(Value(current + 1), name);
  return current + 1;
}

void DataBase::deleteDocumentPropertyNamed(std::string_view name) {
  if (LObject* property = getDocumentPropertyNamed(name)) deleteEntity(*property);
}

}  // namespace ledgeon
