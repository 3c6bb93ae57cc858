#include "LObjects/Model.h"

#include <cstdio>
#include <stdexcept>

namespace ledgeon {

namespace {

[[noreturn]] void modelError(const std::string& text) {
  throw std::logic_error("ledger model: " + text);
}

std::string hashText(const std::string& text) {
  uint64_t hash = 1469598103934665603ULL;  // FNV-1a
  for (const char c : text) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 1099511628211ULL;
  }
  char buffer[17];
  std::snprintf(buffer, sizeof buffer, "%016llx", static_cast<unsigned long long>(hash));
  return buffer;
}

std::string versionHashOf(const EntityDescription& entity) {
  std::string text = entity.name + "|" + entity.parentName + "|";
  for (const PropertyDescription* p : entity.properties) {
    text += p->name + ":" + std::to_string(static_cast<int>(p->kind)) + ":" +
            std::to_string(static_cast<int>(p->type)) + ":" + p->targetName + ":" + p->inverseName +
            ";";
  }
  return hashText(text);
}

}  // namespace

const PropertyDescription* EntityDescription::property(std::string_view key) const {
  const auto it = byName_.find(key);
  return it == byName_.end() ? nullptr : it->second;
}

bool EntityDescription::isKindOf(const EntityDescription& other) const {
  for (const EntityDescription* e = this; e; e = e->parent) {
    if (e == &other) return true;
  }
  return false;
}

bool EntityDescription::isKindOf(std::string_view otherName) const {
  for (const EntityDescription* e = this; e; e = e->parent) {
    if (e->name == otherName) return true;
  }
  return false;
}

const Model& Model::shared() {
  static const Model model(ledgerModelTable());
  return model;
}

const EntityDescription* Model::entity(std::string_view name) const {
  const auto it = byName_.find(name);
  return it == byName_.end() ? nullptr : it->second;
}

const EntityDescription& Model::requireEntity(std::string_view name) const {
  const EntityDescription* e = entity(name);
  if (!e) throw std::logic_error("unknown entity: " + std::string(name));
  return *e;
}

Model::Model(const std::vector<EntityDeclaration>& declarations) {
  // Entities and their flattened property lists; a parent is declared before its children.
  for (const EntityDeclaration& declaration : declarations) {
    if (byName_.count(declaration.name)) modelError("entity declared twice: " + declaration.name);
    EntityDescription& entity = storage_.emplace_back();
    entity.name = declaration.name;
    entity.parentName = declaration.parent;
    entity.id = static_cast<int>(entities_.size());
    if (!declaration.parent.empty()) {
      const auto parent = byName_.find(declaration.parent);
      if (parent == byName_.end()) modelError(entity.name + ": parent not declared before it");
      entity.parent = parent->second;
      parent->second->subentities.push_back(&entity);
      entity.properties = entity.parent->properties;
      entity.byName_ = entity.parent->byName_;
    }
    entity.root = (!entity.parent || !entity.parent->parent) ? &entity : entity.parent->root;
    for (const PropertyDescription& declared : declaration.properties) {
      if (entity.byName_.count(declared.name)) {
        modelError(entity.name + "." + declared.name + " declared twice");
      }
      PropertyDescription& p = properties_.emplace_back(declared);
      p.owner = &entity;
      p.index = static_cast<int>(entity.properties.size());
      entity.properties.push_back(&p);
      entity.byName_[p.name] = &p;
    }
    entities_.push_back(&entity);
    order_.push_back(&entity);
    byName_[entity.name] = &entity;
    if (entity.parent && entity.root == &entity) roots_.push_back(&entity);
  }
  for (EntityDescription& entity : storage_) {
    for (const EntityDescription* e = &entity; e; e = e->parent) {
      byName_[e->name]->hierarchyIds.push_back(entity.id);
    }
  }

  // Relationships: targets, inverses, join tables.
  for (PropertyDescription& p : properties_) {
    if (p.isAttribute()) continue;
    const auto target = byName_.find(p.targetName);
    if (target == byName_.end()) modelError(p.owner->name + "." + p.name + ": unknown target");
    p.target = target->second;
    const PropertyDescription* inverse = p.target->property(p.inverseName);
    const EntityDescription* back = entity(inverse ? inverse->targetName : "");
    if (!inverse || inverse->isAttribute() || inverse->inverseName != p.name || !back ||
        p.owner->root != back->root) {
      modelError(p.owner->name + "." + p.name + ": inverse " + p.targetName + "." + p.inverseName +
                 " does not point back");
    }
    p.inverse = inverse;
  }
  for (PropertyDescription& p : properties_) {
    if (!p.isToMany() || !p.inverse->isToMany()) continue;
    const std::string mine = p.owner->name + "_" + p.name;
    const std::string theirs = p.inverse->owner->name + "_" + p.inverse->name;
    p.joinSourceIsFirst = mine <= theirs;
    p.joinTable = "J_" + (p.joinSourceIsFirst ? mine : theirs);
    if (p.joinSourceIsFirst) joins_.push_back(&p);
  }

  // Columns: one per attribute and to-one relationship of the hierarchy; a name two unrelated
  // entities of one hierarchy both declare gets its owner as a prefix.
  for (const EntityDescription* root : roots_) {
    std::unordered_map<std::string, const PropertyDescription*> taken;
    for (const int id : root->hierarchyIds) {
      for (const PropertyDescription* p : entities_[static_cast<size_t>(id)]->properties) {
        if (p->isToMany() || !p->column.empty()) continue;
        auto& column = const_cast<PropertyDescription*>(p)->column;
        const auto it = taken.find(p->name);
        column = (it == taken.end()) ? p->name : p->owner->name + "_" + p->name;
        taken.emplace(column, p);
      }
    }
  }
  for (EntityDescription& entity : storage_) entity.versionHash = versionHashOf(entity);
}

}  // namespace ledgeon
