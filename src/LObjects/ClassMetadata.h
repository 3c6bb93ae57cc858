#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace ledgeon {

class LObjectContext;

// What an entity class tells the rest of the program about itself: its nouns (localised through
// the "LFrameworkUtilities" table) and the notifications posted when one of its objects is added,
// deleted or changed. Immutable; safe from any thread.
struct ClassMetadata {
  std::string className;
  std::string singularNoun;
  std::string pluralNoun;
  std::string addNotificationName;     // "Add<Class>"
  std::string deleteNotificationName;  // "Delete<Class>"
  std::string changeNotificationName;  // "Change<Class>"
};

// The metadata of an entity class. LObject itself has none: asking for it is a programming error
// ("subclass responsibility"), as is an unknown class.
const ClassMetadata& classMetadata(std::string_view className);

// Classes that want a change notification per changed object name the keys they care about; the
// commit posts the class's change notification only when a changed key is among them, and then
// calls `committed` (when given) with the context.
struct ChangeRegistration {
  std::set<std::string> keys;
  std::function<void(LObjectContext&)> committed;
};
void registerKeysForChangeNotification(std::string_view className, ChangeRegistration registration);
void unregisterKeysForChangeNotification(std::string_view className);
// The registration of a class, or null. Looks at the class itself only.
const ChangeRegistration* changeRegistrationForClass(std::string_view className);

}  // namespace ledgeon
