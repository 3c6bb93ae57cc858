#pragma once

#include <optional>

#include "Utilities/Date.h"

namespace ledgeon {

// The source of "now" for the whole program. Tests pin it with ScopedFixedClock so that results
// do not depend on the day they run.
class Clock final {
 public:
  static Date now() noexcept;

 private:
  friend class ScopedFixedClock;
  static std::optional<Date>& fixedNow() noexcept;
};

// Pins Clock::now() for the guard's lifetime; restores the previous setting afterwards.
class ScopedFixedClock final {
 public:
  explicit ScopedFixedClock(Date now) noexcept;
  ~ScopedFixedClock();
  ScopedFixedClock(const ScopedFixedClock&) = delete;
  ScopedFixedClock& operator=(const ScopedFixedClock&) = delete;

 private:
  std::optional<Date> previous_;
};

}  // namespace ledgeon
