// Recurrence expansion beside libical's iterator called directly (the floor), and the criteria
// evaluator on a 50-node rule.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <libical/ical.h>

#include "Application/CriteriaEvaluator.h"
#include "DateRecurrence/AggregateICalEnumerator.h"
#include "DateRecurrence/DateRecurrenceUtils.h"
#include "DateRecurrence/ICalStringEnumerator.h"
#include "Utilities/LDateUtilities.h"

namespace {

using namespace ledgeon;

const char* const kMonthly = "FREQ=MONTHLY;BYMONTHDAY=1,15,-1";
const std::vector<std::string> kThreePatterns = {"FREQ=MONTHLY;WKST=SU;BYMONTHDAY=1,15",
                                                 "FREQ=MONTHLY;WKST=SU;BYDAY=-1FR",
                                                 "FREQ=WEEKLY;WKST=SU;INTERVAL=2;BYDAY=MO"};
// A hundred years: 2000-01-01 up to and including 2099-12-31.
constexpr int kEndYear = 2100;

Date startDate() { return LDateUtilities::dateWithYear(2000, 1, 1).value(); }
Date lastDate() { return LDateUtilities::dateWithYear(kEndYear - 1, 12, 31).value(); }

// libical alone: parse, iterate until the end year, free.
int64_t libicalDates(const std::vector<std::string>& patterns) {
  std::vector<icalrecur_iterator*> iterators;
  std::vector<icaltimetype> next;
  const icaltimetype start = icaltime_from_string("20000101");
  for (const std::string& pattern : patterns) {
    iterators.push_back(
        icalrecur_iterator_new(icalrecurrencetype_from_string(pattern.c_str()), start));
    next.push_back(icalrecur_iterator_next(iterators.back()));
  }
  int64_t count = 0;
  for (;;) {
    size_t earliest = next.size();
    for (size_t i = 0; i < next.size(); ++i) {
      if (icaltime_is_null_time(next[i]) || next[i].year >= kEndYear) continue;
      if (earliest == next.size() || icaltime_compare(next[i], next[earliest]) < 0) earliest = i;
    }
    if (earliest == next.size()) break;
    benchmark::DoNotOptimize(next[earliest]);
    ++count;
    next[earliest] = icalrecur_iterator_next(iterators[earliest]);
  }
  for (icalrecur_iterator* iterator : iterators) icalrecur_iterator_free(iterator);
  return count;
}

void MonthlyFloor(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(libicalDates({kMonthly}));
  state.SetItemsProcessed(state.iterations() * 3600);
}
BENCHMARK(MonthlyFloor)->Name("Monthly/floor");

void MonthlyEnumerator(benchmark::State& state) {
  const Date start = startDate();
  const Date last = lastDate();
  for (auto _ : state) {
    auto enumerator = ICalStringEnumerator::initWithICalString(kMonthly, start);
    int64_t count = 0;
    while (const auto date = enumerator->nextObject()) {
      if (*date > last) break;
      ++count;
    }
    benchmark::DoNotOptimize(count);
  }
  state.SetItemsProcessed(state.iterations() * 3600);
}
BENCHMARK(MonthlyEnumerator)->Name("Monthly/ICalStringEnumerator");

void MonthlyAllDates(benchmark::State& state) {
  const Date start = startDate();
  const auto end = RecurrenceEnd::recurrenceEndWithEndDate(lastDate());
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        DateRecurrenceUtils::allDatesFromStartDate(start, end, std::nullopt, {kMonthly}));
  }
  state.SetItemsProcessed(state.iterations() * 3600);
}
BENCHMARK(MonthlyAllDates)->Name("Monthly/allDatesFromStartDate");

void AggregateFloor(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(libicalDates(kThreePatterns));
}
BENCHMARK(AggregateFloor)->Name("Aggregate/floor");

void AggregateEnumerator(benchmark::State& state) {
  const Date start = startDate();
  const Date last = lastDate();
  for (auto _ : state) {
    auto enumerator = AggregateICalEnumerator::enumeratorWithICalStrings(kThreePatterns, start);
    int64_t count = 0;
    while (const auto date = enumerator.nextObject()) {
      if (*date > last) break;
      ++count;
    }
    benchmark::DoNotOptimize(count);
  }
}
BENCHMARK(AggregateEnumerator)->Name("Aggregate/AggregateICalEnumerator");

void AggregateAllDates(benchmark::State& state) {
  const Date start = startDate();
  const auto end = RecurrenceEnd::recurrenceEndWithEndDate(lastDate());
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        DateRecurrenceUtils::allDatesFromStartDate(start, end, std::nullopt, kThreePatterns));
  }
}
BENCHMARK(AggregateAllDates)->Name("Aggregate/allDatesFromStartDate");

// A rule of 50 dictionaries of the kinds the server sends: an "and" of seven groups, each an "or"
// of a version test, an ordered date, the "not" of a range, a case-insensitive text and an edition.
CriteriaJSON fiftyNodeRule() {
  CriteriaJSON groups = CriteriaJSON::array();
  for (int i = 0; i < 7; ++i) {
    groups.push_back({{"or",
                       {{{"version_lt", "5." + std::to_string(i)}},
                        {{"date_gt", "2030-01-0" + std::to_string(i % 9 + 1)}},
                        {{"not", {{"days_until_expiration_range", "100:200"}}}},
                        {{"entitlement_id", "PREMIUM-ANNUAL"}},
                        {{"sku_type", "Basic"}}}}});
  }
  return {{"and", groups}};
}

CriteriaEvaluatorEnvironment benchEnvironment() {
  CriteriaEvaluatorEnvironment environment;
  environment.version = "5.10.2";
  environment.currentDate = LDateUtilities::dateWithYear(2024, 6, 15).value();
  environment.entitlementId = "Premium-Annual";
  environment.daysUntilExpiration = 30;
  return environment;
}

// Visiting every value of the same tree without evaluating it.
int64_t countNodes(const CriteriaJSON& value) {
  int64_t count = 1;
  if (value.is_structured()) {
    for (const auto& item : value) count += countNodes(item);
  }
  return count;
}

void CriteriaFloor(benchmark::State& state) {
  const CriteriaJSON rule = fiftyNodeRule();
  for (auto _ : state) benchmark::DoNotOptimize(countNodes(rule));
}
BENCHMARK(CriteriaFloor)->Name("Criteria/floor");

void CriteriaEvaluate(benchmark::State& state) {
  const CriteriaJSON rule = fiftyNodeRule();
  CriteriaEvaluator evaluator(rule, benchEnvironment());
  for (auto _ : state)
    benchmark::DoNotOptimize(evaluator.environmentSatisfiesDictionary(rule, true));
}
BENCHMARK(CriteriaEvaluate)->Name("Criteria/environmentSatisfiesDictionary");

}  // namespace
