#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Utilities/Date.h"

namespace ledgeon {

// The OFX date texts, read and written.
class OFXDates final {
 public:
  // "yyyyMMddHHmmss.SSS[%ld:%@]" in the default time zone: the offset from GMT in whole hours and
  // the zone's abbreviation, cut to three characters when longer.
  static std::string OFXFormatForDate(Date date);
  // The same in the zone with the given identifier ("America/New_York").
  static std::string OFXFormatForDate(Date date, std::string_view zoneIdentifier);
  static std::string currentDateInOFXFormat();
  // The bracket that ends a written date: "[-5:EST]".
  static std::string zoneSuffix(int32_t offsetSeconds, std::string_view abbreviation);

  // A date with a zone bracket but no fraction gets ".000" before the bracket.
  static std::string massageOFXDateTimeString(std::string_view text);
  // Reads "yyyyMMdd", "yyyyMMddHHmm[ss[.SSS]]" with an optional "[offset:zone]" bracket. A day
  // alone is a calendar date (12:00 GMT); a time without a bracket is GMT, as OFX defines. No
  // value for text that is not a real date.
  static std::optional<Date> dateFromOFXString(std::string_view text);
  // ISO-style XML dates ("2024-03-01T12:30:45.000Z"): ":" removed, a final "Z" read as GMT,
  // parsed with "yyyy-MM-dd'T'HHmmss.SSSZZZ" in locale "en_US".
  static std::optional<Date> dateFromXMLString(std::string_view text);
  // Parses `text` with an ICU date pattern in GMT and the POSIX locale.
  static std::optional<Date> dateFromPattern(std::string_view text, std::string_view pattern);
};

}  // namespace ledgeon
