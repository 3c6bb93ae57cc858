#pragma once

#include <cstdint>
#include <string>

#include "LObjects/Value.h"

namespace ledgeon {

class LObject;
class NotificationCenter;
struct EntityDescription;
struct PropertyDescription;

// What a ledger object needs of the store that owns it. The document's DataBase implements it;
// objects never reach the store file any other way. Main thread only.
class LObjectContext {
 public:
  virtual ~LObjectContext() = default;

  // A new object of `entity`, registered as inserted; the caller fills it.
  virtual LObject& insertNewObject(const EntityDescription& entity) = 0;
  // Loads the stored values of an object that was created as a placeholder (a fault).
  virtual void fulfillFault(LObject& object) = 0;
  // The current members of a to-many relationship, stored and pending changes together.
  virtual ObjectSet loadToMany(LObject& object, const PropertyDescription& property) = 0;
  // Called before a property of `object` changes, with the value it had.
  virtual void objectWillChange(LObject& object, const PropertyDescription& property,
                                const Value& oldValue) = 0;
  // Adds one to the integer document property `name` (missing counts as 0) and returns it.
  virtual int64_t getAndBumpPropertyNamed(const std::string& name) = 0;
  // Drops what the document has cached about the objects of a class.
  virtual void clearCacheForClass(const std::string& className) = 0;
  virtual NotificationCenter& notificationCenter() = 0;
};

}  // namespace ledgeon
