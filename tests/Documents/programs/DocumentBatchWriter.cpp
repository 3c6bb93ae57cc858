// Writes one large batch of transactions into a document inside one store transaction, saying on
// stdout how far it got, so that a test can kill it with SIGKILL at chosen moments:
//   DocumentBatchWriter DOC COUNT
// prints "ready" (document open, account made and committed), "created N" every 1000
// transactions, "committing" just before the outermost endTransaction, "committed" after it, and
// then keeps the document open until stdin ends.
#include <cstdlib>
#include <iostream>
#include <string>

#include "DataBase/DataBase.h"
#include "Documents/LDocument.h"
#include "Documents/LedgerQueries.h"
#include "LObjects/Value.h"
#include "Utilities/Amount.h"
#include "Utilities/LDateUtilities.h"

int main(int argc, char** argv) {
  using namespace ledgeon;
  if (argc != 3) {
    std::cerr << "usage: DocumentBatchWriter DOC COUNT\n";
    return 2;
  }
  const long count = std::strtol(argv[2], nullptr, 10);
  auto opened = LDocument::initWithContentsOfURL(argv[1]);
  if (!opened) {
    std::cerr << opened.error().localizedDescription() << '\n';
    return 1;
  }
  LDocument& document = **opened;
  DataBase& db = document.dataBase();
  LObject* account = nullptr;
  {
    ScopedStoreTransaction setup(document);
    account = &db.createEntity(
        "Account", {{"name", Value("Batch Checking")},
                    {"currency", Value("USD")},
                    {"type", Value(document.ledgerQueries().accountTypeForClass("Checking"))}});
    if (!setup.end()) return 1;
  }
  std::cout << "ready" << std::endl;
  const Date day = *LDateUtilities::dateWithYear(2024, 3, 1);
  document.beginTransaction();
  for (long i = 1; i <= count; ++i) {
    const Amount amount = Amount::fromString("-" + std::to_string(i % 500) + ".25");
    LObject& transaction = db.createEntity("CashFlowTransaction", {{"account", Value(account)},
                                                                   {"enteredDate", Value(day)},
                                                                   {"amount", Value(amount)},
                                                                   {"note", Value("batch")}});
    db.createEntity(
        "CashFlowTransactionEntry",
        {{"parent", Value(&transaction)}, {"amount", Value(amount)}, {"sequenceNumber", Value(0)}});
    if (i % 1000 == 0) std::cout << "created " << i << std::endl;
  }
  std::cout << "committing" << std::endl;
  if (auto committed = document.endTransaction(); !committed) {
    std::cerr << committed.error().localizedDescription() << '\n';
    return 1;
  }
  std::cout << "committed" << std::endl;
  for (std::string line; std::getline(std::cin, line);) {
  }
  document.close();
  return 0;
}
