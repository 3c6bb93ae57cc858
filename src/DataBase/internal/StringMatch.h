#pragma once

#include <string>
#include <string_view>

namespace ledgeon::match {

// The string operators of predicates, shared by the SQL functions and in-memory evaluation so
// that both give the same answer. `caseInsensitive` folds case the Unicode way.
enum class Operator : int { Like = 0, Contains = 1, BeginsWith = 2, EndsWith = 3, Equal = 4 };

// `like` patterns: "*" matches any run of characters, "?" exactly one.
bool matches(Operator op, std::string_view value, std::string_view pattern, bool caseInsensitive);

}  // namespace ledgeon::match
