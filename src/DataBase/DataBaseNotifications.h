#pragma once

#include <any>
#include <map>
#include <string>

namespace ledgeon {

// Posted by DataBase around a commit, on the main thread.
inline constexpr const char* kLDataBaseChanging = "LDataBaseChanging";
inline constexpr const char* kLDataBaseChanged = "LDataBaseChanged";
inline constexpr const char* kLDataBaseChangeFailed = "LDataBaseChangeFailed";

// Keys of the LDataBaseChanged user-info: ObjectSet values, and a std::set<std::string> of
// document property names.
inline constexpr const char* kAddedObjectsKey = "addedObjects";
inline constexpr const char* kChangedObjectsKey = "changedObjects";
inline constexpr const char* kDeletedObjectsKey = "deletedObjects";
inline constexpr const char* kChangedDocumentPropertiesKey = "changedDocumentProperties";

// Keys of a class's change notification: the LObject*, and EditDicts of new and old values.
inline constexpr const char* kChangedObjectKey = "__changedObject__";
inline constexpr const char* kChangedValuesKey = "__changedValues__";
inline constexpr const char* kOldValuesKey = "__oldValues__";

// The user-info of the store's notifications.
using UserInfo = std::map<std::string, std::any>;

}  // namespace ledgeon
