#pragma once

#include <string>

namespace ledgeon::documents_internal {

// The user's time zone (an Olson id) and locale, as ICU sees them: names and dates shown to the
// user are in these.
std::string localTimeZoneIdentifier();
std::string localLocaleIdentifier();

}  // namespace ledgeon::documents_internal
