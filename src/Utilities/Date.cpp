#include "Utilities/Date.h"

#include <cmath>
#include <ctime>

#include <fmt/format.h>

namespace ledgeon {

std::string Date::description() const {
  const double unix = std::floor(unixTime());
  if (!std::isfinite(unix)) return "(invalid date)";
  const auto seconds = static_cast<std::time_t>(unix);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02} +0000", parts.tm_year + 1900,
                     parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

}  // namespace ledgeon
