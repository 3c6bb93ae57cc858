#include <memory>

#include <gtest/gtest.h>

#include "Application/CriteriaEvaluator.h"
#include "Platform/Preferences.h"
#include "Platform/Services.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon {
namespace {

Date timestamp(const char* iso) { return LDateUtilities::timestampFromISO8601String(iso).value(); }

CriteriaEvaluatorEnvironment makeEnvironment() {
  CriteriaEvaluatorEnvironment environment;
  environment.systemVersion = "13.6.1";
  environment.version = "5.10";
  environment.build = "5102";
  environment.currentDate = LDateUtilities::dateFromISO8601String("2024-06-15").value();
  environment.currentTimestamp = timestamp("2024-06-15T10:30:00Z");
  environment.SKUType = "Premium";
  environment.bundleIdentifier = "org.ledgeon.ledgeon.beta";
  environment.isInternal = true;
  environment.testMode = false;
  environment.TSMsEnabled = true;
  environment.isDocumentOpen = false;
  environment.allCrashes = {{timestamp("2024-06-14T08:00:00Z"), "5.10"},
                            {timestamp("2024-06-01T08:00:00Z"), "5.10"},
                            {timestamp("2024-05-01T08:00:00Z"), "5.9"}};
  environment.firstLaunchTimestamp = timestamp("2023-01-01T00:00:00Z");
  environment.firstLaunchVersion = "5.2.1";
  environment.daysSinceFirstLaunch = 531;
  environment.directBIDs = {"00123", "4567"};
  environment.userId = "user-8675309";
  environment.email = "pat@example.org";
  environment.bucketStrings = {{"saved", "12345678"}};
  environment.entitlementId = "Premium-Annual";
  environment.autoRenewStatus_US = "On";
  environment.primaryProductLine = "Desktop";
  environment.daysSinceExpiration = -30;
  environment.daysUntilExpiration = 30;
  environment.daysUntilExpiration_CA = 5;
  return environment;
}

class CriteriaEvaluatorTest : public ::testing::Test {
 protected:
  CriteriaEvaluatorTest() { Services::shared().setPreferences(preferences_); }

  bool evaluate(const std::string& rule) {
    CriteriaEvaluator evaluator(CriteriaJSON::parse(rule), makeEnvironment());
    return evaluator.environmentSatisfiesCriteria();
  }

