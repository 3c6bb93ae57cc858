#include "ImportExport/LIFReader.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "ImportExport/LIFFields.h"
#include "ImportExport/TextFileReader.h"
#include "ImportExport/internal/LIFText.h"
#include "Utilities/LDateUtilities.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

using lif::startsWith;
using lif::value;

LIFReader::LIFReader(ImportLog& log, LIFReaderLookups lookups)
    : log_(log), lookups_(std::move(lookups)), today_(LDateUtilities::currentDate()) {}

Result<std::vector<LIFRecord>> LIFReader::readFile(const std::filesystem::path& path) {
  auto text = TextFileReader::readFile(path);
  if (!text) {
    log_.add(ImportLogSeverity::kError, text.error().localizedDescription());
    return text.error();
  }
  if (text->empty()) {
    Error error = Error::make(kCocoaErrorDomain, 256,
                              "The file \"" + path.filename().string() + "\" is empty.");
    error.userInfo[kFilePathErrorKey] = path.string();
    return error;
  }
  return readText(*text);
}

std::vector<LIFRecord> LIFReader::readText(std::string_view text) {
  std::vector<LIFRecord> records;
  readText(text, [&records](LIFRecord&& record) { records.push_back(std::move(record)); });
  return records;
}

void LIFReader::readText(std::string_view text, const std::function<void(LIFRecord&&)>& receiver) {
  // Everything a read learns about the file starts afresh, so one reader can read again.
  receiver_ = receiver;
  lines_.clear();
  currentAccount_.clear();
  fileAccounts_.clear();
  fileCategories_.clear();
  fileTags_.clear();
  fileSecurityTypes_.clear();
  accountsWithStockSplits_.clear();
  problems_ = 0;
  skippingSection_ = false;
  userAborted_ = false;
  importedInvestments_ = false;
  TextFileReader::forEachLine(text, [this](std::string_view line) {
    lines_.push_back({lines_.size() + 1, line});
    if (line.size() > kLongLineLength) {
      problem(lines_.back(), stringWithFormat("very long line (%lu characters)", line.size()));
    }
  });
  lines_.shrink_to_fit();
  securityPrePass();
  mainPass();
  if (problems_ > kMaximumReportedProblems) {
    log_.add(ImportLogSeverity::kWarning, stringWithFormat("%lu further problems were not listed",
                                                           problems_ - kMaximumReportedProblems));
  }
  receiver_ = nullptr;
}

void LIFReader::emit(LIFRecord&& record) {
  if (receiver_) receiver_(std::move(record));
}

// Securities are read before everything else, so that investment records anywhere in the file
// find them; only headers written exactly so are taken out of the line list.
void LIFReader::securityPrePass() {
  while (true) {
    const auto header = std::find_if(lines_.begin(), lines_.end(), [](const Line& line) {
      return line.text == "!Type:Security";
    });
    if (header == lines_.end()) return;
    const auto start = static_cast<size_t>(header - lines_.begin());
    const size_t next = std::min(importSecurity(start), lines_.size());
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(start),
                 lines_.begin() + static_cast<std::ptrdiff_t>(std::max(next, start + 1)));
  }
}

void LIFReader::mainPass() {
  size_t lastCancelPoll = 0;
  for (size_t i = 0; i < lines_.size();) {
    if (progress_ && i > lastCancelPoll + 10) {
      lastCancelPoll = i;
      if (!progress_(i, lines_.size(), lines_[i].text)) {
        userAborted_ = true;
        return;
      }
    }
    const size_t next = dispatch(i);
    i = std::max(next, i + 1);
  }
}

size_t LIFReader::dispatch(size_t index) {
  const Line& line = lines_[index];
  const std::string_view text = line.text;
  if (!startsWith(text, "!")) {
    if (!skippingSection_ && !lif::isBlank(text)) problem(line, "line outside any section");
    return index + 1;
  }
  skippingSection_ = false;
  if (startsWith(text, "!Account")) return importAccountInformation(index);
  for (const std::string_view bank :
       {"!Type:Bank", "!Type:Cash", "!Type:CCard", "!Type:Oth A", "!Type:Oth L"}) {
    if (startsWith(text, bank)) return importBankTransactions(index, false, false);
  }
  if (startsWith(text, "!Type:Invst")) {
    importedInvestments_ = true;
    return importInvestmentTransactions(index);
  }
  if (startsWith(text, "!Type:Cat")) return importCatList(index);
  if (startsWith(text, "!Type:Class") || startsWith(text, "!Type:Tag")) {
    return importClassList(index);
  }
  if (startsWith(text, "!Type:Prices")) return importPrices(index);
  if (startsWith(text, "!Type:Security")) return importSecurity(index);
  skippingSection_ = true;
  // Sections the import leaves out on purpose are noted; anything else is worth a warning.
  const bool known = startsWith(text, "!Type:Memorized") || startsWith(text, "!Type:Budget") ||
                     startsWith(text, "!Option:") || startsWith(text, "!Clear:");
  logAtLine(known ? ImportLogSeverity::kDetail : ImportLogSeverity::kWarning,
            stringWithFormat(known ? "Section %@ skipped" : "Unknown section %@ skipped",
                             lif::shortened(text)),
            line);
  return index + 1;
}

