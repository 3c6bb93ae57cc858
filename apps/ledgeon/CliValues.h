#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "Utilities/Amount.h"
#include "Utilities/Date.h"

namespace ledgeon {
class DataBase;
}  // namespace ledgeon

namespace ledgeon::cli {

// Reading and writing the values subcommands take and print. Parsers throw CommandFailure with
// a message naming the option and the text it was given.

// A locale-free decimal ("1234.56", "-20").
Amount parseAmountArgument(std::string_view option, std::string_view text);
// A calendar date written YYYY-MM-DD.
Date parseDateArgument(std::string_view option, std::string_view text);
// "DATE:AMOUNT", split at the last colon.
std::pair<Date, Amount> parseDatedAmountArgument(std::string_view option, std::string_view text);

// `value` rounded half away from zero to `digits` fraction digits and written with exactly that
// many ("1199.10", "-3.00").
std::string formatFixed(const Amount& value, int digits);
inline std::string formatMoney(const Amount& value) { return formatFixed(value, 2); }
// YYYY-MM-DD.
std::string formatDate(Date date);

// The store "data" of the document package folder `document`, opened for reading and writing.
std::unique_ptr<DataBase> openDocument(const std::string& document);

}  // namespace ledgeon::cli
