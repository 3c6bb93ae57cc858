// Validation, relationship and copy metadata, and the nouns of an LObject.
#include <functional>
#include <map>

#include "LObjects/ClassMetadata.h"
#include "LObjects/LObject.h"

namespace ledgeon {

namespace {

using Rule = std::function<void(const EditDict& data, LObject* forObject, ErrorDictionary& errors)>;

void requireOnCreate(const EditDict& data, LObject* forObject, ErrorDictionary& errors,
                     const char* key) {
  if (forObject) return;
  const Value* value = data.find(key);
  if (!value || value->isNull()) errors[key].push_back("is required");
}

// Rules of particular entities, on top of the checks every entity gets.
const std::map<std::string, Rule, std::less<>>& entityRules() {
  static const std::map<std::string, Rule, std::less<>> rules = {
      {"Transaction",
       [](const EditDict& data, LObject* forObject, ErrorDictionary& errors) {
         requireOnCreate(data, forObject, errors, "account");
         if (const Value* status = data.find("reconcileStatus");
             status && status->isNumber() && (status->asInteger() < 0 || status->asInteger() > 2)) {
           errors["reconcileStatus"].push_back("must be 0, 1 or 2");
         }
       }},
      {"ForexQuote",
       [](const EditDict& data, LObject* forObject, ErrorDictionary& errors) {
         for (const char* key : {"fromCurrency", "toCurrency"}) {
           requireOnCreate(data, forObject, errors, key);
           const Value* code = data.find(key);
           if (code && code->kind() == Value::Kind::String && code->asString().size() != 3) {
             errors[key].push_back("must be a three-letter currency code");
           }
         }
       }},
  };
  return rules;
}

const char* kindMismatch(const PropertyDescription& p, const Value& value) {
  using Kind = Value::Kind;
  if (value.isNull()) return nullptr;
  switch (p.kind) {
    case PropertyKind::ToOne:
      if (value.kind() != Kind::Object || !value.asObject()->entity().isKindOf(*p.target)) {
        return "expects an object of the relationship's class";
      }
      return nullptr;
    case PropertyKind::ToMany:
      return value.kind() == Kind::Edit || value.kind() == Kind::Objects
                 ? nullptr
                 : "expects a set of objects or a to-many edit";
    case PropertyKind::Attribute:
      break;
  }
  switch (p.type) {
    case AttributeType::String:
      return value.kind() == Kind::String ? nullptr : "expects text";
    case AttributeType::Integer:
      return value.kind() == Kind::Integer || value.kind() == Kind::Boolean ? nullptr
                                                                            : "expects a number";
    case AttributeType::Amount:
      if (!value.isNumber()) return "expects an amount";
      return value.kind() == Kind::Amount && value.asAmount().isNaN() ? "is not a number (NaN)"
                                                                      : nullptr;
    case AttributeType::Date:
      return value.kind() == Kind::Date ? nullptr : "expects a date";
    case AttributeType::Dictionary:
      return value.kind() == Kind::Dictionary ? nullptr : "expects a dictionary";
    case AttributeType::Binary:
      return value.kind() == Kind::Binary ? nullptr : "expects data";
  }
  return nullptr;
}

}  // namespace

bool LObject::validateData(const EditDict& data, const EntityDescription& entity,
                           LObject* forObject, ErrorDictionary& errors) {
  ErrorDictionary found;
  for (const auto& [key, value] : data) {
    const PropertyDescription* p = entity.property(key);
    if (!p) {
      found[key].push_back("is not a property of " + entity.name);
      continue;
    }
    if (p->readOnly) found[key].push_back("is read-only");
    if (const char* problem = kindMismatch(*p, value)) found[key].push_back(problem);
  }
  for (const EntityDescription* e = &entity; e; e = e->parent) {
    const auto rule = entityRules().find(e->name);
    if (rule != entityRules().end()) rule->second(data, forObject, found);
  }
  const bool ok = found.empty();
  mergeErrorDictionary(errors, found);
  return ok;
}

bool LObject::validateCreateData(const EditDict& data, const EntityDescription& entity,
                                 ErrorDictionary& errors) {
  return validateData(data, entity, nullptr, errors);
}

bool LObject::validateEditData(const EditDict& data, ErrorDictionary& errors) {
  return validateData(data, entity(), this, errors);
}

void LObject::mergeErrorDictionary(ErrorDictionary& into, const ErrorDictionary& from) {
  for (const auto& [key, messages] : from) {
    auto& list = into[key];
    list.insert(list.end(), messages.begin(), messages.end());
  }
}

size_t LObject::countOfErrorsInDictionary(const ErrorDictionary& errors) {
  size_t count = 0;
  for (const auto& entry : errors) count += entry.second.size();
  return count;
}

std::string LObject::errorStringForErrorDictionary(const ErrorDictionary& errors) {
  std::string text;
  for (const auto& [key, messages] : errors) {
    for (const std::string& message : messages) {
      if (!text.empty()) text += "\n";
      text += key + " " + message;
    }
  }
  return text;
}

std::vector<std::string> LObject::toOneLObjectRelationshipKeys() const {
  std::vector<std::string> keys;
  for (const PropertyDescription* p : entity().properties) {
    if (p->isToOne()) keys.push_back(p->name);
  }
  return keys;
}

std::vector<std::string> LObject::toManyLObjectRelationshipKeys() const {
  std::vector<std::string> keys;
  for (const PropertyDescription* p : entity().properties) {
    if (p->isToMany()) keys.push_back(p->name);
  }
  return keys;
}

std::string LObject::inverseForLObjectRelationshipKey(std::string_view key) const {
  const PropertyDescription* p = entity().property(key);
  return p && p->inverse ? p->inverse->name : std::string();
}

const std::set<std::string>& LObject::propertiesConsideredMetaData() {
  static const std::set<std::string> keys = {
      "creationTimestamp", "modificationTimestamp", "deletionCount", "guid", "ledgeonId", "syncID",
      "dataSource"};
  return keys;
}

std::set<std::string> LObject::readOnlyPrivateKeys() const {
  std::set<std::string> keys;
  for (const PropertyDescription* p : entity().properties) {
    if (p->readOnly) keys.insert(p->name);
  }
  return keys;
}

std::set<std::string> LObject::propertiesExcludedFromDuplicate() const {
  std::set<std::string> keys = propertiesConsideredMetaData();
  keys.merge(readOnlyPrivateKeys());
  return keys;
}

// A duplicate shares attributes, to-one targets and many-to-many members; the members of a
// one-to-many relationship belong to the original and stay with it.
EditDict LObject::propertiesDictionaryForCopy(const EditDict& replaceExistingKeys,
                                              const std::set<std::string>& excludedProperties) {
  const std::set<std::string> excluded = propertiesExcludedFromDuplicate();
  EditDict copy;
  for (const PropertyDescription* p : entity().properties) {
    if (excluded.count(p->name) || excludedProperties.count(p->name)) continue;
    if (p->isToMany()) {
      if (p->isManyToMany()) {
        copy.set(p->name, Value(ToManyEdit::replacing(objectsForKey(p->name))));
      }
      continue;
    }
    Value value = valueForKey(p->name);
    if (!value.isNull()) copy.set(p->name, std::move(value));
  }
  for (const auto& [key, value] : replaceExistingKeys) copy.set(key, value);
  return copy;
}

std::string LObject::singularNoun() const { return classMetadata(className()).singularNoun; }

std::string LObject::pluralNoun() const { return classMetadata(className()).pluralNoun; }

std::string LObject::singularNounWithIndefiniteArticle() const {
  const std::string noun = singularNoun();
  const bool vowel = !noun.empty() && std::string("AEIOUaeiou").find(noun[0]) != std::string::npos;
  return (vowel ? "an " : "a ") + noun;
}

}  // namespace ledgeon
