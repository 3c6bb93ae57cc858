#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "LObjects/Value.h"
#include "Utilities/Result.h"

namespace ledgeon {

class LObject;
struct EntityDescription;

// The parsed form of a predicate. Plain data, immutable once built.
struct PredicateNode {
  enum class Type : uint8_t { True, False, And, Or, Not, Comparison };
  enum class Operator : uint8_t {
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Like,
    Contains,
    BeginsWith,
    EndsWith,
    In
  };
  // How a comparison whose key path goes through a to-many relationship treats the members:
  // true when any member passes (also with no quantifier written), when all do, when none does.
  enum class Quantifier : uint8_t { Implicit, Any, All, NoMember };
  // One side of a comparison: a key path, a constant or a list of constants. A key path may go
  // through one to-many relationship and fold its members with @count, @sum, @min, @max, @avg.
  struct Operand {
    std::vector<std::string> keyPath;  // empty for a constant
    Value constant;
    bool isKeyPath() const { return !keyPath.empty(); }
  };

  Type type = Type::True;
  Operator op = Operator::Equal;
  bool caseInsensitive = false;
  Quantifier quantifier = Quantifier::Implicit;
  Operand left;
  Operand right;
  std::vector<PredicateNode> children;
};

// A filter over ledger objects written in the program's predicate language:
//   (syncID != NULL AND modificationTimestamp > %@) OR account.syncWithCloud == 1
//   name like[c] "Sav*" AND NOT (type IN {1, 2}) AND %K beginswith %@
//   ANY entries.categoryTag.name == "Rent" OR entries.@count > 2 OR ALL entries.amount < 0
// Arguments: %@ (any Value), %K (a key path given as text), %d %ld %i %lu (integers).
// The same predicate compiles to SQL for the store and evaluates in memory on objects; both agree.
class Predicate final {
 public:
  Predicate();  // TRUEPREDICATE

  // A syntax error names the position (a 0-based character offset) and what was expected.
  static Result<Predicate> parse(std::string_view format, const std::vector<Value>& arguments = {});
  // For predicates written in code: a syntax error is a programming error (std::logic_error).
  template <typename... Args>
  static Predicate withFormat(std::string_view format, const Args&... args) {
    return withFormatArguments(format, {Value(args)...});
  }
  static Predicate withFormatArguments(std::string_view format, const std::vector<Value>& args);

  const PredicateNode& root() const { return *root_; }
  bool isTrue() const { return root_->type == PredicateNode::Type::True; }

  // Every key path names properties of `entity`, going through to-one relationships and at most
  // one to-many relationship.
  Result<void> validate(const EntityDescription& entity) const;
  // Evaluated in memory. The predicate must be valid for the object's entity.
  bool evaluate(LObject& object) const;

  std::string description() const;

 private:
  explicit Predicate(std::shared_ptr<const PredicateNode> root) : root_(std::move(root)) {}
  std::shared_ptr<const PredicateNode> root_;
};

}  // namespace ledgeon
