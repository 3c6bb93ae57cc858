#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DateRecurrence/ICalStringEnumerator.h"
#include "Utilities/Date.h"

namespace ledgeon {

// The dates of several patterns of one rule merged into one ascending sequence. A date that two
// patterns both produce comes out twice, one after the other (callers that need each day once
// drop the repeat); on a tie the earlier pattern goes first. Single-threaded.
class AggregateICalEnumerator final {
 public:
  // One enumerator per string from `startDate`; strings that cannot be enumerated are left out.
  static AggregateICalEnumerator enumeratorWithICalStrings(
      const std::vector<std::string>& icalStrings, std::optional<Date> startDate,
      uint64_t maximumCount = ICalStringEnumerator::kUnlimitedCount);
  // Absent enumerators (null) are left out.
  AggregateICalEnumerator(std::vector<std::unique_ptr<ICalStringEnumerator>> enumerators,
                          uint64_t maximumCount);

  // The next date of all patterns; nothing when all are exhausted or maximumCount were returned.
  std::optional<Date> nextObject();

 private:
  std::vector<std::unique_ptr<ICalStringEnumerator>> enumerators_;
  std::vector<std::optional<Date>> nextDates_;
  uint64_t maximumCount_;
  uint64_t returnedCount_ = 0;
};

}  // namespace ledgeon
