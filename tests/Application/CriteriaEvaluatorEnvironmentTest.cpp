#include <gtest/gtest.h>

#include "Application/CriteriaEvaluatorEnvironment.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

TEST(CriteriaEvaluatorEnvironmentTest, ReadsFieldsFromJSON) {
  const auto json = nlohmann::json::parse(R"({
    "version": "6.1", "SKUType": "Basic", "isInternal": true, "daysSinceExpiration": -3,
    "currentDate": "2024-02-29", "currentTimestamp": "2024-02-29T23:30:00-05:00",
    "firstLaunchTimestamp": "2020-01-01T00:00:00Z", "directBIDs": ["001", "2"],
    "bucketStrings": {"promo": "42"},
    "allCrashes": [{"time": "2024-02-28T10:00:00Z", "version": "6.0"}]})");
  CriteriaEvaluatorEnvironment base;
  base.build = "kept";
  const auto environment = CriteriaEvaluatorEnvironment::environmentWithJSON(json, base);
  ASSERT_TRUE(environment) << environment.error().description();
  EXPECT_EQ(environment->version, "6.1");
  EXPECT_EQ(environment->build, "kept");
  EXPECT_EQ(environment->SKUType, "Basic");
  EXPECT_TRUE(environment->isInternal);
  EXPECT_EQ(environment->daysSinceExpiration, -3);
  EXPECT_EQ(environment->currentDate, LDateUtilities::dateWithYear(2024, 2, 29).value());
  EXPECT_EQ(environment->currentTimestamp,
            LDateUtilities::timestampFromISO8601String("2024-03-01T04:30:00Z").value());
  EXPECT_EQ(environment->directBIDs, (std::set<std::string>{"001", "2"}));
  EXPECT_EQ(environment->bucketStrings.at("promo"), "42");
  ASSERT_EQ(environment->allCrashes.size(), 1u);
  EXPECT_EQ(environment->allCrashes[0].version, "6.0");
}

TEST(CriteriaEvaluatorEnvironmentTest, WrongShapesNameTheField) {
  const struct {
    const char* json;
    const char* message;
  } cases[] = {
      {R"([])", "must be a JSON object"},
      {R"({"colour": "red"})", "unknown field \"colour\""},
      {R"({"version": 6})", "field \"version\" must be a string"},
      {R"({"isInternal": 1})", "field \"isInternal\" must be true or false"},
      {R"({"daysSinceFirstLaunch": 1.5})", "field \"daysSinceFirstLaunch\" must be an integer"},
      {R"({"daysSinceFirstLaunch": 18446744073709551615})", "daysSinceFirstLaunch"},
      {R"({"currentDate": "2024-02-30"})", "field \"currentDate\" must be an ISO 8601 date"},
      {R"({"currentTimestamp": 0})", "currentTimestamp"},
      {R"({"directBIDs": "123"})", "field \"directBIDs\" must be a list of strings"},
      {R"({"fernBIDs": [1]})", "fernBIDs"},
      {R"({"bucketStrings": {"a": 1}})", "bucketStrings"},
      {R"({"allCrashes": [{"time": "2024-01-01T00:00:00Z"}]})", "allCrashes"},
      {R"({"allCrashes": [{"time": "yesterday", "version": "1"}]})", "allCrashes"},
      {R"({"firstLaunchTimestamp": null})", "firstLaunchTimestamp"},
  };
  for (const auto& c : cases) {
    const auto environment =
        CriteriaEvaluatorEnvironment::environmentWithJSON(nlohmann::json::parse(c.json), {});
    ASSERT_FALSE(environment) << c.json;
    EXPECT_NE(environment.error().localizedDescription().find(c.message), std::string::npos)
        << environment.error().localizedDescription();
  }
}

}  // namespace
}  // namespace ledgeon
