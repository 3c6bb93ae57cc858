#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Utilities/Date.h"

namespace ledgeon {

// The platform's "distant future" (4001-01-01 00:00:00 GMT): an end date that never comes.
inline constexpr Date kDistantFuture{63113904000.0};

// How a series of occurrences ends: on an end date, after a number of occurrences, or never (the
// end date of the distant future). Immutable value, equal by value.
class RecurrenceEnd final {
 public:
  static RecurrenceEnd recurrenceEndWithEndDate(Date endDate);
  static RecurrenceEnd recurrenceEndWithOccurrenceCount(uint64_t occurrenceCount);
  static RecurrenceEnd infiniteRecurrenceEnd();

  const std::optional<Date>& endDate() const { return endDate_; }
  uint64_t occurrenceCount() const { return occurrenceCount_; }
  bool usesEndDate() const { return endDate_.has_value(); }
  bool usesEndCount() const { return !usesEndDate(); }
  bool isInfinite() const { return endDate_ == kDistantFuture; }

  friend bool operator==(const RecurrenceEnd&, const RecurrenceEnd&) = default;
  // "never", "until 2024-12-31", "after 3 occurrences".
  std::string description() const;

 private:
  RecurrenceEnd(std::optional<Date> endDate, uint64_t occurrenceCount)
      : endDate_(endDate), occurrenceCount_(occurrenceCount) {}

  std::optional<Date> endDate_;
  uint64_t occurrenceCount_ = 0;
};

}  // namespace ledgeon
