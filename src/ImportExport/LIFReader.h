#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ImportExport/ImportLog.h"
#include "ImportExport/LIFRecords.h"
#include "Utilities/Date.h"
#include "Utilities/Result.h"

namespace ledgeon {

// What a LIF file cannot tell by itself: what the document already holds. Each is optional; an
// absent one answers "no". Names the file itself defines earlier (accounts of "!Account"
// sections, categories, tags, securities) count as existing without asking.
struct LIFReaderLookups {
  std::function<bool(const std::string& name)> accountExists;
  std::function<bool(const std::string& name)> categoryExists;
  std::function<bool(const std::string& name)> tagExists;
  // The security type of a security of that name, when one exists.
  std::function<std::optional<int>(const std::string& name)> securityType;
};

// Turns the text of a LIF file into plain records, in the order an import must apply them:
// securities first (wherever their section stands), then everything else in file order. Bad
// lines (dates and numbers that do not read, unknown headers and codes, records cut short,
// stray or binary lines) are reported in the import log with their line number and never stop
// the reading. Main thread only.
class LIFReader final {
 public:
  // Asked with the index of the line being read, the line count and the line's text; false
  // cancels the reading.
  using Progress = std::function<bool(size_t index, size_t count, std::string_view line)>;
  // Told of each transaction record the reading itself leaves out: the line it starts on and
  // the rule (ImportDropRules.h) that leaves it out. Such records are not handed on.
  using DroppedRecord = std::function<void(size_t line, std::string_view rule)>;

  explicit LIFReader(ImportLog& log, LIFReaderLookups lookups = {});

  // Reads a whole file: its encoding is detected and the text converted to UTF-8 first. An
  // empty file fails like an unreadable one, with an error of its own.
  Result<std::vector<LIFRecord>> readFile(const std::filesystem::path& path);
  // Reads UTF-8 text.
  std::vector<LIFRecord> readText(std::string_view text);
  // Reads UTF-8 text handing each record to `receiver` as soon as it is complete, in the same
  // order readText() lists them, so that a large file never has all its records in memory.
  void readText(std::string_view text, const std::function<void(LIFRecord&&)>& receiver);

  void setProgress(Progress progress) { progress_ = std::move(progress); }
  void setDroppedRecord(DroppedRecord dropped) { dropped_ = std::move(dropped); }
  bool userAborted() const { return userAborted_; }
  // Whether an investment section was read (the securities' data must then be refreshed).
  bool importedInvestments() const { return importedInvestments_; }
  // Number of stock-split records per investment account.
  const std::map<std::string, size_t>& accountsWithStockSplits() const {
    return accountsWithStockSplits_;
  }
  // Line texts longer than this are reported (and still read).
  static constexpr size_t kLongLineLength = 4096;
  // Problems reported one by one before the rest are only counted.
  static constexpr size_t kMaximumReportedProblems = 500;

 private:
  struct Line {
    size_t number;
    std::string_view text;
  };
  struct BankState;
  struct InvestmentState;

  void securityPrePass();
  void mainPass();
  size_t dispatch(size_t index);
  size_t importAccountInformation(size_t index);
  size_t importBankTransactions(size_t index, bool investmentCashTxn, bool invertSign);
  size_t importCatList(size_t index);
  size_t importClassList(size_t index);
  size_t importInvestmentTransactions(size_t index);
  size_t importPrices(size_t index);
  size_t importSecurity(size_t index);
  // Reads the "^"-terminated records of a list section: `field` takes each line of a record by
  // its letter, `finish` each complete record (also one the section's end leaves open).
  template <typename Record, typename Field, typename Finish>
  size_t readListSection(size_t index, Field field, Finish finish);

  void readBankField(BankState& state, const Line& line, bool investmentCashTxn, bool invertSign);
  void finishBankRecord(BankState& state);
  void readInvestmentField(InvestmentState& state, const Line& line);
  void finishInvestmentRecord(InvestmentState& state, size_t& count);
  void drop(size_t line, std::string_view rule);

  bool accountExists(const std::string& name) const;
  bool categoryExists(const std::string& name) const;
  bool tagExists(const std::string& name) const;
  std::optional<int> securityTypeNamed(const std::string& name) const;
  bool isSectionEnd(size_t index) const;
  Amount amountAt(const Line& line, std::string_view text);
  std::optional<Date> dateAt(const Line& line, std::string_view text);
  void emit(LIFRecord&& record);
  void problem(const Line& line, const std::string& what);
  void logAtLine(ImportLogSeverity severity, const std::string& text, const Line& line);

  ImportLog& log_;
  LIFReaderLookups lookups_;
  Progress progress_;
  DroppedRecord dropped_;
  std::vector<Line> lines_;
  std::function<void(LIFRecord&&)> receiver_;
  Date today_;
  std::string currentAccount_;
  std::set<std::string, std::less<>> fileAccounts_;
  std::set<std::string, std::less<>> fileCategories_;
  std::set<std::string, std::less<>> fileTags_;
  std::map<std::string, int, std::less<>> fileSecurityTypes_;
  std::map<std::string, size_t> accountsWithStockSplits_;
  size_t problems_ = 0;
  bool skippingSection_ = false;
  bool userAborted_ = false;
  bool importedInvestments_ = false;
};

}  // namespace ledgeon
