#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "LObjects/Model.h"
#include "LObjects/Value.h"
#include "Utilities/Amount.h"
#include "Utilities/Result.h"

namespace ledgeon::keypath {

// What a predicate key path folds a to-many relationship's members into.
enum class Aggregate : int { None = 0, Count = 1, Sum = 2, Min = 3, Max = 4, Average = 5 };

// How a key path reaches its value: to-one relationships, then at most one to-many relationship,
// whose members are either compared one by one (ANY, ALL, NONE) or folded by an aggregate
// ("entries.@count", "entries.@sum.amount"), then to-one relationships and an attribute.
struct Shape {
  static constexpr size_t kNone = static_cast<size_t>(-1);
  size_t toMany = kNone;  // position of the to-many relationship in the path
  Aggregate aggregate = Aggregate::None;
  bool throughToMany() const { return toMany != kNone; }
  bool quantified() const { return throughToMany() && aggregate == Aggregate::None; }
  // Where the members' own key path starts (after the relationship and any aggregate).
  size_t memberPathStart() const { return toMany + (aggregate == Aggregate::None ? 1 : 2); }
};

// The shape of `path` on `entity`, or an error naming what the path cannot do.
Result<Shape> shapeOf(const EntityDescription& entity, const std::vector<std::string>& path);

// The fold of an aggregate, shared by the SQL aggregate functions and in-memory evaluation so
// that both give the same answer. Null values are skipped; the sum of nothing is zero, the
// minimum, maximum and average of nothing are null.
class Fold final {
 public:
  explicit Fold(Aggregate aggregate) : aggregate_(aggregate) {}
  void add(const Amount& value);
  void addNull() { ++count_; }  // counted by @count only
  // Null, an integer (count) or an Amount.
  Value result() const;

 private:
  Aggregate aggregate_;
  size_t count_ = 0;
  size_t numbers_ = 0;
  Amount total_;
  Amount extreme_;
};

}  // namespace ledgeon::keypath
