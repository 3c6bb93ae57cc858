#pragma once

#include <memory>

namespace ledgeon {

class Preferences;

// Hands out the process-wide platform services. The program installs the real ones at start;
// tests install in-memory ones. Set up before other threads start, then read-only.
class Services final {
 public:
  static Services& shared();

  // The user's preferences; an in-memory set until one is installed.
  Preferences& preferences();
  void setPreferences(std::shared_ptr<Preferences> preferences);

 private:
  std::shared_ptr<Preferences> preferences_;
};

}  // namespace ledgeon
