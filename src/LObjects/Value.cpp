#include "LObjects/Value.h"

#include <atomic>
#include <cmath>
#include <stdexcept>

#include "LObjects/LObject.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

static_assert(sizeof(Value) == 16, "a loaded ledger holds millions of values");

namespace {

[[noreturn]] void wrongKind(const char* wanted, const Value& value) {
  throw std::logic_error(std::string("Value is not a ") + wanted + ": " + value.description());
}

int sign(double d) { return d < 0 ? -1 : (d > 0 ? 1 : 0); }

std::string objectDescription(const LObject* object) {
  return object ? object->shortDescription() : "(null)";
}

}  // namespace

// The heap part of a value that does not fit inline. Immutable once made; shared by copies,
// which may live on other threads, hence the atomic count.
struct Value::Box {
  mutable std::atomic<uint32_t> references{1};
  virtual ~Box() = default;
};

template <typename T>
struct Value::TypedBox final : Value::Box {
  explicit TypedBox(T v) : value(std::move(v)) {}
  const T value;
};

template <typename T>
void Value::box(Kind kind, T value) {
  kind_ = kind;
  flags_ = kBoxed;
  payload_.box = new TypedBox<T>(std::move(value));
}

template <typename T>
const T& Value::unbox() const {
  return static_cast<const TypedBox<T>*>(payload_.box)->value;
}

void Value::retain() const noexcept {
  payload_.box->references.fetch_add(1, std::memory_order_relaxed);
}

