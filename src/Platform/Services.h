#pragma once

#include <memory>

namespace ledgeon {

class Preferences;
class UserInterface;

// Hands out the process-wide platform services. The program installs the real ones at start;
// tests install in-memory ones. Set up before other threads start, then read-only.
class Services final {
 public:
  static Services& shared();

  // The user's preferences; an in-memory set until one is installed.
  Preferences& preferences();
  void setPreferences(std::shared_ptr<Preferences> preferences);

  // Whoever answers the program's questions; until one is installed, an unattended one that
  // presses the last (cancelling) button and gives no password.
  UserInterface& userInterface();
  void setUserInterface(std::shared_ptr<UserInterface> userInterface);

 private:
  std::shared_ptr<Preferences> preferences_;
  std::shared_ptr<UserInterface> userInterface_;
};

}  // namespace ledgeon
