#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "LObjects/Value.h"

namespace ledgeon {

class CreateLObjectCommand;
class DeleteLObjectCommand;
class LCommandDocument;
class LObject;
class SetLObjectPropertyCommand;

// The generic family a command class belongs to; Other for the rest.
enum class LCommandFamily { Create, Delete, Set, Edit, Duplicate, Other };

// One command class of the ledger: its name, the class it derives from and the entity class it
// works on ("" for commands not tied to one).
struct LCommandClassInfo {
  std::string_view className;
  std::string_view baseClassName;
  std::string_view entityClass;
  LCommandFamily family;
};

// The table of the ledger's command classes, and the commands an entity class is created,
// deleted, edited and has its properties set with. Immutable; safe from any thread.
class LCommandClasses final {
 public:
  static const std::vector<LCommandClassInfo>& all();
  static const LCommandClassInfo* info(std::string_view className);
  // Whether `className` is `baseName` or derives from it, by the table.
  static bool isKindOfClass(std::string_view className, std::string_view baseName);

  // The class of the family for the entity class or, failing that, its nearest parent entity
  // ("CategoryTag" -> "CreateCategoryTagCommand", "Checking" -> ""). Empty when none.
  static std::string createCommandObjectClass(std::string_view entityClass);
  static std::string deleteCommandObjectClass(std::string_view entityClass);
  static std::string setCommandObjectClass(std::string_view entityClass);
  // The Edit command of the entity class, or else its property-setting command.
  static std::string editCommandObjectClass(std::string_view entityClass);

  // A command of the named class; null when the class is not of that family or is unknown.
  static std::shared_ptr<CreateLObjectCommand> makeCreateCommand(
      std::string_view className, EditDict properties,
      std::shared_ptr<LCommandDocument> document = nullptr);
  static std::shared_ptr<DeleteLObjectCommand> makeDeleteCommand(
      std::string_view className, LObject& entity,
      std::shared_ptr<LCommandDocument> document = nullptr);
  static std::shared_ptr<SetLObjectPropertyCommand> makeSetCommand(
      std::string_view className, LObject& entity, EditDict dictionary,
      std::shared_ptr<LCommandDocument> document = nullptr);

  // The family's command for an entity class or an entity, as the lookups above choose it.
  static std::shared_ptr<CreateLObjectCommand> createCommandForEntity(
      std::string_view entityClass, EditDict properties,
      std::shared_ptr<LCommandDocument> document = nullptr);
  static std::shared_ptr<DeleteLObjectCommand> deleteCommandForEntity(
      LObject& entity, std::shared_ptr<LCommandDocument> document = nullptr);
  static std::shared_ptr<SetLObjectPropertyCommand> setCommandForEntity(
      LObject& entity, EditDict dictionary, std::shared_ptr<LCommandDocument> document = nullptr);
};

}  // namespace ledgeon
