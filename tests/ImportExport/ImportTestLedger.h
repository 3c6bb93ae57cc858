#pragma once

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "DataBase/DataBase.h"
#include "Documents/LedgerQueries.h"
#include "ImportExport/ImportLedger.h"
#include "LObjects/LObject.h"
#include "Platform/ScriptedUserInterface.h"
#include "Platform/Services.h"
#include "Utilities/Clock.h"
#include "Utilities/LDateUtilities.h"
#include "support/CommandTestDocument.h"
#include "support/TestSupport.h"

namespace ledgeon::testing {

// A document to import into, with scripted answers, a fixed today (2026-06-15) and a private
// home folder for the logs; and the questions a test asks of the resulting ledger.
class ImportTestLedger {
 public:
  ImportTestLedger() : ui_(std::make_shared<ScriptedUserInterface>()) {
    setenv("LEDGEON_HOME", home_.path().c_str(), 1);
    Services::shared().setUserInterface(ui_);
  }
  ~ImportTestLedger() { Services::shared().setUserInterface(nullptr); }

  std::filesystem::path writeFile(const std::string& name, const std::string& text) {
    const std::filesystem::path path = files_ / name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  DataBase& db() { return document_->dataBase(); }
  LObject* named(const char* entity, const std::string& name) {
    auto found =
        db().instancesOfClass(entity, {.predicate = Predicate::withFormat("name == %@", name)});
    return found.empty() ? nullptr : found.front();
  }
  LObject& account(const std::string& name) {
    LObject* found = named("Account", name);
    if (!found) throw std::runtime_error("no account " + name);
    return *found;
  }
  std::string balance(const std::string& name) {
    return LedgerQueries(db()).balanceOfAccount(account(name)).stringValue();
  }
  size_t count(const char* entity) { return db().countForInstancesOfClass(entity); }
  // The undeleted transactions of an account, by date then amount.
  std::vector<LObject*> transactions(const std::string& name) {
    std::vector<LObject*> found;
    for (LObject* t : account(name).objectsForKey("transactions")) {
      if (!t->isLObjectDeleted()) found.push_back(t);
    }
    std::sort(found.begin(), found.end(), [](LObject* a, LObject* b) {
      return std::make_pair(a->valueForKey("enteredDate").asDate(),
                            a->amountForKey("amount").stringValue()) <
             std::make_pair(b->valueForKey("enteredDate").asDate(),
                            b->amountForKey("amount").stringValue());
    });
    return found;
  }
  // Each line of a transaction as "category|tags|transfer|amount|note", in order.
  static std::vector<std::string> lines(LObject& transaction) {
    std::vector<LObject*> entries = transaction.objectsForKey("entries");
    std::sort(entries.begin(), entries.end(), [](LObject* a, LObject* b) {
      return a->integerForKey("sequenceNumber") < b->integerForKey("sequenceNumber");
    });
    std::vector<std::string> texts;
    for (LObject* entry : entries) {
      LObject* category = entry->objectForKey("categoryTag");
      std::string tags;
      for (LObject* tag : entry->objectsForKey("userTags")) tags += tag->stringForKey("name");
      texts.push_back((category ? category->stringForKey("name") : "") + "|" + tags + "|" +
                      entry->stringForKey("transfer") + "|" +
                      entry->amountForKey("amount").stringValue() + "|" +
                      entry->stringForKey("note"));
    }
    return texts;
  }
  static std::string day(LObject& object, const char* key = "enteredDate") {
    const Value date = object.valueForKey(key);
    return date.isNull() ? "none" : LDateUtilities::ISO8601StringFromDate(date.asDate());
  }

  // Every committed row of every table, and whether anything is pending: what "unchanged" means.
  std::vector<std::string> storeRows() {
    std::vector<std::string> rows;
    for (const EntityDescription* root : Model::shared().roots()) {
      std::vector<std::string> keys;
      for (const PropertyDescription* p : root->properties) {
        if (!p->isToMany()) keys.push_back(p->name);
      }
      auto dictionaries = db().dictionariesForClass(root->name, keys, {.includeDeleted = true});
      if (!dictionaries) throw std::runtime_error(dictionaries.error().localizedDescription());
      for (const EditDict& row : *dictionaries) rows.push_back(root->name + row.description());
    }
    rows.push_back(db().hasChanges() ? "pending changes" : "nothing pending");
    return rows;
  }

  ScopedFixedClock clock_{*LDateUtilities::dateWithYear(2026, 6, 15)};
  TempFolder home_;
  TempFolder files_;
  std::shared_ptr<ScriptedUserInterface> ui_;
  std::shared_ptr<CommandTestDocument> document_ = CommandTestDocument::make();
};

}  // namespace ledgeon::testing
