#include "DateRecurrence/RecurrenceEnd.h"

#include <fmt/format.h>

#include "Utilities/LDateUtilities.h"

namespace ledgeon {

RecurrenceEnd RecurrenceEnd::recurrenceEndWithEndDate(Date endDate) {
  return RecurrenceEnd(endDate, 0);
}

RecurrenceEnd RecurrenceEnd::recurrenceEndWithOccurrenceCount(uint64_t occurrenceCount) {
  return RecurrenceEnd(std::nullopt, occurrenceCount);
}

RecurrenceEnd RecurrenceEnd::infiniteRecurrenceEnd() { return RecurrenceEnd(kDistantFuture, 0); }

std::string RecurrenceEnd::description() const {
  if (isInfinite()) return "never";
  if (endDate_) {
    const std::string text = LDateUtilities::ISO8601StringFromDate(*endDate_);
    return "until " + (text.empty() ? endDate_->description() : text);
  }
  return fmt::format("after {} occurrence{}", occurrenceCount_, occurrenceCount_ == 1 ? "" : "s");
}

}  // namespace ledgeon
