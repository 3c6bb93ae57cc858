#pragma once

#include <string>

namespace ledgeon::documents_internal {

// A new random (version 4) UUID in upper-case text, as lock ids and document ids are written.
std::string newUUIDString();

}  // namespace ledgeon::documents_internal
