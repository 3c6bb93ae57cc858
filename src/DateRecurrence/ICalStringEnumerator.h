#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>

#include "Utilities/Date.h"

struct icalrecur_iterator_impl;

namespace ledgeon {

namespace recurrence {
class ParsedRecurrence;
}

// The occurrence dates of one iCalendar recurrence pattern, in ascending order, one at a time,
// produced by libical's recurrence iterator from a start date. Single-threaded.
class ICalStringEnumerator final {
 public:
  static constexpr uint64_t kUnlimitedCount = std::numeric_limits<int64_t>::max();

  // The enumerator of `icalString` from `startDate` (today when none), returning at most
  // `maximumCount` dates. With `ignoreInterval` the pattern's interval is treated as 1, so that
  // every date matching its by-lists comes out whatever its phase. Nothing when libical rejects
  // the text or cannot start from the date, and for patterns that repeat more often than daily
  // (calendar dates have no time of day: such a pattern would give each day many times over).
  static std::unique_ptr<ICalStringEnumerator> initWithICalString(
      std::string_view icalString, std::optional<Date> startDate,
      uint64_t maximumCount = kUnlimitedCount, bool ignoreInterval = false);

  ~ICalStringEnumerator();
  ICalStringEnumerator(const ICalStringEnumerator&) = delete;
  ICalStringEnumerator& operator=(const ICalStringEnumerator&) = delete;

  // The next calendar date; nothing once the pattern or the maximum count is exhausted.
  std::optional<Date> nextObject();

 private:
  ICalStringEnumerator(icalrecur_iterator_impl* iterator,
                       std::unique_ptr<recurrence::ParsedRecurrence> rule, uint64_t maximumCount);
  void fetchNext();

  icalrecur_iterator_impl* iterator_;
  std::unique_ptr<recurrence::ParsedRecurrence> rule_;
  uint64_t maximumCount_;
  uint64_t returnedCount_ = 0;
  std::optional<Date> next_;
};

}  // namespace ledgeon
