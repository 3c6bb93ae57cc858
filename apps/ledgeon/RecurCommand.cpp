// ledgeon recur: expand recurrence patterns into dates, and show the structured rule they express.
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "DateRecurrence/DateRecurrenceStrings.h"
#include "DateRecurrence/DateRecurrenceUtils.h"
#include "DateRecurrence/ICalStringEnumerator.h"
#include "DateRecurrence/LRecurrenceRule.h"
#include "DateRecurrence/RecurrenceRule.h"
#include "DemoStep.h"
#include "Subcommand.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/Log.h"

namespace ledgeon::cli {

namespace {

struct RecurOptions {
  std::vector<std::string> rrules;
  std::string start;
  std::string until;
  uint64_t count = 0;
  std::string maxDate;
  uint64_t futureLimit = DateRecurrenceUtils::kNoFutureInstanceLimit;
  bool json = false;
};

struct DescribeOptions {
  std::vector<std::string> rrules;
  std::string referenceDate;
  bool json = false;
};

Date dateOption(const std::string& name, const std::string& text) {
  const auto date = LDateUtilities::dateFromISO8601String(text);
  if (!date) {
    throw CommandFailure(fmt::format("{}: \"{}\" is not a date (expected YYYY-MM-DD)", name, text));
  }
  return *date;
}

std::string iso(Date date) { return LDateUtilities::ISO8601StringFromDate(date); }

void runRecur(const RecurOptions& options) {
  if (options.rrules.empty()) throw CLI::RequiredError("--rrule");
  if (options.start.empty()) throw CLI::RequiredError("--start");
  const Date start = dateOption("--start", options.start);
  for (const std::string& rrule : options.rrules) {
    if (!ICalStringEnumerator::initWithICalString(rrule, start)) {
      throw CommandFailure(fmt::format(
          "--rrule \"{}\" cannot be expanded from {}: the RRULE text is malformed, repeats more "
          "often than daily, or the start is outside the years 1 to 2582",
          rrule, options.start));
    }
  }
  // Without --until or --count the series never ends, and --max-date bounds it.
  std::optional<RecurrenceEnd> end = RecurrenceEnd::infiniteRecurrenceEnd();
  if (!options.until.empty()) {
    end = RecurrenceEnd::recurrenceEndWithEndDate(dateOption("--until", options.until));
  } else if (options.count > 0) {
    end = RecurrenceEnd::recurrenceEndWithOccurrenceCount(options.count);
  }
  std::optional<Date> maxDate;
  if (!options.maxDate.empty()) maxDate = dateOption("--max-date", options.maxDate);
  const auto dates = DateRecurrenceUtils::allDatesFromStartDate(
      start, end, maxDate, options.futureLimit, options.rrules);
  if (options.json) {
    nlohmann::json list = nlohmann::json::array();
    for (Date date : dates) list.push_back(iso(date));
    std::cout << nlohmann::json{{"dates", list}}.dump(2) << "\n";
    return;
  }
  for (Date date : dates) std::cout << iso(date) << "\n";
}

const char* typeName(int32_t type) {
  switch (type) {
    case 0:
      return "weekly";
    case 1:
      return "monthly";
    case 2:
      return "yearly";
    case 3:
      return "tax payments";
    default:
      return "unknown";
  }
}

nlohmann::json endJSON(const RecurrenceEnd& end) {
  if (end.isInfinite()) return "never";
  if (end.usesEndDate()) return {{"endDate", iso(*end.endDate())}};
  return {{"occurrenceCount", end.occurrenceCount()}};
}

nlohmann::json ruleJSON(const RecurrenceRule& rule, const std::vector<std::string>& normalized,
                        const std::vector<std::string>& rfc2445) {
  nlohmann::json weekDays = nlohmann::json::array();
  for (const NthWeekDay& day : rule.nthWeekDaysOfTheMonth()) {
    weekDays.push_back({{"dayOfTheWeek", day.dayOfTheWeek}, {"weekNumber", day.weekNumber}});
  }
  nlohmann::json monthDays = nlohmann::json::array();
  for (const NthMonthDay& day : rule.nthDaysOfTheMonth()) {
    monthDays.push_back({{"monthNumber", day.monthNumber}, {"dayOfTheMonth", day.dayOfTheMonth}});
  }
  return {{"expressible", true},
          {"recurrenceType", rule.recurrenceType()},
          {"type", typeName(rule.recurrenceType())},
          {"recurrenceInterval", rule.recurrenceInterval()},
          {"daysOfTheWeek", rule.daysOfTheWeek()},
          {"daysOfTheMonth", rule.daysOfTheMonth()},
          {"nthWeekDaysOfTheMonth", weekDays},
          {"nthDaysOfTheMonth", monthDays},
          {"recurrenceEnd", endJSON(rule.recurrenceEnd())},
          {"icalStrings", rule.icalStrings()},
          {"normalizedStrings", normalized},
          {"rfc2445", rfc2445}};
}

void printRule(const RecurrenceRule& rule, const std::vector<std::string>& normalized,
               const std::vector<std::string>& rfc2445) {
  std::cout << fmt::format("{} rule (type {}), every {}\n", typeName(rule.recurrenceType()),
                           rule.recurrenceType(), rule.recurrenceInterval());
  const auto joined = [](const auto& values, auto describe) {
    std::string text;
    for (const auto& value : values) text += (text.empty() ? "" : ", ") + describe(value);
    return text;
  };
  if (!rule.daysOfTheWeek().empty()) {
    std::cout << "  weekdays: " << joined(rule.daysOfTheWeek(), [](int64_t day) {
      return fmt::format("{} ({})", recurrence::weekdayCode(day).value_or("?"), day);
    }) << "\n";
  }
  if (!rule.daysOfTheMonth().empty()) {
    std::cout << "  days of the month: " << joined(rule.daysOfTheMonth(), [](int64_t day) {
      return std::to_string(day);
    }) << "\n";
  }
  if (!rule.nthWeekDaysOfTheMonth().empty()) {
    std::cout << "  n-th weekdays: "
              << joined(rule.nthWeekDaysOfTheMonth(),
                        [](const NthWeekDay& d) { return d.description(); })
              << "\n";
  }
  if (!rule.nthDaysOfTheMonth().empty()) {
    std::cout << "  month/day: " << joined(rule.nthDaysOfTheMonth(), [](const NthMonthDay& d) {
      return d.description();
    }) << "\n";
  }
  std::cout << "  ends: " << rule.recurrenceEnd().description() << "\n  stored as:\n";
  for (const std::string& string : normalized) std::cout << "    " << string << "\n";
  if (!rfc2445.empty()) {
    std::cout << "  RFC 2445:\n";
    for (const std::string& string : rfc2445) std::cout << "    " << string << "\n";
  }
}

void runDescribe(const DescribeOptions& options) {
  std::optional<Date> reference;
  if (!options.referenceDate.empty()) {
    reference = dateOption("--reference-date", options.referenceDate);
  }
  LogCapture log;
  RecurrenceEnd end = RecurrenceEnd::infiniteRecurrenceEnd();
  const auto rule = RecurrenceRule::ruleWithIcalStrings(options.rrules, &end, reference);
  if (!rule) {
    std::vector<std::string> reasons = log.lines();
    if (reasons.empty()) reasons.push_back("no patterns given");
    if (options.json) {
      std::cout << nlohmann::json{{"expressible", false}, {"reasons", reasons}}.dump(2) << "\n";
    }
    std::string message;
    for (const std::string& reason : reasons) message += (message.empty() ? "" : "; ") + reason;
    throw CommandFailure("the patterns cannot be expressed as a structured rule: " + message);
  }
  std::vector<std::string> normalized;
  for (const std::string& pattern : rule->icalStrings()) {
    normalized.push_back(RecurrenceRule::icalStringWithPattern(pattern, end));
  }
  // The calendar framework's form of each pattern, where it reads it.
  std::vector<std::string> rfc2445;
  for (const std::string& string : normalized) {
    if (auto framework = LRecurrenceRule::recurrenceRuleWithString(string)) {
      rfc2445.push_back(framework->rfc2445String());
    }
  }
  if (options.json) {
    std::cout << ruleJSON(*rule, normalized, rfc2445).dump(2) << "\n";
  } else {
    printRule(*rule, normalized, rfc2445);
  }
}

const SubcommandRegistration registration(600, [](CLI::App& app) {
  auto options = std::make_shared<RecurOptions>();
  auto* recur = app.add_subcommand(
      "recur", "Expand iCalendar recurrence patterns (RRULE bodies) into dates, one per line");
  recur->add_option("--rrule", options->rrules,
                    "A pattern, such as FREQ=MONTHLY;BYMONTHDAY=1,15,-1 (repeat to merge several)");
  recur->add_option("--start", options->start, "First day to look from, YYYY-MM-DD");
  auto* until = recur->add_option("--until", options->until, "Last day of the series, YYYY-MM-DD");
  recur->add_option("--count", options->count, "Number of occurrences of the series")
      ->check(CLI::PositiveNumber)
      ->excludes(until);
  recur->add_option("--max-date", options->maxDate, "List no date after this day, YYYY-MM-DD");
  recur->add_option("--future-limit", options->futureLimit,
                    "List at most this many dates after today");
  recur->add_flag("--json", options->json, "Print the dates as JSON");
  recur->footer(
      "Without --until or --count the series never ends; --max-date and --future-limit bound the "
      "list.\nExample: ledgeon recur --rrule 'FREQ=MONTHLY;BYMONTHDAY=1,15,-1' --start 2025-01-01 "
      "--until 2025-12-31\n");

  auto describeOptions = std::make_shared<DescribeOptions>();
  auto* describe = recur->add_subcommand(
      "describe", "Show the structured rule the patterns express, or why they cannot be one");
  describe->add_option("--rrule", describeOptions->rrules, "A stored pattern (repeat for several)")
      ->required();
  describe->add_option("--reference-date", describeOptions->referenceDate,
                       "Day that supplies a pattern's missing day, YYYY-MM-DD");
  describe->add_flag("--json", describeOptions->json, "Print the rule as JSON");
  describe->callback([describeOptions] { runDescribe(*describeOptions); });
  recur->callback([options, describe] {
    if (!describe->parsed()) runRecur(*options);
  });
});

void showMonthlyYear(DemoContext& context) {
  auto& out = context.out;
  const auto rule = RecurrenceRule::initMonthlyRecurrenceWithInterval(
      1, {15, -1, 1}, {},
      RecurrenceEnd::recurrenceEndWithEndDate(LDateUtilities::dateWithYear(2025, 12, 31).value()));
  out << "Rule: " << rule.description() << "\n";
  for (const std::string& pattern : rule.icalStrings()) {
    out << "Stored as: " << RecurrenceRule::icalStringWithPattern(pattern, rule.recurrenceEnd())
        << "\n";
  }
  const auto dates = DateRecurrenceUtils::allDatesFromStartDate(
      LDateUtilities::dateWithYear(2025, 1, 1).value(), rule.recurrenceEnd(), std::nullopt,
      rule.icalStrings());
  out << dates.size() << " dates in 2025:\n";
  for (size_t i = 0; i < dates.size(); ++i) {
    out << (i % 6 == 0 ? "  " : " ") << iso(dates[i]) << (i % 6 == 5 ? "\n" : "");
  }
  if (dates.size() % 6 != 0) out << "\n";
  const auto tax =
      RecurrenceRule::ruleWithIcalStrings({"FREQ=YEARLY;BYMONTH=1,4,6,9;BYMONTHDAY=15"});
  out << "FREQ=YEARLY;BYMONTH=1,4,6,9;BYMONTHDAY=15 reads back as: "
      << (tax ? tax->description() : "nothing") << "\n";
}

const DemoStepRegistration demoStep(600, "Recurrence rules: a monthly pattern over a year",
                                    showMonthlyYear);

}  // namespace

}  // namespace ledgeon::cli