size_t LIFReader::importAccountInformation(size_t index) {
  currentAccount_.clear();
  LIFAccountList list{lines_[index].number, {}};
  LIFAccountRecord record;
  bool open = false;
  // "L" lines add to the limit's text; it is read once the record is complete.
  std::string creditLimitText;
  const Line* creditLimitLine = nullptr;
  auto finish = [&] {
    if (creditLimitLine != nullptr)
      record.creditLimit = amountAt(*creditLimitLine, creditLimitText);
    creditLimitText.clear();
    creditLimitLine = nullptr;
    if (!record.name.empty()) {
      fileAccounts_.insert(record.name);
      currentAccount_ = record.name;
      list.accounts.push_back(std::move(record));
    }
    record = LIFAccountRecord();
    open = false;
  };
  size_t i = index + 1;
  for (; !isSectionEnd(i); ++i) {
    const Line& line = lines_[i];
    if (lif::isBlank(line.text)) continue;
    if (!open) record.line = line.number;
    open = true;
    const std::string_view field = value(line.text);
    switch (line.text.front()) {
      case 'N':
        record.name = std::string(field);
        break;
      case 'T': {
        const auto type = LIFFields::accountType(field);
        if (!type) {
          logAtLine(ImportLogSeverity::kWarning,
                    stringWithFormat("Unrecognized account type %@", field), line);
          if (!list.accounts.empty()) emit(std::move(list));
          skippingSection_ = true;
          return i;
        }
        record.typeText = std::string(field);
        record.accountType = *type;
        break;
      }
      case 'D':
        record.description = std::string(field);
        break;
      case 'L':
        creditLimitText += field;
        creditLimitLine = &line;
        break;
      case '$':
      case 'B': {
        const Amount balance = LIFFields::balance(field);
        if (balance.isNaN()) problem(line, stringWithFormat("balance %@ is not a number", field));
        record.statementBalance = balance;
        break;
      }
      case '^':
        finish();
        break;
      default:
        break;
    }
  }
  if (open) {
    problem(lines_[std::min(i, lines_.size()) - 1], "account record ends without \"^\"");
    finish();
  }
  emit(std::move(list));
  return i;
}

template <typename Record, typename Field, typename Finish>
size_t LIFReader::readListSection(size_t index, Field field, Finish finish) {
  Record record;
  bool open = false;
  size_t i = index + 1;
  for (; !isSectionEnd(i); ++i) {
    const Line& line = lines_[i];
    if (lif::isBlank(line.text)) continue;
    if (!open) record.line = line.number;
    open = true;
    if (line.text.front() == '^') {
      finish(std::move(record));
      record = Record();
      open = false;
    } else {
      field(record, line.text.front(), value(line.text), line);
    }
  }
  if (open) finish(std::move(record));
  return i;
}

size_t LIFReader::importCatList(size_t index) {
  auto field = [this](LIFCategory& category, char letter, std::string_view text, const Line& line) {
    switch (letter) {
      case 'N':
        category.name = std::string(text);
        break;
      case 'D':
        category.description = std::string(text);
        break;
      case 'I':
        category.type = 2;
        break;
      case 'T':
        if (!category.taxRefUS) category.taxRefUS = 9999;
        break;
      case 'R':
        // A reference that is no number is left out rather than read as 0.
        if (lif::startsWithInteger(text)) {
          category.taxRefUS = lif::integerValue(text);
        } else {
          problem(line, stringWithFormat("tax reference %@ is not a number", text));
        }
        break;
      default:
        break;
    }
  };
  auto finish = [this](LIFCategory&& category) {
    std::string slashed = category.name;
    std::replace(slashed.begin(), slashed.end(), '*', '/');
    if (!category.name.empty() && !categoryExists(category.name) && !categoryExists(slashed)) {
      fileCategories_.insert(category.name);
      emit(std::move(category));
    }
  };
  return readListSection<LIFCategory>(index, field, finish);
}

