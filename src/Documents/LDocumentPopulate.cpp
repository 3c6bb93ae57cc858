// What every document holds before the user adds anything: one object per account type class,
// in the class tree, and the categories a household needs.
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "DataBase/DataBase.h"
#include "Documents/LDocument.h"
#include "Documents/LDocumentStrings.h"
#include "Documents/internal/UUID.h"
#include "LObjects/Model.h"
#include "Utilities/Log.h"

namespace ledgeon {

namespace {

// The revision of the one-time fixes an existing document gets on open; a new document starts
// at the current one and needs none.
constexpr int64_t kCurrentOneTimeFixRevision = 1;

// Category kinds, stored in CashFlowTag `type`: the codes LIF files use too ("I" marks income).
enum class CategoryKind : int64_t { kExpense = 1, kIncome = 2 };

struct AccountTypeRow {
  const char* className;
  const char* name;
};

// Names shown for each account type class; a class missing here shows its class name.
constexpr AccountTypeRow kAccountTypeNames[] = {
    {"Checking", "Checking"},
    {"Savings", "Savings"},
    {"CreditCard", "Credit Card"},
    {"Brokerage", "Investment"},
    {"BrokerageNormal", "Brokerage"},
    {"BrokerageOther", "Other Investment"},
    {"BrokerageTrust", "Trust"},
    {"BrokerageUGMA", "UGMA/UTMA Custodial"},
    {"BrokerageEducationSavings", "Education Savings (529)"},
    {"BrokerageCanadaPRPP", "PRPP"},
    {"BrokerageCanadaRDSP", "RDSP"},
    {"BrokerageCanadaRESP", "RESP"},
    {"BrokerageCanadaRPP", "RPP"},
    {"BrokerageCanadaRRIF", "RRIF"},
    {"BrokerageCanadaRRSP", "RRSP"},
    {"BrokerageCanadaTFSA", "TFSA"},
    {"Retirement", "Retirement"},
    {"RetirementIRA", "IRA"},
    {"RetirementKEOGH", "Keogh"},
    {"RetirementRothIRA", "Roth IRA"},
    {"RetirementSEP", "SEP IRA"},
    {"RetirementSIMPLE", "SIMPLE IRA"},
    {"DeferredCompRetirement", "Employer Retirement Plan"},
    {"DeferredCompRetirement401K", "401(k)"},
    {"DeferredCompRetirement403B", "403(b)"},
    {"DeferredCompRetirementRoth401k", "Roth 401(k)"},
    {"GenericLoan", "Loan"},
    {"AutoLoan", "Auto Loan"},
    {"CommercialLoan", "Commercial Loan"},
    {"ConstructionLoan", "Construction Loan"},
    {"ConsumerLoan", "Consumer Loan"},
    {"HomeEquityLoan", "Home Equity Loan"},
    {"LineOfCredit", "Line of Credit"},
    {"MilitaryLoan", "Military Loan"},
    {"Mortgage", "Mortgage"},
    {"SMBLoan", "Small Business Loan"},
    {"StudentLoan", "Student Loan"},
};

// Money owed (cards and loans) counts against the household: its balances carry a minus sign.
int64_t implicitSignFor(const EntityDescription& entity) {
  return entity.isKindOf("CreditCard") || entity.isKindOf("GenericLoan") ? -1 : 1;
}

std::string accountTypeName(const std::string& className) {
  for (const AccountTypeRow& row : kAccountTypeNames) {
    if (className == row.className) return row.name;
  }
  return className;
}

struct CategoryRow {
  const char* fullName;  // "Parent:Child"
  int64_t categoryID;
  CategoryKind kind;
};

constexpr CategoryKind kIn = CategoryKind::kIncome;
constexpr CategoryKind kOut = CategoryKind::kExpense;

// Parents come before their children. The ids are stable: imports and the cloud match on them.
constexpr CategoryRow kDefaultCategories[] = {
    {"Income", 1000, kIn},
    {"Income:Salary", 1001, kIn},
    {"Income:Bonus", 1002, kIn},
    {"Income:Interest", 1003, kIn},
    {"Income:Dividends", 1004, kIn},
    {"Income:Gifts Received", 1005, kIn},
    {"Income:Refunds", 1006, kIn},
    {"Income:Other Income", 1099, kIn},
    {"Housing", 2000, kOut},
    {"Housing:Rent", 2001, kOut},
    {"Housing:Mortgage Interest", 2002, kOut},
    {"Housing:Property Tax", 2003, kOut},
    {"Housing:Home Insurance", 2004, kOut},
    {"Housing:Repairs & Maintenance", 2005, kOut},
    {"Food", 3000, kOut},
    {"Food:Groceries", 3001, kOut},
    {"Food:Restaurants", 3002, kOut},
    {"Transport", 4000, kOut},
    {"Transport:Fuel", 4001, kOut},
    {"Transport:Public Transit", 4002, kOut},
    {"Transport:Car Insurance", 4003, kOut},
    {"Transport:Car Maintenance", 4004, kOut},
    {"Transport:Parking & Tolls", 4005, kOut},
    {"Utilities", 5000, kOut},
    {"Utilities:Electricity", 5001, kOut},
    {"Utilities:Gas & Heating", 5002, kOut},
    {"Utilities:Water", 5003, kOut},
    {"Utilities:Internet", 5004, kOut},
    {"Utilities:Phone", 5005, kOut},
    {"Health", 6000, kOut},
    {"Health:Doctor", 6001, kOut},
    {"Health:Pharmacy", 6002, kOut},
    {"Health:Health Insurance", 6003, kOut},
    {"Personal", 7000, kOut},
    {"Personal:Clothing", 7001, kOut},
    {"Personal:Personal Care", 7002, kOut},
    {"Personal:Education", 7003, kOut},
    {"Leisure", 8000, kOut},
    {"Leisure:Entertainment", 8001, kOut},
    {"Leisure:Travel", 8002, kOut},
    {"Leisure:Subscriptions", 8003, kOut},
    {"Family", 9000, kOut},
    {"Family:Childcare", 9001, kOut},
    {"Family:Pets", 9002, kOut},
    {"Gifts & Donations", 9100, kOut},
    {"Taxes", 9200, kOut},
    {"Taxes:Income Tax", 9201, kOut},
    {"Bank Fees", 9300, kOut},
    {"Interest Paid", 9400, kOut},
    {"Miscellaneous", 9900, kOut},
};

}  // namespace

const std::vector<std::string>& LDocument::defaultCategoryNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> list;
    for (const CategoryRow& row : kDefaultCategories) list.emplace_back(row.fullName);
    return list;
  }();
  return names;
}

