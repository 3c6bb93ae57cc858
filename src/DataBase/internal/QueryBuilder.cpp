#include "DataBase/internal/QueryBuilder.h"

#include <fmt/format.h>

#include "DataBase/internal/SQLite.h"
#include "DataBase/internal/Schema.h"
#include "DataBase/internal/StringMatch.h"
#include "LObjects/LObject.h"

namespace ledgeon::sql {

namespace {

using Node = PredicateNode;
using Op = Node::Operator;

bool isDecimal(const PropertyDescription* p) {
  return p && p->isAttribute() && p->type == AttributeType::Amount;
}

}  // namespace

QueryBuilder::QueryBuilder(const EntityDescription& entity) : entity_(entity) {}

QueryBuilder::Column QueryBuilder::keyPathColumn(const std::vector<std::string>& path) {
  const EntityDescription* current = &entity_;
  std::string alias = "t0";
  std::string prefix;
  for (size_t i = 0; i + 1 < path.size(); ++i) {
    const PropertyDescription* p = current->property(path[i]);
    prefix += path[i] + ".";
    auto found = aliases_.find(prefix);
    if (found == aliases_.end()) {
      const std::string next = "t" + std::to_string(aliases_.size() + 1);
      joins_ += " LEFT JOIN " + quoted(p->target->root->name) + " " + next + " ON " + next +
                ".Z_PK = " + alias + "." + quoted(p->column);
      found = aliases_.emplace(prefix, next).first;
    }
    alias = found->second;
    current = p->target;
  }
  const PropertyDescription* last = current->property(path.back());
  return {alias + "." + quoted(last->column), last};
}

std::string QueryBuilder::bindConstant(const Value& value) {
  if (value.kind() == Value::Kind::Object) {
    bindings_.emplace_back(value.asObject() ? Value(value.asObject()->primaryKey()) : Value());
  } else {
    bindings_.push_back(value);
  }
  return "?" + std::to_string(bindings_.size());
}

std::string QueryBuilder::operand(const Node::Operand& o, const PropertyDescription*& property) {
  if (!o.isKeyPath()) {
    property = nullptr;
    return bindConstant(o.constant);
  }
  Column column = keyPathColumn(o.keyPath);
  property = column.property;
  return column.expression;
}

std::string QueryBuilder::equality(const std::string& l, const std::string& r, bool decimal,
                                   bool caseInsensitive) {
  if (decimal || caseInsensitive) {
    const std::string test =
        decimal ? "decimal_cmp(" + l + ", " + r + ") = 0"
                : "string_match(" + std::to_string(static_cast<int>(match::Operator::Equal)) +
                      ", " + l + ", " + r + ", 1)";
    return "(CASE WHEN " + l + " IS NULL OR " + r + " IS NULL THEN (" + l + " IS NULL AND " + r +
           " IS NULL) ELSE " + test + " END)";
  }
  return "(" + l + " IS " + r + ")";
}

std::string QueryBuilder::comparison(const Node& node) {
  const PropertyDescription* lp = nullptr;
  const PropertyDescription* rp = nullptr;
  const std::string l = operand(node.left, lp);
  if (node.op == Op::In) {
    const Value& set = node.right.constant;
    if (set.kind() == Value::Kind::Objects) {
      std::string list;
      for (LObject* member : set.asObjects()) {
        list += (list.empty() ? "" : ", ") + std::to_string(member->primaryKey());
      }
      return list.empty() ? "0" : "IFNULL(" + l + " IN (" + list + "), 0)";
    }
    std::string any;
    for (const Value& member : set.asList()) {
      const bool decimal = isDecimal(lp) || member.kind() == Value::Kind::Amount;
      any += (any.empty() ? "" : " OR ") +
             equality(l, bindConstant(member), decimal, node.caseInsensitive);
    }
    return any.empty() ? "0" : "(" + any + ")";
  }
  const std::string r = operand(node.right, rp);
  const bool decimal =
      isDecimal(lp) || isDecimal(rp) ||
      (!node.left.isKeyPath() && node.left.constant.kind() == Value::Kind::Amount) ||
      (!node.right.isKeyPath() && node.right.constant.kind() == Value::Kind::Amount);
  const std::string order = decimal ? "decimal_cmp(" + l + ", " + r + ")" : "";
  auto ordered = [&](const char* op) {
    return decimal ? "IFNULL(" + order + " " + op + " 0, 0)"
                   : "IFNULL(" + l + " " + op + " " + r + ", 0)";
  };
  auto text = [&](match::Operator op) {
    return "string_match(" + std::to_string(static_cast<int>(op)) + ", " + l + ", " + r + ", " +
           (node.caseInsensitive ? "1" : "0") + ")";
  };
  switch (node.op) {
    case Op::Equal:
      return equality(l, r, decimal, node.caseInsensitive);
    case Op::NotEqual:
      return "NOT " + equality(l, r, decimal, node.caseInsensitive);
    case Op::Less:
      return ordered("<");
    case Op::LessOrEqual:
      return ordered("<=");
    case Op::Greater:
      return ordered(">");
    case Op::GreaterOrEqual:
      return ordered(">=");
    case Op::Like:
      return text(match::Operator::Like);
    case Op::Contains:
      return text(match::Operator::Contains);
    case Op::BeginsWith:
      return text(match::Operator::BeginsWith);
    case Op::EndsWith:
      return text(match::Operator::EndsWith);
    case Op::In:
      break;
  }
  return "0";
}

std::string QueryBuilder::condition(const Node& node) {
  switch (node.type) {
    case Node::Type::True:
      return "1";
    case Node::Type::False:
      return "0";
    case Node::Type::And:
      return fmt::format("({} AND {})", condition(node.children[0]), condition(node.children[1]));
    case Node::Type::Or:
      return fmt::format("({} OR {})", condition(node.children[0]), condition(node.children[1]));
    case Node::Type::Not:
      return "(NOT " + condition(node.children[0]) + ")";
    case Node::Type::Comparison:
      return comparison(node);
  }
  return "0";
}

std::string QueryBuilder::select(const std::string& columns, const FetchOptions& options,
                                 bool withLimit) {
  std::string where = "t0.Z_ENT IN (";
  for (size_t i = 0; i < entity_.hierarchyIds.size(); ++i) {
    where += (i ? ", " : "") + std::to_string(entity_.hierarchyIds[i]);
  }
  where += ")";
  if (!options.includeDeleted) where += " AND IFNULL(t0.\"deletionCount\", 0) = 0";
  if (!options.predicate.isTrue()) where += " AND " + condition(options.predicate.root());
  std::string order;
  for (const SortDescriptor& sort : options.sortDescriptors) {
    std::vector<std::string> path;
    size_t start = 0;
    while (true) {
      const size_t dot = sort.keyPath.find('.', start);
      path.push_back(sort.keyPath.substr(start, dot - start));
      if (dot == std::string::npos) break;
      start = dot + 1;
    }
    const Column column = keyPathColumn(path);
    order += (order.empty() ? " ORDER BY " : ", ") + column.expression +
             (isDecimal(column.property) ? " COLLATE DECIMAL" : "") +
             (sort.ascending ? " ASC" : " DESC");
  }
  order += order.empty() ? " ORDER BY t0.Z_PK" : ", t0.Z_PK";
  std::string text = "SELECT " + columns + " FROM " + quoted(entity_.root->name) + " t0" + joins_ +
                     " WHERE " + where + order;
  if (withLimit && options.fetchLimit > 0) text += " LIMIT " + std::to_string(options.fetchLimit);
  return text;
}

void QueryBuilder::bindAll(Statement& statement) const {
  for (size_t i = 0; i < bindings_.size(); ++i) {
    schema::bindValue(statement, static_cast<int>(i + 1), bindings_[i]);
  }
}

}  // namespace ledgeon::sql
