#include "Utilities/NotificationCenter.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace ledgeon {

NotificationCenter& NotificationCenter::defaultCenter() {
  static NotificationCenter center;
  return center;
}

NotificationCenter::Token NotificationCenter::addObserver(std::string name, Observer observer,
                                                          const void* object) {
  std::lock_guard lock(mutex_);
  const Token token = nextToken_++;
  entries_.push_back(
      {token, std::move(name), object, std::make_shared<Observer>(std::move(observer))});
  return token;
}

void NotificationCenter::removeObserver(Token token) {
  std::lock_guard lock(mutex_);
  std::erase_if(entries_, [token](const Entry& e) { return e.token == token; });
}

void NotificationCenter::postNotification(const Notification& notification) {
  std::vector<std::pair<Token, std::shared_ptr<Observer>>> matching;
  {
    std::lock_guard lock(mutex_);
    for (const auto& e : entries_) {
      if ((e.name.empty() || e.name == notification.name) &&
          (e.object == nullptr || e.object == notification.object)) {
        matching.emplace_back(e.token, e.observer);
      }
    }
  }
  for (const auto& [token, observer] : matching) {
    bool stillObserving = false;
    {
      std::lock_guard lock(mutex_);
      stillObserving = std::any_of(entries_.begin(), entries_.end(),
                                   [token = token](const Entry& e) { return e.token == token; });
    }
    if (stillObserving) (*observer)(notification);
  }
}

void NotificationCenter::postNotificationName(std::string name, const void* object,
                                              std::any userInfo) {
  postNotification(Notification{std::move(name), object, std::move(userInfo)});
}

ScopedObserver::ScopedObserver(NotificationCenter& center, std::string name,
                               NotificationCenter::Observer observer, const void* object)
    : center_(&center), token_(center.addObserver(std::move(name), std::move(observer), object)) {}

ScopedObserver::~ScopedObserver() { reset(); }

ScopedObserver::ScopedObserver(ScopedObserver&& other) noexcept
    : center_(std::exchange(other.center_, nullptr)), token_(std::exchange(other.token_, 0)) {}

ScopedObserver& ScopedObserver::operator=(ScopedObserver&& other) noexcept {
  if (this != &other) {
    reset();
    center_ = std::exchange(other.center_, nullptr);
    token_ = std::exchange(other.token_, 0);
  }
  return *this;
}

void ScopedObserver::reset() {
  if (center_ != nullptr) center_->removeObserver(token_);
  center_ = nullptr;
}

}  // namespace ledgeon
