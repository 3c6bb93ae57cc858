#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "CliValues.h"
#include "DataBase/DataBase.h"
#include "SampleLedger.h"
#include "Subcommand.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon::cli {

namespace {

struct DbOptions {
  std::string document;
  std::string entity;
  std::string predicate = "TRUEPREDICATE";
  std::vector<std::string> arguments;
  std::vector<std::string> sort;
  std::vector<std::string> prefetch;
  size_t limit = 0;
  bool includeDeleted = false;
  bool sample = false;
  bool json = false;
};

// An argument of the predicate: "int:", "amount:", "date:", "text:" force a kind; otherwise an
// integer, a decimal, an ISO date, "nil" or text, whichever it reads as first.
Value argumentValue(const std::string& text) {
  const auto colon = text.find(':');
  const std::string kind = colon == std::string::npos ? "" : text.substr(0, colon);
  const std::string body = kind.empty() ? text : text.substr(colon + 1);
  auto asInteger = [](const std::string& s) -> std::optional<Value> {
    try {
      size_t used = 0;
      const long long value = std::stoll(s, &used);
      if (used == s.size()) return Value(static_cast<int64_t>(value));
    } catch (const std::exception&) {
    }
    return std::nullopt;
  };
  if (kind == "text") return Value(body);
  if (kind == "int") {
    if (auto v = asInteger(body)) return *v;
    throw CommandFailure("argument \"" + text + "\" is not an integer");
  }
  if (kind == "amount") {
    const Amount amount = Amount::fromString(body);
    if (amount.isNaN()) throw CommandFailure("argument \"" + text + "\" is not an amount");
    return Value(amount);
  }
  if (kind == "date") {
    if (auto date = LDateUtilities::dateFromISO8601String(body)) return Value(*date);
    throw CommandFailure("argument \"" + text + "\" is not an ISO 8601 date");
  }
  if (text == "nil") return Value();
  if (auto v = asInteger(text)) return *v;
  if (const Amount amount = Amount::fromString(text); amount.isNotNaN()) return Value(amount);
  if (text.size() == 10) {
    if (auto date = LDateUtilities::dateFromISO8601String(text)) return Value(*date);
  }
  return Value(text);
}

// Calendar dates as ISO days, time stamps in full.
std::string dateText(Date date) {
  return LDateUtilities::isCalendarDate(date) ? LDateUtilities::ISO8601StringFromDate(date)
                                              : date.description();
}

nlohmann::json jsonValue(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Null:
      return nullptr;
    case Value::Kind::Boolean:
    case Value::Kind::Integer:
      return value.asInteger();
    case Value::Kind::Double:
      return value.asDouble();
    case Value::Kind::Amount:
      return value.asAmount().stringValue();
    case Value::Kind::String:
      return value.asString();
    case Value::Kind::Date:
      return dateText(value.asDate());
    case Value::Kind::Dictionary:
      return value.asDictionary();
    case Value::Kind::Object:
      return {{"entity", value.asObject()->className()},
              {"ledgeonId", value.asObject()->integerForKey("ledgeonId")}};
    default:
      return value.description();
  }
}

std::string textValue(const Value& value) {
  if (value.kind() == Value::Kind::Date) return dateText(value.asDate());
  if (value.kind() == Value::Kind::Object) {
    LObject* object = value.asObject();
    return object->className() + " " + std::to_string(object->integerForKey("ledgeonId"));
  }
  return value.description();
}

void runStats(const DbOptions& options) {
  auto db = openDocument(options.document);
  const auto metadata = db->storeMetadata();
  const auto counts = db->storedObjectCounts();
  if (options.json) {
    nlohmann::json entities = nlohmann::json::object();
    for (const auto& [name, count] : counts) {
      entities[name] = {{"count", count.total}, {"deleted", count.deleted}};
    }
    const nlohmann::json out = {{"document", options.document},
                                {"modelVersion", metadata.at("modelVersion")},
                                {"entities", entities}};
    std::cout << out.dump(2) << "\n";
    return;
  }
  std::cout << "Document: " << options.document << "\n";
  std::cout << "Model version: " << metadata.at("modelVersion") << "\n";
  for (const auto& [name, count] : counts) {
    std::cout << "  " << name << ": " << count.total;
    if (count.deleted > 0) std::cout << " (" << count.deleted << " deleted)";
    std::cout << "\n";
  }
}

