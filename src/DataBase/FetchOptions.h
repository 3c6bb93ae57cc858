#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "DataBase/Predicate.h"

namespace ledgeon {

// One sort key: a key path through to-one relationships, ascending unless told otherwise.
struct SortDescriptor {
  std::string keyPath;
  bool ascending = true;
};

// What a fetch asks for; filled with designated initializers at the call site:
//   db.instancesOfClass("Transaction", {.predicate = p, .fetchLimit = 1})
struct FetchOptions {
  Predicate predicate;
  std::vector<SortDescriptor> sortDescriptors;
  size_t fetchLimit = 0;        // 0: no limit
  bool includeDeleted = false;  // soft-deleted objects are left out unless asked for
  // Objects not loaded yet come back as faults: their values are read on first use. For fetches
  // that only need identities (counting members, building sets to compare).
  bool asFaults = false;
  // Relationship key paths ("account", "entries.categoryTag") whose objects are loaded together
  // with the fetched ones: a few queries in all instead of one per object on first use.
  std::vector<std::string> prefetchKeyPaths;
};

}  // namespace ledgeon
