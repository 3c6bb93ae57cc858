// Date texts from files and downloads: ISO 8601 texts and pattern-formatted dates. Whatever the
// bytes, reading must not crash, and every date read must be a real calendar date that writes
// back to text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Utilities/DateFormatter.h"
#include "Utilities/LDateUtilities.h"

using ledgeon::DateFormatter;
using ledgeon::LDateUtilities;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto date = LDateUtilities::dateFromISO8601String(text)) {
    if (!LDateUtilities::isCalendarDate(*date)) std::abort();
    if (LDateUtilities::dateFromISO8601String(LDateUtilities::ISO8601StringFromDate(*date)) !=
        date) {
      std::abort();
    }
  }
  (void)LDateUtilities::timestampFromISO8601String(text);

  static DateFormatter ofx("yyyyMMddHHmmss.SSS");
  static DateFormatter bank("MM/dd/yy", "en_US_POSIX", "America/New_York");
  static DateFormatter lenient = [] {
    DateFormatter formatter("M/d/yyyy");
    formatter.setLenient(true);
    return formatter;
  }();
  for (DateFormatter* formatter : {&ofx, &bank, &lenient}) {
    if (const auto date = formatter->calendarDateFromString(text)) {
      if (!LDateUtilities::isCalendarDate(*date)) std::abort();
      (void)formatter->stringFromDate(*date);
    }
  }
  return 0;
}
