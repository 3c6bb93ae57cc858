#include "OnlineBankingFramework/OFXDates.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include "Utilities/Clock.h"
#include "Utilities/DateFormatter.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;

std::string toUTF8(const icu::UnicodeString& text) {
  std::string out;
  text.toUTF8String(out);
  return out;
}

std::string formatInZone(Date date, const icu::TimeZone& zone) {
  icu::UnicodeString zoneID;
  zone.getID(zoneID);
  const std::string identifier = toUTF8(zoneID);
  const DateFormatter formatter("yyyyMMddHHmmss.SSS", "en_US_POSIX", identifier);
  const DateFormatter abbreviation("zzz", "en_US_POSIX", identifier);
  UErrorCode status = U_ZERO_ERROR;
  int32_t rawOffset = 0;
  int32_t dstOffset = 0;
  zone.getOffset(date.unixTime() * kMillisecondsPerSecond, false, rawOffset, dstOffset, status);
  return formatter.stringFromDate(date) +
         OFXDates::zoneSuffix((rawOffset + dstOffset) / 1000, abbreviation.stringFromDate(date));
}

int64_t daysFromCivil(int64_t year, unsigned month, unsigned day) {
  year -= month <= 2 ? 1 : 0;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const auto yearOfEra = static_cast<unsigned>(year - era * 400);
  const unsigned dayOfYear = (153 * (month + (month > 2 ? -3u : 9u)) + 2) / 5 + day - 1;
  const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + static_cast<int64_t>(dayOfEra) - 719468;
}

unsigned daysInMonth(int64_t year, unsigned month) {
  static constexpr unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[month - 1];
}

bool readDigits(std::string_view text, size_t& position, size_t count, unsigned& value) {
  if (position + count > text.size()) return false;
  value = 0;
  for (size_t i = 0; i < count; ++i) {
    const char c = text[position + i];
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  position += count;
  return true;
}

// The hours of a "[-5:EST]" bracket; a bracket without a number ("[-:EST]") counts as GMT.
double bracketOffsetHours(std::string_view bracket) {
  const size_t colon = bracket.find(':');
  std::string number(bracket.substr(0, colon));
  char* end = nullptr;
  const double hours = std::strtod(number.c_str(), &end);
  if (end == number.c_str() || !std::isfinite(hours) || std::fabs(hours) > 24) return 0;
  return hours;
}

}  // namespace

std::string OFXDates::zoneSuffix(int32_t offsetSeconds, std::string_view abbreviation) {
  const long hours = offsetSeconds / 3600;
  std::string shortName(abbreviation.size() >= 4 ? abbreviation.substr(0, 3) : abbreviation);
  return stringWithFormat("[%ld:%@]", hours, shortName);
}

std::string OFXDates::OFXFormatForDate(Date date) {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
  return formatInZone(date, *zone);
}

std::string OFXDates::OFXFormatForDate(Date date, std::string_view zoneIdentifier) {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(
      icu::StringPiece(zoneIdentifier.data(), static_cast<int32_t>(zoneIdentifier.size())))));
  return formatInZone(date, *zone);
}

std::string OFXDates::currentDateInOFXFormat() { return OFXFormatForDate(Clock::now()); }

std::string OFXDates::massageOFXDateTimeString(std::string_view text) {
  std::string out(text);
  const size_t bracket = out.find('[');
  if (bracket != std::string::npos && out.find('.') == std::string::npos) {
    out.replace(bracket, 1, ".000[");
  }
  return out;
}

std::optional<Date> OFXDates::dateFromOFXString(std::string_view raw) {
  const std::string text = massageOFXDateTimeString(raw);
  size_t position = 0;
  unsigned year = 0, month = 0, day = 0;
  if (!readDigits(text, position, 4, year) || !readDigits(text, position, 2, month) ||
      !readDigits(text, position, 2, day)) {
    return std::nullopt;
  }
  if (month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month)) return std::nullopt;
  const double dayStart = static_cast<double>(daysFromCivil(year, month, day)) * 86400.0;
  unsigned hour = 0, minute = 0, second = 0;
  if (!readDigits(text, position, 2, hour)) return Date::fromUnixTime(dayStart + 12 * 3600.0);
  if (!readDigits(text, position, 2, minute)) return std::nullopt;
  if (!readDigits(text, position, 2, second)) second = 0;
  if (hour > 23 || minute > 59 || second > 60) return std::nullopt;
  double fraction = 0;
  if (position < text.size() && text[position] == '.') {
    double scale = 0.1;
    for (++position;
         position < text.size() && std::isdigit(static_cast<unsigned char>(text[position]));
         ++position) {
      fraction += scale * (text[position] - '0');
      scale /= 10;
    }
  }
  double offsetHours = 0;
  if (position < text.size() && text[position] == '[') {
    const size_t close = text.find(']', position);
    offsetHours = bracketOffsetHours(std::string_view(text).substr(
        position + 1, (close == std::string::npos ? text.size() : close) - position - 1));
  }
  const double seconds = dayStart + hour * 3600.0 + minute * 60.0 + second + fraction;
  return Date::fromUnixTime(seconds - offsetHours * 3600.0);
}

std::optional<Date> OFXDates::dateFromPattern(std::string_view text, std::string_view pattern) {
  try {
    return DateFormatter(pattern).dateFromString(text);
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  }
}

std::optional<Date> OFXDates::dateFromXMLString(std::string_view raw) {
  std::string text;
  for (char c : raw) {
    if (c != ':') text.push_back(c);
  }
  if (!text.empty() && text.back() == 'Z') {
    text.pop_back();
    text += "GMT";
  }
  static thread_local const DateFormatter formatter("yyyy-MM-dd'T'HHmmss.SSSZZZ", "en_US");
  return formatter.dateFromString(text);
}

}  // namespace ledgeon
