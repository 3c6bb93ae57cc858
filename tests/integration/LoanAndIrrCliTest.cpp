#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

nlohmann::json runJson(const std::vector<std::string>& arguments) {
  testing::TempFolder home;
  auto result = testing::runCli(arguments, home.path());
  EXPECT_EQ(result.exitStatus, 0) << result.err;
  return nlohmann::json::parse(result.out);
}

TEST(LoanCli, MortgageSummaryAndSchedule) {
  const auto json = runJson({"loan", "--balance", "200000", "--rate", "6", "--term", "30",
                             "--first-payment", "2025-01-01", "--json"});
  EXPECT_EQ(json["payment"], "1199.11");
  EXPECT_EQ(json["totalPayment"], "1199.11");
  EXPECT_EQ(json["numberOfPayments"], 360);
  EXPECT_EQ(json["totalPrincipal"], "200000.00");
  EXPECT_EQ(json["payoffDate"], "2054-12-01");
  const auto& schedule = json["schedule"];
  ASSERT_EQ(schedule.size(), 360u);
  EXPECT_EQ(schedule[0]["number"], 1);
  EXPECT_EQ(schedule[0]["date"], "2025-01-01");
  EXPECT_EQ(schedule[0]["payment"], "1199.11");
  EXPECT_EQ(schedule[0]["interest"], "1000.00");
  EXPECT_EQ(schedule[0]["principal"], "199.11");
  EXPECT_EQ(schedule[0]["balance"], "199800.89");
  EXPECT_EQ(schedule[359]["balance"], "0.00");
  // Total cost is interest plus principal, to the cent.
  const double interest = std::stod(json["totalInterest"].get<std::string>());
  EXPECT_NEAR(std::stod(json["totalCost"].get<std::string>()), interest + 200000.0, 0.001);

  testing::TempFolder home;
  auto text = testing::runCli(
      {"loan", "--balance", "1000", "--rate", "10", "--term", "10", "--term-unit", "payments",
       "--compounding", "0", "--schedule", "--first-payment", "2025-01-15"},
      home.path());
  EXPECT_EQ(text.exitStatus, 0) << text.err;
  EXPECT_NE(text.out.find("Payment (principal and interest): 110.00"), std::string::npos)
      << text.out;
  EXPECT_NE(text.out.find("Total interest: 100.00"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("2025-10-15"), std::string::npos) << text.out;
}

TEST(LoanCli, ExtraPaymentsShortenTheLoan) {
  const auto json =
      runJson({"loan", "--balance", "200000", "--rate", "6", "--term", "30", "--first-payment",
               "2025-01-01", "--extra-payment", "200", "--extra-principal", "5000", "--json"});
  EXPECT_LT(json["numberOfPayments"].get<int>(), 360);
  EXPECT_EQ(json["schedule"][0]["payment"], "6399.11");
  EXPECT_EQ(json["schedule"][1]["payment"], "1399.11");
}

TEST(IrrCli, RateReturnAndTheCasesWithoutOne) {
  auto json = runJson({"irr", "--start", "2023-06-30:1000", "--end", "2024-06-29:1100", "--json"});
  ASSERT_TRUE(json["irr"].is_string());
  EXPECT_NEAR(std::stod(json["irr"].get<std::string>()), 0.0997, 0.0005);
  EXPECT_EQ(json["roi"], "0.1");

  json = runJson({"irr", "--start", "2023-06-30:1000", "--end", "2024-06-29:0", "--json"});
  EXPECT_EQ(json["irr"], "-1.0");

  json = runJson({"irr", "--start", "2023-06-30:1000", "--end", "2024-06-29:1000", "--flow",
                  "2023-09-01:-50", "--flow", "2024-01-02:50", "--json"});
  EXPECT_TRUE(json["irr"].is_null());

  testing::TempFolder home;
  auto text =
      testing::runCli({"irr", "--start", "2023-06-30:1000", "--end", "2024-06-29:0"}, home.path());
  EXPECT_EQ(text.exitStatus, 0) << text.err;
  EXPECT_NE(text.out.find("Internal rate of return: not available"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("Return on investment: -100.00 %"), std::string::npos) << text.out;
}

TEST(LoanAndIrrCli, BadInputIsRefusedWithAMessage) {
  const struct {
    std::vector<std::string> arguments;
    const char* message;
  } cases[] = {
      {{"loan", "--balance", "1000", "--rate", "5", "--term", "-3"}, "--term"},
      {{"loan", "--balance", "1000", "--rate", "5", "--term", "0"}, "--term"},
      {{"loan", "--balance", "1000", "--rate", "-100", "--term", "3"}, "--rate"},
      {{"loan", "--balance", "1000", "--rate", "-250", "--term", "3"}, "--rate"},
      {{"loan", "--balance", "12,00", "--rate", "5", "--term", "3"}, "--balance \"12,00\""},
      {{"loan", "--balance", "-1000", "--rate", "5", "--term", "3"}, "--balance"},
      {{"loan", "--balance", "1000", "--rate", "five", "--term", "3"}, "--rate \"five\""},
      {{"loan", "--balance", "1000", "--rate", "5", "--term", "3", "--first-payment", "2025-02-30"},
       "--first-payment \"2025-02-30\""},
      {{"loan", "--balance", "1000", "--rate", "5", "--term", "3", "--first-payment", "1/2/2025"},
       "--first-payment"},
      {{"loan", "--balance", "1000", "--rate", "5", "--term", "0.01"}, "no payments"},
      {{"loan", "--balance", "1000", "--rate", "5", "--term", "1e9"}, "too long"},
      {{"loan", "--balance", "1000", "--rate", "1e30", "--term", "30"}, "too large"},
      {{"loan", "--balance", "1000", "--rate", "5", "--term", "60000", "--term-unit", "payments"},
       "too long"},
      {{"loan", "--balance", "1000", "--rate", "5", "--term", "3", "--extra-payment", "-5"},
       "--extra-payment"},
      {{"irr", "--start", "2023-13-01:1000", "--end", "2024-01-01:1100"}, "--start"},
      {{"irr", "--start", "2023-01-01:abc", "--end", "2024-01-01:1100"}, "--start"},
      {{"irr", "--start", "2023-01-01:1000", "--end", "2024-01-01"}, "DATE:AMOUNT"},
      {{"irr", "--start", "2023-01-01:1000", "--end", "2022-01-01:1100"}, "before"},
      {{"irr", "--start", "2023-01-01:1000", "--end", "2024-01-01:1100", "--flow", "2023-05-01:1e"},
       "--flow"},
      {{"irr", "--start", "2023-01-01:1000", "--end", "2024-01-01:1100", "--flow", "2025-05-01:10"},
       "outside the period"},
  };
  testing::TempFolder home;
  for (const auto& c : cases) {
    auto result = testing::runCli(c.arguments, home.path());
    EXPECT_EQ(result.exitStatus, 1) << c.message << ": " << result.err;
    EXPECT_NE(result.err.find(c.message), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("internal error"), std::string::npos) << result.err;
  }
}

}  // namespace
}  // namespace ledgeon
