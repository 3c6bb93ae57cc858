#pragma once

#include <map>
#include <string>
#include <vector>

#include "DataBase/FetchOptions.h"
#include "DataBase/Predicate.h"
#include "LObjects/Model.h"

namespace ledgeon::sql {

class Statement;

// Turns a predicate and sort descriptors over one entity into SQL over its table, joining the
// tables of to-one relationships that key paths go through. Comparisons always give 0 or 1 (never
// NULL), so NOT and OR mean what they mean in memory.
class QueryBuilder final {
 public:
  explicit QueryBuilder(const EntityDescription& entity);

  // "SELECT <columns> FROM ... WHERE ... ORDER BY ... LIMIT ..." for the options. The predicate
  // must have been validated for the entity.
  std::string select(const std::string& columns, const FetchOptions& options, bool withLimit);
  void bindAll(Statement& statement) const;

 private:
  struct Column {
    std::string expression;
    const PropertyDescription* property;
  };
  Column keyPathColumn(const std::vector<std::string>& path);
  std::string operand(const PredicateNode::Operand& operand, const PropertyDescription*& property);
  std::string bindConstant(const Value& value);
  std::string condition(const PredicateNode& node);
  std::string comparison(const PredicateNode& node);
  std::string equality(const std::string& l, const std::string& r, bool decimal,
                       bool caseInsensitive);

  const EntityDescription& entity_;
  std::string joins_;
  std::map<std::string, std::string> aliases_;  // key path prefix -> table alias
  std::vector<Value> bindings_;
};

}  // namespace ledgeon::sql
