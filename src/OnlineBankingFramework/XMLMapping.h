#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "OnlineBankingFramework/OFXObject.h"

namespace ledgeon {

enum class XMLMappingType : uint8_t { Switch, Object, String, Number, Date, Constant };

// One "Mapping" entry of a mapping resource, as written (references not yet resolved).
struct XMLMappingEntry {
  std::string name;
  std::string rootName;
  std::string ref;
  std::string type;
  std::string className;
  std::string format;
  std::string defaultValue;
  bool hasDefault = false;
  bool isList = false;
  std::string xmlPath;
  std::string objectPath;
  std::vector<XMLMappingEntry> children;
  int line = 0;  // where it stands in the resource, for messages
};

namespace xml_mapping_detail {
struct CompiledObject;
}

// A declarative XML-to-object mapping: a resource of "Mapping" entries compiled for one root
// name. Elements that no entry names are skipped. Immutable once built; share it freely.
class XMLMapping final {
 public:
  // Reads a mapping resource and builds the mapping of `rootName`. Throws OFXException on a
  // resource that cannot be read or is inconsistent ("Invalid type: %@", unknown classes or
  // properties).
  static std::shared_ptr<const XMLMapping> fromText(std::string_view resourceText,
                                                    std::string_view rootName,
                                                    std::string_view sourceName);
  // The mapping of `rootName` in a resource file, compiled once per process.
  static std::shared_ptr<const XMLMapping> fromFile(const std::filesystem::path& file,
                                                    std::string_view rootName);

  // Parses `xml` with Expat and builds the object the root mapping describes. Throws
  // OFXException: "XMLParseError" for malformed XML, or the failure of a value
  // ("Passed nil for value input string!").
  std::unique_ptr<OFXObject> unmarshal(std::string_view xml) const;

  // unmarshal for XML that arrives in pieces: feed each piece in order, then finish. Throws as
  // unmarshal does, as soon as a piece shows the failure. The mapping must outlive the reader.
  class Reader final {
   public:
    explicit Reader(const XMLMapping& mapping);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void feed(std::string_view piece);
    std::unique_ptr<OFXObject> finish();

   private:
    struct State;
    std::unique_ptr<State> state_;
  };

  const std::string& rootName() const { return rootName_; }

  XMLMapping(std::string rootName, std::unique_ptr<xml_mapping_detail::CompiledObject> root);
  ~XMLMapping();
  XMLMapping(const XMLMapping&) = delete;
  XMLMapping& operator=(const XMLMapping&) = delete;

 private:
  std::string rootName_;
  std::unique_ptr<xml_mapping_detail::CompiledObject> root_;
};

// Parses the "Mapping" entries of a resource; exposed for tests and tools.
std::vector<XMLMappingEntry> parseXMLMappingResource(std::string_view text,
                                                     std::string_view sourceName);
bool mappingBoolValue(std::string_view text);

}  // namespace ledgeon
