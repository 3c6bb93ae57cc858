#include "DataBase/internal/StringMatch.h"

#include <vector>

#include <unicode/unistr.h>

namespace ledgeon::match {

namespace {

std::u32string codePoints(std::string_view text, bool fold) {
  icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
  if (fold) unicode.foldCase();
  std::u32string result(static_cast<size_t>(unicode.countChar32()), U'\0');
  UErrorCode status = U_ZERO_ERROR;
  unicode.toUTF32(reinterpret_cast<UChar32*>(result.data()), static_cast<int32_t>(result.size()),
                  status);
  return result;
}

// Iterative wildcard match with backtracking to the last "*": linear in practice, never
// exponential, whatever the pattern.
bool like(const std::u32string& s, const std::u32string& p) {
  size_t i = 0, j = 0, star = std::u32string::npos, mark = 0;
  while (i < s.size()) {
    if (j < p.size() && (p[j] == U'?' || p[j] == s[i])) {
      ++i;
      ++j;
    } else if (j < p.size() && p[j] == U'*') {
      star = j++;
      mark = i;
    } else if (star != std::u32string::npos) {
      j = star + 1;
      i = ++mark;
    } else {
      return false;
    }
  }
  while (j < p.size() && p[j] == U'*') ++j;
  return j == p.size();
}

}  // namespace

bool matches(Operator op, std::string_view value, std::string_view pattern, bool caseInsensitive) {
  const std::u32string s = codePoints(value, caseInsensitive);
  const std::u32string p = codePoints(pattern, caseInsensitive);
  switch (op) {
    case Operator::Like:
      return like(s, p);
    case Operator::Contains:
      return s.find(p) != std::u32string::npos;
    case Operator::BeginsWith:
      return s.compare(0, p.size(), p) == 0 && s.size() >= p.size();
    case Operator::Equal:
      return s == p;
    case Operator::EndsWith:
      return s.size() >= p.size() && s.compare(s.size() - p.size(), p.size(), p) == 0;
  }
  return false;
}

}  // namespace ledgeon::match
