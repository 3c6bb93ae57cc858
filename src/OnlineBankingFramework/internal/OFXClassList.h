#pragma once

#include <vector>

#include "OnlineBankingFramework/OFXObject.h"

namespace ledgeon {

// Every message class the program defines, for lookups by name.
const std::vector<const OFXClassInfo*>& builtInOFXClasses();

}  // namespace ledgeon