size_t LIFReader::importClassList(size_t index) {
  auto field = [](LIFTag& tag, char letter, std::string_view text, const Line&) {
    if (letter == 'N') tag.name = std::string(text);
    if (letter == 'D') tag.description = std::string(text);
  };
  auto finish = [this](LIFTag&& tag) {
    if (!tag.name.empty() && !tagExists(tag.name)) {
      fileTags_.insert(tag.name);
      emit(std::move(tag));
    }
  };
  return readListSection<LIFTag>(index, field, finish);
}

size_t LIFReader::importSecurity(size_t index) {
  auto field = [](LIFSecurity& security, char letter, std::string_view text, const Line&) {
    switch (letter) {
      case 'N':
        security.name = std::string(text);
        break;
      case 'S':
        security.ticker = std::string(text);
        break;
      case 'T':
        security.type = LIFFields::securityType(text);
        break;
      default:
        break;
    }
  };
  auto finish = [this](LIFSecurity&& security) {
    if (!security.name.empty()) {
      fileSecurityTypes_[security.name] = security.type;
      emit(std::move(security));
    }
  };
  return readListSection<LIFSecurity>(index, field, finish);
}

size_t LIFReader::importPrices(size_t index) {
  size_t i = index + 1;
  for (; !isSectionEnd(i); ++i) {
    const Line& line = lines_[i];
    if (lif::isBlank(line.text) || startsWith(line.text, "^")) continue;
    const std::vector<std::string_view> parts = lif::split(line.text, ',');
    if (parts.size() != 3) {
      logAtLine(ImportLogSeverity::kDetail, "Price line without exactly three parts ignored", line);
      continue;
    }
    LIFPrice price;
    price.line = line.number;
    price.ticker = lif::withoutQuotes(parts[0]);
    price.price = Amount::fromString(lif::trimmed(parts[1]));
    if (price.price.isNaN()) {
      problem(line, stringWithFormat("price %@ is not a number", parts[1]));
    }
    price.date = LIFFields::priceDate(parts[2]);
    if (!price.date) problem(line, stringWithFormat("date %@ could not be read", parts[2]));
    emit(std::move(price));
  }
  return i;
}

bool LIFReader::accountExists(const std::string& name) const {
  return fileAccounts_.count(name) > 0 || (lookups_.accountExists && lookups_.accountExists(name));
}

bool LIFReader::categoryExists(const std::string& name) const {
  return fileCategories_.count(name) > 0 ||
         (lookups_.categoryExists && lookups_.categoryExists(name));
}

bool LIFReader::tagExists(const std::string& name) const {
  return fileTags_.count(name) > 0 || (lookups_.tagExists && lookups_.tagExists(name));
}

std::optional<int> LIFReader::securityTypeNamed(const std::string& name) const {
  if (const auto found = fileSecurityTypes_.find(name); found != fileSecurityTypes_.end()) {
    return found->second;
  }
  return lookups_.securityType ? lookups_.securityType(name) : std::nullopt;
}

bool LIFReader::isSectionEnd(size_t index) const {
  return index >= lines_.size() || startsWith(lines_[index].text, "!");
}

Amount LIFReader::amountAt(const Line& line, std::string_view text) {
  const Amount amount = LIFFields::amount(text);
  if (amount.isNaN()) problem(line, stringWithFormat("amount %@ is not a number", text));
  return amount;
}

std::optional<Date> LIFReader::dateAt(const Line& line, std::string_view text) {
  auto date = LIFFields::transactionDate(text);
  if (!date) problem(line, stringWithFormat("date %@ could not be read", text));
  return date;
}

void LIFReader::problem(const Line& line, const std::string& what) {
  if (++problems_ > kMaximumReportedProblems) return;
  log_.add(ImportLogSeverity::kWarning, line.text.empty()
                                            ? stringWithFormat("Line %lu: %@", line.number, what)
                                            : stringWithFormat("Line %lu: %@: %@", line.number,
                                                               what, lif::shortened(line.text)));
}

void LIFReader::logAtLine(ImportLogSeverity severity, const std::string& text, const Line& line) {
  if (severity >= ImportLogSeverity::kWarning && ++problems_ > kMaximumReportedProblems) return;
  log_.add(severity, text)
      .addChild(ImportLogSeverity::kDetail,
                stringWithFormat("Line %lu: %@", line.number, lif::shortened(line.text)));
}

}  // namespace ledgeon
