#pragma once

#include <compare>
#include <string>

namespace ledgeon {

// A point in time: seconds since 2001-01-01 00:00:00 GMT. A calendar date is the Date at
// 12:00:00 GMT of its day (see LDateUtilities), which keeps it on the same day in every zone.
class Date final {
 public:
  constexpr Date() noexcept = default;
  constexpr explicit Date(double secondsSinceReferenceDate) noexcept
      : seconds_(secondsSinceReferenceDate) {}

  // Seconds between 1970-01-01 and 2001-01-01.
  static constexpr double kReferenceDateFromUnixEpoch = 978307200.0;

  static constexpr Date fromUnixTime(double unixSeconds) noexcept {
    return Date(unixSeconds - kReferenceDateFromUnixEpoch);
  }
  constexpr double timeIntervalSinceReferenceDate() const noexcept { return seconds_; }
  constexpr double unixTime() const noexcept { return seconds_ + kReferenceDateFromUnixEpoch; }
  constexpr double timeIntervalSinceDate(Date other) const noexcept {
    return seconds_ - other.seconds_;
  }
  constexpr Date dateByAddingTimeInterval(double seconds) const noexcept {
    return Date(seconds_ + seconds);
  }

  friend constexpr auto operator<=>(Date a, Date b) noexcept { return a.seconds_ <=> b.seconds_; }
  friend constexpr bool operator==(Date a, Date b) noexcept {
    return !(a.seconds_ < b.seconds_) && !(b.seconds_ < a.seconds_);
  }

  // "2024-03-01 12:00:00 +0000", the form logs and %@ show.
  std::string description() const;

 private:
  double seconds_ = 0;
};

}  // namespace ledgeon