void runQuery(const DbOptions& options) {
  auto db = openDocument(options.document);
  std::vector<Value> arguments;
  for (const std::string& text : options.arguments) arguments.push_back(argumentValue(text));
  auto predicate = Predicate::parse(options.predicate, arguments);
  if (!predicate) throw CommandFailure(predicate.error().localizedDescription());
  FetchOptions fetch{.predicate = *predicate,
                     .fetchLimit = options.limit,
                     .includeDeleted = options.includeDeleted,
                     .prefetchKeyPaths = options.prefetch};
  for (const std::string& key : options.sort) {
    const bool descending = key.size() > 5 && key.compare(key.size() - 5, 5, ":desc") == 0;
    fetch.sortDescriptors.push_back(
        {descending ? key.substr(0, key.size() - 5) : key, !descending});
  }
  auto objects = db->fetch(options.entity, fetch);
  if (!objects) throw CommandFailure(objects.error().localizedDescription());
  nlohmann::json rows = nlohmann::json::array();
  for (LObject* object : *objects) {
    nlohmann::json row = {{"entity", object->className()}};
    std::string line = object->className();
    for (const PropertyDescription* p : object->entity().properties) {
      if (p->isToMany()) continue;
      const Value value = object->valueForKey(p->name);
      if (value.isNull()) continue;
      row[p->name] = jsonValue(value);
      line += " " + p->name + "=" + textValue(value);
    }
    // The members of prefetched to-many relationships.
    for (const std::string& keyPath : options.prefetch) {
      const std::string key = keyPath.substr(0, keyPath.find('.'));
      const PropertyDescription* p = object->entity().property(key);
      if (!p || !p->isToMany() || row.contains(key)) continue;
      nlohmann::json members = nlohmann::json::array();
      std::string list;
      for (LObject* member : object->objectsForKey(key)) {
        members.push_back(jsonValue(Value(member)));
        list += (list.empty() ? "" : ", ") + textValue(Value(member));
      }
      row[key] = std::move(members);
      line += " " + key + "=[" + list + "]";
    }
    if (options.json) {
      rows.push_back(std::move(row));
    } else {
      std::cout << line << "\n";
    }
  }
  if (options.json) {
    std::cout << rows.dump(2) << "\n";
  } else {
    std::cout << objects->size() << (objects->size() == 1 ? " object\n" : " objects\n");
  }
}

const SubcommandRegistration registration(300, [](CLI::App& app) {
  auto* db = app.add_subcommand("db", "Inspect and query a document's ledger store");
  db->require_subcommand(1);

  auto createOptions = std::make_shared<DbOptions>();
  auto* create = db->add_subcommand("create", "Create a document package with an empty ledger");
  create->add_option("DOC", createOptions->document, "Document package folder")->required();
  create->add_flag("--sample", createOptions->sample,
                   "Fill it with a small sample ledger (accounts, categories, transactions)");
  create->callback([createOptions] {
    const std::filesystem::path document(createOptions->document);
    if (createOptions->sample) {
      createSampleLedger(document);
    } else {
      std::error_code ec;
      std::filesystem::create_directories(document, ec);
      auto opened = DataBase::initWithFileURL(document / "data", true);
      if (!opened) throw CommandFailure(opened.error().localizedDescription());
    }
    std::cout << "Created " << (document / "data").string() << "\n";
  });

  auto statsOptions = std::make_shared<DbOptions>();
  auto* stats = db->add_subcommand("stats", "Count the objects of each entity and show the model");
  stats->add_option("DOC", statsOptions->document, "Document package folder")->required();
  stats->add_flag("--json", statsOptions->json, "Print the result as JSON");
  stats->callback([statsOptions] { runStats(*statsOptions); });

  auto queryOptions = std::make_shared<DbOptions>();
  auto* query = db->add_subcommand(
      "query",
      "Fetch objects of ENTITY matching PREDICATE, e.g. 'amount < %@ AND account.name like[c] %@'");
  query->add_option("DOC", queryOptions->document, "Document package folder")->required();
  query->add_option("ENTITY", queryOptions->entity, "Entity class, such as Transaction")
      ->required();
  query->add_option("PREDICATE", queryOptions->predicate, "Predicate (default TRUEPREDICATE)");
  query->add_option(
      "ARG", queryOptions->arguments,
      "Values for %@ %d %ld %K; prefix int:, amount:, date: or text: to force a kind");
  query->add_option("--sort", queryOptions->sort, "Sort key path; append :desc to reverse");
  query->add_option("--limit", queryOptions->limit, "At most this many objects");
  query->add_option("--prefetch", queryOptions->prefetch,
                    "Load this relationship key path with the objects (entries.categoryTag); "
                    "to-many members are listed");
  query->add_flag("--include-deleted", queryOptions->includeDeleted,
                  "Include soft-deleted objects");
  query->add_flag("--json", queryOptions->json, "Print the objects as JSON");
  query->callback([queryOptions] { runQuery(*queryOptions); });
});

}  // namespace

}  // namespace ledgeon::cli
