// Amount text from outside (imports, pasted text, stored values): every parser must either give
// a number that reads back as itself or NaN (zero from the safe constructors), never crash.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Utilities/Amount.h"
#include "Utilities/Log.h"

namespace {

constexpr std::string_view kLocales[] = {"en_US", "de_DE", "fr_FR", "ar_EG", "en_US_POSIX"};

void check(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 64 * 1024) return 0;
  using ledgeon::Amount;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  ledgeon::LogCapture quiet;  // the safe constructors log every unparsable text

  const Amount plain = Amount::fromString(text);
  if (!plain.isNaN()) {
    check(Amount::fromString(plain.stringValue()) == plain);
    check(plain.mantissa() < ledgeon::UInt128{10000000000000000000ULL} * 10000000000000000000ULL);
  }
  const Amount safe = Amount::safeDecimalNumberWithString(text);
  check(!safe.isNaN());
  check(plain.isNaN() ? safe.isZero() : safe == plain);
  check(!Amount::safeDecimalNumberWithValue(text).isNaN());

  const std::string_view locale = kLocales[size % std::size(kLocales)];
  const Amount localized = Amount::fromString(text, locale);
  if (!localized.isNaN()) {
    check(Amount::fromString(localized.descriptionWithLocale(locale), locale) == localized);
  }
  check(!Amount::safeDecimalNumberWithString(text, locale).isNaN());
  return 0;
}
