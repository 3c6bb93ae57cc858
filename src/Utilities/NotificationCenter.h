#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ledgeon {

struct Notification {
  std::string name;
  const void* object = nullptr;  // the sender, compared by identity only
  std::any userInfo;
};

// Delivers named notifications to observers, synchronously on the posting thread, in the order
// observers were added. Observers may add or remove observers while being called.
class NotificationCenter final {
 public:
  using Observer = std::function<void(const Notification&)>;
  using Token = uint64_t;

  static NotificationCenter& defaultCenter();

  // An empty name observes every notification; a null object observes every sender.
  Token addObserver(std::string name, Observer observer, const void* object = nullptr);
  void removeObserver(Token token);

  void postNotification(const Notification& notification);
  void postNotificationName(std::string name, const void* object = nullptr, std::any userInfo = {});

 private:
  struct Entry {
    Token token;
    std::string name;
    const void* object;
    std::shared_ptr<Observer> observer;
  };
  std::mutex mutex_;
  std::vector<Entry> entries_;
  Token nextToken_ = 1;
};

// Removes its observer when it goes out of scope.
class ScopedObserver final {
 public:
  ScopedObserver() = default;
  ScopedObserver(NotificationCenter& center, std::string name,
                 NotificationCenter::Observer observer, const void* object = nullptr);
  ~ScopedObserver();
  ScopedObserver(ScopedObserver&& other) noexcept;
  ScopedObserver& operator=(ScopedObserver&& other) noexcept;
  ScopedObserver(const ScopedObserver&) = delete;
  ScopedObserver& operator=(const ScopedObserver&) = delete;

 private:
  void reset();
  NotificationCenter* center_ = nullptr;
  NotificationCenter::Token token_ = 0;
};

}  // namespace ledgeon
