#pragma once

#include <string>
#include <vector>

#include "DataBase/internal/SQLite.h"
#include "LObjects/Model.h"
#include "LObjects/Value.h"

namespace ledgeon::schema {

inline constexpr const char* kMetadataTable = "Z_METADATA";
inline constexpr const char* kModelVersionKey = "modelVersion";
inline constexpr const char* kEntityHashPrefix = "entityHash:";

// The stored shape of one entity hierarchy: the table, its columns in order (after Z_PK and
// Z_ENT) and the statements that read and write a row.
struct TableLayout {
  const EntityDescription* root = nullptr;
  std::string table;                                // quoted
  std::vector<const PropertyDescription*> columns;  // attributes and to-one relationships
  std::string selectColumns;                        // "t0.Z_PK, t0.Z_ENT, t0.\"name\", ..."
  std::string insertSQL;
  std::string updateSQL;  // SET every column WHERE Z_PK = last parameter
};

// Layouts of every table, in the model's root order.
const std::vector<TableLayout>& tableLayouts();
const TableLayout& layoutForRoot(const EntityDescription& root);

// The statements that create the ledger's tables, indexes and metadata in an empty store.
std::vector<std::string> creationStatements();
void writeMetadata(sql::Connection& connection);

// The SQL type of an attribute or to-one relationship.
const char* columnType(const PropertyDescription& property);

// Converting between Values and column values. Objects are stored by primary key.
void bindValue(sql::Statement& statement, int index, const Value& value);
// The column as a Value of the property's attribute type; to-one relationships give the
// primary key as an integer.
Value readColumn(const sql::Statement& statement, int column, const PropertyDescription& property);

}  // namespace ledgeon::schema
