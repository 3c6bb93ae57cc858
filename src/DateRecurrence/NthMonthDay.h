#pragma once

#include <cstdint>
#include <string>

namespace ledgeon {

// A day of a given month of the year (month 1 is January), as yearly rules repeat on.
struct NthMonthDay {
  int64_t dayOfTheMonth = 1;
  int64_t monthNumber = 1;

  friend bool operator==(const NthMonthDay&, const NthMonthDay&) = default;
  // "month/day", as in "4/15".
  std::string description() const;
};

}  // namespace ledgeon
