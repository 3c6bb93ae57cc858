#include "DataBase/internal/SQLFunctions.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "DataBase/internal/KeyPaths.h"
#include "DataBase/internal/StringMatch.h"
#include "Utilities/Amount.h"

namespace ledgeon::sql {

namespace {

std::string_view textOf(sqlite3_value* value) {
  const auto* data = sqlite3_value_text(value);
  return {reinterpret_cast<const char*>(data), static_cast<size_t>(sqlite3_value_bytes(value))};
}

// Numbers bound from C++ arrive as integers or reals; stored amounts as text.
Amount amountOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return Amount::fromInt64(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return Amount::fromDouble(sqlite3_value_double(value));
    default:
      return Amount::fromString(textOf(value));
  }
}

void decimalCompare(sqlite3_context* context, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  sqlite3_result_int(context, static_cast<int>(amountOf(argv[0]).compare(amountOf(argv[1]))));
}

int decimalCollation(void*, int lengthA, const void* a, int lengthB, const void* b) {
  const Amount x = Amount::fromString(
      std::string_view(static_cast<const char*>(a), static_cast<size_t>(lengthA)));
  const Amount y = Amount::fromString(
      std::string_view(static_cast<const char*>(b), static_cast<size_t>(lengthB)));
  return static_cast<int>(x.compare(y));
}

void stringMatch(sqlite3_context* context, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[1]) == SQLITE_NULL || sqlite3_value_type(argv[2]) == SQLITE_NULL) {
    sqlite3_result_int(context, 0);
    return;
  }
  const auto op = static_cast<match::Operator>(sqlite3_value_int(argv[0]));
  sqlite3_result_int(
      context, match::matches(op, textOf(argv[1]), textOf(argv[2]), sqlite3_value_int(argv[3]) != 0)
                   ? 1
                   : 0);
}

keypath::Aggregate aggregateOf(sqlite3_context* context) {
  return static_cast<keypath::Aggregate>(reinterpret_cast<intptr_t>(sqlite3_user_data(context)));
}

// The fold of one group lives on the heap; the aggregate context holds its address.
void foldStep(sqlite3_context* context, int, sqlite3_value** argv) {
  auto** fold = static_cast<keypath::Fold**>(sqlite3_aggregate_context(context, sizeof(void*)));
  if (!fold) {
    sqlite3_result_error_nomem(context);
    return;
  }
  if (!*fold) *fold = new keypath::Fold(aggregateOf(context));
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    (*fold)->addNull();
  } else {
    (*fold)->add(amountOf(argv[0]));
  }
}

void foldFinal(sqlite3_context* context) {
  auto** fold = static_cast<keypath::Fold**>(sqlite3_aggregate_context(context, 0));
  const keypath::Fold empty(aggregateOf(context));
  const Value result = (fold && *fold) ? (*fold)->result() : empty.result();
  if (fold) delete *fold;
  if (result.isNull()) {
    sqlite3_result_null(context);
  } else if (result.kind() == Value::Kind::Integer) {
    sqlite3_result_int64(context, result.asInteger());
  } else {
    const std::string text = result.asAmount().stringValue();
    sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  }
}

}  // namespace

void registerLedgerFunctions(sqlite3* db) {
  const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
  sqlite3_create_function_v2(db, "decimal_cmp", 2, flags, nullptr, decimalCompare, nullptr, nullptr,
                             nullptr);
  sqlite3_create_function_v2(db, "string_match", 4, flags, nullptr, stringMatch, nullptr, nullptr,
                             nullptr);
  const std::pair<const char*, keypath::Aggregate> folds[] = {
      {"decimal_sum", keypath::Aggregate::Sum},
      {"decimal_min", keypath::Aggregate::Min},
      {"decimal_max", keypath::Aggregate::Max},
      {"decimal_avg", keypath::Aggregate::Average}};
  for (const auto& [name, aggregate] : folds) {
    sqlite3_create_function_v2(db, name, 1, flags,
                               reinterpret_cast<void*>(static_cast<intptr_t>(aggregate)), nullptr,
                               foldStep, foldFinal, nullptr);
  }
  sqlite3_create_collation_v2(db, "DECIMAL", SQLITE_UTF8, nullptr, decimalCollation, nullptr);
}

}  // namespace ledgeon::sql