void LDocument::populateNewDocument() {
  addMissingAccountTypes();
  addDefaultCategories();
  dataBase_->setValueForDocumentProperty(Value(documents_internal::newUUIDString()),
                                         kClientDocumentIdProperty);
}

void LDocument::populateExistingDocument() {
  // Documents made before a class was added get its account type now.
  addMissingAccountTypes();
  if (dataBase_->valueForDocumentPropertyNamed(kClientDocumentIdProperty).isNull()) {
    dataBase_->setValueForDocumentProperty(Value(documents_internal::newUUIDString()),
                                           kClientDocumentIdProperty);
  }
  const Value revision = dataBase_->valueForDocumentPropertyNamed(kLastOneTimeFixRevisionProperty);
  if (revision.isNull() || revision.asString() != std::to_string(kCurrentOneTimeFixRevision)) {
    dataBase_->setValueForDocumentProperty(Value(kCurrentOneTimeFixRevision),
                                           kLastOneTimeFixRevisionProperty);
  }
}

void LDocument::addMissingAccountTypes() {
  std::map<std::string, LObject*> existing;
  for (LObject* type : dataBase_->instancesOfClass("AccountType", {.includeDeleted = true})) {
    existing.emplace(type->className(), type);
  }
  // The model lists parents before children, so a parent's object exists when a child needs it.
  for (const EntityDescription* entity : Model::shared().entities()) {
    if (entity->name == "AccountType" || !entity->isKindOf("AccountType")) continue;
    if (existing.count(entity->name)) continue;
    EditDict data{{"name", Value(accountTypeName(entity->name))},
                  {"implicitSign", Value(implicitSignFor(*entity))}};
    if (entity->parent && entity->parent->name != "AccountType") {
      data.set("parent", Value(existing.at(entity->parent->name)));
    }
    existing.emplace(entity->name, &dataBase_->createEntity(entity->name, data));
  }
  clearCacheForClass("AccountType");
}

void LDocument::addDefaultCategories() {
  std::map<std::string, LObject*, std::less<>> made;
  for (const CategoryRow& row : kDefaultCategories) {
    const std::string_view fullName = row.fullName;
    const size_t colon = fullName.rfind(':');
    EditDict data{{"name", Value(fullName.substr(colon == std::string_view::npos ? 0 : colon + 1))},
                  {"categoryID", Value(row.categoryID)},
                  {"internalName", Value(fullName)},
                  {"type", Value(static_cast<int64_t>(row.kind))},
                  {"editable", Value(1)},
                  {"userAssignable", Value(1)},
                  {"budgetable", Value(1)},
                  {"trendable", Value(1)},
                  {"custom", Value(0)}};
    if (colon != std::string_view::npos) {
      const auto parent = made.find(fullName.substr(0, colon));
      if (parent == made.end()) {
        LLog("ERROR: default category %@ is listed before its parent", fullName);
        continue;
      }
      data.set("parentCategory", Value(parent->second));
    }
    made.emplace(std::string(fullName), &dataBase_->createEntity("CategoryTag", data));
  }
  clearCacheForClass("CategoryTag");
}

}  // namespace ledgeon
