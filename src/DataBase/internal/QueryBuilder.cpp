#include "DataBase/internal/QueryBuilder.h"

#include <fmt/format.h>

#include "DataBase/internal/KeyPaths.h"
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

const char* aggregateFunction(keypath::Aggregate aggregate) {
  switch (aggregate) {
    case keypath::Aggregate::Sum:
      return "decimal_sum";
    case keypath::Aggregate::Min:
      return "decimal_min";
    case keypath::Aggregate::Max:
      return "decimal_max";
    case keypath::Aggregate::Average:
      return "decimal_avg";
    case keypath::Aggregate::None:
    case keypath::Aggregate::Count:
      break;
  }
  return "COUNT";
}

keypath::Shape shapeOf(const EntityDescription& entity, const Node::Operand& operand) {
  if (!operand.isKeyPath()) return {};
  auto shape = keypath::shapeOf(entity, operand.keyPath);
  return shape ? *shape : keypath::Shape{};
}

}  // namespace

QueryBuilder::QueryBuilder(const EntityDescription& entity)
    : entity_(entity), top_{&entity, "t0", {}, {}} {}

std::string QueryBuilder::objectAlias(Scope& scope, const std::vector<std::string>& path,
                                      size_t count, const EntityDescription*& entity) {
  entity = scope.entity;
  std::string alias = scope.alias;
  std::string prefix;
  for (size_t i = 0; i < count; ++i) {
    const PropertyDescription* p = entity->property(path[i]);
    prefix += path[i] + ".";
    auto found = scope.aliases.find(prefix);
    if (found == scope.aliases.end()) {
      const std::string next = newAlias();
      scope.joins += " LEFT JOIN " + quoted(p->target->root->name) + " " + next + " ON " + next +
                     ".Z_PK = " + alias + "." + quoted(p->column);
      found = scope.aliases.emplace(prefix, next).first;
    }
    alias = found->second;
    entity = p->target;
  }
  return alias;
}

QueryBuilder::Operand QueryBuilder::keyPathColumn(Scope& scope,
                                                  const std::vector<std::string>& path,
                                                  size_t from) {
  const std::vector<std::string> rest(path.begin() + static_cast<std::ptrdiff_t>(from), path.end());
  if (rest.empty()) return {scope.alias + ".Z_PK", nullptr, false};  // the member itself
  const EntityDescription* owner = nullptr;
  const std::string alias = objectAlias(scope, rest, rest.size() - 1, owner);
  const PropertyDescription* last = owner->property(rest.back());
  return {alias + "." + quoted(last->column), last, isDecimal(last)};
}

QueryBuilder::Members QueryBuilder::members(Scope& scope, const std::vector<std::string>& path,
                                            size_t toMany) {
  const EntityDescription* owner = nullptr;
  const std::string ownerAlias = objectAlias(scope, path, toMany, owner);
  const PropertyDescription& p = *owner->property(path[toMany]);
  Members result{{}, {}, {p.target, newAlias(), {}, {}}};
  const std::string& member = result.scope.alias;
  const std::string table = quoted(p.target->root->name);
  if (p.isManyToMany()) {
    const std::string join = newAlias();
    const char* mine = p.joinSourceIsFirst ? "first" : "second";
    const char* theirs = p.joinSourceIsFirst ? "second" : "first";
    result.from = quoted(p.joinTable) + " " + join + " JOIN " + table + " " + member + " ON " +
                  member + ".Z_PK = " + join + "." + theirs;
    result.link = join + "." + mine + " = " + ownerAlias + ".Z_PK";
  } else {
    std::string ids;
    for (const int id : p.target->hierarchyIds) {
      ids += (ids.empty() ? "" : ", ") + std::to_string(id);
    }
    result.from = table + " " + member;
    result.link = member + "." + quoted(p.inverse->column) + " = " + ownerAlias + ".Z_PK AND " +
                  member + ".Z_ENT IN (" + ids + ")";
  }
  return result;
}

std::string QueryBuilder::bindConstant(const Value& value) {
  if (value.kind() == Value::Kind::Object) {
    bindings_.emplace_back(value.asObject() ? Value(value.asObject()->primaryKey()) : Value());
  } else {
    bindings_.push_back(value);
  }
  return "?" + std::to_string(bindings_.size());
}

