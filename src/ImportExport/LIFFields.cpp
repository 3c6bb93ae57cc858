#include "ImportExport/LIFFields.h"

#include <array>
#include <utility>

#include "Utilities/DateFormatter.h"

namespace ledgeon {
namespace {

bool startsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

std::string withoutCharacters(std::string_view text, std::string_view unwanted) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (unwanted.find(c) == std::string_view::npos) result += c;
  }
  return result;
}

std::string replacingAll(std::string text, std::string_view from, std::string_view to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// Writers pad days and months with spaces ("1/ 2/03") where the strict date parser wants two
// digits: spaces go, and a one-digit month or day gets its leading zero.
std::string normalisedDate(std::string_view text) {
  std::string digits = withoutCharacters(text, " \t");
  const size_t firstSlash = digits.find('/');
  if (firstSlash == 1) digits.insert(0, "0");
  const size_t first = digits.find('/');
  const size_t second = first == std::string::npos ? first : digits.find('/', first + 1);
  if (second != std::string::npos && second == first + 2) digits.insert(first + 1, "0");
  return digits;
}

// The action table: prefix tests in this order, first match wins.
constexpr std::array<std::pair<std::string_view, int>, 29> kActions = {{
    {"Buy to Close", 5}, {"CvrShrt", 5},
    {"Buy", 3},          {"Sell to Open", 21},
    {"ShtSell", 21},     {"Sell", 19},
    {"ShrsIn", 2},       {"ShrsOut", 17},
    {"Div", 10},         {"ReinvDiv", 15},
    {"Cash", 1},         {"MiscInc", 12},
    {"XIn", 1},          {"XOut", 1},
    {"ReinvInt", 16},    {"ReinvSh", 14},
    {"ReinvLg", 13},     {"Split", 23},
    {"StkSplit", 23},    {"Cap. Gains Long", 8},
    {"CGLong", 8},       {"Cap. Gains Short", 9},
    {"CGShort", 9},      {"Cap. Distribution", 18},
    {"RtrnCap", 18},     {"Interest Income", 11},
    {"IntInc", 11},      {"MargInt", 6},
    {"MiscExp", 7},
}};

}  // namespace

Amount LIFFields::amount(std::string_view text) {
  return Amount::fromString(trimmed(withoutCharacters(text, ",")));
}

Amount LIFFields::balance(std::string_view text) {
  std::string cleaned = withoutCharacters(text, "$,)");
  for (char& c : cleaned) {
    if (c == '(') c = '-';
  }
  return Amount::fromString(trimmed(cleaned));
}

std::optional<Date> LIFFields::transactionDate(std::string_view text) {
  static const DateFormatter formatter("MM/dd/yy", "en_US_POSIX", "GMT");
  std::string slashed(text);
  for (char& c : slashed) {
    if (c == '\'') c = '/';
  }
  return formatter.calendarDateFromString(normalisedDate(slashed));
}

std::optional<Date> LIFFields::priceDate(std::string_view text) {
  static const DateFormatter formatter("MM/dd/yyyy", "en_US_POSIX", "GMT");
  std::string cleaned = withoutCharacters(text, "\"");
  cleaned = replacingAll(std::move(cleaned), "'", "/20");
  cleaned = replacingAll(std::move(cleaned), "20 ", "200");
  return formatter.calendarDateFromString(normalisedDate(cleaned));
}

int LIFFields::reconcileStatus(std::string_view text) {
  if (startsWith(text, "X") || startsWith(text, "R")) return 2;
  if (startsWith(text, "*") || startsWith(text, "c")) return 1;
  return 0;
}

std::optional<std::string> LIFFields::accountType(std::string_view text) {
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 9> kTypes = {{
      {"Bank", "CHECKING"},
      {"CCard", "CREDITCARD"},
      {"Cash", "CASH"},
      {"Port", "BROKERAGENORMAL"},
      {"Invst", "BROKERAGENORMAL"},
      {"401(k)/403(b)", "DEFERREDCOMPRETIREMENT401K"},
      {"Mutual", "BROKERAGENORMAL"},
      {"Oth A", "ASSET"},
      {"Oth L", "LIABILITY"},
  }};
  for (const auto& [prefix, type] : kTypes) {
    if (startsWith(text, prefix)) return std::string(type);
  }
  return std::nullopt;
}

int LIFFields::securityType(std::string_view text) {
  if (startsWith(text, "Stock")) return 7;
  if (startsWith(text, "Mutual Fund")) return 4;
  if (startsWith(text, "Bond")) return 2;
  if (startsWith(text, "Market Index")) return 3;
  if (startsWith(text, "CD")) return 1;
  return 6;
}

int LIFFields::investmentType(std::string_view action) {
  for (const auto& [prefix, code] : kActions) {
    if (startsWith(action, prefix)) return code;
  }
  return 0;
}

LIFFields::CategoryParts LIFFields::categoryParts(std::string_view text) {
  CategoryParts parts;
  const size_t slash = text.find('/');
  parts.category = std::string(text.substr(0, slash));
  if (slash != std::string_view::npos) {
    const std::string_view rest = text.substr(slash + 1);
    parts.tag = std::string(rest.substr(0, rest.find('/')));
  }
  return parts;
}

std::optional<std::string> LIFFields::bracketedName(std::string_view category) {
  const size_t open = category.find('[');
  if (open == std::string_view::npos) return std::nullopt;
  const std::string_view rest = category.substr(open + 1);
  return std::string(rest.substr(0, rest.find(']')));
}

}  // namespace ledgeon
