#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "DataBase/DataBase.h"
#include "DataBase/internal/SQLite.h"
#include "DataBase/internal/Schema.h"

namespace ledgeon {

// The objects of one entity hierarchy loaded in memory, with its cached statements.
struct DataBase::Table {
  const schema::TableLayout* layout = nullptr;
  std::unordered_map<int64_t, std::unique_ptr<LObject>> objects;
  int64_t nextPrimaryKey = 1;
  size_t pendingCount = 0;  // inserted, updated and deleted objects
  // For each entity id of the hierarchy, the slot of each layout column (-1: not its column).
  std::vector<std::vector<int>> slotsByEntity;
  sql::Statement insert;
  sql::Statement update;
  sql::Statement selectByPrimaryKey;
  sql::Statement remove;
};

}  // namespace ledgeon
