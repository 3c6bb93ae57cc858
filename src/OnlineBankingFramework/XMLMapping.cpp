#include "OnlineBankingFramework/XMLMapping.h"

#include <fstream>
#include <map>
#include <mutex>
#include <sstream>

#include <expat.h>

#include "OnlineBankingFramework/OFXException.h"
#include "OnlineBankingFramework/internal/CompiledMapping.h"
#include "Utilities/FileContents.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

using xml_mapping_detail::CompiledObject;
using xml_mapping_detail::Field;
using xml_mapping_detail::PathNode;

namespace {

constexpr int kMaxReferenceDepth = 32;

// Collects "Mapping" elements into nested entries.
struct ResourceReader {
  std::vector<XMLMappingEntry> topLevel;
  std::vector<XMLMappingEntry*> open;  // null for elements that are not "Mapping"
  XML_Parser parser = nullptr;

  static void XMLCALL start(void* data, const XML_Char* name, const XML_Char** attributes) {
    auto* self = static_cast<ResourceReader*>(data);
    if (std::string_view(name) != "Mapping") {
      self->open.push_back(nullptr);
      return;
    }
    XMLMappingEntry entry;
    entry.line = static_cast<int>(XML_GetCurrentLineNumber(self->parser));
    for (size_t i = 0; attributes[i] != nullptr; i += 2) {
      const std::string_view key = attributes[i];
      std::string value = attributes[i + 1];
      if (key == "name")
        entry.name = std::move(value);
      else if (key == "rootName")
        entry.rootName = std::move(value);
      else if (key == "ref")
        entry.ref = std::move(value);
      else if (key == "type")
        entry.type = std::move(value);
      else if (key == "class")
        entry.className = std::move(value);
      else if (key == "format")
        entry.format = std::move(value);
      else if (key == "default") {
        entry.defaultValue = std::move(value);
        entry.hasDefault = true;
      } else if (key == "isList")
        entry.isList = mappingBoolValue(value);
      else if (key == "xmlPath")
        entry.xmlPath = std::move(value);
      else if (key == "objectPath")
        entry.objectPath = std::move(value);
    }
    XMLMappingEntry* parent = nullptr;
    for (auto it = self->open.rbegin(); it != self->open.rend() && parent == nullptr; ++it) {
      parent = *it;
    }
    auto& siblings = parent ? parent->children : self->topLevel;
    siblings.push_back(std::move(entry));
    self->open.push_back(&siblings.back());
  }

  static void XMLCALL end(void* data, const XML_Char*) {
    static_cast<ResourceReader*>(data)->open.pop_back();
  }
};

std::vector<std::string> splitPath(std::string_view path) {
  std::vector<std::string> segments;
  size_t position = 0;
  while (position <= path.size() && !path.empty()) {
    const size_t slash = path.find('/', position);
    const size_t end = slash == std::string_view::npos ? path.size() : slash;
    if (end > position) segments.emplace_back(path.substr(position, end - position));
    if (slash == std::string_view::npos) break;
    position = slash + 1;
  }
  return segments;
}

XMLMappingType parseType(const XMLMappingEntry& entry) {
  static const std::map<std::string, XMLMappingType, std::less<>> kTypes = {
      {"switch", XMLMappingType::Switch}, {"object", XMLMappingType::Object},
      {"string", XMLMappingType::String}, {"number", XMLMappingType::Number},
      {"date", XMLMappingType::Date},     {"constant", XMLMappingType::Constant}};
  auto it = kTypes.find(entry.type);
  if (it == kTypes.end()) {
    throw OFXException("InvalidMapping", stringWithFormat("Invalid type: %@", entry.type));
  }
  return it->second;
}

class Compiler {
 public:
  Compiler(const std::vector<XMLMappingEntry>& entries, std::string sourceName)
      : sourceName_(std::move(sourceName)) {
    for (const auto& entry : entries) collectNames(entry);
  }

