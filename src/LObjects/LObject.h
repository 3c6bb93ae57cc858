#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "LObjects/LObjectContext.h"
#include "LObjects/Model.h"
#include "LObjects/PropertySlots.h"
#include "LObjects/Value.h"

namespace ledgeon {

// Per key, the problems found in a data dictionary before a creation or an edit.
using ErrorDictionary = std::map<std::string, std::vector<std::string>, std::less<>>;

// The base of every persisted entity: identity (entity and primary key), the owning store, the
// property values and their edit protocol. Main thread only.
class LObject {
 public:
  LObject(const EntityDescription& entity, int64_t primaryKey, LObjectContext* context);
  virtual ~LObject() = default;
  LObject(const LObject&) = delete;
  LObject& operator=(const LObject&) = delete;

  // How the store sees this object; only the store changes it.
  enum class StoreState : uint8_t { Clean, Inserted, Updated, Deleted };

  // The concrete entity; a fault of a class with subclasses is fulfilled to learn it.
  const EntityDescription& entity() const {
    if (fault_ && !entityKnown_ && !entity_->subentities.empty()) {
      const_cast<LObject*>(this)->fulfill();
    }
    return *entity_;
  }
  // The entity as known without loading: for a fault, the class its relationship declared.
  const EntityDescription& storedEntity() const { return *entity_; }
  const std::string& className() const { return entity().name; }
  int64_t primaryKey() const { return primaryKey_; }
  LObjectContext* context() const { return context_; }
  bool isFault() const { return fault_; }

  // Reading. An unknown key is a programming error (std::logic_error naming it). A key path
  // follows to-one relationships; a null on the way gives null.
  Value valueForKey(std::string_view key);
  Value valueForKeyPath(std::string_view keyPath);
  std::string stringForKey(std::string_view key);
  int64_t integerForKey(std::string_view key);
  Amount amountForKey(std::string_view key);
  LObject* objectForKey(std::string_view key);
  ObjectSet objectsForKey(std::string_view key);

  // Writing one property, keeping inverse relationships in step. A NaN Amount is logged and
  // refused. Does not touch modificationTimestamp (editEntityWithData does).
  void setValueForKey(std::string_view key, const Value& value);
  void setValueForKeyPath(std::string_view keyPath, const Value& value);

  // Creation from a dictionary of key paths to values, with a fresh ledgeonId and timestamps.
  static LObject& createEntityInManagedObjectContext(LObjectContext& context,
                                                     std::string_view entityName,
                                                     const EditDict& data);

  // Applies a dictionary of changes (to-many keys take a ToManyEdit) and stamps the object.
  void editEntityWithData(const EditDict& data);
  // The dictionary that, applied after editEntityWithData(data), restores the present values.
  EditDict undoEditDictForDictionary(const EditDict& data);

  // Soft deletion: a counter, so that nested deletes and their undos balance.
  void deleteLObject();
  void undeleteLObject();
  bool isLObjectDeleted();

  // Validation into an error dictionary; true when no error was found.
  static bool validateData(const EditDict& data, const EntityDescription& entity,
                           LObject* forObject, ErrorDictionary& errors);
  static bool validateCreateData(const EditDict& data, const EntityDescription& entity,
                                 ErrorDictionary& errors);
  bool validateEditData(const EditDict& data, ErrorDictionary& errors);
  static void mergeErrorDictionary(ErrorDictionary& into, const ErrorDictionary& from);
  static size_t countOfErrorsInDictionary(const ErrorDictionary& errors);
  static std::string errorStringForErrorDictionary(const ErrorDictionary& errors);

  // Relationship and copy metadata.
  std::vector<std::string> toOneLObjectRelationshipKeys() const;
  std::vector<std::string> toManyLObjectRelationshipKeys() const;
  std::string inverseForLObjectRelationshipKey(std::string_view key) const;
  EditDict propertiesDictionaryForCopy(const EditDict& replaceExistingKeys,
                                       const std::set<std::string>& excludedProperties);
  std::set<std::string> propertiesExcludedFromDuplicate() const;
  static const std::set<std::string>& propertiesConsideredMetaData();
  std::set<std::string> readOnlyPrivateKeys() const;

  // User-facing names of the entity kind.
  std::string singularNoun() const;
  std::string pluralNoun() const;
  std::string singularNounWithIndefiniteArticle() const;

  // Called once per commit on each loaded object whose class registered change keys.
  virtual void registeredLObjectChangesCommitted(const std::set<std::string>& changedKeys);

  std::string shortDescription() const;  // "<Transaction 12>"
  std::string description();             // with every non-null value

  // For the store: slot access without change tracking, fault handling and load marking.
  const Value& primitiveValue(int index) const;
  void setPrimitiveValue(int index, Value value);
  void setFault(bool fault) { fault_ = fault; }
  // The concrete entity, when the store knows it (a fault then need not load to tell it).
  void setEntity(const EntityDescription& entity) {
    entity_ = &entity;
    entityKnown_ = true;
  }
  StoreState storeState() const { return storeState_; }
  void setStoreState(StoreState state) { storeState_ = state; }
  template <typename F>
  void forEachPrimitiveValue(F&& f) const {
    slots_.forEach(std::forward<F>(f));
  }
  // Room for `count` values, before the store fills a loaded object.
  void reservePrimitiveValues(size_t count) { slots_.reserve(count); }
  void clearToManyCaches();

 private:
  const PropertyDescription& requireProperty(std::string_view key, const char* operation) const;
  void fulfill();
  const Value& slotValue(const PropertyDescription& property);
  void changeSlot(const PropertyDescription& property, Value value);
  void setToOne(const PropertyDescription& property, LObject* target);
  void setToMany(const PropertyDescription& property, const ObjectSet& objects);
  void addToMany(const PropertyDescription& property, LObject* object);
  void removeFromToMany(const PropertyDescription& property, LObject* object);
  void applyToManyEdit(const PropertyDescription& property, const ToManyEdit& edit);
  void touch();

  const EntityDescription* entity_;
  int64_t primaryKey_;
  LObjectContext* context_;
  bool fault_ = false;
  bool entityKnown_ = false;
  StoreState storeState_ = StoreState::Clean;
  PropertySlots slots_;  // only non-null values
};

// The value of `key` as an Amount: a number converts, an absent or null value is zero.
Amount decimalNumberFrom(LObject& object, std::string_view key);

}  // namespace ledgeon
