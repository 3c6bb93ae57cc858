#include "ImportExport/LIFFields.h"

#include <array>
#include <unordered_map>
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

// Built by appending: std::string::replace trips GCC 12's -Wrestrict false positive at -O3.
std::string replacingAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  result.reserve(text.size());
  for (size_t at = text.find(from); at != std::string_view::npos; at = text.find(from)) {
    result.append(text.substr(0, at)).append(to);
    text.remove_prefix(at + from.size());
  }
  return result.append(text);
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// Writers pad days and months with spaces ("1/ 2/03") where the strict date parser wants two
// digits: spaces go, and a one-digit month or day gets its leading zero.
std::string normalisedDate(std::string_view text) {
  const std::string compact = withoutCharacters(text, " \t");
  std::string result;
  result.reserve(compact.size() + 2);
  size_t pieceStart = 0;
  for (int piece = 0; piece < 2; ++piece) {
    const size_t slash = compact.find('/', pieceStart);
    if (slash == std::string::npos) break;
    if (slash - pieceStart == 1) result += '0';
    result.append(compact, pieceStart, slash + 1 - pieceStart);
    pieceStart = slash + 1;
  }
  return result.append(compact, pieceStart, std::string::npos);
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
  // A file repeats the same few thousand dates over and over, and reading a date through ICU costs
  // far more than looking it up.
  static std::unordered_map<std::string, std::optional<Date>> seen;
  constexpr size_t kRemembered = 20000;
  std::string key(text);
  if (const auto found = seen.find(key); found != seen.end()) return found->second;
  std::string slashed = key;
  for (char& c : slashed) {
    if (c == '\'') c = '/';
  }
  const auto date = formatter.calendarDateFromString(normalisedDate(slashed));
  if (seen.size() >= kRemembered) seen.clear();
  seen.emplace(std::move(key), date);
  return date;
}

std::optional<Date> LIFFields::priceDate(std::string_view text) {
  static const DateFormatter formatter("MM/dd/yyyy", "en_US_POSIX", "GMT");
  std::string cleaned = withoutCharacters(text, "\"");
  cleaned = replacingAll(cleaned, "'", "/20");
  cleaned = replacingAll(cleaned, "20 ", "200");
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