  std::unique_ptr<CompiledObject> compileRoot(std::string_view rootName,
                                              const std::vector<XMLMappingEntry>& entries) {
    for (const auto& entry : entries) {
      if (entry.rootName == rootName) {
        const XMLMappingEntry resolved = resolve(entry, 0);
        auto root = std::make_unique<CompiledObject>();
        fillObject(*root, resolved, classFor(resolved));
        return root;
      }
    }
    fail(nullptr, stringWithFormat("no mapping has rootName %@", rootName));
  }

 private:
  void collectNames(const XMLMappingEntry& entry) {
    if (!entry.name.empty()) named_[entry.name] = &entry;
    for (const auto& child : entry.children) collectNames(child);
  }

  [[noreturn]] void fail(const XMLMappingEntry* entry, const std::string& reason) const {
    throw OFXException("InvalidMapping",
                       entry ? stringWithFormat("%@:%ld: %@", sourceName_, entry->line, reason)
                             : stringWithFormat("%@: %@", sourceName_, reason));
  }

  // The entry with its reference filled in: the referenced entry's attributes and children, with
  // this entry's own attributes winning and its own children added.
  XMLMappingEntry resolve(const XMLMappingEntry& entry, int depth) const {
    if (entry.ref.empty()) return entry;
    if (depth > kMaxReferenceDepth) fail(&entry, "references nest too deeply: " + entry.ref);
    auto it = named_.find(entry.ref);
    if (it == named_.end()) fail(&entry, "unknown ref " + entry.ref);
    XMLMappingEntry merged = resolve(*it->second, depth + 1);
    auto take = [](std::string& into, const std::string& own) {
      if (!own.empty()) into = own;
    };
    take(merged.type, entry.type);
    take(merged.className, entry.className);
    take(merged.format, entry.format);
    take(merged.xmlPath, entry.xmlPath);
    take(merged.objectPath, entry.objectPath);
    if (entry.hasDefault) {
      merged.defaultValue = entry.defaultValue;
      merged.hasDefault = true;
    }
    merged.isList = merged.isList || entry.isList;
    merged.line = entry.line;
    for (const auto& child : entry.children) merged.children.push_back(child);
    return merged;
  }

  const OFXClassInfo* classFor(const XMLMappingEntry& entry) const {
    const OFXClassInfo* info = OFXObject::classNamed(entry.className);
    if (info == nullptr) fail(&entry, "unknown class " + entry.className);
    return info;
  }

  void fillObject(CompiledObject& object, const XMLMappingEntry& entry, const OFXClassInfo* info) {
    object.classInfo = info;
    object.label = entry.xmlPath.empty() ? entry.rootName : entry.xmlPath;
    for (const auto& child : entry.children) addField(object, object.root, child, info);
  }

  const OFXPropertyDescriptor* propertyFor(const XMLMappingEntry& entry, const OFXClassInfo* info,
                                           bool wantsObject) const {
    const OFXPropertyDescriptor* property = info->property(entry.objectPath);
    if (property == nullptr) {
      fail(&entry, stringWithFormat("%@ has no property %@", info->name, entry.objectPath));
    }
    const bool isObject =
        property->kind == OFXPropertyKind::Object || property->kind == OFXPropertyKind::List;
    if (isObject != wantsObject ||
        (entry.isList != (property->kind == OFXPropertyKind::List) && isObject)) {
      fail(&entry, stringWithFormat("property %@ of %@ does not fit this mapping", entry.objectPath,
                                    info->name));
    }
    return property;
  }

  std::shared_ptr<CompiledObject> compileObject(const XMLMappingEntry& entry) {
    auto object = std::make_shared<CompiledObject>();
    fillObject(*object, entry, classFor(entry));
    return object;
  }

