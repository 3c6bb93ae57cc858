#include "Utilities/DateFormatter.h"

#include <cmath>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/uchar.h>

#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

// ICU's earliest instant: as the Julian-Gregorian cutover it makes the calendar purely Gregorian,
// the calendar LDateUtilities and ISO 8601 use.
constexpr double kProlepticCutoverMillis = -184303902528000000.0;

std::string toUTF8(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

// ICU takes any pattern and fails only when formatting; catch the two slips that matter here: a
// letter that is no date field (it would otherwise be a literal a reader never expects) and an
// unclosed quote.
std::optional<std::string> patternProblem(std::string_view pattern) {
  static constexpr std::string_view kFieldLetters = "GyMdkHmsSEDFwWahKzYeugAZvcLQqVUOXxrbB";
  bool quoted = false;
  for (const char c : pattern) {
    if (c == '\'') {
      quoted = !quoted;  // '' reads as two toggles: a literal quote
    } else if (!quoted && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) &&
               kFieldLetters.find(c) == std::string_view::npos) {
      return fmt::format("'{}' is not a date field", c);
    }
  }
  if (quoted) return std::string("unclosed quote");
  return std::nullopt;
}

// No date text has a run of more digits than this. Longer runs are refused before ICU sees them:
// its fractional-second reading divides by a power of ten that overflows to zero on runs of 35
// digits or more, and crashes.
constexpr int32_t kLongestDigitRun = 24;

bool hasOverlongDigitRun(const icu::UnicodeString& text) {
  int32_t run = 0;
  for (int32_t i = 0; i < text.length();) {
    const UChar32 c = text.char32At(i);
    run = u_isdigit(c) ? run + 1 : 0;
    if (run > kLongestDigitRun) return true;
    i += U16_LENGTH(c);
  }
  return false;
}

}  // namespace

DateFormatter::DateFormatter(std::string_view pattern, std::string_view localeIdentifier,
                             std::string_view timeZoneIdentifier)
    : pattern_(pattern),
      localeIdentifier_(localeIdentifier),
      timeZoneIdentifier_(timeZoneIdentifier) {
  std::unique_ptr<icu::TimeZone> zone(
      icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZoneIdentifier_)));
  if (*zone == icu::TimeZone::getUnknown()) {
    throw std::invalid_argument(fmt::format("Unknown time zone \"{}\"", timeZoneIdentifier_));
  }
  if (const auto problem = patternProblem(pattern_)) {
    throw std::invalid_argument(fmt::format("Bad date pattern \"{}\": {}", pattern_, *problem));
  }
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale(localeIdentifier_.c_str());
  format_ = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString::fromUTF8(pattern_), locale,
                                                    status);
  if (U_FAILURE(status)) {
    throw std::invalid_argument(
        fmt::format("Bad date pattern \"{}\": {}", pattern_, u_errorName(status)));
  }
  auto calendar = std::make_unique<icu::GregorianCalendar>(zone.release(), locale, status);
  calendar->setGregorianChange(kProlepticCutoverMillis, status);
  if (U_FAILURE(status)) {
    throw std::invalid_argument(
        fmt::format("No calendar for locale \"{}\": {}", localeIdentifier_, u_errorName(status)));
  }
  format_->adoptCalendar(calendar.release());
  // Two-digit years follow the program's clock, so tests that pin it read them the same way.
  const double now = Clock::now().unixTime() * 1000.0;
  format_->set2DigitYearStart(now - 80.0 * 365.2425 * 86400000.0, status);
  setLenient(false);
}

DateFormatter::~DateFormatter() = default;
DateFormatter::DateFormatter(DateFormatter&&) noexcept = default;
DateFormatter& DateFormatter::operator=(DateFormatter&&) noexcept = default;

void DateFormatter::setLenient(bool lenient) { format_->setLenient(lenient); }

bool DateFormatter::isLenient() const { return format_->isLenient(); }

std::string DateFormatter::stringFromDate(Date date) const {
  const double millis = date.unixTime() * 1000.0;
  if (!std::isfinite(millis) || std::fabs(millis) > -kProlepticCutoverMillis) return {};
  icu::UnicodeString text;
  format_->format(millis, text);
  return toUTF8(text);
}

std::optional<Date> DateFormatter::dateFromString(std::string_view text) const {
  const auto unicode = icu::UnicodeString::fromUTF8(text);
  if (unicode.isEmpty() || hasOverlongDigitRun(unicode)) return std::nullopt;
  icu::ParsePosition position(0);
  const double millis = format_->parse(unicode, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != unicode.length()) {
    return std::nullopt;
  }
  return Date::fromUnixTime(millis / 1000.0);
}

std::optional<Date> DateFormatter::calendarDateFromString(std::string_view text) const {
  const auto instant = dateFromString(text);
  if (!instant) return std::nullopt;
  return LDateUtilities::dateWithTimestamp(*instant, timeZoneIdentifier_);
}

}  // namespace ledgeon
