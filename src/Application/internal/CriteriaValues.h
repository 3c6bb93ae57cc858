#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Application/CriteriaEvaluator.h"

namespace ledgeon::criteria {

// The kinds of rule value the evaluator tells apart. JSON's true and false are numbers (1, 0).
enum class ValueKind { List, Dictionary, String, Number };

std::optional<ValueKind> kindOf(const CriteriaJSON& value);
inline bool isNumber(const CriteriaJSON& value) { return kindOf(value) == ValueKind::Number; }

// A number's integer value: fractions are cut off, values beyond 64 bits are clamped, true is 1.
int64_t integerValue(const CriteriaJSON& number);
// Whether a number is not zero.
bool truth(const CriteriaJSON& number);
// The integer a text starts with (after white space, with an optional sign), clamped to 64 bits;
// 0 when it starts with no digit.
int64_t integerValueOfText(std::string_view text);

// -1, 0 or 1 as `a` is less than, equal to or greater than `b`.
template <typename T>
int compare(const T& a, const T& b) {
  return a < b ? -1 : (b < a ? 1 : 0);
}

// The range text of a range key's value: the text itself, or a list's items joined with ",";
// nothing for other kinds.
std::optional<std::string> rangeText(const CriteriaJSON& value);

}  // namespace ledgeon::criteria
