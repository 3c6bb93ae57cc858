#include "SampleLedger.h"

#include "DataBase/DataBase.h"
#include "Subcommand.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon::cli {

namespace {

Value day(int year, int month, int dayOfMonth) {
  return Value(*LDateUtilities::dateWithYear(year, month, dayOfMonth));
}

Value money(const char* text) { return Value(Amount::fromString(text)); }

}  // namespace

void createSampleLedger(const std::filesystem::path& document) {
  std::error_code ec;
  std::filesystem::create_directories(document, ec);
  auto opened = DataBase::initWithFileURL(document / "data", true);
  if (!opened) throw CommandFailure(opened.error().localizedDescription());
  DataBase& db = **opened;

  auto account = [&db](const char* type, const char* name, bool cloud) -> LObject& {
    LObject& accountType = db.createEntity(type, {{"name", Value(type)}});
    return db.createEntity("Account", {{"name", Value(name)},
                                       {"currency", Value("USD")},
                                       {"type", Value(&accountType)},
                                       {"syncWithCloud", Value(cloud ? 1 : 0)}});
  };
  LObject& checking = account("Checking", "Everyday Checking", true);
  LObject& savings = account("Savings", "Rainy Day", false);
  LObject& card = account("CreditCard", "Travel Card", true);

  auto category = [&db](const char* name, int64_t id) -> LObject& {
    return db.createEntity("CategoryTag", {{"name", Value(name)}, {"categoryID", Value(id)}});
  };
  LObject& groceries = category("Groceries", 101);
  LObject& salary = category("Salary", 201);
  LObject& rent = category("Rent", 102);
  LObject& travel = category("Travel", 103);
  LObject& grocer = db.createEntity("UserPayee", {{"name", Value("Corner Grocer")}});
  LObject& employer = db.createEntity("UserPayee", {{"name", Value("Acme Payroll")}});
  LObject& vacation = db.createEntity("UserTag", {{"name", Value("vacation")}});

  struct Row {
    LObject* account;
    Value date;
    const char* amount;
    LObject* payee;
    LObject* category;
    const char* note;
    int status;
  };
  const Row rows[] = {
      {&checking, day(2024, 1, 2), "2500.00", &employer, &salary, "January pay", 2},
      {&checking, day(2024, 1, 3), "-1200.00", nullptr, &rent, "Rent", 2},
      {&checking, day(2024, 1, 5), "-84.37", &grocer, &groceries, "Weekly shop", 1},
      {&checking, day(2024, 1, 12), "-91.02", &grocer, &groceries, "Weekly shop", 1},
      {&card, day(2024, 1, 20), "-310.40", nullptr, &travel, "Train tickets", 0},
      {&card, day(2024, 1, 21), "-45.10", &grocer, &groceries, "Snacks for the trip", 0},
      {&savings, day(2024, 1, 31), "0.83", nullptr, nullptr, "Interest", 1},
      {&checking, day(2024, 2, 1), "2500.00", &employer, &salary, "February pay", 0},
  };
  for (const Row& row : rows) {
    LObject& transaction =
        db.createEntity("CashFlowTransaction", {{"account", Value(row.account)},
                                                {"enteredDate", row.date},
                                                {"amount", money(row.amount)},
                                                {"userPayee", Value(row.payee)},
                                                {"note", Value(row.note)},
                                                {"reconcileStatus", Value(row.status)}});
    LObject& entry =
        db.createEntity("CashFlowTransactionEntry", {{"parent", Value(&transaction)},
                                                     {"amount", money(row.amount)},
                                                     {"categoryTag", Value(row.category)},
                                                     {"sequenceNumber", Value(0)}});
    if (row.account == &card) {
      entry.editEntityWithData({{"userTags", Value(ToManyEdit::adding({&vacation}))}});
    }
  }
  db.createEntity("ForexQuote", {{"fromCurrency", Value("EUR")},
                                 {"toCurrency", Value("USD")},
                                 {"exchangeRate", money("1.0856")},
                                 {"quoteDate", day(2024, 1, 31)}});
  if (auto ok = db.commit(); !ok) throw CommandFailure(ok.error().localizedDescription());
}

}  // namespace ledgeon::cli