  void addField(CompiledObject& object, PathNode& base, const XMLMappingEntry& raw,
                const OFXClassInfo* info) {
    const XMLMappingEntry entry = resolve(raw, 0);
    Field field;
    field.type = parseType(entry);
    field.label = entry.xmlPath;
    field.format = entry.format;
    field.defaultValue = entry.defaultValue;
    field.hasDefault = entry.hasDefault;
    PathNode* node = &base;
    for (const auto& segment : splitPath(entry.xmlPath)) {
      PathNode* next = nullptr;
      for (auto& [name, child] : node->children) {
        if (name == segment) next = child.get();
      }
      if (next == nullptr) {
        node->children.emplace_back(segment, std::make_unique<PathNode>());
        next = node->children.back().second.get();
      }
      node = next;
    }
    switch (field.type) {
      case XMLMappingType::Object:
        if (entry.className.empty()) {
          // No class of its own: the aggregate's fields belong to the enclosing object.
          for (const auto& child : entry.children) addField(object, *node, child, info);
          return;
        }
        field.property = propertyFor(entry, info, true);
        field.object = compileObject(entry);
        break;
      case XMLMappingType::Switch:
        field.property = propertyFor(entry, info, true);
        for (const auto& rawCase : entry.children) {
          const XMLMappingEntry oneCase = resolve(rawCase, 0);
          if (parseType(oneCase) != XMLMappingType::Object || oneCase.className.empty()) {
            fail(&oneCase, "a switch case must be an object mapping with a class");
          }
          field.cases.emplace_back(oneCase.xmlPath, compileObject(oneCase));
        }
        break;
      case XMLMappingType::Constant:
        field.property = propertyFor(entry, info, false);
        if (entry.xmlPath.empty()) {
          object.constants.push_back(field);
          return;
        }
        break;
      case XMLMappingType::String:
      case XMLMappingType::Number:
      case XMLMappingType::Date:
        field.property = propertyFor(entry, info, false);
        break;
    }
    // A constant's "default" is its value, not a stand-in for a missing element.
    if (field.hasDefault && field.type != XMLMappingType::Constant) {
      field.defaultIndex = static_cast<int>(object.defaultedFields.size());
      object.defaultedFields.push_back(field);
    }
    node->fields.push_back(std::move(field));
  }

  std::string sourceName_;
  std::map<std::string, const XMLMappingEntry*, std::less<>> named_;
};

}  // namespace

bool mappingBoolValue(std::string_view text) { return text == "YES" || text == "true"; }

std::vector<XMLMappingEntry> parseXMLMappingResource(std::string_view text,
                                                     std::string_view sourceName) {
  ResourceReader reader;
  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate("UTF-8"),
                                                                      &XML_ParserFree);
  reader.parser = parser.get();
  XML_SetUserData(parser.get(), &reader);
  XML_SetElementHandler(parser.get(), &ResourceReader::start, &ResourceReader::end);
  if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) ==
      XML_STATUS_ERROR) {
    throw OFXException("XMLParseError",
                       stringWithFormat("%@:%ld: %@", sourceName,
                                        static_cast<long>(XML_GetCurrentLineNumber(parser.get())),
                                        XML_ErrorString(XML_GetErrorCode(parser.get()))));
  }
  return std::move(reader.topLevel);
}

XMLMapping::XMLMapping(std::string rootName, std::unique_ptr<CompiledObject> root)
    : rootName_(std::move(rootName)), root_(std::move(root)) {}

XMLMapping::~XMLMapping() = default;

std::shared_ptr<const XMLMapping> XMLMapping::fromText(std::string_view resourceText,
                                                       std::string_view rootName,
                                                       std::string_view sourceName) {
  const auto entries = parseXMLMappingResource(resourceText, sourceName);
  Compiler compiler(entries, std::string(sourceName));
  return std::make_shared<XMLMapping>(std::string(rootName),
                                      compiler.compileRoot(rootName, entries));
}

std::shared_ptr<const XMLMapping> XMLMapping::fromFile(const std::filesystem::path& file,
                                                       std::string_view rootName) {
  static std::mutex mutex;
  static std::map<std::string, std::shared_ptr<const XMLMapping>> cache;
  const std::string key = file.string() + "#" + std::string(rootName);
  std::lock_guard lock(mutex);
  if (auto it = cache.find(key); it != cache.end()) return it->second;
  const auto text = readFileContents(file);
  if (!text) {
    throw OFXException("InvalidMapping",
                       stringWithFormat("%@: the mapping resource cannot be read", file.string()));
  }
  auto mapping = fromText(*text, rootName, file.filename().string());
  cache[key] = mapping;
  return mapping;
}

}  // namespace ledgeon
