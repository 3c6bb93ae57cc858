// Stored and exchanged recurrence text: one RRULE body per line (at most four), then read as a
// structured rule, split into pattern and end, read as the calendar framework's rule, and
// expanded. Whatever the bytes, nothing may crash or run away, and what is written must read
// back to the same rule.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "DateRecurrence/AggregateICalEnumerator.h"
#include "DateRecurrence/DateRecurrenceUtils.h"
#include "DateRecurrence/LRecurrenceRule.h"
#include "DateRecurrence/RecurrenceRule.h"
#include "Utilities/LDateUtilities.h"

using namespace ledgeon;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty() && lines.size() < 4) {
    const size_t end = std::min(text.find('\n'), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

void checkStructuredRule(const std::vector<std::string>& strings, Date reference) {
  RecurrenceEnd end = RecurrenceEnd::infiniteRecurrenceEnd();
  const auto rule = RecurrenceRule::ruleWithIcalStrings(strings, &end, reference);
  if (!rule) return;
  const auto normalized = RecurrenceRule::normalizedScheduleStringsFromStrings(strings, reference);
  if (!normalized) std::abort();
  // Written strings read back to a rule whose strings are the same again.
  if (!normalized->empty() && RecurrenceRule::normalizedScheduleStringsFromStrings(
                                  *normalized, std::nullopt) != normalized) {
    std::abort();
  }
}

void checkFrameworkRule(const std::string& text) {
  const auto rule = LRecurrenceRule::recurrenceRuleWithString(text);
  if (!rule) return;
  if (LRecurrenceRule::recurrenceRuleWithString(rule->rfc2445String()) != rule) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 65536 || size < 2) return 0;
  // The first two bytes pick the start date: any day from 1990 to about 2169.
  const long offset = (data[0] << 8) | data[1];
  const Date start =
      LDateUtilities::dateByAddingDays(LDateUtilities::dateWithYear(1990, 1, 1).value(), offset)
          .value();
  const auto strings = linesOf(std::string_view(reinterpret_cast<const char*>(data) + 2, size - 2));

  checkStructuredRule(strings, start);
  for (const std::string& string : strings) {
    std::string pattern;
    RecurrenceEnd end = RecurrenceEnd::infiniteRecurrenceEnd();
    (void)RecurrenceRule::parseIcalString(string, &pattern, &end, start);
    checkFrameworkRule(string);
  }

  auto enumerator = AggregateICalEnumerator::enumeratorWithICalStrings(strings, start, 40);
  std::optional<Date> previous;
  while (const auto date = enumerator.nextObject()) {
    if (!LDateUtilities::isCalendarDate(*date) || (previous && *date < *previous)) std::abort();
    previous = date;
  }
  (void)DateRecurrenceUtils::allDatesFromStartDate(
      start, RecurrenceEnd::recurrenceEndWithOccurrenceCount(25), std::nullopt, strings);
  (void)DateRecurrenceUtils::rollDate(start, strings, std::nullopt);
  return 0;
}