  std::shared_ptr<Preferences> preferences_ = std::make_shared<Preferences>();
};

TEST_F(CriteriaEvaluatorTest, EveryKey) {
  const struct {
    const char* rule;
    bool expected;
  } cases[] = {
      {R"({})", true},
      {R"({"supports_criteria": "crash_count_lte"})", true},
      {R"({"supports_criteria": "moon_phase"})", false},
      {R"({"system_version_gte": "13.6"})", true},
      {R"({"system_version_lt": "13.6.1"})", false},
      {R"({"version_gt": "5.9"})", true},  // 5.10 is later than 5.9
      {R"({"version": "5.10.0"})", true},
      {R"({"version_lte": "5.1"})", false},
      {R"({"build_lt": "6000"})", true},
      {R"({"first_launch_version": "5.2.1"})", true},
      {R"({"sku_type": "Premium"})", true},
      {R"({"sku_type": "premium"})", false},
      {R"({"date": "2024-06-15"})", true},
      {R"({"date_gt": "2024-06-14"})", true},
      {R"({"date_lt": "2024-06-15"})", false},
      {R"({"date": "not a date"})", false},
      {R"({"timestamp_gte": "2024-06-15T10:30:00Z"})", true},
      {R"({"timestamp_lt": "2024-06-15T10:00:00Z"})", false},
      {R"({"first_launch_timestamp_lt": "2023-06-01T00:00:00Z"})", true},
      {R"({"days_since_first_launch_gt": 365})", true},
      {R"({"days_since_first_launch": 531.9})", true},
      {R"({"bid": "123"})", true},
      {R"({"bid_direct": 4567})", true},
      {R"({"bid_fern": "any"})", false},
      {R"({"bid": "ANY"})", true},
      {R"({"bid": "999"})", false},
      {R"({"bundle_identifier_contains": "beta"})", true},
      {R"({"bundle_identifier_contains": "BETA"})", false},
      {R"({"email_contains": "@example.org"})", true},
      {R"({"is_internal": 1})", true},
      {R"({"is_internal": false})", false},
      {R"({"test_mode": 0})", true},
      {R"({"tsms_enabled": true})", true},
      {R"({"is_document_open": 0.5})", false},
      {R"({"primary_product_line": "DESKTOP"})", true},
      {R"({"entitlement_id": "premium-annual"})", true},
      {R"({"entitlement_id_us": "premium-annual"})", false},
      {R"({"entitlement_id_ca": ""})", true},
      {R"({"auto_renew_status_us": "on"})", true},
      {R"({"auto_renew_status": "on"})", false},
      {R"({"auto_renew_status_ca": ""})", true},
      {R"({"user_id": "user-8675309"})", true},
      {R"({"user_id": ["someone", "user-8675309"]})", true},
      {R"({"user_id": ["USER-8675309", 7]})", false},
      {R"({"days_since_expiration_range": "-30"})", true},
      {R"({"days_since_expiration_range": ["-40", -20]})", true},
      {R"({"days_until_expiration_range": "10:20"})", false},
      {R"({"days_until_expiration_range_ca": "1;5"})", true},
      {R"({"days_until_expiration_range_us": "0"})", true},
      {R"({"days_since_expiration_range_us": ""})", false},
      {R"({"days_since_expiration_range_ca": "1,2"})", false},
      {R"({"crash_count": 3})", true},
      {R"({"crash_count_gte": 2, "crash_count_days": 30})", true},
      {R"({"crash_count_days": 7, "crash_count": 1})", true},
      {R"({"crash_count": 2, "crash_count_version": "current"})", true},
      {R"({"crash_count": 1, "crash_count_version": "5.9"})", true},
      {R"({"crash_count_lt": 1, "crash_count_days": 7, "crash_count_version": "5.9"})", true},
      {R"({"crash_count": 3, "crash_count_days": 0})", true},
  };
  for (const auto& c : cases) EXPECT_EQ(evaluate(c.rule), c.expected) << c.rule;
}

TEST_F(CriteriaEvaluatorTest, FirstDecidingKeyWinsAndShapesFallBack) {
  const struct {
    const char* rule;
    bool expected;
  } cases[] = {
      // Keys are visited in the order the rule lists them; the first recognised one decides.
      {R"({"version_gte": "5.9", "sku_type": "X"})", true},
      {R"({"sku_type": "X", "version_gte": "5.9"})", false},
      {R"({"unknown": 1, "sku_type": "X"})", false},
      {R"({"sku_type": 7, "version": "5.10"})", true},  // wrong kind: passed over
      {R"({"sku_type": 7})", true},
      {R"({"version_gte": null, "sku_type": "X"})", true},  // null ends with the default
      {R"({"and": []})", true},
      {R"({"or": []})", false},
      {R"({"not": "x"})", true},
      {R"({"not": []})", true},
      {R"({"not": {}})", true},
      {R"({"not": {"sku_type": "Premium"}})", false},
      {R"({"not": null})", true},
      {R"({"and": [{"sku_type": "Premium"}, {"version_gte": "5"}]})", true},
      {R"({"and": [{"sku_type": "Premium"}, 7, "x", {"version_gte": "6"}]})", false},
      {R"({"and": [{}, {"unknown": true}]})", true},
      {R"({"or": [{"sku_type": "X"}, {"is_internal": 1}]})", true},
      {R"({"or": [{"sku_type": "X"}, {}]})", false},
      {R"({"or": [1, "2", [3]]})", false},
      {R"({"and": {"sku_type": "X"}})", true},  // "and" takes a list: passed over
      {R"({"version_gte_lt": "1"})", true},
      {R"({"sku_type_gt": "A"})", true},  // only ordered keys take suffixes
  };
  for (const auto& c : cases) EXPECT_EQ(evaluate(c.rule), c.expected) << c.rule;
}

TEST_F(CriteriaEvaluatorTest, TopLevelOfAnotherShapeIsTheDefault) {
  for (const char* rule : {"[]", "\"text\"", "7", "null", "true"}) {
    CriteriaEvaluator evaluator(CriteriaJSON::parse(rule), makeEnvironment());
    EXPECT_TRUE(evaluator.environmentSatisfiesCriteria()) << rule;
    EXPECT_FALSE(evaluator.environmentSatisfiesDictionary(CriteriaJSON::parse(rule), false));
  }
}

TEST_F(CriteriaEvaluatorTest, DeepNestingEndsWithTheDefault) {
  std::string rule = R"({"sku_type": "Premium"})";
  for (int i = 0; i < 5000; ++i) rule = R"({"not": {"not": )" + rule + "}}";
  CriteriaEvaluator evaluator(CriteriaJSON::parse(rule), makeEnvironment());
  EXPECT_FALSE(evaluator.environmentSatisfiesCriteria());  // the innermost "not" sees its default
}

TEST_F(CriteriaEvaluatorTest, TimestampsEncountered) {
  CriteriaEvaluator evaluator(
      CriteriaJSON::parse(R"({"and": [{"timestamp_gte": "2024-06-01T00:00:00Z"},
                                      {"first_launch_timestamp_lt": "2024-01-01T12:00:00+02:00"},
                                      {"timestamp_lt": "garbage"},
                                      {"crash_count_days": 30, "crash_count_gte": 0}]})"),
      makeEnvironment());
  EXPECT_FALSE(evaluator.environmentSatisfiesCriteria());  // the garbage time stamp fails
  // The "and" stops at the first failure, so the crash window is never read.
  EXPECT_EQ(
      evaluator.timestampsEncountered(),
      (std::vector<Date>{timestamp("2024-06-01T00:00:00Z"), timestamp("2024-01-01T10:00:00Z")}));

  CriteriaEvaluator crashes(
      CriteriaJSON::parse(R"({"crash_count_days": 30, "crash_count_gte": 0})"), makeEnvironment());
  EXPECT_TRUE(crashes.environmentSatisfiesCriteria());
  EXPECT_TRUE(crashes.environmentSatisfiesCriteria());  // cleared at each evaluation
  EXPECT_EQ(crashes.timestampsEncountered(),
            (std::vector<Date>{timestamp("2024-06-16T10:30:00Z")}));

  auto noCrashes = makeEnvironment();
  noCrashes.allCrashes.clear();
  CriteriaEvaluator quiet(CriteriaJSON::parse(R"({"crash_count_days": 30, "crash_count": 0})"),
                          noCrashes);
  EXPECT_TRUE(quiet.environmentSatisfiesCriteria());
  EXPECT_TRUE(quiet.timestampsEncountered().empty());
}

