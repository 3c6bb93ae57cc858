// Typed and pasted amount text: the keystroke checks, the locale parse and the calculator must
// take any bytes without crashing, and a parsed amount must never be NaN-but-accepted.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "Utilities/CalcState.h"
#include "Utilities/LCurrencyFormatter.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > 64 * 1024) return 0;
  static const char* const kLocales[] = {"en_US", "de_DE", "fr_FR", "sv_SE"};
  const std::string_view locale = kLocales[data[0] % 4];
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);

  ledgeon::LCurrencyFormatter formatter(locale);
  std::string partial = text;
  ledgeon::TextRange selection{partial.size(), 0};
  (void)formatter.isPartialStringValid(partial, selection, "", {0, 0});
  std::optional<ledgeon::Amount> value;
  if (formatter.getObjectValue(value, text) && value && value->isNaN()) std::abort();
  (void)ledgeon::LCurrencyFormatter::numberFromFormattedString(text, locale);

  ledgeon::CalcState calc(formatter);
  calc.begin("");
  calc.setAutoDecimalPointEnabled((data[0] & 4) != 0);
  (void)calc.typeKeystrokes(text);
  (void)calc.tapeLines();
  (void)calc.currentString();
  return 0;
}
