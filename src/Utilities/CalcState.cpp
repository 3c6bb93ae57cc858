#include "Utilities/CalcState.h"

#include <algorithm>
#include <climits>
#include <cstdint>

#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include "Utilities/Error.h"
#include "Utilities/LArithmetic.h"
#include "Utilities/LCurrencyFormatter.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

Error calculatorError(std::string message) {
  return Error::make(kLErrorDomain, 0, std::move(message));
}

// The first code point of a locale symbol: the key that types it.
char32_t firstCodePoint(const std::string& text) {
  if (text.empty()) return 0;
  int32_t offset = 0;
  UChar32 c = 0;
  U8_NEXT(reinterpret_cast<const uint8_t*>(text.data()), offset, static_cast<int32_t>(text.size()),
          c);
  return c < 0 ? 0 : static_cast<char32_t>(c);
}

std::string keyText(char32_t key) {
  std::string text;
  icu::UnicodeString(static_cast<UChar32>(key)).toUTF8String(text);
  return text;
}

std::size_t digitCount(const std::string& entry) {
  return static_cast<std::size_t>(
      std::count_if(entry.begin(), entry.end(), [](char c) { return c >= '0' && c <= '9'; }));
}

}  // namespace

bool CalcState::isOperationCharacter(char32_t character) {
  return character < 0x80 &&
         kOperationCharacters.find(static_cast<char>(character)) != std::string_view::npos;
}

CalcState::CalcState(LCurrencyFormatter& formatter) : formatter_(&formatter) {
  formatter_->setCalcState(this);
}

CalcState::~CalcState() {
  if (autoDecimalPointEnabled_) formatter_->setMaximumFractionDigits(savedMaximumFractionDigits_);
  if (formatter_->calcState() == this) formatter_->setCalcState(nullptr);
}

bool CalcState::setAutoDecimalPointEnabled(bool enabled) {
  enabled = enabled && formatter_->supportsAutomaticDecimalPoint();
  if (enabled == autoDecimalPointEnabled_) return enabled;
  if (enabled) {
    // A field typed in cents shows and keeps cents; the field's own precision comes back after.
    savedMaximumFractionDigits_ = formatter_->maximumFractionDigits();
    formatter_->setMaximumFractionDigits(2);
  } else {
    formatter_->setMaximumFractionDigits(savedMaximumFractionDigits_);
  }
  autoDecimalPointEnabled_ = enabled;
  return enabled;
}

std::string CalcState::currentString() const {
  if (!entry_.empty() || entryNegative_) {
    std::string text = entryNegative_ ? formatter_->minusSign() : std::string();
    for (char c : entry_) {
      if (c == '.') {
        text += formatter_->decimalSeparator();
      } else {
        text += c;
      }
    }
    return text;
  }
  if (hasRunningValue_) return formatter_->editingStringForObjectValue(running_);
  return initialString_;
}

void CalcState::begin(std::string_view initialString) {
  startOver();
  historyItems_.clear();
  initialString_.assign(initialString);
  shouldSelectAll_ = true;
}

void CalcState::startOver() {
  running_ = Amount::zero();
  hasRunningValue_ = false;
  pending_ = '\0';
  entry_.clear();
  entryNegative_ = false;
  didTypeEquals_ = false;
  shouldSelectAll_ = false;
  failure_ = CalculationError::NoError;
}

bool CalcState::startRunningFromInitialValue() {
  const Amount initial = formatter_->amountFromString(initialString_);
  if (initial.isNaN()) return false;
  running_ = initial;
  hasRunningValue_ = true;
  historyItems_.push_back({' ', initial, initial, false});
  return true;
}

