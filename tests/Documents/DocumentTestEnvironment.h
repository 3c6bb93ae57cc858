#pragma once

#include <cstdlib>
#include <memory>
#include <string>

#include "Platform/Preferences.h"
#include "Platform/ScriptedUserInterface.h"
#include "Platform/Services.h"
#include "support/TestSupport.h"

namespace ledgeon {

// A program home of its own (backups, support folders), in-memory preferences and a scripted
// user, installed for the time of one test.
class DocumentTestEnvironment final {
 public:
  DocumentTestEnvironment()
      : preferences_(std::make_shared<Preferences>()),
        userInterface_(std::make_shared<ScriptedUserInterface>()) {
    const char* previous = std::getenv("LEDGEON_HOME");
    previousHome_ = previous ? previous : "";
    ::setenv("LEDGEON_HOME", home_.path().c_str(), 1);
    Services::shared().setPreferences(preferences_);
    Services::shared().setUserInterface(userInterface_);
  }
  ~DocumentTestEnvironment() {
    Services::shared().setPreferences(std::make_shared<Preferences>());
    Services::shared().setUserInterface(std::make_shared<ScriptedUserInterface>());
    if (previousHome_.empty()) {
      ::unsetenv("LEDGEON_HOME");
    } else {
      ::setenv("LEDGEON_HOME", previousHome_.c_str(), 1);
    }
  }
  DocumentTestEnvironment(const DocumentTestEnvironment&) = delete;
  DocumentTestEnvironment& operator=(const DocumentTestEnvironment&) = delete;

  const std::filesystem::path& home() const { return home_.path(); }
  std::filesystem::path path(const std::string& name) const { return documents_ / name; }
  Preferences& preferences() { return *preferences_; }
  ScriptedUserInterface& userInterface() { return *userInterface_; }

 private:
  testing::TempFolder home_;
  testing::TempFolder documents_;
  std::string previousHome_;
  std::shared_ptr<Preferences> preferences_;
  std::shared_ptr<ScriptedUserInterface> userInterface_;
};

}  // namespace ledgeon