void Value::release() noexcept {
  if (payload_.box->references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete payload_.box;
}

Value::Value(const ledgeon::Amount& value) : kind_(Kind::Amount) {
  if (value.isNaN()) {
    flags_ = kNotANumber;
    payload_.mantissa = 0;
  } else if ((value.mantissa() >> 64) == 0) {
    exponent_ = static_cast<int8_t>(value.exponent());
    flags_ = value.isSignNegative() ? kNegative : 0;
    payload_.mantissa = static_cast<uint64_t>(value.mantissa());
  } else {
    box(Kind::Amount, value);
  }
}

Value::Value(std::string value) { box(Kind::String, std::move(value)); }
Value::Value(std::string_view value) { box(Kind::String, std::string(value)); }
Value::Value(const char* value) { box(Kind::String, std::string(value)); }
Value::Value(ledgeon::Bytes value) { box(Kind::Binary, std::move(value)); }
Value::Value(PropertyList value) { box(Kind::Dictionary, std::move(value)); }
Value::Value(ObjectSet objects) { box(Kind::Objects, std::move(objects)); }
Value::Value(ValueList values) { box(Kind::List, std::move(values)); }
Value::Value(ToManyEdit edit) { box(Kind::Edit, std::move(edit)); }

bool Value::isNumber() const noexcept {
  const Kind k = kind();
  return k == Kind::Boolean || k == Kind::Integer || k == Kind::Double || k == Kind::Amount;
}

bool Value::asBool() const { return asInteger() != 0; }

int64_t Value::asInteger() const {
  switch (kind()) {
    case Kind::Boolean:
      return payload_.boolean ? 1 : 0;
    case Kind::Integer:
      return payload_.integer;
    case Kind::Double:
      return static_cast<int64_t>(payload_.real);
    case Kind::Amount:
      return asAmount().longLongValue();
    case Kind::Null:
      return 0;
    default:
      wrongKind("number", *this);
  }
}

double Value::asDouble() const {
  switch (kind()) {
    case Kind::Double:
    case Kind::Date:
      return payload_.real;
    case Kind::Amount:
      return asAmount().doubleValue();
    default:
      return static_cast<double>(asInteger());
  }
}

ledgeon::Amount Value::asAmount() const {
  switch (kind()) {
    case Kind::Amount:
      if (isBoxed()) return unbox<ledgeon::Amount>();
      if (flags_ & kNotANumber) return ledgeon::Amount::notANumber();
      return ledgeon::Amount::fromParts(payload_.mantissa, exponent_, (flags_ & kNegative) != 0);
    case Kind::Double:
      return ledgeon::Amount::fromDouble(payload_.real);
    case Kind::Null:
      return ledgeon::Amount::zero();
    default:
      return ledgeon::Amount::fromInt64(asInteger());
  }
}

const std::string& Value::asString() const {
  if (kind() != Kind::String) wrongKind("text", *this);
  return unbox<std::string>();
}

ledgeon::Date Value::asDate() const {
  if (kind() != Kind::Date) wrongKind("date", *this);
  return ledgeon::Date(payload_.real);
}

const ledgeon::Bytes& Value::asBytes() const {
  if (kind() != Kind::Binary) wrongKind("byte string", *this);
  return unbox<ledgeon::Bytes>();
}

const PropertyList& Value::asDictionary() const {
  if (kind() != Kind::Dictionary) wrongKind("dictionary", *this);
  return unbox<PropertyList>();
}

LObject* Value::asObject() const {
  if (kind() == Kind::Null) return nullptr;
  if (kind() != Kind::Object) wrongKind("ledger object", *this);
  return payload_.object;
}

const ObjectSet& Value::asObjects() const {
  static const ObjectSet kEmpty;
  if (kind() == Kind::Null) return kEmpty;
  if (kind() != Kind::Objects) wrongKind("set of ledger objects", *this);
  return unbox<ObjectSet>();
}

const ValueList& Value::asList() const {
  if (kind() != Kind::List) wrongKind("list", *this);
  return unbox<ValueList>();
}

const ToManyEdit& Value::asEdit() const {
  if (kind() != Kind::Edit) wrongKind("to-many edit", *this);
  return unbox<ToManyEdit>();
}

std::string Value::description() const {
  switch (kind()) {
    case Kind::Null:
      return "(null)";
    case Kind::Boolean:
      return payload_.boolean ? "1" : "0";
    case Kind::Integer:
      return std::to_string(payload_.integer);
    case Kind::Double:
      return stringWithFormat("%@", payload_.real);
    case Kind::Amount:
      return asAmount().stringValue();
    case Kind::String:
      return asString();
    case Kind::Date:
      return asDate().description();
    case Kind::Binary:
      return stringWithFormat("<%lu bytes>", asBytes().size());
    case Kind::Dictionary: {
      std::string text = "{";
      for (const auto& [key, value] : asDictionary()) text += key + " = " + value + "; ";
      return text + "}";
    }
    case Kind::Object:
      return objectDescription(payload_.object);
    case Kind::Objects: {
      std::string text = "(";
      for (const LObject* object : asObjects()) {
        if (text.size() > 1) text += ", ";
        text += objectDescription(object);
      }
      return text + ")";
    }
    case Kind::List: {
      std::string text = "{";
      for (const Value& value : asList()) {
        if (text.size() > 1) text += ", ";
        text += value.description();
      }
      return text + "}";
    }
    case Kind::Edit: {
      const ToManyEdit& edit = asEdit();
      std::string text = "{";
      if (edit.addObjects)
        text += std::string(kLObjectNewEditAddObjects) + " = " +
                Value(*edit.addObjects).description() + "; ";
      if (edit.removeObjects)
        text += std::string(kLObjectNewEditRemoveObjects) + " = " +
                Value(*edit.removeObjects).description() + "; ";
      if (edit.replaceObjects)
        text += std::string(kLObjectNewEditReplaceObjects) + " = " +
                Value(*edit.replaceObjects).description() + "; ";
      return text + "}";
    }
  }
  return {};
}

bool operator==(const Value& a, const Value& b) {
  if (a.kind() != b.kind()) {
    return a.isNumber() && b.isNumber() && compareValues(a, b) == 0;
  }
  switch (a.kind()) {
    case Value::Kind::Amount:
      return a.asAmount().compare(b.asAmount()) == ComparisonResult::Same;
    case Value::Kind::Double:
      return !(a.asDouble() < b.asDouble()) && !(b.asDouble() < a.asDouble());
    case Value::Kind::Dictionary:
      return a.asDictionary() == b.asDictionary();
    case Value::Kind::Objects:
      return a.asObjects() == b.asObjects();
    case Value::Kind::List:
      return a.asList() == b.asList();
    case Value::Kind::Edit:
      return a.asEdit() == b.asEdit();
    case Value::Kind::Null:
      return true;
    case Value::Kind::Boolean:
      return a.payload_.boolean == b.payload_.boolean;
    case Value::Kind::Integer:
      return a.payload_.integer == b.payload_.integer;
    case Value::Kind::Date:
      return a.asDate() == b.asDate();
    case Value::Kind::String:
      return a.asString() == b.asString();
    case Value::Kind::Binary:
      return a.asBytes() == b.asBytes();
    case Value::Kind::Object:
      return a.payload_.object == b.payload_.object;
  }
  return false;
}

int compareValues(const Value& a, const Value& b) {
  using Kind = Value::Kind;
  if (a.isNull() || b.isNull()) return (a.isNull() ? 0 : 1) - (b.isNull() ? 0 : 1);
  if (a.isNumber() && b.isNumber()) {
    if (a.kind() == Kind::Amount || b.kind() == Kind::Amount) {
      return static_cast<int>(a.asAmount().compare(b.asAmount()));
    }
    if (a.kind() == Kind::Double || b.kind() == Kind::Double) {
      return sign(a.asDouble() - b.asDouble());
    }
    const int64_t x = a.asInteger(), y = b.asInteger();
    return x < y ? -1 : (x > y ? 1 : 0);
  }
  if ((a.kind() == Kind::Date && b.isNumber()) || (b.kind() == Kind::Date && a.isNumber())) {
    return sign(a.asDouble() - b.asDouble());
  }
  if (a.kind() != b.kind()) {
    return static_cast<int>(a.kind()) < static_cast<int>(b.kind()) ? -1 : 1;
  }
  switch (a.kind()) {
    case Kind::String: {
      const int c = a.asString().compare(b.asString());
      return c < 0 ? -1 : (c > 0 ? 1 : 0);
    }
    case Kind::Date:
      return sign(a.asDate().timeIntervalSinceDate(b.asDate()));
    case Kind::Object: {
      const LObject* x = a.asObject();
      const LObject* y = b.asObject();
      return x == y ? 0 : (x->primaryKey() < y->primaryKey() ? -1 : 1);
    }
    default:
      return a == b ? 0 : -1;
  }
}

ToManyEdit ToManyEdit::adding(ObjectSet objects) {
  ToManyEdit edit;
  edit.addObjects = std::move(objects);
  return edit;
}

ToManyEdit ToManyEdit::removing(ObjectSet objects) {
  ToManyEdit edit;
  edit.removeObjects = std::move(objects);
  return edit;
}

ToManyEdit ToManyEdit::replacing(ObjectSet objects) {
  ToManyEdit edit;
  edit.replaceObjects = std::move(objects);
  return edit;
}

EditDict::EditDict(std::initializer_list<std::pair<std::string, Value>> entries) {
  for (const auto& [key, value] : entries) set(key, value);
}

void EditDict::set(std::string_view key, Value value) {
  for (auto& entry : entries_) {
    if (entry.first == key) {
      entry.second = std::move(value);
      return;
    }
  }
  entries_.emplace_back(std::string(key), std::move(value));
}

const Value* EditDict::find(std::string_view key) const {
  for (const auto& entry : entries_) {
    if (entry.first == key) return &entry.second;
  }
  return nullptr;
}

bool EditDict::erase(std::string_view key) {
  for (auto it = entries_.begin(); it != entries_.end(); ++it) {
    if (it->first == key) {
      entries_.erase(it);
      return true;
    }
  }
  return false;
}

std::string EditDict::description() const {
  std::string text = "{";
  for (const auto& [key, value] : entries_)
    text += "\n    " + key + " = " + value.description() + ";";
  return text + "\n}";
}

}  // namespace ledgeon
