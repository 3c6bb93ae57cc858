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
//
// Sixteen bytes: a loaded ledger holds millions of them. Numbers, dates, object references and
// Amounts whose mantissa fits 64 bits (every money value) sit inline; texts, byte strings, larger
// Amounts and collections live in an immutable, reference-counted box that copies share.
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

  Value() noexcept { payload_.integer = 0; }
  Value(std::nullptr_t) noexcept : Value() {}  // NOLINT: implicit
  Value(bool value) noexcept : kind_(Kind::Boolean) { payload_.boolean = value; }  // NOLINT
  Value(int value) noexcept : kind_(Kind::Integer) { payload_.integer = value; }   // NOLINT
  Value(long value) noexcept : kind_(Kind::Integer) { payload_.integer = value; }  // NOLINT
  Value(long long value) noexcept : kind_(Kind::Integer) {                         // NOLINT
    payload_.integer = value;
  }
  Value(double value) noexcept : kind_(Kind::Double) { payload_.real = value; }  // NOLINT
  Value(const ledgeon::Amount& value);                                           // NOLINT: implicit
  Value(std::string value);                                                      // NOLINT: implicit
  Value(std::string_view value);                                                 // NOLINT: implicit
  Value(const char* value);                                                      // NOLINT: implicit
  Value(ledgeon::Date value) noexcept : kind_(Kind::Date) {                      // NOLINT: implicit
    payload_.real = value.timeIntervalSinceReferenceDate();
  }
  Value(ledgeon::Bytes value);                                                   // NOLINT: implicit
  Value(PropertyList value);                                                     // NOLINT: implicit
  Value(LObject* object) noexcept : kind_(object ? Kind::Object : Kind::Null) {  // NOLINT
    payload_.object = object;  // a null pointer gives a null value
  }
  Value(ObjectSet objects);  // NOLINT: implicit
  Value(ValueList values);   // NOLINT: implicit
  Value(ToManyEdit edit);    // NOLINT: implicit

  Value(const Value& other) noexcept
      : kind_(other.kind_),
        exponent_(other.exponent_),
        flags_(other.flags_),
        payload_(other.payload_) {
    if (isBoxed()) retain();
  }
  Value(Value&& other) noexcept
      : kind_(other.kind_),
        exponent_(other.exponent_),
        flags_(other.flags_),
        payload_(other.payload_) {
    other.kind_ = Kind::Null;
    other.flags_ = 0;
  }
  Value& operator=(const Value& other) noexcept {
    Value copy(other);
    swap(copy);
    return *this;
  }
  Value& operator=(Value&& other) noexcept {
    Value moved(std::move(other));
    swap(moved);
    return *this;
  }
  ~Value() {
    if (isBoxed()) release();
  }

  Kind kind() const noexcept { return kind_; }
  bool isNull() const noexcept { return kind_ == Kind::Null; }
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
  struct Box;
  template <typename T>
  struct TypedBox;
  enum Flags : uint8_t { kNegative = 1, kNotANumber = 2, kBoxed = 4 };

  template <typename T>
  void box(Kind kind, T value);
  template <typename T>
  const T& unbox() const;
  bool isBoxed() const noexcept { return (flags_ & kBoxed) != 0; }
  void retain() const noexcept;
  void release() noexcept;
  void swap(Value& other) noexcept {
    std::swap(kind_, other.kind_);
    std::swap(exponent_, other.exponent_);
    std::swap(flags_, other.flags_);
    std::swap(payload_, other.payload_);
  }

  Kind kind_ = Kind::Null;
  int8_t exponent_ = 0;  // of an inline Amount
  uint8_t flags_ = 0;
  union Payload {
    bool boolean;
    int64_t integer;
    double real;        // doubles and dates
    uint64_t mantissa;  // of an inline Amount
    LObject* object;
    Box* box;
  } payload_;
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