TEST_F(CriteriaEvaluatorTest, BucketsFromUserIdAndRememberedStrings) {
  const struct {
    const char* rule;
    bool expected;
  } cases[] = {
      // userId "user-8675309": digits 8675309.
      {R"({"bucket": 9})", true},
      {R"({"bucket": 30, "bucket_num_digits": 1, "bucket_offset": 1})", false},
      {R"({"bucket": 0, "bucket_num_digits": 1, "bucket_offset": 1})", true},
      {R"({"bucket": 8675309, "bucket_num_digits": 20})", true},
      {R"({"bucket": -1, "bucket_offset": 7})", true},
      {R"({"bucket": 9, "bucket_num_digits": -4, "bucket_offset": -2})", true},
      {R"({"bucket_lt": 50, "bucket_identifier": "saved"})", false},  // 78
      {R"({"bucket_identifier": "saved", "bucket_gte": 50, "bucket_num_digits": 3})", true},
      {R"({"bucket_identifier": 5, "bucket": 9})", true},  // not a string: the userId
  };
  for (const auto& c : cases) EXPECT_EQ(evaluate(c.rule), c.expected) << c.rule;
}

TEST_F(CriteriaEvaluatorTest, NewBucketStringIsSavedAndKept) {
  const CriteriaJSON rule =
      CriteriaJSON::parse(R"({"bucket_identifier": "promo", "bucket_gte": 0})");
  CriteriaEvaluator first(rule, makeEnvironment());
  EXPECT_TRUE(first.environmentSatisfiesCriteria());
  const std::string made = first.environment().bucketStrings.at("promo");
  EXPECT_FALSE(made.empty());
  EXPECT_EQ(made.find_first_not_of("0123456789"), std::string::npos);
  const auto saved =
      preferences_->objectForKey(CriteriaEvaluatorEnvironment::kBucketStringsPreferencesKey);
  ASSERT_TRUE(saved);
  EXPECT_EQ((*saved)["promo"], made);
  EXPECT_EQ((*saved)["saved"], "12345678");

  // The next launch reads the remembered string back and lands in the same bucket.
  auto next = CriteriaEvaluatorEnvironment::currentEnvironment();
  EXPECT_EQ(next.bucketStrings.at("promo"), made);
  const auto bucket = std::stoll(made.substr(made.size() < 2 ? 0 : made.size() - 2));
  const std::string exact =
      R"({"bucket_identifier": "promo", "bucket": )" + std::to_string(bucket) + "}";
  for (int i = 0; i < 3; ++i) {
    CriteriaEvaluator again(CriteriaJSON::parse(exact), next);
    EXPECT_TRUE(again.environmentSatisfiesCriteria());
  }
}

