#include "Documents/InvestmentTransactionType.h"

#include <array>

namespace ledgeon {

namespace {

// The codes are stored: they never change meaning. A bond's buy and sell have codes of their
// own; a split's units are those it added, so that a position's units stay the sum of its
// transactions.
constexpr std::array<InvestmentTransactionType, 22> kTypes = {{
    {1, "Cash", true, 0},
    {2, "Shares In", false, 1},
    {3, "Buy", true, 1},
    {4, "Buy Bond", true, 1},
    {5, "Buy to Close", true, 1},
    {6, "Margin Interest", true, 0},
    {7, "Misc Expense", true, 0},
    {8, "Cap. Gains Long", true, 0},
    {9, "Cap. Gains Short", true, 0},
    {10, "Dividend", true, 0},
    {11, "Interest Income", true, 0},
    {12, "Misc Income", true, 0},
    {13, "Reinvest Long-Term Gain", false, 1},
    {14, "Reinvest Short-Term Gain", false, 1},
    {15, "Reinvest Dividend", false, 1},
    {16, "Reinvest Interest", false, 1},
    {17, "Shares Out", false, -1},
    {18, "Return of Capital", true, 0},
    {19, "Sell", true, -1},
    {20, "Sell Bond", true, -1},
    {21, "Sell to Open", true, -1},
    {23, "Stock Split", false, 1},
}};

}  // namespace

InvestmentTransactionType InvestmentTransactionType::forCode(int64_t code) {
  for (const InvestmentTransactionType& type : kTypes) {
    if (type.code == code) return type;
  }
  return {code, nullptr, true, 0};
}

std::string InvestmentTransactionType::actionName(int64_t code) {
  const InvestmentTransactionType type = forCode(code);
  return type.action ? type.action : "type " + std::to_string(code);
}

}  // namespace ledgeon
