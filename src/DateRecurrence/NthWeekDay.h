#pragma once

#include <cstdint>
#include <string>

namespace ledgeon {

// The n-th weekday of a month: dayOfTheWeek 1 (Sunday) ... 7 (Saturday); weekNumber 1...5 counts
// from the start of the month, a negative one from its end (-1 is the last such weekday).
struct NthWeekDay {
  int32_t dayOfTheWeek = 1;
  int64_t weekNumber = 1;

  friend bool operator==(const NthWeekDay&, const NthWeekDay&) = default;
  // The iCalendar item: "2MO", "-1FR".
  std::string description() const;
};

}  // namespace ledgeon
