#include "Commands/CommandFamilyEntity.h"

#include <stdexcept>
#include <string>

#include "LObjects/LObject.h"

namespace ledgeon {

LObject& requireEntityOfClass(LObject& entity, std::string_view entityClass,
                              std::string_view commandClass) {
  if (!entity.entity().isKindOf(entityClass)) {
    throw std::logic_error(std::string(commandClass) + " works on " + std::string(entityClass) +
                           " objects, not on " + entity.shortDescription());
  }
  return entity;
}

}  // namespace ledgeon
