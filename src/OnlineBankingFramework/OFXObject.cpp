#include "OnlineBankingFramework/OFXObject.h"

#include <map>
#include <mutex>
#include <ostream>

#include "OnlineBankingFramework/internal/OFXClassList.h"

namespace ledgeon {

namespace {

struct ClassRegistry {
  std::mutex mutex;
  std::map<std::string, const OFXClassInfo*, std::less<>> classes;
  bool builtInsRegistered = false;
};

ClassRegistry& registry() {
  static ClassRegistry instance;
  return instance;
}

void addClassLocked(ClassRegistry& r, const OFXClassInfo& info) {
  r.classes[std::string(info.name)] = &info;
}

const OFXClassInfo* lookup(std::string_view className) {
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  if (!r.builtInsRegistered) {
    r.builtInsRegistered = true;
    for (const OFXClassInfo* info : builtInOFXClasses()) addClassLocked(r, *info);
  }
  auto it = r.classes.find(className);
  return it == r.classes.end() ? nullptr : it->second;
}

}  // namespace

const OFXPropertyDescriptor* OFXClassInfo::property(std::string_view propertyName) const {
  for (const OFXClassInfo* info = this; info != nullptr; info = info->base) {
    for (const auto& descriptor : info->properties) {
      if (descriptor.name == propertyName) return &descriptor;
    }
  }
  return nullptr;
}

bool OFXClassInfo::isKindOf(const OFXClassInfo& other) const {
  for (const OFXClassInfo* info = this; info != nullptr; info = info->base) {
    if (info == &other) return true;
  }
  return false;
}

nlohmann::json OFXObject::toJSON() const {
  std::vector<const OFXClassInfo*> chain;
  for (const OFXClassInfo* info = &classInfo(); info != nullptr; info = info->base) {
    chain.push_back(info);
  }
  nlohmann::json object = nlohmann::json::object();
  object["class"] = std::string(className());
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    for (const auto& descriptor : (*it)->properties) {
      object[std::string(descriptor.name)] = descriptor.toJSON(*this);
    }
  }
  return object;
}

std::string OFXObject::description() const { return toJSON().dump(); }

std::unique_ptr<OFXObject> OFXObject::makeInstance(std::string_view className) {
  const OFXClassInfo* info = lookup(className);
  return info ? info->make() : nullptr;
}

const OFXClassInfo* OFXObject::classNamed(std::string_view className) { return lookup(className); }

void OFXObject::registerClass(const OFXClassInfo& info) {
  lookup(info.name);  // built-ins first, so a registration may replace one
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  addClassLocked(r, info);
}

std::ostream& operator<<(std::ostream& out, const OFXString& text) { return out << text.view(); }

namespace ofx_detail {

nlohmann::json dateToJSON(const OFXDate& date) {
  if (!date) return nullptr;
  return date->description();
}

nlohmann::json amountToJSON(const Amount& amount) {
  if (amount.isNaN()) return nullptr;
  return amount.stringValue();
}

}  // namespace ofx_detail
}  // namespace ledgeon
