#include "DateRecurrence/ICalStringEnumerator.h"

#include <libical/ical.h>

#include "DateRecurrence/internal/ICalText.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {

std::unique_ptr<ICalStringEnumerator> ICalStringEnumerator::initWithICalString(
    std::string_view icalString, std::optional<Date> startDate, uint64_t maximumCount,
    bool ignoreInterval) {
  const Date start = startDate ? *startDate : LDateUtilities::currentDate();
  auto rule = recurrence::parseRecurrence(recurrence::trimmedRecurrenceText(icalString));
  if (!rule || rule->rule().freq < ICAL_DAILY_RECURRENCE) return nullptr;
  if (ignoreInterval) rule->setInterval(1);
  const auto dtstart = recurrence::icalDateFromDate(start);
  if (!dtstart) return nullptr;
  icalrecur_iterator* iterator = icalrecur_iterator_new(rule->rule(), *dtstart);
  if (!iterator) return nullptr;
  std::unique_ptr<ICalStringEnumerator> enumerator(new ICalStringEnumerator(
      iterator, std::make_unique<recurrence::ParsedRecurrence>(std::move(*rule)), maximumCount));
  enumerator->fetchNext();
  return enumerator;
}

ICalStringEnumerator::ICalStringEnumerator(icalrecur_iterator_impl* iterator,
                                           std::unique_ptr<recurrence::ParsedRecurrence> rule,
                                           uint64_t maximumCount)
    : iterator_(iterator), rule_(std::move(rule)), maximumCount_(maximumCount) {}

// The iterator goes first: it holds the rule's pointers, which rule_ frees after this body.
ICalStringEnumerator::~ICalStringEnumerator() { icalrecur_iterator_free(iterator_); }

void ICalStringEnumerator::fetchNext() {
  const icaltimetype time = icalrecur_iterator_next(iterator_);
  next_ = icaltime_is_null_time(time) ? std::nullopt : recurrence::dateFromIcalTime(time);
}

std::optional<Date> ICalStringEnumerator::nextObject() {
  if (!next_ || returnedCount_ >= maximumCount_) return std::nullopt;
  const Date date = *next_;
  ++returnedCount_;
  if (returnedCount_ < maximumCount_) {
    fetchNext();
  } else {
    next_.reset();
  }
  return date;
}

}  // namespace ledgeon
