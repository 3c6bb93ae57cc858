#include "LObjects/Value.h"

#include <cmath>
#include <stdexcept>

#include "LObjects/LObject.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

[[noreturn]] void wrongKind(const char* wanted, const Value& value) {
  throw std::logic_error(std::string("Value is not a ") + wanted + ": " + value.description());
}

int sign(double d) { return d < 0 ? -1 : (d > 0 ? 1 : 0); }

std::string objectDescription(const LObject* object) {
  return object ? object->shortDescription() : "(null)";
}

}  // namespace

Value::Kind Value::kind() const noexcept { return static_cast<Kind>(data_.index()); }

bool Value::isNull() const noexcept { return data_.index() == 0; }

bool Value::isNumber() const noexcept {
  const Kind k = kind();
  return k == Kind::Boolean || k == Kind::Integer || k == Kind::Double || k == Kind::Amount;
}

bool Value::asBool() const { return asInteger() != 0; }

int64_t Value::asInteger() const {
  switch (kind()) {
    case Kind::Boolean:
      return std::get<bool>(data_) ? 1 : 0;
    case Kind::Integer:
      return std::get<int64_t>(data_);
    case Kind::Double:
      return static_cast<int64_t>(std::get<double>(data_));
    case Kind::Amount:
      return std::get<ledgeon::Amount>(data_).longLongValue();
    case Kind::Null:
      return 0;
    default:
      wrongKind("number", *this);
  }
}

double Value::asDouble() const {
  switch (kind()) {
    case Kind::Double:
      return std::get<double>(data_);
    case Kind::Amount:
      return std::get<ledgeon::Amount>(data_).doubleValue();
    case Kind::Date:
      return std::get<ledgeon::Date>(data_).timeIntervalSinceReferenceDate();
    default:
      return static_cast<double>(asInteger());
  }
}

ledgeon::Amount Value::asAmount() const {
  switch (kind()) {
    case Kind::Amount:
      return std::get<ledgeon::Amount>(data_);
    case Kind::Double:
      return ledgeon::Amount::fromDouble(std::get<double>(data_));
    case Kind::Null:
      return ledgeon::Amount::zero();
    default:
      return ledgeon::Amount::fromInt64(asInteger());
  }
}

const std::string& Value::asString() const {
  if (kind() != Kind::String) wrongKind("text", *this);
  return std::get<std::string>(data_);
}

ledgeon::Date Value::asDate() const {
  if (kind() != Kind::Date) wrongKind("date", *this);
  return std::get<ledgeon::Date>(data_);
}

const ledgeon::Bytes& Value::asBytes() const {
  if (kind() != Kind::Binary) wrongKind("byte string", *this);
  return std::get<ledgeon::Bytes>(data_);
}

const PropertyList& Value::asDictionary() const {
  if (kind() != Kind::Dictionary) wrongKind("dictionary", *this);
  return *std::get<std::shared_ptr<const PropertyList>>(data_);
}

LObject* Value::asObject() const {
  if (kind() == Kind::Null) return nullptr;
  if (kind() != Kind::Object) wrongKind("ledger object", *this);
  return std::get<LObject*>(data_);
}

const ObjectSet& Value::asObjects() const {
  static const ObjectSet kEmpty;
  if (kind() == Kind::Null) return kEmpty;
  if (kind() != Kind::Objects) wrongKind("set of ledger objects", *this);
  return *std::get<std::shared_ptr<const ObjectSet>>(data_);
}

const ValueList& Value::asList() const {
  if (kind() != Kind::List) wrongKind("list", *this);
  return *std::get<std::shared_ptr<const ValueList>>(data_);
}

const ToManyEdit& Value::asEdit() const {
  if (kind() != Kind::Edit) wrongKind("to-many edit", *this);
  return *std::get<std::shared_ptr<const ToManyEdit>>(data_);
}

std::string Value::description() const {
  switch (kind()) {
    case Kind::Null:
      return "(null)";
    case Kind::Boolean:
      return std::get<bool>(data_) ? "1" : "0";
    case Kind::Integer:
      return std::to_string(std::get<int64_t>(data_));
    case Kind::Double:
      return stringWithFormat("%@", std::get<double>(data_));
    case Kind::Amount:
      return std::get<ledgeon::Amount>(data_).stringValue();
    case Kind::String:
      return std::get<std::string>(data_);
    case Kind::Date:
      return std::get<ledgeon::Date>(data_).description();
    case Kind::Binary:
      return stringWithFormat("<%lu bytes>", asBytes().size());
    case Kind::Dictionary: {
      std::string text = "{";
      for (const auto& [key, value] : asDictionary()) text += key + " = " + value + "; ";
      return text + "}";
    }
    case Kind::Object:
      return objectDescription(std::get<LObject*>(data_));
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
    default:
      return a.data_ == b.data_;
  }
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
