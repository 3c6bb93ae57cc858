#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <unicode/uversion.h>

#include "Utilities/Date.h"

U_NAMESPACE_BEGIN
class SimpleDateFormat;
U_NAMESPACE_END

namespace ledgeon {

// Formats and reads dates with a Unicode date pattern ("yyyyMMddHHmmss.SSS", "MM/dd/yyyy",
// "yyyyMMdd", ...) in a locale and a time zone, through ICU. The calendar is the proleptic
// Gregorian one, like LDateUtilities, and two-digit years ("yy") are read into the century that
// starts 80 years before Clock::now().
//
// Building one parses the pattern and loads locale data, so keep and reuse it. A formatter is
// NOT thread-safe: ICU formats keep parse state in the instance, so give each thread its own.
class DateFormatter final {
 public:
  // Throws std::invalid_argument for a pattern ICU rejects or an unknown time zone id (both are
  // the program's own constants, so this is a programming error, not bad input).
  explicit DateFormatter(std::string_view pattern,
                         std::string_view localeIdentifier = "en_US_POSIX",
                         std::string_view timeZoneIdentifier = "GMT");
  ~DateFormatter();
  DateFormatter(DateFormatter&&) noexcept;
  DateFormatter& operator=(DateFormatter&&) noexcept;
  DateFormatter(const DateFormatter&) = delete;
  DateFormatter& operator=(const DateFormatter&) = delete;

  const std::string& pattern() const { return pattern_; }
  const std::string& localeIdentifier() const { return localeIdentifier_; }
  const std::string& timeZoneIdentifier() const { return timeZoneIdentifier_; }

  // Off by default: fields must be in range ("02/30/2024" is rejected) and the text must match
  // the pattern. On: ICU's lenient reading (out-of-range fields roll over, looser separators).
  void setLenient(bool lenient);
  bool isLenient() const;

  // The text of `date`; empty for a date that is not finite or beyond ICU's range (about
  // 5.8 million years either side of 1970).
  std::string stringFromDate(Date date) const;
  // The instant the whole text names in the formatter's zone (fields the pattern lacks take
  // their 1970-01-01 00:00:00 values); std::nullopt when the text does not match or has
  // anything left over after the match.
  std::optional<Date> dateFromString(std::string_view text) const;
  // dateFromString reduced to its calendar date (year, month and day in the formatter's zone).
  std::optional<Date> calendarDateFromString(std::string_view text) const;

 private:
  std::string pattern_;
  std::string localeIdentifier_;
  std::string timeZoneIdentifier_;
  std::unique_ptr<icu::SimpleDateFormat> format_;
};

}  // namespace ledgeon
