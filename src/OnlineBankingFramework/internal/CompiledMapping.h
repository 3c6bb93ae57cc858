#pragma once

#include <memory>
#include <string>
#include <vector>

#include "OnlineBankingFramework/OFXObject.h"
#include "OnlineBankingFramework/XMLMapping.h"

// The compiled form of a mapping: for each object a tree of element names whose nodes carry the
// fields to fill. Private to the mapping layer.
namespace ledgeon::xml_mapping_detail {

struct CompiledObject;

struct Field {
  XMLMappingType type = XMLMappingType::String;
  std::string label;  // xmlPath, for messages
  std::string format;
  std::string defaultValue;
  bool hasDefault = false;
  const OFXPropertyDescriptor* property = nullptr;  // null: the value has no target
  int defaultIndex = -1;                            // position among the object's defaults
  std::shared_ptr<CompiledObject> object;           // Object with a class
  std::vector<std::pair<std::string, std::shared_ptr<CompiledObject>>> cases;  // Switch
};

struct PathNode {
  std::vector<std::pair<std::string, std::unique_ptr<PathNode>>> children;
  std::vector<Field> fields;

  const PathNode* child(std::string_view tag) const {
    for (const auto& [name, node] : children) {
      if (name == tag) return node.get();
    }
    return nullptr;
  }
};

struct CompiledObject {
  const OFXClassInfo* classInfo = nullptr;
  std::string label;
  PathNode root;
  std::vector<Field> constants;        // set when the object is made
  std::vector<Field> defaultedFields;  // copies, by defaultIndex
};

}  // namespace ledgeon::xml_mapping_detail
