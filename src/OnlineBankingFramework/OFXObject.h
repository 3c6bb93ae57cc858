#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

#include "OnlineBankingFramework/OFXString.h"
#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

class OFXObject;

// Property types of the message classes. A date is optional: OFX leaves many out.
using OFXDate = std::optional<Date>;
template <typename T>
using OFXRef = std::unique_ptr<T>;
template <typename T>
using OFXList = std::vector<std::unique_ptr<T>>;

enum class OFXPropertyKind : uint8_t { String, Decimal, Integer, Bool, Date, Object, List };

// One value the mapping layer assigns to a property.
using OFXMappedValue =
    std::variant<std::string, Amount, int64_t, bool, Date, std::unique_ptr<OFXObject>>;

// A property of a message class, reachable by name: how the declarative mapping fills it and how
// a dump prints it.
struct OFXPropertyDescriptor {
  std::string_view name;
  OFXPropertyKind kind;
  // Sets a scalar or object property, or appends to a list; false when the value does not fit.
  std::function<bool(OFXObject&, OFXMappedValue&&)> assign;
  std::function<nlohmann::json(const OFXObject&)> toJSON;
};

// What the program knows about one message class: its name, its base and its own properties.
struct OFXClassInfo {
  std::string_view name;
  const OFXClassInfo* base = nullptr;
  std::function<std::unique_ptr<OFXObject>()> make;
  std::vector<OFXPropertyDescriptor> properties;

  const OFXPropertyDescriptor* property(std::string_view propertyName) const;
  bool isKindOf(const OFXClassInfo& other) const;
};

// The root of every OFX message class: plain value holders that the mapping layer fills by
// property name. Built on one thread and read afterwards; no locking.
class OFXObject {
 public:
  virtual ~OFXObject() = default;
  OFXObject() = default;
  OFXObject(const OFXObject&) = delete;
  OFXObject& operator=(const OFXObject&) = delete;

  virtual const OFXClassInfo& classInfo() const = 0;
  std::string_view className() const { return classInfo().name; }

  // Every property of the object, the base class's first, as one JSON object.
  nlohmann::json toJSON() const;
  virtual std::string description() const;

  // Makes an instance of a registered message class by name; null for an unknown name.
  static std::unique_ptr<OFXObject> makeInstance(std::string_view className);
  static const OFXClassInfo* classNamed(std::string_view className);
  static void registerClass(const OFXClassInfo& info);
};