QueryBuilder::Operand QueryBuilder::operand(Scope& scope, const Node::Operand& o) {
  if (!o.isKeyPath()) {
    return {bindConstant(o.constant), nullptr, o.constant.kind() == Value::Kind::Amount};
  }
  const keypath::Shape shape = shapeOf(*scope.entity, o);
  if (shape.aggregate == keypath::Aggregate::None) return keyPathColumn(scope, o.keyPath);
  Members m = members(scope, o.keyPath, shape.toMany);
  if (shape.aggregate == keypath::Aggregate::Count) {
    return {"(SELECT COUNT(*) FROM " + m.from + " WHERE " + m.link + ")", nullptr, false};
  }
  const Operand folded = keyPathColumn(m.scope, o.keyPath, shape.memberPathStart());
  return {"(SELECT " + std::string(aggregateFunction(shape.aggregate)) + "(" + folded.expression +
              ") FROM " + m.from + m.scope.joins + " WHERE " + m.link + ")",
          nullptr, true};
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
  const keypath::Shape left = shapeOf(entity_, node.left);
  const keypath::Shape right = shapeOf(entity_, node.right);
  if (left.quantified()) return quantified(node, true, left.toMany);
  if (right.quantified()) return quantified(node, false, right.toMany);
  const Operand l = operand(top_, node.left);
  const Operand r = node.op == Op::In ? Operand{} : operand(top_, node.right);
  return compare(node, l, r);
}

std::string QueryBuilder::quantified(const Node& node, bool memberOnLeft, size_t toMany) {
  const Node::Operand& path = memberOnLeft ? node.left : node.right;
  Members m = members(top_, path.keyPath, toMany);
  const Operand member = keyPathColumn(m.scope, path.keyPath, toMany + 1);
  Operand other;
  if (node.op != Op::In || !memberOnLeft)
    other = operand(top_, memberOnLeft ? node.right : node.left);
  const std::string test =
      memberOnLeft ? compare(node, member, other) : compare(node, other, member);
  const std::string rows = "SELECT 1 FROM " + m.from + m.scope.joins + " WHERE " + m.link;
  switch (node.quantifier) {
    case Node::Quantifier::All:
      return "(NOT EXISTS (" + rows + " AND NOT " + test + "))";
    case Node::Quantifier::NoMember:
      return "(NOT EXISTS (" + rows + " AND " + test + "))";
    case Node::Quantifier::Implicit:
    case Node::Quantifier::Any:
      break;
  }
  return "(EXISTS (" + rows + " AND " + test + "))";
}

std::string QueryBuilder::compare(const Node& node, const Operand& lo, const Operand& ro) {
  const std::string& l = lo.expression;
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
      const bool decimal = lo.decimal || member.kind() == Value::Kind::Amount;
      any += (any.empty() ? "" : " OR ") +
             equality(l, bindConstant(member), decimal, node.caseInsensitive);
    }
    return any.empty() ? "0" : "(" + any + ")";
  }
  const std::string& r = ro.expression;
  const bool decimal = lo.decimal || ro.decimal;
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
    const Operand column = keyPathColumn(top_, path);
    order += (order.empty() ? " ORDER BY " : ", ") + column.expression +
             (column.decimal ? " COLLATE DECIMAL" : "") + (sort.ascending ? " ASC" : " DESC");
  }
  order += order.empty() ? " ORDER BY t0.Z_PK" : ", t0.Z_PK";
  std::string text = "SELECT " + columns + " FROM " + quoted(entity_.root->name) + " t0" +
                     top_.joins + " WHERE " + where + order;
  if (withLimit && options.fetchLimit > 0) text += " LIMIT " + std::to_string(options.fetchLimit);
  return text;
}

void QueryBuilder::bindAll(Statement& statement) const {
  for (size_t i = 0; i < bindings_.size(); ++i) {
    schema::bindValue(statement, static_cast<int>(i + 1), bindings_[i]);
  }
}

}  // namespace ledgeon::sql
