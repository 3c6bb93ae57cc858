#include "LObjects/ClassMetadata.h"

#include <map>
#include <mutex>
#include <stdexcept>

#include "LObjects/Model.h"
#include "Utilities/StringsTable.h"

namespace ledgeon {

namespace {

std::map<std::string, ClassMetadata, std::less<>> buildMetadata() {
  std::map<std::string, ClassMetadata, std::less<>> table;
  for (const EntityDescription* entity : Model::shared().entities()) {
    if (!entity->parent) continue;
    const std::string& name = entity->name;
    table.emplace(name, ClassMetadata{name, LocalizedString("ClassNounSingular_" + name),
                                      LocalizedString("ClassNounPlural_" + name), "Add" + name,
                                      "Delete" + name, "Change" + name});
  }
  return table;
}

struct Registrations {
  std::mutex mutex;
  std::map<std::string, ChangeRegistration, std::less<>> byClass;
};

Registrations& registrations() {
  static Registrations instance;
  return instance;
}

}  // namespace

const ClassMetadata& classMetadata(std::string_view className) {
  static const auto table = buildMetadata();
  if (className == "LObject") {
    throw std::logic_error("+[LObject classMetadata]: subclass responsibility");
  }
  const auto it = table.find(className);
  if (it == table.end()) {
    throw std::logic_error("no class metadata for " + std::string(className));
  }
  return it->second;
}

void registerKeysForChangeNotification(std::string_view className,
                                       ChangeRegistration registration) {
  auto& r = registrations();
  std::lock_guard lock(r.mutex);
  r.byClass[std::string(className)] = std::move(registration);
}

void unregisterKeysForChangeNotification(std::string_view className) {
  auto& r = registrations();
  std::lock_guard lock(r.mutex);
  r.byClass.erase(std::string(className));
}

const ChangeRegistration* changeRegistrationForClass(std::string_view className) {
  auto& r = registrations();
  std::lock_guard lock(r.mutex);
  const auto it = r.byClass.find(className);
  return it == r.byClass.end() ? nullptr : &it->second;
}

}  // namespace ledgeon
