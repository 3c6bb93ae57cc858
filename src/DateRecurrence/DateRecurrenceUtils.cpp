#include "DateRecurrence/DateRecurrenceUtils.h"

#include <algorithm>

#include "DateRecurrence/AggregateICalEnumerator.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {

namespace {

// A limit is compared with calendar dates, so it is reduced to its own calendar date first.
Date calendarLimit(Date limit) {
  if (limit == kDistantFuture) return limit;
  return LDateUtilities::dateWithTimestamp(limit, LDateUtilities::dateTimeZone()).value_or(limit);
}

}  // namespace

std::vector<Date> DateRecurrenceUtils::allDatesFromStartDate(
    Date startDate, const std::optional<RecurrenceEnd>& endRule, std::optional<Date> maxDate,
    uint64_t maximumFutureInstances, const std::vector<std::string>& icalPatterns) {
  const Date maximum = maxDate.value_or(kDistantFuture);
  Date limit = kDistantFuture;
  uint64_t count = ICalStringEnumerator::kUnlimitedCount;
  if (endRule && endRule->usesEndDate()) {
    limit = std::min(maximum, *endRule->endDate());
  } else if (endRule) {
    limit = maximum;
    count = endRule->occurrenceCount();
  }
  limit = calendarLimit(limit);

  const Date today = LDateUtilities::currentDate();
  uint64_t futureInstances = 0;
  std::vector<Date> dates;
  auto enumerator =
      AggregateICalEnumerator::enumeratorWithICalStrings(icalPatterns, startDate, count);
  while (const auto date = enumerator.nextObject()) {
    if (*date > limit) break;
    if (maximumFutureInstances != kNoFutureInstanceLimit && *date > today &&
        ++futureInstances > maximumFutureInstances) {
      break;
    }
    dates.push_back(*date);
  }
  return dates;
}

std::vector<Date> DateRecurrenceUtils::allDatesFromStartDate(
    Date startDate, const std::optional<RecurrenceEnd>& endRule, std::optional<Date> maxDate,
    const std::vector<std::string>& icalPatterns) {
  return allDatesFromStartDate(startDate, endRule, maxDate, kNoFutureInstanceLimit, icalPatterns);
}

std::vector<Date> DateRecurrenceUtils::allDatesFromStartDate(
    Date startDate, const std::optional<RecurrenceEnd>& endRule,
    const std::vector<std::string>& icalPatterns, uint64_t numberOfFutureInstancesAllowed) {
  return allDatesFromStartDate(startDate, endRule, std::nullopt, numberOfFutureInstancesAllowed,
                               icalPatterns);
}

std::optional<Date> DateRecurrenceUtils::rollDate(Date date,
                                                  const std::vector<std::string>& icalPatterns,
                                                  const std::optional<RecurrenceEnd>& endRule) {
  std::vector<std::unique_ptr<ICalStringEnumerator>> enumerators;
  for (const std::string& pattern : icalPatterns) {
    enumerators.push_back(ICalStringEnumerator::initWithICalString(
        pattern, date, ICalStringEnumerator::kUnlimitedCount, true));
  }
  AggregateICalEnumerator enumerator(std::move(enumerators), ICalStringEnumerator::kUnlimitedCount);
  const Date limit =
      calendarLimit(endRule && endRule->usesEndDate() ? *endRule->endDate() : kDistantFuture);
  const auto first = enumerator.nextObject();
  if (!first || *first > limit) return std::nullopt;
  return first;
}

}  // namespace ledgeon
