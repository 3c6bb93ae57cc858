#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Utilities/Amount.h"

namespace ledgeon::testing {

// One split line of an expected transaction; amounts as Amount::stringValue() writes them.
struct ExpectedLine {
  std::string category;
  std::vector<std::string> tags;  // sorted
  std::string transfer;
  std::string amount;
  std::string note;
};

// A cash-flow transaction the import must create.
struct ExpectedTransaction {
  std::string account;
  std::string date;  // ISO 8601, "none" when the file's date does not read
  std::string amount;
  std::string payee;
  std::string note;
  std::string checkNumber;
  int64_t reconcileStatus = 0;
  std::string targetAccount;
  std::vector<ExpectedLine> lines;

  // One comparable line of text.
  std::string description() const;
};

// A random LIF file of bank-style accounts, written together with the ledger an import must
// make of it: transfers listed in one or both accounts, splits with and without transfer lines
// (to one or two accounts, from checking and other accounts), tags, memos, check numbers,
// amounts written after their transfer field, and dates and amounts that do not read. The
// expected ledger follows from what each transaction is, not from how the import goes about it.
struct GeneratedLIFFile {
  std::string text;
  std::vector<std::string> accounts;
  std::vector<ExpectedTransaction> ledger;
  // The figures the import's summary must give.
  size_t records = 0;
  size_t merged = 0;
  std::map<std::string, size_t> dropped;
  size_t memosRemoved = 0;
  size_t tagsRemoved = 0;
  size_t balanceDifferences = 0;
  // How often each kind of record the file holds was written, so that a set of seeds can be
  // checked to cover them all.
  std::map<std::string, size_t> features;

  // Each account's balance: its transactions' amounts, less every transfer line of another
  // account's transaction that names it.
  std::map<std::string, Amount> balances() const;
};

GeneratedLIFFile generateLIFFile(uint32_t seed);

// The same balances for any list of transactions.
std::map<std::string, Amount> balancesOf(const std::vector<ExpectedTransaction>& transactions);

}  // namespace ledgeon::testing
