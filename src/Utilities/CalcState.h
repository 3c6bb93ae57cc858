#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Utilities/Amount.h"
#include "Utilities/Result.h"

namespace ledgeon {

class LCurrencyFormatter;

// One line of the tape: the operation and the number it was applied with. The opening entry has
// no operation (' '); a total has '=' and the result as its operand; a percentage keeps the rate
// typed (10 for "10 %") in `operand` and what it came to in `effectiveOperand`.
struct CalcHistoryItem {
  char operation = ' ';
  Amount operand;
  Amount effectiveOperand;
  bool percent = false;
  friend bool operator==(const CalcHistoryItem&, const CalcHistoryItem&) = default;
};

// The calculator of one amount field: an adding machine with a tape. Main thread only.
//
// Keys: digits and the locale's decimal separator build the entry (grouping separators and
// spaces are ignored). "+", "-", "*", "/" apply the pending operation to the running value and
// wait for the next entry; typing another operation before any digit replaces the pending one.
// A "-" (or the locale's minus sign) where a number must start negates the entry. "=" totals.
// "%" reads the entry as a rate and totals: "200 + 10 %" adds 10% of 200 (220), "200 - 10 %"
// takes it off (180), "200 * 10 %" and "200 / 10 %" use 0.10 (20 and 2000), and "10 %" alone is
// 0.10. An operation typed first starts from the field's initial value ("+ 5 =" on 100 gives
// 105); after a total a digit starts a new calculation and an operation continues from the
// total. Arithmetic is exact (LArithmetic); only the display rounds, as the formatter does.
//
// Automatic decimal point: when on, an entry typed without a decimal separator is read as cents
// ("1999" is 19.99), except a multiplier, a divisor or a rate, which are read as typed: "1999 * 3"
// is 59.97. While on, the formatter keeps two fraction digits.
class CalcState final {
 public:
  static constexpr std::string_view kOperationCharacters = "+-/*=%";
  static bool isOperationCharacter(char32_t character);

  // Attaches itself to `formatter`, which must outlive it; detaches when destroyed.
  explicit CalcState(LCurrencyFormatter& formatter);
  ~CalcState();
  CalcState(const CalcState&) = delete;
  CalcState& operator=(const CalcState&) = delete;

  LCurrencyFormatter& formatter() const { return *formatter_; }

  bool enabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }
  bool positiveNumbersOnly() const { return positiveNumbersOnly_; }
  void setPositiveNumbersOnly(bool positiveOnly) { positiveNumbersOnly_ = positiveOnly; }
  // The field should select its whole text: the next digit replaces what is shown.
  bool shouldSelectAll() const { return shouldSelectAll_; }
  void setShouldSelectAll(bool selectAll) { shouldSelectAll_ = selectAll; }
  bool didTypeEquals() const { return didTypeEquals_; }
  bool autoDecimalPointEnabled() const { return autoDecimalPointEnabled_; }
  // Turned on only when the formatter supports it; returns whether it is on.
  bool setAutoDecimalPointEnabled(bool enabled);
  unsigned savedMaximumFractionDigits() const { return savedMaximumFractionDigits_; }

  const std::vector<CalcHistoryItem>& historyItems() const { return historyItems_; }
  const std::string& initialString() const { return initialString_; }
  // What the field shows: the entry being typed, else the running value or total.
  std::string currentString() const;

  // Starts a calculation in a field showing `initialString` (empty for a blank field).
  void begin(std::string_view initialString);
  // Types one key. Refused keys leave the state as it was.
  [[nodiscard]] Result<void> typeKey(char32_t key);
  // Types each key of `keys` (UTF-8); stops at the first refused key and names its position.
  [[nodiscard]] Result<void> typeKeystrokes(std::string_view keys);
  // Applies the pending operation to the running value with the entry typed so far.
  void commitPendingArithmetic();

  // The running value (the total after "="); NaN after a division by zero.
  Amount value() const { return running_; }
  bool hasValue() const { return hasRunningValue_; }
  // What went wrong in the arithmetic since the calculation started: division by zero,
  // overflow; NoError otherwise. LArithmetic has logged it.
  CalculationError failure() const { return failure_; }
  char pendingOperation() const { return pending_; }

  // Works out `expression` from a fresh start, totalling at the end when it does not.
  [[nodiscard]] Result<Amount> evaluate(std::string_view expression);

  // The tape as text, one line per history item, numbers shown by the formatter:
  // "19.99", "* 3.00", "+ 4.50", "= 64.47"; a rate shows as "+ 10.00%".
  std::vector<std::string> tapeLines() const;
  // The number of one tape line as the formatter shows it, with "%" after a rate.
  std::string numberText(const CalcHistoryItem& item) const;

 private:
  void startEntry();
  Result<void> typeDigit(int32_t digit);
  Result<void> typeDecimalSeparator();
  Result<void> typeMinus();
  Result<void> typeOperation(char operation);
  Result<void> typePercent();
  Result<void> total();
  void startOver();
  bool startRunningFromInitialValue();
  bool canContinue() const;
  Amount entryAmount(bool asTyped) const;
  void apply(char operation, const Amount& operand);

  LCurrencyFormatter* formatter_;
  bool enabled_ = true;
  bool positiveNumbersOnly_ = false;
  bool shouldSelectAll_ = false;
  bool didTypeEquals_ = false;
  bool autoDecimalPointEnabled_ = false;
  unsigned savedMaximumFractionDigits_ = 0;
  std::vector<CalcHistoryItem> historyItems_;
  std::string initialString_;

  Amount running_;
  bool hasRunningValue_ = false;
  char pending_ = '\0';
  // The entry being typed, locale-free: digits, at most one '.', no sign.
  std::string entry_;
  bool entryNegative_ = false;
  CalculationError failure_ = CalculationError::NoError;
};

}  // namespace ledgeon
