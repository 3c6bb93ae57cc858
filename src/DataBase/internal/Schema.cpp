#include "DataBase/internal/Schema.h"

#include <stdexcept>

#include <nlohmann/json.hpp>

#include "LObjects/LObject.h"

namespace ledgeon::schema {

namespace {

// Columns the named lookups and the sync code search by.
const char* const kIndexedColumns[] = {"syncID",          "ledgeonId",
                                       "categoryID",      "importSourceFileID",
                                       "fiTransactionID", "onlineBankingServerID",
                                       "fromCurrency"};

std::vector<TableLayout> buildLayouts() {
  std::vector<TableLayout> layouts;
  for (const EntityDescription* root : Model::shared().roots()) {
    TableLayout layout;
    layout.root = root;
    layout.table = sql::quoted(root->name);
    for (const int id : root->hierarchyIds) {
      for (const PropertyDescription* p : Model::shared().entity(id).properties) {
        if (p->isToMany()) continue;
        bool seen = false;
        for (const PropertyDescription* c : layout.columns) seen = seen || c == p;
        if (!seen) layout.columns.push_back(p);
      }
    }
    layout.selectColumns = "t0.Z_PK, t0.Z_ENT";
    std::string names = "Z_PK, Z_ENT", marks = "?, ?", sets;
    for (const PropertyDescription* p : layout.columns) {
      const std::string column = sql::quoted(p->column);
      layout.selectColumns += ", t0." + column;
      names += ", " + column;
      marks += ", ?";
      sets += (sets.empty() ? "" : ", ") + column + " = ?";
    }
    layout.insertSQL = "INSERT INTO " + layout.table + " (" + names + ") VALUES (" + marks + ")";
    layout.updateSQL = "UPDATE " + layout.table + " SET " + sets + " WHERE Z_PK = ?";
    layouts.push_back(std::move(layout));
  }
  return layouts;
}

}  // namespace

const std::vector<TableLayout>& tableLayouts() {
  static const std::vector<TableLayout> layouts = buildLayouts();
  return layouts;
}

const TableLayout& layoutForRoot(const EntityDescription& root) {
  for (const TableLayout& layout : tableLayouts()) {
    if (layout.root == &root) return layout;
  }
  throw std::logic_error("no table for " + root.name);
}

const char* columnType(const PropertyDescription& p) {
  if (p.isToOne()) return "INTEGER";
  switch (p.type) {
    case AttributeType::String:
      return "TEXT";
    case AttributeType::Integer:
      return "INTEGER";
    case AttributeType::Amount:
      return "TEXT";  // exact decimal text, compared by decimal_cmp
    case AttributeType::Date:
      return "REAL";  // seconds since 2001-01-01 GMT
    case AttributeType::Dictionary:
      return "TEXT";
    case AttributeType::Binary:
      return "BLOB";
  }
  return "BLOB";
}

std::vector<std::string> creationStatements() {
  std::vector<std::string> statements;
  statements.push_back(std::string("CREATE TABLE ") + kMetadataTable +
                       " (key TEXT PRIMARY KEY, value TEXT NOT NULL)");
  for (const TableLayout& layout : tableLayouts()) {
    std::string ddl =
        "CREATE TABLE " + layout.table + " (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER NOT NULL";
    for (const PropertyDescription* p : layout.columns) {
      ddl += ", " + sql::quoted(p->column) + " " + columnType(*p);
      if (p->isToOne()) ddl += " REFERENCES " + sql::quoted(p->target->root->name) + "(Z_PK)";
    }
    statements.push_back(ddl + ")");
    const std::string root = layout.root->name;
    // With the identifier beside the entity, the largest identifier of a class (checked on
    // every open) is read from the index instead of the rows.
    statements.push_back("CREATE INDEX " + sql::quoted(root + "_Z_ENT") + " ON " + layout.table +
                         " (Z_ENT, \"ledgeonId\")");
    // Each amount column gets an index of its NaN rows only: always empty in a sound store, it
    // lets the NaN repair on open look without reading the ledger.
    for (const PropertyDescription* p : layout.columns) {
      if (!p->isAttribute() || p->type != AttributeType::Amount) continue;
      const std::string column = sql::quoted(p->column);
      statements.push_back("CREATE INDEX " + sql::quoted(root + "_" + p->column + "_NaN") + " ON " +
                           layout.table + " (" + column + ") WHERE " + column + " = 'NaN'");
    }
    for (const PropertyDescription* p : layout.columns) {
      bool indexed = p->isToOne();
      for (const char* name : kIndexedColumns) indexed = indexed || p->column == name;
      if (root == "DocumentProperty" && p->column == "name") indexed = true;
      if (!indexed) continue;
      statements.push_back("CREATE INDEX " + sql::quoted(root + "_" + p->column) + " ON " +
                           layout.table + " (" + sql::quoted(p->column) + ")");
    }
  }
  for (const PropertyDescription* p : Model::shared().joinRelationships()) {
    const std::string table = sql::quoted(p->joinTable);
    statements.push_back("CREATE TABLE " + table +
                         " (first INTEGER NOT NULL, second INTEGER NOT NULL, "
                         "PRIMARY KEY (first, second)) WITHOUT ROWID");
    statements.push_back("CREATE INDEX " + sql::quoted(p->joinTable + "_second") + " ON " + table +
                         " (second)");
  }
  return statements;
}

void writeMetadata(sql::Connection& connection) {
  sql::Statement insert = connection.prepare(std::string("INSERT OR REPLACE INTO ") +
                                             kMetadataTable + " (key, value) VALUES (?, ?)");
  insert.bind(1, std::string_view(kModelVersionKey));
  insert.bind(2, std::string_view(Model::kVersionName));
  insert.run();
  for (const EntityDescription* entity : Model::shared().entities()) {
    insert.reset();
    insert.bind(1, std::string(kEntityHashPrefix) + entity->name);
    insert.bind(2, entity->versionHash);
    insert.run();
  }
}

void bindValue(sql::Statement& statement, int index, const Value& value) {
  using Kind = Value::Kind;
  switch (value.kind()) {
    case Kind::Null:
      statement.bindNull(index);
      return;
    case Kind::Boolean:
    case Kind::Integer:
      statement.bind(index, value.asInteger());
      return;
    case Kind::Double:
      statement.bind(index, value.asDouble());
      return;
    case Kind::Amount:
      // A NaN never reaches the store.
      if (value.asAmount().isNaN()) {
        statement.bindNull(index);
      } else {
        statement.bind(index, value.asAmount().stringValue());
      }
      return;
    case Kind::String:
      statement.bind(index, std::string_view(value.asString()));
      return;
    case Kind::Date:
      statement.bind(index, value.asDate().timeIntervalSinceReferenceDate());
      return;
    case Kind::Binary:
      statement.bindBlob(index, value.asBytes().data(), value.asBytes().size());
      return;
    case Kind::Dictionary: {
      nlohmann::json json = nlohmann::json::object();
      for (const auto& [key, text] : value.asDictionary()) json[key] = text;
      statement.bind(index, json.dump());
      return;
    }
    case Kind::Object:
      if (value.asObject()) {
        statement.bind(index, value.asObject()->primaryKey());
      } else {
        statement.bindNull(index);
      }
      return;
    case Kind::Objects:
    case Kind::List:
    case Kind::Edit:
      throw std::logic_error("cannot store " + value.description() + " in a column");
  }
}

Value readColumn(const sql::Statement& statement, int column, const PropertyDescription& p) {
  if (statement.isNull(column)) return {};
  if (p.isToOne()) return Value(statement.integer(column));
  switch (p.type) {
    case AttributeType::String:
      return Value(std::string(statement.text(column)));
    case AttributeType::Integer:
      return Value(statement.integer(column));
    case AttributeType::Amount:
      return Value(Amount::fromString(statement.text(column)));
    case AttributeType::Date:
      return Value(Date(statement.real(column)));
    case AttributeType::Dictionary: {
      PropertyList list;
      const auto json = nlohmann::json::parse(statement.text(column), nullptr, false);
      if (json.is_object()) {
        for (const auto& [key, item] : json.items()) {
          list[key] = item.is_string() ? item.get<std::string>() : item.dump();
        }
      }
      return Value(std::move(list));
    }
    case AttributeType::Binary: {
      const std::string_view bytes = statement.text(column);
      return Value(Bytes(bytes.begin(), bytes.end()));
    }
  }
  return {};
}

}  // namespace ledgeon::schema
