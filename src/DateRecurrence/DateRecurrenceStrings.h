#pragma once

#include <optional>
#include <string_view>

namespace ledgeon::recurrence {

// Log lines of reading recurrence strings back into rules.
inline constexpr std::string_view kInvalidRecurrenceFormat = "invalid recurrence - %@";
inline constexpr std::string_view kMismatchingFrequenciesFormat =
    "Mismatching frequencies: %ld != %ld";
inline constexpr std::string_view kMismatchingIntervalFormat = "Mismatching interval: %ld != %ld";
inline constexpr std::string_view kCannotParseFrequencyFormat =
    "Cannot parse recurrence frequency: %ld";
inline constexpr std::string_view kUnsupportedComponentFormat =
    "Recurrence pattern cannot be held by a structured rule (%@): %@";
// The assertion of writing out a rule whose type is none of the known ones.
inline constexpr std::string_view kUnknownRecurrenceTypeFormat = "Unknown recurrence type: %ld";

// iCalendar's two-letter code of a weekday 1 (Sunday) ... 7 (Saturday); nothing for other numbers.
inline std::optional<std::string_view> weekdayCode(long dayOfTheWeek) {
  static constexpr std::string_view kCodes[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
  if (dayOfTheWeek < 1 || dayOfTheWeek > 7) return std::nullopt;
  return kCodes[dayOfTheWeek - 1];
}

}  // namespace ledgeon::recurrence
