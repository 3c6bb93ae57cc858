#include "DataBase/internal/KeyPaths.h"

#include "Utilities/Error.h"

namespace ledgeon::keypath {

namespace {

std::string joined(const std::vector<std::string>& path) {
  std::string text;
  for (const std::string& key : path) text += (text.empty() ? "" : ".") + key;
  return text;
}

Error pathError(const std::vector<std::string>& path, const std::string& problem) {
  return Error::make(kLErrorDomain, 2, "key path \"" + joined(path) + "\" " + problem);
}

Aggregate aggregateNamed(const std::string& key) {
  if (key == "@count") return Aggregate::Count;
  if (key == "@sum") return Aggregate::Sum;
  if (key == "@min") return Aggregate::Min;
  if (key == "@max") return Aggregate::Max;
  if (key == "@avg") return Aggregate::Average;
  return Aggregate::None;
}

}  // namespace

Result<Shape> shapeOf(const EntityDescription& entity, const std::vector<std::string>& path) {
  Shape shape;
  const EntityDescription* current = &entity;
  for (size_t i = 0; i < path.size(); ++i) {
    const std::string& key = path[i];
    if (!key.empty() && key[0] == '@') {
      const Aggregate aggregate = aggregateNamed(key);
      if (aggregate == Aggregate::None) return pathError(path, "names an unknown aggregate " + key);
      if (!shape.throughToMany() || i != shape.toMany + 1) {
        return pathError(path,
                         "uses " + key + " after something other than a to-many relationship");
      }
      shape.aggregate = aggregate;
      if (aggregate == Aggregate::Count && i + 1 != path.size()) {
        return pathError(path, "continues after @count");
      }
      if (aggregate != Aggregate::Count && i + 1 == path.size()) {
        return pathError(path, "needs the attribute " + key + " folds");
      }
      continue;
    }
    const PropertyDescription* p = current->property(key);
    if (!p) {
      return Error::make(kLErrorDomain, 2,
                         "unknown key \"" + key + "\" for " + current->name + " in key path \"" +
                             joined(path) + "\"");
    }
    if (p->isToMany()) {
      if (shape.throughToMany()) {
        return pathError(path, "goes through more than one to-many relationship");
      }
      shape.toMany = i;
    }
    if (i + 1 < path.size()) {
      if (p->isAttribute()) {
        return pathError(path, "continues after the attribute " + current->name + "." + p->name);
      }
      current = p->target;
    } else if (shape.aggregate != Aggregate::None && shape.aggregate != Aggregate::Count &&
               (!p->isAttribute() ||
                (p->type != AttributeType::Amount && p->type != AttributeType::Integer))) {
      return pathError(path, "folds " + p->name + ", which is not a number");
    }
  }
  return shape;
}

void Fold::add(const Amount& value) {
  ++count_;
  if (value.isNaN()) return;
  const bool first = numbers_++ == 0;
  switch (aggregate_) {
    case Aggregate::Sum:
    case Aggregate::Average:
      total_ = Amount::add(total_, value, RoundingMode::Plain).value;
      break;
    case Aggregate::Min:
      if (first || value.compare(extreme_) == ComparisonResult::Ascending) extreme_ = value;
      break;
    case Aggregate::Max:
      if (first || value.compare(extreme_) == ComparisonResult::Descending) extreme_ = value;
      break;
    case Aggregate::None:
    case Aggregate::Count:
      break;
  }
}

Value Fold::result() const {
  switch (aggregate_) {
    case Aggregate::Count:
      return Value(static_cast<int64_t>(count_));
    case Aggregate::Sum:
      return Value(total_);
    case Aggregate::Min:
    case Aggregate::Max:
      return numbers_ ? Value(extreme_) : Value();
    case Aggregate::Average:
      return numbers_
                 ? Value(Amount::divide(total_, Amount::fromUInt64(numbers_), RoundingMode::Plain)
                             .value)
                 : Value();
    case Aggregate::None:
      break;
  }
  return {};
}

}  // namespace ledgeon::keypath
