#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <variant>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "ImportExport/CSVParser.h"
#include "ImportExport/ImportLog.h"
#include "ImportExport/ImportSummary.h"
#include "ImportExport/LIFReader.h"
#include "ImportExport/TextFileReader.h"
#include "Subcommand.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/StringWithFormat.h"
#include "Utilities/StringsTable.h"

namespace ledgeon::cli {

namespace {

struct DumpOptions {
  std::string file;
  std::string separator = ",";
  bool header = false;
  bool json = false;
};

nlohmann::json text(const std::optional<Date>& date) {
  return date ? nlohmann::json(LDateUtilities::ISO8601StringFromDate(*date)) : nullptr;
}
nlohmann::json text(const Amount& amount) { return amount.stringValue(); }
nlohmann::json text(const std::optional<Amount>& amount) {
  return amount ? text(*amount) : nullptr;
}

nlohmann::json splitJson(const LIFSplit& split) {
  nlohmann::json json = {{"line", split.line},
                         {"categoryTag", split.category},
                         {"userTags", split.tag},
                         {"note", split.memo},
                         {"amount", text(split.amount)}};
  if (split.isTransfer()) json["transfer"] = split.transferAccount;
  return json;
}

// Each record as the key-value map its creation command will be given, plus "record" and "line".
nlohmann::json recordJson(const LIFRecord& record) {
  return std::visit(
      [](const auto& r) -> nlohmann::json {
        using T = std::decay_t<decltype(r)>;
        nlohmann::json json = {{"line", r.line}};
        if constexpr (std::is_same_v<T, LIFAccountList>) {
          json["record"] = "accounts";
          json["accounts"] = nlohmann::json::array();
          for (const auto& a : r.accounts) {
            json["accounts"].push_back({{"line", a.line},
                                        {"name", a.name},
                                        {"type", a.accountType},
                                        {"userDescription", a.description},
                                        {"creditLimit", text(a.creditLimit)},
                                        {"statementBalance", text(a.statementBalance)}});
          }
        } else if constexpr (std::is_same_v<T, LIFBankTransaction>) {
          json.update({{"record", r.investmentCash ? "investmentCash" : "bank"},
                       {"targetAccount", r.account},
                       {"enteredDate", text(r.date)},
                       {"checkNumber", r.checkNumber},
                       {"amount", text(r.amount)},
                       {"userEnteredPayeeString", r.payee},
                       {"note", r.memo},
                       {"reconcileStatus", r.reconcileStatus}});
          if (r.isTransfer()) json["transfer"] = r.transferAccount;
          json["creationLines"] = nlohmann::json::array();
          for (const auto& split : r.splits) json["creationLines"].push_back(splitJson(split));
        } else if constexpr (std::is_same_v<T, LIFCategory>) {
          json.update(
              {{"record", "category"},
               {"name", r.name},
               {"userDescription", r.description},
               {"type", r.type},
               {"taxRefUS", r.taxRefUS ? nlohmann::json(*r.taxRefUS) : nlohmann::json(nullptr)}});
        } else if constexpr (std::is_same_v<T, LIFTag>) {
          json.update({{"record", "tag"}, {"name", r.name}, {"userDescription", r.description}});
        } else if constexpr (std::is_same_v<T, LIFSecurity>) {
          json.update(
              {{"record", "security"}, {"name", r.name}, {"ticker", r.ticker}, {"type", r.type}});
        } else if constexpr (std::is_same_v<T, LIFPrice>) {
          json.update({{"record", "price"},
                       {"ticker", r.ticker},
                       {"closingPrice", text(r.price)},
                       {"quoteDate", text(r.date)}});
        } else {
          json.update({{"record", "investment"},
                       {"account", r.account},
                       {"enteredDate", text(r.date)},
                       {"action", r.action},
                       {"type", r.type},
                       {"security", r.security},
                       {"units", text(r.quantity)},
                       {"price", text(r.price)},
                       {"costBasis", text(r.costBasis)},
                       {"amount", text(r.amount)},
                       {"commission", text(r.commission)},
                       {"reconcileStatus", r.reconcileStatus},
                       {"note", r.memo}});
          if (!r.transferAccount.empty()) json["transfer"] = r.transferAccount;
          if (r.userStatusOverride) json["userStatusOverride"] = *r.userStatusOverride;
          if (r.splitForm != LIFStockSplitForm::kNone) {
            json["splitForm"] =
                r.splitForm == LIFStockSplitForm::kNewSharesPerTen ? "perTen" : "added";
          }
        }
        return json;
      },
      record);
}

void runLifDump(const DumpOptions& options) {
  ImportLog log(LocalizedString("Import_LogWindowTitle"),
                stringWithFormat(LocalizedString("Import_LogWindowPathMsgFormat"), options.file));
  LIFReader reader(log);
  ImportSummary summary(std::filesystem::path(options.file).filename().string(),
                        ImportSummary::Format::kLIF);
  reader.setDroppedRecord(
      [&](size_t line, std::string_view rule) { summary.drop(log, line, rule); });
  auto records = reader.readFile(options.file);
  if (!records) throw CommandFailure(records.error().localizedDescription());
  if (options.json) {
    nlohmann::json out = {{"records", nlohmann::json::array()},
                          {"log", nlohmann::json::parse(log.jsonText())}};
    for (const auto& record : *records) out["records"].push_back(recordJson(record));
    std::cout << out.dump(2) << "\n";
    return;
  }
  for (const auto& record : *records) std::cout << recordJson(record).dump() << "\n";
  std::cout << "\n" << log.plainText();
}

void runCsvDump(const DumpOptions& options) {
  auto text = TextFileReader::readFile(options.file);
  if (!text) throw CommandFailure(text.error().localizedDescription());
  if (options.separator.empty() || options.separator.find_first_of("\"\r\n") != std::string::npos) {
    throw CommandFailure("the separator must not be empty or hold a double quote or line break");
  }
  CSVParser parser(*text, options.separator, options.header);
  nlohmann::json rows = nlohmann::json::array();
  size_t count = 0;
  parser.parseRowsForReceiver([&](CSVRow&& row) {
    ++count;
    if (options.json) {
      rows.push_back(nlohmann::json(row));
      return;
    }
    std::cout << "row " << count << "\n";
    for (const auto& [name, value] : row) std::cout << "  " << name << ": " << value << "\n";
  });
  if (options.json) std::cout << rows.dump(2) << "\n";
  if (const auto& stop = parser.stop()) {
    std::cerr << "ledgeon: reading stopped at line " << stop->line << " (" << stop->reason
              << "); the rest of the file was not read\n";
  }
}

const SubcommandRegistration registration(600, [](CLI::App& app) {
  auto options = std::make_shared<DumpOptions>();
  auto* lif = app.add_subcommand("lif", "Read LIF interchange files");
  lif->require_subcommand(1);
  auto* dump = lif->add_subcommand(
      "dump", "Print the records a LIF file holds, as an import would apply them, and the log");
  dump->add_option("file", options->file, "The LIF file")->required();
  dump->add_flag("--json", options->json, "Print the records and the log tree as JSON");
  dump->callback([options] { runLifDump(*options); });

  auto* csv = app.add_subcommand("csv", "Read comma-separated text files");
  csv->require_subcommand(1);
  auto* rows = csv->add_subcommand("dump", "Print the rows of a CSV file");
  rows->add_option("file", options->file, "The CSV file")->required();
  rows->add_option("--separator", options->separator, "Field separator, one or more characters")
      ->capture_default_str();
  rows->add_flag("--header", options->header, "The first row names the fields");
  rows->add_flag("--json", options->json, "Print the rows as JSON");
  rows->callback([options] { runCsvDump(*options); });
});

}  // namespace

}  // namespace ledgeon::cli
