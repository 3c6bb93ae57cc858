#include "DateRecurrence/AggregateICalEnumerator.h"

namespace ledgeon {

AggregateICalEnumerator AggregateICalEnumerator::enumeratorWithICalStrings(
    const std::vector<std::string>& icalStrings, std::optional<Date> startDate,
    uint64_t maximumCount) {
  std::vector<std::unique_ptr<ICalStringEnumerator>> enumerators;
  for (const std::string& string : icalStrings) {
    enumerators.push_back(ICalStringEnumerator::initWithICalString(string, startDate));
  }
  return AggregateICalEnumerator(std::move(enumerators), maximumCount);
}

AggregateICalEnumerator::AggregateICalEnumerator(
    std::vector<std::unique_ptr<ICalStringEnumerator>> enumerators, uint64_t maximumCount)
    : maximumCount_(maximumCount) {
  for (auto& enumerator : enumerators) {
    if (!enumerator) continue;
    nextDates_.push_back(enumerator->nextObject());
    enumerators_.push_back(std::move(enumerator));
  }
}

std::optional<Date> AggregateICalEnumerator::nextObject() {
  if (returnedCount_ >= maximumCount_) return std::nullopt;
  size_t earliest = nextDates_.size();
  for (size_t i = 0; i < nextDates_.size(); ++i) {
    if (nextDates_[i] &&
        (earliest == nextDates_.size() || *nextDates_[i] < *nextDates_[earliest])) {
      earliest = i;
    }
  }
  if (earliest == nextDates_.size()) return std::nullopt;
  const Date date = *nextDates_[earliest];
  nextDates_[earliest] = enumerators_[earliest]->nextObject();
  ++returnedCount_;
  return date;
}

}  // namespace ledgeon
