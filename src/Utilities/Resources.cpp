#include "Utilities/Resources.h"

#include <cstdlib>

namespace ledgeon {

std::filesystem::path resourcesDirectory() {
  if (const char* overridden = std::getenv("LEDGEON_RESOURCES_DIR");
      overridden != nullptr && *overridden != '\0') {
    return overridden;
  }
  return LEDGEON_RESOURCES_DIR;
}

std::filesystem::path resourcePath(std::string_view fileName) {
  return resourcesDirectory() / fileName;
}

}  // namespace ledgeon
