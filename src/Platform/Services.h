#pragma once

#include <functional>
#include <memory>
#include <mutex>

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

  // Hands work to the main thread (installed by the main run loop, which lives in a layer above);
  // null while there is none. May change while other threads run, so it is read under a lock.
  using Dispatcher = std::function<void(std::function<void()>)>;
  Dispatcher mainThreadDispatcher() const;
  void setMainThreadDispatcher(Dispatcher dispatcher);

 private:
  mutable std::mutex dispatcherMutex_;
  Dispatcher mainThreadDispatcher_;
  std::shared_ptr<Preferences> preferences_;
  std::shared_ptr<UserInterface> userInterface_;
};

}  // namespace ledgeon
