#include "Platform/Services.h"

#include "Platform/Preferences.h"

namespace ledgeon {

Services& Services::shared() {
  static Services services;
  return services;
}

Preferences& Services::preferences() {
  if (!preferences_) preferences_ = std::make_shared<Preferences>();
  return *preferences_;
}

void Services::setPreferences(std::shared_ptr<Preferences> preferences) {
  preferences_ = std::move(preferences);
}

}  // namespace ledgeon