Result<void> CalcState::typeKeystrokes(std::string_view keys) {
  if (keys.size() > static_cast<std::size_t>(INT32_MAX)) {
    return calculatorError("Too many keys at once");
  }
  int32_t offset = 0;
  std::size_t position = 0;
  const auto length = static_cast<int32_t>(keys.size());
  while (offset < length) {
    UChar32 c = 0;
    U8_NEXT(reinterpret_cast<const uint8_t*>(keys.data()), offset, length, c);
    ++position;
    if (c < 0) {
      return calculatorError(stringWithFormat("Key %lu is not valid UTF-8 text", position));
    }
    if (auto typed = typeKey(static_cast<char32_t>(c)); !typed) {
      return calculatorError(
          stringWithFormat("Key %lu: %@", position, typed.error().localizedDescription()));
    }
  }
  return {};
}

Result<void> CalcState::typeKey(char32_t key) {
  const auto c = static_cast<UChar32>(key);
  if (u_isdigit(c)) return typeDigit(u_charDigitValue(c));
  if (key == firstCodePoint(formatter_->decimalSeparator())) return typeDecimalSeparator();
  // Spaces, grouping separators and direction marks only lay the keys out.
  if (u_isspace(c) || u_charType(c) == U_FORMAT_CHAR ||
      key == firstCodePoint(formatter_->groupingSeparator())) {
    return {};
  }
  if (key == '-' || key == firstCodePoint(formatter_->minusSign())) return typeMinus();
  switch (key) {
    case '+':
    case '*':
    case '/':
      return typeOperation(static_cast<char>(key));
    case '=':
      return total();
    case '%':
      return typePercent();
    default:
      return calculatorError(
          stringWithFormat("\"%@\" is not a calculator key: type digits, \"%@\" and + - * / = %%",
                           keyText(key), formatter_->decimalSeparator()));
  }
}

void CalcState::startEntry() {
  // The first key of a number after a total, or in a field whose text is all selected, starts a
  // new calculation.
  if (entry_.empty() && !entryNegative_ && pending_ == '\0' &&
      (didTypeEquals_ || shouldSelectAll_)) {
    startOver();
  }
  shouldSelectAll_ = false;
}

Result<void> CalcState::typeDigit(int32_t digit) {
  if (digitCount(entry_) >= static_cast<std::size_t>(Amount::kMaxDigits)) {
    return calculatorError(stringWithFormat("An entry has at most %ld digits",
                                            static_cast<int64_t>(Amount::kMaxDigits)));
  }
  startEntry();
  entry_ += static_cast<char>('0' + digit);
  return {};
}

Result<void> CalcState::typeDecimalSeparator() {
  if (entry_.find('.') != std::string::npos) {
    return calculatorError("An entry has only one decimal separator");
  }
  startEntry();
  entry_ += entry_.empty() ? "0." : ".";
  return {};
}

Result<void> CalcState::typeMinus() {
  const bool numberMustStart =
      entry_.empty() && (pending_ != '\0' || (!hasRunningValue_ && !canContinue()));
  if (!numberMustStart) return typeOperation('-');
  if (entryNegative_) return calculatorError("A number takes only one minus sign");
  startEntry();
  entryNegative_ = true;
  return {};
}

bool CalcState::canContinue() const {
  return hasRunningValue_ || formatter_->amountFromString(initialString_).isNotNaN();
}

Result<void> CalcState::typeOperation(char operation) {
  if (entry_.empty()) {
    if (entryNegative_) return calculatorError("A number must follow the minus sign");
    if (pending_ == '\0' && !hasRunningValue_ && !startRunningFromInitialValue()) {
      return calculatorError(
          stringWithFormat("\"%@\" needs a number before it", std::string(1, operation)));
    }
    // An operation right after another one replaces it.
    pending_ = operation;
  } else {
    commitPendingArithmetic();
    pending_ = operation;
  }
  didTypeEquals_ = false;
  shouldSelectAll_ = false;
  return {};
}

void CalcState::commitPendingArithmetic() {
  if (entry_.empty()) return;
  const bool asTyped = pending_ == '*' || pending_ == '/';
  const Amount operand = entryAmount(asTyped);
  entry_.clear();
  entryNegative_ = false;
  if (!hasRunningValue_ || pending_ == '\0') {
    running_ = operand;
    hasRunningValue_ = true;
    historyItems_.push_back({' ', operand, operand, false});
    return;
  }
  apply(pending_, operand);
  historyItems_.push_back({pending_, operand, operand, false});
  pending_ = '\0';
}

