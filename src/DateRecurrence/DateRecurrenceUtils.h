#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "DateRecurrence/RecurrenceEnd.h"
#include "Utilities/Date.h"

namespace ledgeon {

// The occurrence dates of a rule's patterns, bounded by its end, a maximum date and a maximum
// number of future instances.
class DateRecurrenceUtils final {
 public:
  DateRecurrenceUtils() = delete;

  // The value that means "no maximum of future instances".
  static constexpr uint64_t kNoFutureInstanceLimit = std::numeric_limits<uint64_t>::max();

  // Every date of the merged patterns from `startDate`, ascending (a date two patterns produce is
  // listed twice). The end rule bounds the list: an end date (with the earlier of it and
  // `maxDate`) or a count (with `maxDate`). Without an end rule neither applies, not even
  // `maxDate`: callers of that form bound the list with `maximumFutureInstances`, which counts
  // only dates after today.
  static std::vector<Date> allDatesFromStartDate(Date startDate,
                                                 const std::optional<RecurrenceEnd>& endRule,
                                                 std::optional<Date> maxDate,
                                                 uint64_t maximumFutureInstances,
                                                 const std::vector<std::string>& icalPatterns);
  static std::vector<Date> allDatesFromStartDate(Date startDate,
                                                 const std::optional<RecurrenceEnd>& endRule,
                                                 std::optional<Date> maxDate,
                                                 const std::vector<std::string>& icalPatterns);
  static std::vector<Date> allDatesFromStartDate(Date startDate,
                                                 const std::optional<RecurrenceEnd>& endRule,
                                                 const std::vector<std::string>& icalPatterns,
                                                 uint64_t numberOfFutureInstancesAllowed);

  // The first date on or after `date` that fits any of the patterns, whatever their interval's
  // phase, and is not after the end rule's end date; nothing when there is none.
  static std::optional<Date> rollDate(Date date, const std::vector<std::string>& icalPatterns,
                                      const std::optional<RecurrenceEnd>& endRule);
};

}  // namespace ledgeon
