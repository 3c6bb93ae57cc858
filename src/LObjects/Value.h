#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

class LObject;
class Value;

// A set of ledger objects (the value of a to-many relationship). Kept in insertion order,
// without duplicates.
using ObjectSet = std::vector<LObject*>;

// A property list: the value of a dictionary ("transformable") attribute.
using PropertyList = std::map<std::string, std::string, std::less<>>;

using Bytes = std::vector<uint8_t>;

// A list of values, the right-hand side of an IN comparison.
using ValueList = std::vector<Value>;

// The edit keys of a to-many relationship in an edit dictionary.
inline constexpr const char* kLObjectNewEditAddObjects = "LObjectNewEdit_AddObjects";
inline constexpr const char* kLObjectNewEditRemoveObjects = "LObjectNewEdit_RemoveObjects";
inline constexpr const char* kLObjectNewEditReplaceObjects = "LObjectNewEdit_ReplaceObjects";

// The change of a to-many relationship: objects to add, to remove, or the whole new set.
struct ToManyEdit {
  std::optional<ObjectSet> addObjects;
  std::optional<ObjectSet> removeObjects;
  std::optional<ObjectSet> replaceObjects;
  friend bool operator==(const ToManyEdit&, const ToManyEdit&) = default;

  static ToManyEdit adding(ObjectSet objects);
  static ToManyEdit removing(ObjectSet objects);
  static ToManyEdit replacing(ObjectSet objects);
};

// One value of the ledger: what an attribute holds, what a relationship points at, or a to-many
// edit. Values are plain data and may be copied between threads unless they hold objects.
class Value final {
 public:
  enum class Kind : uint8_t {
    Null,
    Boolean,
    Integer,
    Double,
    Amount,
    String,
    Date,
    Binary,
    Dictionary,
    Object,
    Objects,
    List,
    Edit
  };

  Value() = default;
  Value(std::nullptr_t) {}                                      // NOLINT: implicit
  Value(bool value) : data_(value) {}                           // NOLINT: implicit
  Value(int value) : data_(int64_t{value}) {}                   // NOLINT: implicit
  Value(long value) : data_(int64_t{value}) {}                  // NOLINT: implicit
  Value(long long value) : data_(int64_t{value}) {}             // NOLINT: implicit
  Value(double value) : data_(value) {}                         // NOLINT: implicit
  Value(const ledgeon::Amount& value) : data_(value) {}         // NOLINT: implicit
  Value(std::string value) : data_(std::move(value)) {}         // NOLINT: implicit
  Value(std::string_view value) : data_(std::string(value)) {}  // NOLINT: implicit
  Value(const char* value) : data_(std::string(value)) {}       // NOLINT: implicit
  Value(ledgeon::Date value) : data_(value) {}                  // NOLINT: implicit
  Value(ledgeon::Bytes value) : data_(std::move(value)) {}      // NOLINT: implicit
  Value(PropertyList value)                                     // NOLINT: implicit
      : data_(std::make_shared<const PropertyList>(std::move(value))) {}
  Value(LObject* object) {  // NOLINT: implicit; a null pointer gives a null value
    if (object) data_ = object;
  }
  Value(ObjectSet objects)
      : data_(std::make_shared<const ObjectSet>(std::move(objects))) {}  // NOLINT
  Value(ValueList values)
      : data_(std::make_shared<const ValueList>(std::move(values))) {}                    // NOLINT
  Value(ToManyEdit edit) : data_(std::make_shared<const ToManyEdit>(std::move(edit))) {}  // NOLINT

  Kind kind() const noexcept;
  bool isNull() const noexcept;
  bool isNumber() const noexcept;  // boolean, integer, double or Amount

  // Typed reads. A read of another kind is a programming error (std::logic_error), except the
  // numeric reads, which convert between the numeric kinds.
  bool asBool() const;
  int64_t asInteger() const;
  double asDouble() const;
  ledgeon::Amount asAmount() const;
  const std::string& asString() const;
  ledgeon::Date asDate() const;
  const ledgeon::Bytes& asBytes() const;
  const PropertyList& asDictionary() const;
  LObject* asObject() const;
  const ObjectSet& asObjects() const;
  const ValueList& asList() const;
  const ToManyEdit& asEdit() const;

  // Logs and %@ print this: numbers and texts as themselves, objects by entity and identifier.
  std::string description() const;

  friend bool operator==(const Value& a, const Value& b);

 private:
  std::variant<std::monostate, bool, int64_t, double, ledgeon::Amount, std::string, ledgeon::Date,
               ledgeon::Bytes, std::shared_ptr<const PropertyList>, LObject*,
               std::shared_ptr<const ObjectSet>, std::shared_ptr<const ValueList>,
               std::shared_ptr<const ToManyEdit>>
      data_;
};

// The order of two values: numbers of any kind by numeric value (Amounts exactly), texts and
// dates as themselves; a null sorts before everything. Values of unrelated kinds compare by kind.
int compareValues(const Value& a, const Value& b);

// A key-value map that keeps the order its keys were added in: the language commands, imports
// and the cloud use to describe a change.
class EditDict final {
 public:
  EditDict() = default;
  EditDict(std::initializer_list<std::pair<std::string, Value>> entries);

  void set(std::string_view key, Value value);  // replaces in place or appends
  const Value* find(std::string_view key) const;
  bool contains(std::string_view key) const { return find(key) != nullptr; }
  bool erase(std::string_view key);
  size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }
  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }
  std::string description() const;

  friend bool operator==(const EditDict&, const EditDict&) = default;

 private:
  std::vector<std::pair<std::string, Value>> entries_;
};

}  // namespace ledgeon