Result<void> CalcState::typePercent() {
  if (entry_.empty()) return calculatorError("\"%\" needs a rate before it");
  const Amount rate = entryAmount(true);
  LArithmetic effective = LArithmetic::decimalWithDecimal(rate);
  if (hasRunningValue_ && (pending_ == '+' || pending_ == '-')) {
    effective.multiplyByDecimal(running_);
  }
  effective.divideByDecimal(Amount::oneHundred());
  entry_.clear();
  entryNegative_ = false;
  if (!hasRunningValue_ || pending_ == '\0') {
    running_ = effective.decimalNumber();
    hasRunningValue_ = true;
    historyItems_.push_back({' ', rate, running_, true});
  } else {
    apply(pending_, effective.decimalNumber());
    historyItems_.push_back({pending_, rate, effective.decimalNumber(), true});
    pending_ = '\0';
  }
  return total();
}

Result<void> CalcState::total() {
  if (entry_.empty() && entryNegative_) {
    return calculatorError("A number must follow the minus sign");
  }
  if (!entry_.empty()) {
    commitPendingArithmetic();
  } else {
    // "5 + =": nothing to add, so the pending operation is dropped.
    pending_ = '\0';
  }
  if (!hasRunningValue_ && !startRunningFromInitialValue()) {
    return calculatorError("\"=\" needs a number before it");
  }
  historyItems_.push_back({'=', running_, running_, false});
  didTypeEquals_ = true;
  shouldSelectAll_ = true;
  return {};
}

Amount CalcState::entryAmount(bool asTyped) const {
  std::string text = entry_;
  if (!text.empty() && text.back() == '.') text.pop_back();
  Amount value = Amount::fromString(text);
  if (!asTyped && autoDecimalPointEnabled_ && entry_.find('.') == std::string::npos) {
    value = Amount::multiplyByPowerOf10(value, -2, RoundingMode::Plain).value;
  }
  return entryNegative_ ? value.decimalNumberByNegating() : value;
}

void CalcState::apply(char operation, const Amount& operand) {
  LArithmetic accumulator = LArithmetic::decimalWithDecimal(running_);
  switch (operation) {
    case '+':
      accumulator.addDecimal(operand);
      break;
    case '-':
      accumulator.subtractDecimal(operand);
      break;
    case '*':
      accumulator.multiplyByDecimal(operand);
      break;
    case '/':
      if (operand.isZero() && failure_ == CalculationError::NoError) {
        failure_ = CalculationError::DivideByZero;
      }
      accumulator.divideByDecimal(operand);
      break;
    default:
      return;
  }
  const Amount result = accumulator.decimalNumber();
  if (result.isNaN() && running_.isNotNaN() && failure_ == CalculationError::NoError) {
    failure_ = CalculationError::Overflow;
  }
  running_ = result;
}

Result<Amount> CalcState::evaluate(std::string_view expression) {
  startOver();
  historyItems_.clear();
  if (auto typed = typeKeystrokes(expression); !typed) return typed.error();
  if (!didTypeEquals_) {
    if (auto totalled = total(); !totalled) return totalled.error();
  }
  switch (failure_) {
    case CalculationError::DivideByZero:
      return calculatorError("The calculation divides by zero");
    case CalculationError::Overflow:
    case CalculationError::Underflow:
      return calculatorError("The result is too large or too small for an amount");
    default:
      return running_;
  }
}

std::string CalcState::numberText(const CalcHistoryItem& item) const {
  std::string number = formatter_->stringForObjectValue(item.operand);
  if (item.percent) number += '%';
  return number;
}

std::vector<std::string> CalcState::tapeLines() const {
  std::vector<std::string> lines;
  lines.reserve(historyItems_.size());
  for (const auto& item : historyItems_) {
    lines.push_back(item.operation == ' '
                        ? numberText(item)
                        : std::string(1, item.operation) + ' ' + numberText(item));
  }
  return lines;
}

}  // namespace ledgeon
