#include "DataBase/DataBase.h"
#include "DemoStep.h"
#include "SampleLedger.h"

namespace ledgeon::cli {

namespace {

void showLedgerStore(DemoContext& context) {
  auto& out = context.out;
  const auto document = context.workFolder / "Sample.ledgeon";
  std::filesystem::remove_all(document);
  createSampleLedger(document);
  auto db = DataBase::initWithFileURL(document / "data", false);
  if (!db) {
    out << db.error().localizedDescription() << "\n";
    return;
  }
  out << "Created " << (document / "data").string() << " with:\n";
  for (const auto& [name, count] : (*db)->storedObjectCounts()) {
    out << "  " << count.total << " " << name << "\n";
  }
  const char* format = "amount < %@ AND account.syncWithCloud == 1";
  const auto spending = (*db)->instancesOfClass(
      "Transaction", {.predicate = Predicate::withFormat(format, Amount::fromInt64(-50)),
                      .sortDescriptors = {{"amount"}}});
  out << "Query Transaction '" << format << "' with -50:\n";
  for (LObject* transaction : spending) {
    out << "  " << transaction->amountForKey("amount").stringValue() << "  "
        << transaction->stringForKey("note") << " ("
        << transaction->objectForKey("account")->stringForKey("name") << ")\n";
  }
  LObject* first = spending.front();
  first->deleteLObject();
  (void)(*db)->commit();
  out << "After deleting \"" << first->stringForKey("note")
      << "\" (a soft deletion): " << (*db)->countForInstancesOfClass("Transaction")
      << " transactions, " << (*db)->countForInstancesOfClass("Transaction", Predicate(), true)
      << " counting the deleted one\n";
  out << "Try: ledgeon db query " << document.string()
      << " Transaction 'note like[c] %@' '*shop*' --sort amount\n";
}

const DemoStepRegistration step(200, "The ledger store", showLedgerStore);

}  // namespace

}  // namespace ledgeon::cli
