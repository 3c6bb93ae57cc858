#include "Utilities/Clock.h"

#include <chrono>

namespace ledgeon {

std::optional<Date>& Clock::fixedNow() noexcept {
  static std::optional<Date> fixed;
  return fixed;
}

Date Clock::now() noexcept {
  if (const auto& fixed = fixedNow()) return *fixed;
  const auto since = std::chrono::system_clock::now().time_since_epoch();
  return Date::fromUnixTime(std::chrono::duration<double>(since).count());
}

ScopedFixedClock::ScopedFixedClock(Date now) noexcept : previous_(Clock::fixedNow()) {
  Clock::fixedNow() = now;
}

ScopedFixedClock::~ScopedFixedClock() { Clock::fixedNow() = previous_; }

}  // namespace ledgeon