TEST(CriteriaComparisonsTest, OperatorsVersionsRangesAndIdentifiers) {
  using Op = CriteriaOperatorType;
  const struct {
    int result;
    bool lt, lte, gt, gte, eq;
  } operators[] = {{-1, true, true, false, false, false},
                   {0, false, true, false, true, true},
                   {1, false, false, true, true, false}};
  for (const auto& o : operators) {
    EXPECT_EQ(CriteriaEvaluator::comparisonResult(o.result, Op::LessThan), o.lt);
    EXPECT_EQ(CriteriaEvaluator::comparisonResult(o.result, Op::LessThanOrEqual), o.lte);
    EXPECT_EQ(CriteriaEvaluator::comparisonResult(o.result, Op::GreaterThan), o.gt);
    EXPECT_EQ(CriteriaEvaluator::comparisonResult(o.result, Op::GreaterThanOrEqual), o.gte);
    EXPECT_EQ(CriteriaEvaluator::comparisonResult(o.result, Op::Equal), o.eq);
  }
  EXPECT_EQ(static_cast<int>(Op::Equal), 4);
  EXPECT_EQ(static_cast<int>(Op::GreaterThan), 2);

  const struct {
    const char* a;
    const char* b;
    int expected;
  } versions[] = {{"5.10", "5.9", 1},     {"6", "6.0.0", 0}, {"6.0.0.9", "6", 0},
                  {"1.2.3", "1.2.4", -1}, {"", "0", 0},      {"2.x", "2.0", 0},
                  {"10.3b2", "10.3", 0},  {"-1", "0", -1},   {"99999999999999999999", "1", 1},
                  {"1..2", "1.0.2", 0},   {" 7.1", "7.1", 0}};
  for (const auto& v : versions) {
    EXPECT_EQ(CriteriaEvaluator::compareVersion(v.a, v.b), v.expected) << v.a << " vs " << v.b;
  }
  int64_t major = -1, minor = -1, bugfix = -1;
  CriteriaEvaluator::getMajor(&major, &minor, &bugfix, "12.4");
  EXPECT_EQ(major, 12);
  EXPECT_EQ(minor, 4);
  EXPECT_EQ(bugfix, 0);

  const struct {
    const char* range;
    int64_t value;
    bool expected;
  } ranges[] = {{"10:20", 10, true}, {"10:20", 20, true}, {"10:20", 21, false}, {"15", 15, true},
                {"15", 16, false},   {"", 0, false},      {"5,1", 3, false},    {"-5;5", 0, true},
                {"1:2:3", 3, false}, {"x", 0, true},      {":", 0, true},       {"7:", 7, false}};
  for (const auto& r : ranges) {
    EXPECT_EQ(CriteriaEvaluator::rangeString(r.range, r.value), r.expected)
        << r.range << " " << r.value;
  }

  EXPECT_TRUE(CriteriaEvaluator::stringEqualsString("Straße", "STRASSE"));
  EXPECT_TRUE(CriteriaEvaluator::stringEqualsString("", ""));
  EXPECT_FALSE(CriteriaEvaluator::stringEqualsString("a", ""));
  EXPECT_TRUE(CriteriaEvaluator::stringContainsString("abc", ""));
  EXPECT_EQ(CriteriaEvaluator::standardizedBIDStringFromString(" 000123\n"), "123");
  EXPECT_EQ(CriteriaEvaluator::standardizedBIDStringFromString("000"), "0");
}

TEST(CriteriaComparisonsTest, SupportedKeysNameEveryRecognisedKey) {
  const auto& keys = CriteriaEvaluator::supportedCriteriaKeys();
  for (const char* key : {"supports_criteria",
                          "and",
                          "or",
                          "not",
                          "system_version_gte",
                          "version_lt",
                          "build_lte",
                          "first_launch_version_gt",
                          "sku_type",
                          "date",
                          "date_gte",
                          "timestamp_lt",
                          "first_launch_timestamp_gte",
                          "days_since_first_launch_lte",
                          "bid",
                          "bid_direct",
                          "bid_fern",
                          "bundle_identifier_contains",
                          "email_contains",
                          "is_internal",
                          "test_mode",
                          "tsms_enabled",
                          "is_document_open",
                          "bucket_gt",
                          "crash_count_gte",
                          "primary_product_line",
                          "entitlement_id",
                          "entitlement_id_us",
                          "entitlement_id_ca",
                          "auto_renew_status",
                          "auto_renew_status_us",
                          "auto_renew_status_ca",
                          "user_id",
                          "days_since_expiration_range",
                          "days_since_expiration_range_us",
                          "days_since_expiration_range_ca",
                          "days_until_expiration_range",
                          "days_until_expiration_range_us",
                          "days_until_expiration_range_ca",
                          "bucket_identifier",
                          "bucket_num_digits",
                          "bucket_offset",
                          "crash_count_days",
                          "crash_count_version"}) {
    EXPECT_TRUE(CriteriaEvaluator::supportsCriteria(key)) << key;
  }
  EXPECT_FALSE(CriteriaEvaluator::supportsCriteria("sku_type_gt"));
  EXPECT_FALSE(CriteriaEvaluator::supportsCriteria(""));
  // Each key the evaluator lists is one it acts on: an unknown key would be passed over, and a
  // rule made only of it would give the default.
  for (const std::string& key : keys) {
    CriteriaEvaluator evaluator(CriteriaJSON{{"supports_criteria", key}}, {});
    EXPECT_TRUE(evaluator.environmentSatisfiesDictionary(evaluator.criteria(), false)) << key;
  }
}

}  // namespace
}  // namespace ledgeon
