#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Small text helpers of the LIF reader.
namespace ledgeon::lif {

inline bool startsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// A field line's value: everything after its one-character code.
inline std::string_view value(std::string_view line) {
  return line.empty() ? line : line.substr(1);
}

inline std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

inline bool isBlank(std::string_view text) { return trimmed(text).empty(); }

// A line as quoted in the log: long ones cut, so a megabyte of garbage stays one readable line.
inline std::string shortened(std::string_view text) {
  constexpr size_t kShown = 60;
  if (text.size() <= kShown) return std::string(text);
  size_t cut = kShown;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
  return std::string(text.substr(0, cut)) + "...";
}

inline std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  size_t start = 0;
  for (size_t at = text.find(separator); at != std::string_view::npos;
       at = text.find(separator, start)) {
    parts.push_back(text.substr(start, at - start));
    start = at + 1;
  }
  parts.push_back(text.substr(start));
  return parts;
}

inline std::string withoutQuotes(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c != '"') result += c;
  }
  return result;
}

// Whether a text starts with an integer (after spaces and a sign).
inline bool startsWithInteger(std::string_view text) {
  text = trimmed(text);
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

// The leading integer of a text (after spaces and a sign), 0 when there is none; saturates.
inline int64_t integerValue(std::string_view text) {
  text = trimmed(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int64_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    if (number > (INT64_MAX - 9) / 10) return negative ? INT64_MIN : INT64_MAX;
    number = number * 10 + (c - '0');
  }
  return negative ? -number : number;
}

}  // namespace ledgeon::lif
