#pragma once

#include <string_view>

namespace ledgeon {

class LObject;

// The entity a family command works on must be of the command's entity class: handing a
// transaction to DeleteAccountCommand is a programming error (std::logic_error naming both).
LObject& requireEntityOfClass(LObject& entity, std::string_view entityClass,
                              std::string_view commandClass);

}  // namespace ledgeon
