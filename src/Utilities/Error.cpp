#include "Utilities/Error.h"

#include <fmt/format.h>

namespace ledgeon {

Error Error::make(std::string domain, int64_t code, std::string description) {
  Error error{std::move(domain), code, {}};
  error.userInfo[kLocalizedDescriptionKey] = std::move(description);
  return error;
}

Error Error::userCancelled() {
  return make(kCocoaErrorDomain, kUserCancelledErrorCode, "The operation was cancelled.");
}

std::string Error::localizedDescription() const {
  if (auto it = userInfo.find(kLocalizedDescriptionKey); it != userInfo.end()) return it->second;
  return fmt::format("{} error {}", domain, code);
}

bool Error::isUserCancelled() const {
  return domain == kCocoaErrorDomain && code == kUserCancelledErrorCode;
}

std::string Error::description() const {
  return fmt::format("Error Domain={} Code={} \"{}\"", domain, code, localizedDescription());
}

}  // namespace ledgeon
