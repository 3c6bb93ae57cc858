#include "CliValues.h"

#include <filesystem>

#include "DataBase/DataBase.h"
#include "Subcommand.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon::cli {

namespace {

std::string quoted(std::string_view option, std::string_view text) {
  return std::string(option) + " \"" + std::string(text) + "\"";
}

bool isPlainDate(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (i != 4 && i != 7 && (text[i] < '0' || text[i] > '9')) return false;
  }
  return true;
}

}  // namespace

Amount parseAmountArgument(std::string_view option, std::string_view text) {
  const Amount value = Amount::fromString(text);
  if (value.isNaN()) throw CommandFailure(quoted(option, text) + " is not an amount");
  return value;
}

Date parseDateArgument(std::string_view option, std::string_view text) {
  auto date = isPlainDate(text) ? LDateUtilities::dateFromISO8601String(text) : std::nullopt;
  if (!date) throw CommandFailure(quoted(option, text) + " is not a date (YYYY-MM-DD)");
  return *date;
}

std::pair<Date, Amount> parseDatedAmountArgument(std::string_view option, std::string_view text) {
  const auto colon = text.rfind(':');
  if (colon == std::string_view::npos) {
    throw CommandFailure(quoted(option, text) + " is not DATE:AMOUNT (2024-01-31:1000.00)");
  }
  const Date date = parseDateArgument(option, text.substr(0, colon));
  return {date, parseAmountArgument(option, text.substr(colon + 1))};
}

std::string formatFixed(const Amount& value, int digits) {
  if (value.isNaN()) return "NaN";
  std::string text = Amount::roundToScale(value, digits, RoundingMode::Plain).value.stringValue();
  if (digits <= 0) return text;
  auto point = text.find('.');
  if (point == std::string::npos) {
    text += '.';
    point = text.size() - 1;
  }
  const size_t have = text.size() - point - 1;
  if (have < static_cast<size_t>(digits)) text.append(static_cast<size_t>(digits) - have, '0');
  return text;
}

std::string formatDate(Date date) { return LDateUtilities::ISO8601StringFromDate(date); }

std::unique_ptr<DataBase> openDocument(const std::string& document) {
  const std::filesystem::path store = std::filesystem::path(document) / "data";
  if (!std::filesystem::is_directory(document)) {
    throw CommandFailure(document + ": not a document package (expected a folder)");
  }
  auto opened = DataBase::initWithFileURL(store, false);
  if (!opened) throw CommandFailure(opened.error().localizedDescription());
  return std::move(opened).value();
}

}  // namespace ledgeon::cli