namespace ofx_detail {

nlohmann::json dateToJSON(const OFXDate& date);
nlohmann::json amountToJSON(const Amount& amount);

template <typename T>
struct IsRef : std::false_type {
  using Element = void;
};
template <typename T>
struct IsRef<std::unique_ptr<T>> : std::true_type {
  using Element = T;
};
template <typename T>
struct IsList : std::false_type {
  using Element = void;
};
template <typename T>
struct IsList<std::vector<std::unique_ptr<T>>> : std::true_type {
  using Element = T;
};

template <typename T>
constexpr OFXPropertyKind kindOf() {
  if constexpr (std::is_same_v<T, OFXString>)
    return OFXPropertyKind::String;
  else if constexpr (std::is_same_v<T, Amount>)
    return OFXPropertyKind::Decimal;
  else if constexpr (std::is_same_v<T, int64_t>)
    return OFXPropertyKind::Integer;
  else if constexpr (std::is_same_v<T, bool>)
    return OFXPropertyKind::Bool;
  else if constexpr (std::is_same_v<T, OFXDate>)
    return OFXPropertyKind::Date;
  else if constexpr (IsRef<T>::value)
    return OFXPropertyKind::Object;
  else
    return OFXPropertyKind::List;
}

template <typename T>
bool assignValue(T& slot, OFXMappedValue&& value) {
  if constexpr (IsRef<T>::value || IsList<T>::value) {
    using Element = std::conditional_t<IsRef<T>::value, typename IsRef<T>::Element,
                                       typename IsList<T>::Element>;
    auto* object = std::get_if<std::unique_ptr<OFXObject>>(&value);
    if (object == nullptr || !*object) return false;
    auto* typed = dynamic_cast<Element*>(object->get());
    if (typed == nullptr) return false;
    object->release();
    if constexpr (IsRef<T>::value) {
      slot.reset(typed);
    } else {
      slot.emplace_back(typed);
    }
    return true;
  } else if constexpr (std::is_same_v<T, OFXString>) {
    if (auto* text = std::get_if<std::string>(&value)) {
      slot = *text;
      return true;
    }
    return false;
  } else if constexpr (std::is_same_v<T, OFXDate>) {
    if (auto* date = std::get_if<Date>(&value)) {
      slot = *date;
      return true;
    }
    return false;
  } else {
    if (auto* typed = std::get_if<T>(&value)) {
      slot = std::move(*typed);
      return true;
    }
    return false;
  }
}

template <typename T>
nlohmann::json valueToJSON(const T& slot) {
  if constexpr (IsRef<T>::value) {
    return slot ? slot->toJSON() : nlohmann::json(nullptr);
  } else if constexpr (IsList<T>::value) {
    auto list = nlohmann::json::array();
    for (const auto& element : slot) list.push_back(element->toJSON());
    return list;
  } else if constexpr (std::is_same_v<T, OFXDate>) {
    return dateToJSON(slot);
  } else if constexpr (std::is_same_v<T, Amount>) {
    return amountToJSON(slot);
  } else if constexpr (std::is_same_v<T, OFXString>) {
    return slot.str();
  } else {
    return slot;
  }
}

template <typename Class, typename T>
OFXPropertyDescriptor makeProperty(std::string_view name, T Class::*member) {
  return OFXPropertyDescriptor{name, kindOf<T>(),
                               [member](OFXObject& object, OFXMappedValue&& value) {
                                 return assignValue(static_cast<Class&>(object).*member,
                                                    std::move(value));
                               },
                               [member](const OFXObject& object) {
                                 return valueToJSON(static_cast<const Class&>(object).*member);
                               }};
}

}  // namespace ofx_detail
}  // namespace ledgeon

// A message class's properties are listed once, as X(Type, name, Name) entries; these macros turn
// the list into accessors and members (header) and into the class's property table (source).
#define LEDGEON_OFX_ACCESSORS(Type, name, Name)              \
 public:                                                     \
  const Type& name() const { return name##_; }               \
  Type& name() { return name##_; }                           \
  void set##Name(Type value) { name##_ = std::move(value); } \
                                                             \
 private:                                                    \
  Type name##_{};

#define LEDGEON_OFX_CLASS(Class, PROPERTIES)                                              \
 public:                                                                                  \
  static const ::ledgeon::OFXClassInfo& staticClassInfo();                                \
  const ::ledgeon::OFXClassInfo& classInfo() const override { return staticClassInfo(); } \
  PROPERTIES(LEDGEON_OFX_ACCESSORS)                                                       \
 public:

#define LEDGEON_OFX_DESCRIPTOR(Type, name, Name) \
  ::ledgeon::ofx_detail::makeProperty(#name, &ThisClass::name##_),

#define LEDGEON_OFX_NO_PROPERTIES(X)

namespace ledgeon::ofx_detail {
template <typename Class, typename Base>
OFXClassInfo makeClassInfo(std::string_view name, std::vector<OFXPropertyDescriptor> properties) {
  const OFXClassInfo* base = nullptr;
  if constexpr (!std::is_same_v<Base, OFXObject>) base = &Base::staticClassInfo();
  return OFXClassInfo{name, base, [] { return std::make_unique<Class>(); }, std::move(properties)};
}
}  // namespace ledgeon::ofx_detail

// In a source file: the class table of Class (derived from Base) from its property list. It is
// built inside a member function, which may name the private members.
#define LEDGEON_OFX_DEFINE_CLASS(Class, Base, PROPERTIES)                                          \
  const ::ledgeon::OFXClassInfo& Class::staticClassInfo() {                                        \
    using ThisClass [[maybe_unused]] = Class;                                                      \
    static const ::ledgeon::OFXClassInfo info = ::ledgeon::ofx_detail::makeClassInfo<Class, Base>( \
        #Class, {PROPERTIES(LEDGEON_OFX_DESCRIPTOR)});                                             \
    return info;                                                                                   \
  }
