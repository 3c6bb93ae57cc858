#include "OnlineBankingFramework/OFXText.h"

#include <cctype>
#include <cstdint>
#include <utility>

namespace ledgeon {

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string out;
  out.reserve(text.size());
  size_t position = 0;
  for (;;) {
    const size_t found = text.find(from, position);
    if (found == std::string_view::npos) break;
    out.append(text.substr(position, found - position));
    out.append(to);
    position = found + from.size();
  }
  out.append(text.substr(position));
  return out;
}

std::string replaceXMLEntityReferences(std::string_view text) {
  static constexpr struct {
    std::string_view entity;
    std::string_view marker;
  } kEntities[] = {{"&amp;", kOFXAmpersandMarker},
                   {"&apos;", kOFXApostropheMarker},
                   {"&quot;", kOFXQuoteMarker},
                   {"&lt;", kOFXLessThanMarker},
                   {"&gt;", kOFXGreaterThanMarker}};
  if (text.find('&') == std::string_view::npos) return std::string(text);
  std::string out;
  out.reserve(text.size() + 64);
  size_t position = 0;
  while (position < text.size()) {
    const size_t amp = text.find('&', position);
    if (amp == std::string_view::npos) break;
    out.append(text.substr(position, amp - position));
    std::string_view marker = kOFXAmpersandMarker;
    size_t consumed = 1;
    for (const auto& e : kEntities) {
      if (text.substr(amp, e.entity.size()) == e.entity) {
        marker = e.marker;
        consumed = e.entity.size();
        break;
      }
    }
    out.append(marker);
    position = amp + consumed;
  }
  if (position < text.size()) out.append(text.substr(position));
  return out;
}

std::string restoreStandardXMLEntities(std::string_view text) {
  static constexpr std::pair<std::string_view, std::string_view> kMarkers[] = {
      {kOFXAmpersandMarker, "&"},
      {kOFXApostropheMarker, "'"},
      {kOFXQuoteMarker, "\""},
      {kOFXLessThanMarker, "<"},
      {kOFXGreaterThanMarker, ">"}};
  std::string out(text);
  if (text.find("zXz") == std::string_view::npos) return out;
  // One marker after the other, each over the previous one's result: markers can overlap.
  for (const auto& [marker, character] : kMarkers) {
    if (out.find(marker) != std::string::npos) out = replaceAll(out, marker, character);
  }
  return out;
}

std::string reformatForSGML(std::string_view text) {
  std::string out = replaceAll(text, "&", "&amp;");
  out = replaceAll(out, "<", "&lt;");
  return replaceAll(out, ">", "&gt;");
}

Amount numberFromXMLString(std::string_view text, bool useDecimalNumber, bool useOFXRules) {
  std::string value(text);
  if (useOFXRules) {
    for (char& c : value) {
      if (c == ',') c = '.';
    }
  }
  if (useDecimalNumber) return Amount::fromString(value);
  size_t i = 0;
  while (i < value.size() && std::isspace(static_cast<unsigned char>(value[i]))) ++i;
  bool negative = false;
  if (i < value.size() && (value[i] == '-' || value[i] == '+')) negative = value[i++] == '-';
  const size_t firstDigit = i;
  int64_t result = 0;
  while (i < value.size() && std::isdigit(static_cast<unsigned char>(value[i]))) {
    if (result > (INT64_MAX - 9) / 10) return Amount::notANumber();
    result = result * 10 + (value[i++] - '0');
  }
  if (i == firstDigit) return Amount::notANumber();
  return Amount::fromInt64(negative ? -result : result);
}

}  // namespace ledgeon
