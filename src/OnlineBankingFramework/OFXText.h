#pragma once

#include <string>
#include <string_view>

#include "Utilities/Amount.h"

namespace ledgeon {

// Markers that stand for the standard XML entities while OFX text passes the XML parser, so that
// an SGML value such as "A & B" survives.
inline constexpr std::string_view kOFXAmpersandMarker = "zXzAmPzXz";
inline constexpr std::string_view kOFXApostropheMarker = "zXzApOszXz";
inline constexpr std::string_view kOFXQuoteMarker = "zXzQuOtzXz";
inline constexpr std::string_view kOFXLessThanMarker = "zXzLtzXz";
inline constexpr std::string_view kOFXGreaterThanMarker = "zXzGtzXz";

// "&amp;", "&apos;", "&quot;", "&lt;", "&gt;" and then every bare "&" become the markers.
std::string replaceXMLEntityReferences(std::string_view text);
// Turns the markers back into "&", "'", "\"", "<" and ">".
std::string restoreStandardXMLEntities(std::string_view text);
// Escapes a user-supplied value for an SGML request: "&" first, then "<" and ">".
std::string reformatForSGML(std::string_view text);

// Reads a number of an XML or OFX value. With OFX rules a "," is the decimal point, whatever the
// user's locale. Decimals give the exact value; otherwise the integer the text starts with. NaN
// when the text is not a number.
Amount numberFromXMLString(std::string_view text, bool useDecimalNumber, bool useOFXRules);

// Replaces every occurrence of `from` in `text` by `to`.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

}  // namespace ledgeon
