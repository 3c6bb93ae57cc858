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
// tables of to-one relationships that key paths go through; a key path through a to-many
// relationship becomes an EXISTS or aggregate subquery over the members. Comparisons always give
// 0 or 1 (never NULL), so NOT and OR mean what they mean in memory.
class QueryBuilder final {
 public:
  explicit QueryBuilder(const EntityDescription& entity);

  // "SELECT <columns> FROM ... WHERE ... ORDER BY ... LIMIT ..." for the options. The predicate
  // must have been validated for the entity.
  std::string select(const std::string& columns, const FetchOptions& options, bool withLimit);
  void bindAll(Statement& statement) const;

 private:
  // Where key paths start: the fetched entity's row, or a member row inside a subquery, each
  // with the joins its key paths needed.
  struct Scope {
    const EntityDescription* entity;
    std::string alias;
    std::string joins;
    std::map<std::string, std::string> aliases;  // key path prefix -> table alias
  };
  // A compiled operand: its SQL and what it holds.
  struct Operand {
    std::string expression;
    const PropertyDescription* property = nullptr;
    bool decimal = false;  // exact decimal text
  };
  // The rows of a to-many relationship's members for one owner row.
  struct Members {
    std::string from;  // tables and joins
    std::string link;  // the condition tying members to the owner
    Scope scope;
  };
  std::string newAlias() { return "t" + std::to_string(++aliasCount_); }
  // The alias of the object reached by the first `count` keys of `path` (to-ones only).
  std::string objectAlias(Scope& scope, const std::vector<std::string>& path, size_t count,
                          const EntityDescription*& entity);
  Operand keyPathColumn(Scope& scope, const std::vector<std::string>& path, size_t from = 0);
  Members members(Scope& scope, const std::vector<std::string>& path, size_t toMany);
  Operand operand(Scope& scope, const PredicateNode::Operand& operand);
  std::string bindConstant(const Value& value);
  std::string condition(const PredicateNode& node);
  std::string comparison(const PredicateNode& node);
  std::string quantified(const PredicateNode& node, bool memberOnLeft, size_t toMany);
  std::string compare(const PredicateNode& node, const Operand& l, const Operand& r);
  std::string equality(const std::string& l, const std::string& r, bool decimal,
                       bool caseInsensitive);

  const EntityDescription& entity_;
  Scope top_;
  int aliasCount_ = 0;
  std::vector<Value> bindings_;
};

}  // namespace ledgeon::sql
