#include "Platform/Services.h"

#include "Platform/Preferences.h"
#include "Platform/ScriptedUserInterface.h"

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

UserInterface& Services::userInterface() {
  if (!userInterface_) userInterface_ = std::make_shared<ScriptedUserInterface>();
  return *userInterface_;
}

void Services::setUserInterface(std::shared_ptr<UserInterface> userInterface) {
  userInterface_ = std::move(userInterface);
}

Services::Dispatcher Services::mainThreadDispatcher() const {
  std::lock_guard lock(dispatcherMutex_);
  return mainThreadDispatcher_;
}

void Services::setMainThreadDispatcher(Dispatcher dispatcher) {
  std::lock_guard lock(dispatcherMutex_);
  mainThreadDispatcher_ = std::move(dispatcher);
}

}  // namespace ledgeon
