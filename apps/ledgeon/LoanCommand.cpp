#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "CliValues.h"
#include "DemoStep.h"
#include "Loans/LAmortizationController.h"
#include "Subcommand.h"
#include "Utilities/LDateUtilities.h"

namespace ledgeon::cli {

namespace {

struct LoanOptions {
  std::string balance;
  std::string rate;
  std::string term;
  std::string termUnit = "years";
  unsigned paymentType = LAmortizationController::kMonthlyPaymentType;
  unsigned compounding = LAmortizationController::kDefaultCompoundingPeriod;
  bool simple = false;
  std::string firstPayment;
  std::string extraPayment;
  std::string extraPrincipal;
  bool schedule = false;
  bool json = false;
};

Amount nonNegativeAmount(const char* option, const std::string& text) {
  if (text.empty()) return Amount::zero();
  const Amount value = parseAmountArgument(option, text);
  if (value.isNegative()) throw CommandFailure(std::string(option) + " must not be negative");
  return value;
}

// The first day of next month: a loan taken out today usually starts paying then.
Date defaultFirstPayment() {
  const auto first = LDateUtilities::firstDayOfMonthForDate(LDateUtilities::currentDate());
  const auto next = first ? LDateUtilities::dateByAddingMonths(*first, 1) : std::nullopt;
  return next.value_or(LDateUtilities::currentDate());
}

void configure(LAmortizationController& loan, const LoanOptions& options) {
  const Amount balance = parseAmountArgument("--balance", options.balance);
  if (!balance.isPositive()) throw CommandFailure("--balance must be more than zero");
  const Amount rate = parseAmountArgument("--rate", options.rate);
  if (!rate.isGreaterThan(Amount::fromInt64(-100))) {
    throw CommandFailure("--rate must be more than -100 (a percentage)");
  }
  const Amount term = parseAmountArgument("--term", options.term);
  if (!term.isPositive()) throw CommandFailure("--term must be more than zero");

  loan.setOpeningBalance(balance);
  loan.setInterestRate(rate);
  loan.setLoanTerm(term);
  loan.setDurationType(options.termUnit == "payments" ? LoanDurationType::Payments
                                                      : LoanDurationType::Years);
  loan.setPaymentPeriod(options.paymentType);
  loan.setCompoundingPeriod(options.compounding);
  loan.setIsSimple(options.simple);
  loan.setFirstPaymentDate(options.firstPayment.empty()
                               ? defaultFirstPayment()
                               : parseDateArgument("--first-payment", options.firstPayment));

  if (loan.scheduledResults().basePIPayment.isNaN()) {
    throw CommandFailure("--rate " + options.rate + " and --balance " + options.balance +
                         " give a payment too large to compute");
  }

  LAmortizationWhatIf whatIf;
  whatIf.extraPayment = nonNegativeAmount("--extra-payment", options.extraPayment);
  whatIf.extraPrincipal = nonNegativeAmount("--extra-principal", options.extraPrincipal);
  if (whatIf.extraPayment.isPositive()) whatIf.flags |= LAmortizationWhatIf::kExtraPayment;
  if (whatIf.extraPrincipal.isPositive()) whatIf.flags |= LAmortizationWhatIf::kExtraPrincipal;
  loan.setWhatIf(whatIf);

  const Amount years = loan.numYearsInLoanForTerm(term, loan.durationType());
  if (LAmortizationController::numPaymentsForYears(years, options.paymentType) == 0) {
    const Amount payments =
        Amount::multiply(years,
                         Amount::fromUInt64(LAmortizationController::paymentsPerYearForPaymentType(
                             options.paymentType)),
                         RoundingMode::Plain)
            .value;
    const bool tooLong =
        payments.isGreaterThan(Amount::fromUInt64(LAmortizationController::kMaxNumberOfPayments));
    throw CommandFailure(
        "--term " + options.term + " " + options.termUnit +
        (tooLong ? " is too long: more than " +
                       std::to_string(LAmortizationController::kMaxNumberOfPayments) + " payments"
                 : " gives no payments at this frequency"));
  }
}

nlohmann::json resultsJson(const LAmortizationResults& results) {
  nlohmann::json schedule = nlohmann::json::array();
  for (const auto& entry : results.amortizationSchedule) {
    schedule.push_back({{"number", entry.paymentNumber},
                        {"date", formatDate(entry.paymentDate)},
                        {"payment", formatMoney(entry.payment)},
                        {"principal", formatMoney(entry.principal)},
                        {"interest", formatMoney(entry.interest)},
                        {"balance", formatMoney(entry.balance)}});
  }
  return {{"payment", formatMoney(results.basePIPayment)},
          {"totalPayment", formatMoney(results.totalPayment)},
          {"numberOfPayments", results.numberOfPaymentsRemaining},
          {"totalInterest", formatMoney(results.totalInterest)},
          {"totalPrincipal", formatMoney(results.totalPrincipal)},
          {"totalCost", formatMoney(results.totalCost)},
          {"payoffDate", results.payoffDate ? nlohmann::json(formatDate(*results.payoffDate))
                                            : nlohmann::json(nullptr)},
          {"schedule", std::move(schedule)}};
}

void printSummary(std::ostream& out, const LAmortizationResults& results) {
  out << "Payment (principal and interest): " << formatMoney(results.basePIPayment) << '\n';
  if (results.totalPayment != results.basePIPayment) {
    out << "Total payment: " << formatMoney(results.totalPayment) << '\n';
  }
  out << "Number of payments: " << results.numberOfPaymentsRemaining << '\n';
  out << "Total interest: " << formatMoney(results.totalInterest) << '\n';
  out << "Total cost: " << formatMoney(results.totalCost) << '\n';
  out << "Payoff date: " << (results.payoffDate ? formatDate(*results.payoffDate) : "none") << '\n';
}

void printSchedule(std::ostream& out, const LAmortizationResults& results) {
  out << fmt::format("{:>5}  {:<10}  {:>12}  {:>12}  {:>12}  {:>14}\n", "No.", "Date", "Payment",
                     "Principal", "Interest", "Balance");
  for (const auto& entry : results.amortizationSchedule) {
    out << fmt::format("{:>5}  {:<10}  {:>12}  {:>12}  {:>12}  {:>14}\n", entry.paymentNumber,
                       formatDate(entry.paymentDate), formatMoney(entry.payment),
                       formatMoney(entry.principal), formatMoney(entry.interest),
                       formatMoney(entry.balance));
  }
}

void runLoan(const LoanOptions& options) {
  LAmortizationController loan;
  configure(loan, options);
  const bool withExtras = loan.whatIf().flags != 0;
  const LAmortizationResults& results = withExtras ? loan.whatIfResults() : loan.scheduledResults();
  if (options.json) {
    std::cout << resultsJson(results).dump(2) << '\n';
    return;
  }
  printSummary(std::cout, results);
  if (withExtras) {
    const auto& scheduled = loan.scheduledResults();
    std::cout << "Without the extra payments: " << scheduled.numberOfPaymentsRemaining
              << " payments, total interest " << formatMoney(scheduled.totalInterest) << ", payoff "
              << (scheduled.payoffDate ? formatDate(*scheduled.payoffDate) : "none") << '\n';
  }
  if (options.schedule) printSchedule(std::cout, results);
}

const SubcommandRegistration registration(710, [](CLI::App& app) {
  auto* loan =
      app.add_subcommand("loan", "Loan payment, totals, payoff date and amortisation schedule");
  auto options = std::make_shared<LoanOptions>();
  loan->add_option("--balance", options->balance, "Amount borrowed")->required();
  loan->add_option("--rate", options->rate, "Annual interest rate in percent (6 for 6 %)")
      ->required();
  loan->add_option("--term", options->term, "Length of the loan")->required();
  loan->add_option("--term-unit", options->termUnit, "years (default) or payments")
      ->check(CLI::IsMember({"years", "payments"}));
  loan->add_option("--payment-type", options->paymentType,
                   "Payments a year: 1 yearly, 2 half-yearly, 3 quarterly, 4 every two months, "
                   "5 monthly (default), 6 every four weeks, 7 twice a month, 8 every two weeks, "
                   "9 weekly; any other number is monthly");
  loan->add_option("--compounding", options->compounding,
                   "0 none (add-on loan), 1 daily, 2 monthly (default), 3 semi-annual, "
                   "4 annual; any other number is monthly");
  loan->add_flag("--simple", options->simple, "Simple-interest loan");
  loan->add_option("--first-payment", options->firstPayment,
                   "Date of the first payment, YYYY-MM-DD (default: first of next month)");
  loan->add_option("--extra-payment", options->extraPayment, "Added to every payment");
  loan->add_option("--extra-principal", options->extraPrincipal,
                   "Paid once toward principal, with the first payment");
  loan->add_flag("--schedule", options->schedule, "Print the payment-by-payment schedule");
  loan->add_flag("--json", options->json,
                 "Print the results and the schedule as JSON (amounts as decimal strings)");
  loan->footer(
      "Example: ledgeon loan --balance 200000 --rate 6 --term 30 --first-payment "
      "2025-01-01");
  loan->callback([options] { runLoan(*options); });
});

const DemoStepRegistration demoStep(700, "Loan amortisation", [](DemoContext& context) {
  LoanOptions options;
  options.balance = "250000";
  options.rate = "6.5";
  options.term = "30";
  options.firstPayment = "2025-01-01";
  context.out << "A 30-year mortgage of 250,000.00 at 6.5 %, monthly payments from 2025-01-01:\n";
  LAmortizationController loan;
  configure(loan, options);
  printSummary(context.out, loan.scheduledResults());
  options.extraPayment = "200";
  LAmortizationController faster;
  configure(faster, options);
  const auto& whatIf = faster.whatIfResults();
  context.out << "Paying 200.00 more each month: " << whatIf.numberOfPaymentsRemaining
              << " payments, total interest " << formatMoney(whatIf.totalInterest) << ", payoff "
              << (whatIf.payoffDate ? formatDate(*whatIf.payoffDate) : "none") << '\n';
});

}  // namespace

}  // namespace ledgeon::cli
