#include "Documents/internal/LocalTime.h"

#include <memory>

#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

namespace ledgeon::documents_internal {

std::string localTimeZoneIdentifier() {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
  icu::UnicodeString id;
  zone->getID(id);
  std::string result;
  id.toUTF8String(result);
  // ICU names an unknown zone "Etc/Unknown"; GMT is the honest fallback.
  return result.empty() || result == "Etc/Unknown" ? "GMT" : result;
}

std::string localLocaleIdentifier() { return icu::Locale::getDefault().getName(); }

}  // namespace ledgeon::documents_internal
