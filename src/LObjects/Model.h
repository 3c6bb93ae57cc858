#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ledgeon {

// Stored type of an attribute; the codes are part of the entity version hashes.
enum class AttributeType : uint8_t {
  String = 0,
  Integer = 1,  // numbers, booleans and enumeration codes
  Amount = 2,
  Date = 3,
  Dictionary = 4,  // a property list stored as one value
  Binary = 5,
};

enum class PropertyKind : uint8_t { Attribute = 0, ToOne = 1, ToMany = 2 };

struct EntityDescription;

// Hashing for maps keyed by name that are searched with string_views, without making a string.
struct NameHash {
  using is_transparent = void;
  size_t operator()(std::string_view name) const noexcept {
    return std::hash<std::string_view>{}(name);
  }
};
template <typename T>
using NameMap = std::unordered_map<std::string, T, NameHash, std::equal_to<>>;

// One attribute or relationship of an entity, as the model table declares it, with what the
// model derives from it (its slot, its column, its inverse).
struct PropertyDescription {
  std::string name;
  PropertyKind kind = PropertyKind::Attribute;
  AttributeType type = AttributeType::String;
  std::string targetName;
  std::string inverseName;
  bool readOnly = false;

  int index = -1;  // slot in every object of the owner and its subentities
  const EntityDescription* owner = nullptr;
  const EntityDescription* target = nullptr;
  const PropertyDescription* inverse = nullptr;
  std::string column;             // attributes and to-one relationships
  std::string joinTable;          // many-to-many relationships ("" otherwise)
  bool joinSourceIsFirst = true;  // which column of the join table holds this side

  bool isAttribute() const { return kind == PropertyKind::Attribute; }
  bool isToOne() const { return kind == PropertyKind::ToOne; }
  bool isToMany() const { return kind == PropertyKind::ToMany; }
  bool isManyToMany() const { return !joinTable.empty(); }
};

// One entity class of the ledger: its place in the class tree and its properties, inherited
// ones first.
struct EntityDescription {
  std::string name;
  std::string parentName;
  int id = 0;  // the stored discriminator; stable for a model version
  const EntityDescription* parent = nullptr;
  const EntityDescription* root = nullptr;  // the entity whose table holds this one
  std::vector<const PropertyDescription*> properties;
  std::vector<const EntityDescription*> subentities;  // direct
  std::vector<int> hierarchyIds;                      // this entity and every descendant
  std::string versionHash;

  const PropertyDescription* property(std::string_view key) const;
  bool isKindOf(const EntityDescription& other) const;
  bool isKindOf(std::string_view name) const;
  const std::string& tableName() const { return root->name; }

 private:
  friend class Model;
  NameMap<const PropertyDescription*> byName_;
};

// The ledger's object model: every entity, attribute and relationship, built once from the model
// table. Immutable after construction, so safe to share between threads.
class Model final {
 public:
  static const Model& shared();
  static constexpr const char* kVersionName = "Ledgeon 1";

  const EntityDescription* entity(std::string_view name) const;
  const EntityDescription& entity(int id) const { return *entities_.at(static_cast<size_t>(id)); }
  // The entity named, or a std::logic_error naming it.
  const EntityDescription& requireEntity(std::string_view name) const;
  const std::vector<const EntityDescription*>& entities() const { return order_; }
  const std::vector<const EntityDescription*>& roots() const { return roots_; }
  // Many-to-many relationships, one side each (the side that names the join table first).
  const std::vector<const PropertyDescription*>& joinRelationships() const { return joins_; }

  struct EntityDeclaration;
  explicit Model(const std::vector<EntityDeclaration>& declarations);

 private:
  std::deque<PropertyDescription> properties_;
  std::deque<EntityDescription> storage_;
  std::vector<const EntityDescription*> entities_;  // by id
  std::vector<const EntityDescription*> order_;     // table order (parents first)
  std::vector<const EntityDescription*> roots_;
  std::vector<const PropertyDescription*> joins_;
  NameMap<EntityDescription*> byName_;
};

// One row of the model table: an entity, its parent and its own properties.
struct Model::EntityDeclaration {
  std::string name;
  std::string parent;
  std::vector<PropertyDescription> properties;
};

// The model table (ModelTable.cpp).
const std::vector<Model::EntityDeclaration>& ledgerModelTable();

}  // namespace ledgeon
