#include <set>

#include <gtest/gtest.h>

#include "LObjects/ClassMetadata.h"
#include "LObjects/Model.h"
#include "LObjects/Value.h"

namespace ledgeon {
namespace {

TEST(ModelTest, EveryRelationshipHasAnInverseThatPointsBack) {
  for (const EntityDescription* entity : Model::shared().entities()) {
    for (const PropertyDescription* p : entity->properties) {
      if (p->isAttribute()) continue;
      ASSERT_NE(p->inverse, nullptr) << entity->name << "." << p->name;
      EXPECT_EQ(p->inverse->inverse, p) << entity->name << "." << p->name;
      EXPECT_EQ(p->inverse->target->root, p->owner->root) << entity->name << "." << p->name;
    }
  }
}

TEST(ModelTest, SubentitiesShareTheirParentsTableAndSlots) {
  const Model& model = Model::shared();
  const EntityDescription& smart = model.requireEntity("SmartCashFlowTransaction");
  const EntityDescription& transaction = model.requireEntity("Transaction");
  EXPECT_EQ(smart.root, &transaction);
  EXPECT_TRUE(smart.isKindOf("Transaction"));
  EXPECT_EQ(smart.property("amount"), transaction.property("amount"));
  EXPECT_EQ(model.requireEntity("Mortgage").root, &model.requireEntity("AccountType"));
  EXPECT_TRUE(model.requireEntity("DeferredCompRetirement401K").isKindOf("Brokerage"));
  // Every entity of the ledger carries the base attributes.
  for (const EntityDescription* entity : model.entities()) {
    EXPECT_NE(entity->property("ledgeonId"), nullptr) << entity->name;
  }
}

TEST(ModelTest, TypesOfRepresentativeProperties) {
  const Model& model = Model::shared();
  struct Case {
    const char* entity;
    const char* key;
    PropertyKind kind;
    AttributeType type;
    const char* target;
  };
  const Case cases[] = {
      {"Account", "creditLimit", PropertyKind::Attribute, AttributeType::Amount, ""},
      {"Account", "filters", PropertyKind::Attribute, AttributeType::Dictionary, ""},
      {"Account", "type", PropertyKind::ToOne, AttributeType::String, "AccountType"},
      {"Transaction", "entries", PropertyKind::ToMany, AttributeType::String,
       "CashFlowTransactionEntry"},
      {"CashFlowTransactionEntry", "userTags", PropertyKind::ToMany, AttributeType::String,
       "UserTag"},
      {"InvestmentTransaction", "acquisitionDate", PropertyKind::Attribute, AttributeType::Date,
       ""},
      {"CashFlowTag", "grouping", PropertyKind::Attribute, AttributeType::Integer, ""},
      {"ForexQuote", "toCurrency", PropertyKind::Attribute, AttributeType::String, ""},
  };
  for (const Case& c : cases) {
    const PropertyDescription* p = model.requireEntity(c.entity).property(c.key);
    ASSERT_NE(p, nullptr) << c.entity << "." << c.key;
    EXPECT_EQ(p->kind, c.kind) << c.key;
    if (p->isAttribute()) {
      EXPECT_EQ(p->type, c.type) << c.key;
    } else {
      EXPECT_EQ(p->target->name, c.target) << c.key;
    }
  }
  EXPECT_TRUE(model.requireEntity("CashFlowTag").property("grouping")->readOnly);
  EXPECT_TRUE(model.requireEntity("CashFlowTransactionEntry").property("userTags")->isManyToMany());
  EXPECT_FALSE(model.requireEntity("Transaction").property("entries")->isManyToMany());
}

TEST(ModelTest, ColumnsAreUniqueWithinEachTable) {
  for (const EntityDescription* root : Model::shared().roots()) {
    std::map<std::string, const PropertyDescription*> columns;
    for (const int id : root->hierarchyIds) {
      for (const PropertyDescription* p : Model::shared().entity(id).properties) {
        if (p->isToMany()) continue;
        const auto [it, fresh] = columns.emplace(p->column, p);
        EXPECT_TRUE(fresh || it->second == p) << root->name << " column " << p->column;
      }
    }
  }
}

TEST(ModelTest, AMistakeInTheTableIsCaughtWhenTheModelIsBuilt) {
  PropertyDescription dangling;
  dangling.name = "owner";
  dangling.kind = PropertyKind::ToOne;
  dangling.targetName = "Thing";
  dangling.inverseName = "missing";
  const std::vector<Model::EntityDeclaration> table = {{"LObject", "", {}},
                                                       {"Thing", "LObject", {dangling}}};
  EXPECT_THROW(Model{table}, std::logic_error);
}

TEST(ClassMetadataTest, NounsAndNotificationNames) {
  const ClassMetadata& transaction = classMetadata("Transaction");
  EXPECT_EQ(transaction.singularNoun, "Transaction");
  EXPECT_EQ(transaction.pluralNoun, "Transactions");
  EXPECT_EQ(transaction.addNotificationName, "AddTransaction");
  EXPECT_EQ(transaction.deleteNotificationName, "DeleteTransaction");
  EXPECT_EQ(transaction.changeNotificationName, "ChangeTransaction");
  EXPECT_EQ(classMetadata("CategoryTag").pluralNoun, "Categories");
  for (const EntityDescription* entity : Model::shared().entities()) {
    if (!entity->parent) continue;
    // A missing string-table entry would show its key.
    EXPECT_EQ(classMetadata(entity->name).singularNoun.find("ClassNoun"), std::string::npos)
        << entity->name;
  }
}

TEST(ClassMetadataTest, AskingTheBaseClassIsASubclassResponsibility) {
  try {
    classMetadata("LObject");
    FAIL() << "no error";
  } catch (const std::logic_error& e) {
    EXPECT_NE(std::string(e.what()).find("subclass responsibility"), std::string::npos);
  }
}

TEST(ValueTest, NumbersCompareAcrossKindsAndAmountsExactly) {
  EXPECT_EQ(compareValues(Value(int64_t{2}), Value(Amount::fromString("2.00"))), 0);
  EXPECT_LT(compareValues(Value(Amount::fromString("0.1")), Value(0.2)), 0);
  EXPECT_GT(compareValues(Value(Amount::fromString("10000000000000000000.01")),
                          Value(Amount::fromString("10000000000000000000"))),
            0);
  EXPECT_LT(compareValues(Value(), Value(int64_t{-5})), 0);
  EXPECT_EQ(Value(Amount::fromString("1.50")), Value(Amount::fromString("1.5")));
  EXPECT_NE(Value("1"), Value(int64_t{1}));
}

TEST(EditDictTest, KeepsInsertionOrderAndReplacesInPlace) {
  EditDict dict{{"b", Value(1)}, {"a", Value(2)}};
  dict.set("b", Value(3));
  dict.set("c", Value());
  std::vector<std::string> keys;
  for (const auto& [key, value] : dict) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"b", "a", "c"}));
  EXPECT_EQ(*dict.find("b"), Value(3));
  EXPECT_TRUE(dict.erase("a"));
  EXPECT_FALSE(dict.contains("a"));
}

}  // namespace
}  // namespace ledgeon
