// Validation, in-memory evaluation and printing of predicates.
#include <fmt/format.h>

#include "DataBase/Predicate.h"
#include "DataBase/internal/KeyPaths.h"
#include "DataBase/internal/StringMatch.h"
#include "LObjects/LObject.h"
#include "Utilities/Error.h"

namespace ledgeon {

namespace {

using Node = PredicateNode;
using Op = Node::Operator;

std::string joined(const std::vector<std::string>& path) {
  std::string text;
  for (const std::string& key : path) text += (text.empty() ? "" : ".") + key;
  return text;
}

Result<void> validateNode(const Node& node, const EntityDescription& entity) {
  if (node.type != Node::Type::Comparison) {
    for (const Node& child : node.children) {
      if (auto r = validateNode(child, entity); !r) return r;
    }
    return {};
  }
  bool quantified = false;
  for (const Node::Operand* operand : {&node.left, &node.right}) {
    if (!operand->isKeyPath()) continue;
    auto shape = keypath::shapeOf(entity, operand->keyPath);
    if (!shape) return shape.error();
    if (shape->quantified() && quantified) {
      return Error::make(kLErrorDomain, 2,
                         "a comparison may go through a to-many relationship on one side only");
    }
    quantified = quantified || shape->quantified();
  }
  if (node.quantifier != Node::Quantifier::Implicit && !quantified) {
    return Error::make(kLErrorDomain, 2,
                       "ANY, ALL and NONE need a key path through a to-many relationship");
  }
  return {};
}

// The members' values of a key path through a to-many relationship (or, with an aggregate,
// their fold); `shape` is the path's shape on the object's entity.
std::vector<Value> memberValues(const std::vector<std::string>& path, const keypath::Shape& shape,
                                LObject& object) {
  std::vector<Value> values;
  LObject* owner = &object;
  for (size_t i = 0; i < shape.toMany && owner; ++i) owner = owner->valueForKey(path[i]).asObject();
  if (!owner) return values;
  for (LObject* member : owner->valueForKey(path[shape.toMany]).asObjects()) {
    LObject* current = member;
    for (size_t i = shape.memberPathStart(); i + 1 < path.size() && current; ++i) {
      current = current->valueForKey(path[i]).asObject();
    }
    if (shape.memberPathStart() >= path.size()) {
      values.emplace_back(member);
    } else {
      values.push_back(current ? current->valueForKey(path.back()) : Value());
    }
  }
  return values;
}

keypath::Shape shapeOn(const Node::Operand& operand, LObject& object) {
  if (!operand.isKeyPath()) return {};
  auto shape = keypath::shapeOf(object.entity(), operand.keyPath);
  return shape ? *shape : keypath::Shape{};
}

Value operandValue(const Node::Operand& operand, LObject& object) {
  if (!operand.isKeyPath()) return operand.constant;
  const keypath::Shape shape = shapeOn(operand, object);
  if (shape.aggregate != keypath::Aggregate::None) {
    keypath::Fold fold(shape.aggregate);
    for (const Value& value : memberValues(operand.keyPath, shape, object)) {
      if (value.isNumber()) {
        fold.add(value.asAmount());
      } else {
        fold.addNull();
      }
    }
    return fold.result();
  }
  LObject* current = &object;
  for (size_t i = 0; i + 1 < operand.keyPath.size(); ++i) {
    current = current->valueForKey(operand.keyPath[i]).asObject();
    if (!current) return {};
  }
  return current->valueForKey(operand.keyPath.back());
}

bool isText(const Value& v) { return v.kind() == Value::Kind::String; }

bool equal(const Value& a, const Value& b, bool caseInsensitive) {
  if (a.isNull() || b.isNull()) return a.isNull() && b.isNull();
  if (isText(a) && isText(b)) {
    return caseInsensitive
               ? match::matches(match::Operator::Equal, a.asString(), b.asString(), true)
               : a.asString() == b.asString();
  }
  if (a.kind() == Value::Kind::Object || b.kind() == Value::Kind::Object) {
    return a.kind() == b.kind() && a.asObject() == b.asObject();
  }
  return compareValues(a, b) == 0;
}

bool compare(const Node& node, const Value& a, const Value& b) {
  switch (node.op) {
    case Op::Equal:
      return equal(a, b, node.caseInsensitive);
    case Op::NotEqual:
      return !equal(a, b, node.caseInsensitive);
    case Op::Less:
      return !a.isNull() && !b.isNull() && compareValues(a, b) < 0;
    case Op::LessOrEqual:
      return !a.isNull() && !b.isNull() && compareValues(a, b) <= 0;
    case Op::Greater:
      return !a.isNull() && !b.isNull() && compareValues(a, b) > 0;
    case Op::GreaterOrEqual:
      return !a.isNull() && !b.isNull() && compareValues(a, b) >= 0;
    case Op::Like:
    case Op::Contains:
    case Op::BeginsWith:
    case Op::EndsWith: {
      if (!isText(a) || !isText(b)) return false;
      const auto op = node.op == Op::Like         ? match::Operator::Like
                      : node.op == Op::Contains   ? match::Operator::Contains
                      : node.op == Op::BeginsWith ? match::Operator::BeginsWith
                                                  : match::Operator::EndsWith;
      return match::matches(op, a.asString(), b.asString(), node.caseInsensitive);
    }
    case Op::In:
      if (b.kind() == Value::Kind::Objects) {
        if (a.kind() != Value::Kind::Object) return false;
        for (LObject* member : b.asObjects()) {
          if (member == a.asObject()) return true;
        }
        return false;
      }
      for (const Value& member : b.asList()) {
        if (equal(a, member, node.caseInsensitive)) return true;
      }
      return false;
  }
  return false;
}

bool evaluateComparison(const Node& node, LObject& object) {
  const keypath::Shape left = shapeOn(node.left, object);
  const keypath::Shape right = shapeOn(node.right, object);
  if (!left.quantified() && !right.quantified()) {
    return compare(node, operandValue(node.left, object), operandValue(node.right, object));
  }
  const bool memberOnLeft = left.quantified();
  const Value other = operandValue(memberOnLeft ? node.right : node.left, object);
  const std::vector<Value> members = memberValues(
      memberOnLeft ? node.left.keyPath : node.right.keyPath, memberOnLeft ? left : right, object);
  size_t passing = 0;
  for (const Value& member : members) {
    if (memberOnLeft ? compare(node, member, other) : compare(node, other, member)) ++passing;
  }
  switch (node.quantifier) {
    case Node::Quantifier::All:
      return passing == members.size();
    case Node::Quantifier::NoMember:
      return passing == 0;
    case Node::Quantifier::Implicit:
    case Node::Quantifier::Any:
      break;
  }
  return passing > 0;
}

bool evaluateNode(const Node& node, LObject& object) {
  switch (node.type) {
    case Node::Type::True:
      return true;
    case Node::Type::False:
      return false;
    case Node::Type::And:
      return evaluateNode(node.children[0], object) && evaluateNode(node.children[1], object);
    case Node::Type::Or:
      return evaluateNode(node.children[0], object) || evaluateNode(node.children[1], object);
    case Node::Type::Not:
      return !evaluateNode(node.children[0], object);
    case Node::Type::Comparison:
      return evaluateComparison(node, object);
  }
  return false;
}

std::string operandText(const Node::Operand& operand) {
  if (operand.isKeyPath()) return joined(operand.keyPath);
  if (operand.constant.isNull()) return "nil";
  if (isText(operand.constant)) return "\"" + operand.constant.asString() + "\"";
  return operand.constant.description();
}

std::string nodeText(const Node& node) {
  switch (node.type) {
    case Node::Type::True:
      return "TRUEPREDICATE";
    case Node::Type::False:
      return "FALSEPREDICATE";
    case Node::Type::And:
      return fmt::format("({} AND {})", nodeText(node.children[0]), nodeText(node.children[1]));
    case Node::Type::Or:
      return fmt::format("({} OR {})", nodeText(node.children[0]), nodeText(node.children[1]));
    case Node::Type::Not:
      return "NOT " + nodeText(node.children[0]);
    case Node::Type::Comparison:
      break;
  }
  std::string op;
  switch (node.op) {
    case Op::Equal:
      op = "==";
      break;
    case Op::NotEqual:
      op = "!=";
      break;
    case Op::Less:
      op = "<";
      break;
    case Op::LessOrEqual:
      op = "<=";
      break;
    case Op::Greater:
      op = ">";
      break;
    case Op::GreaterOrEqual:
      op = ">=";
      break;
    case Op::Like:
      op = "LIKE";
      break;
    case Op::Contains:
      op = "CONTAINS";
      break;
    case Op::BeginsWith:
      op = "BEGINSWITH";
      break;
    case Op::EndsWith:
      op = "ENDSWITH";
      break;
    case Op::In:
      op = "IN";
      break;
  }
  if (node.caseInsensitive) op += "[c]";
  static const char* const kQuantifiers[] = {"", "ANY ", "ALL ", "NONE "};
  return kQuantifiers[static_cast<int>(node.quantifier)] + operandText(node.left) + " " + op + " " +
         operandText(node.right);
}

}  // namespace

Result<void> Predicate::validate(const EntityDescription& entity) const {
  return validateNode(*root_, entity);
}

bool Predicate::evaluate(LObject& object) const { return evaluateNode(*root_, object); }

std::string Predicate::description() const { return nodeText(*root_); }

}  // namespace ledgeon
