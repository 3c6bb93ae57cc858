#pragma once

#include <cstdint>
#include <string>

namespace ledgeon {

// What an investment transaction's `type` code does: the action's name, whether the account's
// cash moves (a reinvested dividend or shares moved in from elsewhere move none), and whether
// units come in or go out.
struct InvestmentTransactionType {
  int64_t code;
  const char* action;
  bool movesCash;
  int unitsDirection;  // +1 adds units, -1 removes them, 0 leaves them

  // The type of `code`; for a code no action uses, one that moves cash and no units.
  static InvestmentTransactionType forCode(int64_t code);
  // The action's name, or "type N" for a code no action uses.
  static std::string actionName(int64_t code);
};

}  // namespace ledgeon
