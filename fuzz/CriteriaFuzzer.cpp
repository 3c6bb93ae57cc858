// Targeting rules from the server, and environment descriptions: JSON of any shape. Whatever the
// bytes, evaluation must end with an answer, never a crash.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Application/CriteriaEvaluator.h"
#include "Utilities/LDateUtilities.h"

using namespace ledgeon;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

CriteriaEvaluatorEnvironment sampleEnvironment() {
  CriteriaEvaluatorEnvironment environment;
  environment.version = "5.10.2";
  environment.systemVersion = "14.1";
  environment.currentDate = LDateUtilities::dateWithYear(2024, 6, 15).value();
  environment.currentTimestamp = environment.currentDate;
  environment.userId = "user-31415926";
  environment.directBIDs = {"00042"};
  environment.allCrashes = {{environment.currentDate, "5.10.2"}};
  environment.bucketStrings = {{"promo", "987654321"}};
  return environment;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 65536) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto rule = CriteriaJSON::parse(text, nullptr, false);
  if (rule.is_discarded()) return 0;
  CriteriaEvaluator evaluator(rule, sampleEnvironment());
  (void)evaluator.environmentSatisfiesCriteria();
  (void)evaluator.environmentSatisfiesDictionary(rule, false);

  const auto fields = nlohmann::json::parse(text, nullptr, false);
  if (auto environment = CriteriaEvaluatorEnvironment::environmentWithJSON(fields, {})) {
    CriteriaEvaluator described(
        CriteriaJSON{{"and", {{{"version_gte", "1"}}, {{"bucket_lt", 50}}}}}, *environment);
    (void)described.environmentSatisfiesCriteria();
  }
  return 0;
}
