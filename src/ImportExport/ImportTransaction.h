#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {

class LObject;

// One split line of a transaction an import is about to create: a category by name (or none),
// user tags by name, a memo and an amount; a transfer line names the other account instead of
// a category.
struct ImportSplit {
  std::string category;
  std::vector<std::string> tags;
  std::string note;
  Amount amount = Amount::zero();
  std::string transfer;  // the other account's name for a transfer line

  bool isTransfer() const { return !transfer.empty(); }
};

// A cash-flow transaction an import is about to create, with names still unresolved: the import's
// own form of the key-value map the creation command takes.
struct ImportTransaction {
  size_t line = 0;             // where the file holds it, for the import log
  LObject* account = nullptr;  // the account that owns it
  std::optional<Date> date;
  std::string checkNumber;
  Amount amount = Amount::zero();
  std::string payee;      // as the user would have typed it
  std::string bankPayee;  // as the bank wrote it
  std::string note;
  std::string reference;
  int reconcileStatus = 0;
  std::string transferAccount;  // the account a transfer moves money to or from
  std::vector<ImportSplit> lines;
};

}  // namespace ledgeon
