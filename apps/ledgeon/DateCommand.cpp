#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "Subcommand.h"
#include "Utilities/DateFormatter.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon::cli {

namespace {

struct DateOptions {
  std::string text;
  std::string pattern;
  std::string locale = "en_US_POSIX";
  std::string zone = "GMT";
  long days = 0;
  long months = 0;
  long years = 0;
  bool json = false;
};

Date readDate(const DateOptions& options) {
  if (options.text.empty()) return LDateUtilities::currentDate();
  std::optional<Date> date;
  if (options.pattern.empty()) {
    date = LDateUtilities::dateFromISO8601String(options.text);
  } else {
    try {
      date = DateFormatter(options.pattern, options.locale, options.zone)
                 .calendarDateFromString(options.text);
    } catch (const std::invalid_argument& error) {
      throw CommandFailure(error.what());
    }
  }
  if (!date) {
    throw CommandFailure(fmt::format("\"{}\" is not a date{}", options.text,
                                     options.pattern.empty()
                                         ? " (expected ISO 8601, such as 2024-02-29)"
                                         : " of the form \"" + options.pattern + "\""));
  }
  return *date;
}

void runDate(const DateOptions& options) {
  std::optional<Date> date = readDate(options);
  // Years, then months, then days: "Jan 31 + 1 month + 1 day" is Mar 1 (Feb 29 + 1), not Mar 2.
  if (options.years != 0) date = LDateUtilities::dateByAddingYears(*date, options.years);
  if (date && options.months != 0) date = LDateUtilities::dateByAddingMonths(*date, options.months);
  if (date && options.days != 0) date = LDateUtilities::dateByAddingDays(*date, options.days);
  if (!date) throw CommandFailure("the result is outside the calendar (years 1 to 9999)");

  static constexpr const char* kWeekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};
  const int weekday = LDateUtilities::dayOfWeekForDate(*date);
  const std::string iso = LDateUtilities::ISO8601StringFromDate(*date);
  if (options.json) {
    std::cout << fmt::format(
        "{{\"date\": \"{}\", \"year\": {}, \"month\": {}, \"day\": {}, \"dayOfWeek\": {}, "
        "\"weekday\": \"{}\", \"daysInMonth\": {}, \"timeIntervalSinceReferenceDate\": {}}}\n",
        iso, LDateUtilities::yearForDate(*date), LDateUtilities::monthOfYearForDate(*date),
        LDateUtilities::dayOfMonthForDate(*date), weekday, kWeekdays[weekday - 1],
        LDateUtilities::numberOfDaysInMonth(LDateUtilities::yearForDate(*date),
                                            LDateUtilities::monthOfYearForDate(*date)),
        date->timeIntervalSinceReferenceDate());
  } else {
    std::cout << iso << " " << kWeekdays[weekday - 1] << "\n";
  }
}

const SubcommandRegistration registration(200, [](CLI::App& app) {
  auto options = std::make_shared<DateOptions>();
  auto* command = app.add_subcommand(
      "date", "Read a calendar date (default today), add days, months or years, and show it");
  command->add_option("date", options->text, "The date: ISO 8601, or the form given by --pattern");
  command->add_option("--pattern", options->pattern,
                      "Unicode date pattern of the text, such as MM/dd/yyyy");
  command->add_option("--locale", options->locale, "Locale of the pattern")->capture_default_str();
  command->add_option("--zone", options->zone, "Time zone the text is read in")
      ->capture_default_str();
  command->add_option("--add-days", options->days, "Days to add (negative to go back)");
  command->add_option("--add-months", options->months,
                      "Months to add; the day is clamped to the month's end");
  command->add_option("--add-years", options->years, "Years to add");
  command->add_flag("--json", options->json, "Print the result as JSON");
  command->callback([options] { runDate(*options); });
});

}  // namespace

}  // namespace ledgeon::cli
