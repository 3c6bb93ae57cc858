// Investment return and loan schedules, each against the same computation in plain doubles:
// Irr/floor solves the same 10,000 streams with durations precomputed and no decimals or dates;
// Schedule/floor amortises the same 40-year weekly loan in doubles with day numbers for dates.
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "Investments/IRRStream.h"
#include "Loans/LAmortizationController.h"
#include "Utilities/LDateUtilities.h"

namespace {

using ledgeon::Amount;
using ledgeon::Date;
using ledgeon::LDateUtilities;

constexpr int kStreams = 10000;
constexpr int kMonths = 120;

struct StreamData {
  double startingValue;
  double endingValue;
  std::vector<double> flows;  // flows[m] falls m + 1 months after the start
};

// Holdings that grow by a random monthly return with random contributions and withdrawals.
const std::vector<StreamData>& streams() {
  static const std::vector<StreamData> data = [] {
    std::mt19937_64 random(20240630);
    std::uniform_real_distribution<double> start(10000, 100000);
    std::normal_distribution<double> monthlyReturn(0.006, 0.04);
    std::uniform_real_distribution<double> flow(-1000, 400);
    std::vector<StreamData> all(kStreams);
    for (auto& stream : all) {
      stream.startingValue = std::round(start(random) * 100) / 100;
      double value = stream.startingValue;
      for (int m = 0; m < kMonths; ++m) {
        const double cash = std::round(flow(random) * 100) / 100;
        value = value * (1 + monthlyReturn(random)) - cash;
        if (value < 0) value = 0;
        stream.flows.push_back(cash);
      }
      stream.endingValue = std::round(value * 100) / 100;
    }
    return all;
  }();
  return data;
}

Date startDate() { return *LDateUtilities::dateWithYear(2014, 1, 1); }
const std::vector<Date>& flowDates() {
  static const std::vector<Date> dates = [] {
    std::vector<Date> all;
    for (int m = 1; m <= kMonths; ++m)
      all.push_back(*LDateUtilities::dateByAddingMonths(startDate(), m));
    return all;
  }();
  return dates;
}

void BM_IrrStreams(benchmark::State& state) {
  const auto& data = streams();
  const auto& dates = flowDates();
  const Date end = dates.back();
  for (auto _ : state) {
    int answered = 0;
    for (const auto& stream : data) {
      ledgeon::IRRStream irr(startDate(), Amount::fromDouble(stream.startingValue), end,
                             Amount::fromDouble(stream.endingValue));
      for (int m = 0; m < kMonths; ++m) {
        irr.addIRRStreamEvent(dates[static_cast<size_t>(m)],
                              Amount::fromDouble(stream.flows[static_cast<size_t>(m)]));
      }
      answered += irr.calculateIrrFromStream().has_value() ? 1 : 0;
    }
    benchmark::DoNotOptimize(answered);
  }
  state.SetItemsProcessed(state.iterations() * kStreams);
}
BENCHMARK(BM_IrrStreams)->Name("Irr/IRRStream")->Unit(benchmark::kMillisecond);

// The same search on plain doubles.
struct PlainStream {
  std::vector<std::pair<double, double>> terms;  // amount, duration
  std::optional<double> value(double rate) const {
    if (!(1 + rate > 0)) return std::nullopt;
    const double log = std::log(1 + rate);
    double npv = 0;
    for (const auto& [amount, duration] : terms) npv += amount * std::exp(duration * log);
    return npv;
  }
};

std::optional<double> plainIrr(const PlainStream& s) {
  double ratePositive = 0, valuePositive = 0, rateNegative = 0, valueNegative = 0;
  bool found = false;
  std::optional<std::pair<double, double>> previous;
  for (double rate : {-0.99, 1.0, 10.0, 100.0}) {
    auto v = s.value(rate);
    if (!v) continue;
    if (previous && (previous->second < 0) != (*v < 0)) {
      std::tie(ratePositive, valuePositive) = *v < 0 ? *previous : std::make_pair(rate, *v);
      std::tie(rateNegative, valueNegative) = *v < 0 ? std::make_pair(rate, *v) : *previous;
      found = true;
      break;
    }
    previous = std::make_pair(rate, *v);
  }
  if (!found) return std::nullopt;
  double r0 = ratePositive, v0 = valuePositive, r1 = rateNegative, v1 = valueNegative;
  if (std::fabs(v0) < std::fabs(v1)) {
    std::swap(r0, r1);
    std::swap(v0, v1);
  }
  if (std::fabs(v1) <= 0.01) return r1;
  for (int step = 0; step < 100; ++step) {
    if (!(std::fabs(r1 - r0) > 0) || !(std::fabs(v1 - v0) > 0)) break;
    double rate = r1 - v1 * (r1 - r0) / (v1 - v0);
    auto v = s.value(rate);
    if (!v) return std::nullopt;
    if (*v < 0 ? *v > valueNegative : *v < valuePositive) {
      (*v < 0 ? rateNegative : ratePositive) = rate;
      (*v < 0 ? valueNegative : valuePositive) = *v;
    }
    if ((*v < 0) == (v1 < 0)) {
      rate = (ratePositive + rateNegative) / 2;
      v = s.value(rate);
      if (!v) return std::nullopt;
      if (*v < 0 ? *v > valueNegative : *v < valuePositive) {
        (*v < 0 ? rateNegative : ratePositive) = rate;
        (*v < 0 ? valueNegative : valuePositive) = *v;
      }
    }
    const bool settled = std::fabs(rate - r1) < 0.0005 || std::fabs(*v) <= 0.01;
    r0 = r1;
    v0 = v1;
    r1 = rate;
    v1 = *v;
    if (settled) break;
  }
  return std::fabs(v1) <= 0.01 ? std::optional<double>(r1) : std::nullopt;
}

// The floor: durations known in advance, the search on doubles only.
void BM_IrrFloor(benchmark::State& state) {
  const auto& data = streams();
  const auto& dates = flowDates();
  const Date end = dates.back();
  const auto years = [&](Date date) {
    return static_cast<double>(LDateUtilities::numberOfDaysFromDate(date, end) + 1) / 365.0;
  };
  std::vector<PlainStream> plain(data.size());
  for (size_t k = 0; k < data.size(); ++k) {
    plain[k].terms.emplace_back(-data[k].startingValue, years(startDate()) + 1.0 / 365.0);
    plain[k].terms.emplace_back(data[k].endingValue, 1.0 / 365.0);
    for (int m = 0; m < kMonths; ++m) {
      plain[k].terms.emplace_back(data[k].flows[static_cast<size_t>(m)],
                                  years(dates[static_cast<size_t>(m)]));
    }
  }
  for (auto _ : state) {
    int answered = 0;
    for (const auto& stream : plain) answered += plainIrr(stream).has_value() ? 1 : 0;
    benchmark::DoNotOptimize(answered);
  }
  state.SetItemsProcessed(state.iterations() * kStreams);
}
BENCHMARK(BM_IrrFloor)->Name("Irr/floor")->Unit(benchmark::kMillisecond);

// 250,000 at 6.5 % over 40 years, paid weekly, compounded monthly: 2,080 payments.
void BM_WeeklySchedule(benchmark::State& state) {
  for (auto _ : state) {
    ledgeon::LAmortizationController loan;
    loan.setOpeningBalance(Amount::fromInt64(250000));
    loan.setInterestRate(Amount::fromString("6.5"));
    loan.setLoanTerm(Amount::fromInt64(40));
    loan.setPaymentPeriod(9);
    loan.setFirstPaymentDate(*LDateUtilities::dateWithYear(2025, 1, 6));
    const auto& results = loan.scheduledResults();
    benchmark::DoNotOptimize(results.totalInterest);
    if (results.amortizationSchedule.size() != 2080) state.SkipWithError("wrong schedule length");
  }
}
BENCHMARK(BM_WeeklySchedule)
    ->Name("Schedule/LAmortizationController")
    ->Unit(benchmark::kMicrosecond);

struct PlainEntry {
  int number;
  int64_t day;
  double payment, principal, interest, balance;
};

void BM_WeeklyScheduleFloor(benchmark::State& state) {
  for (auto _ : state) {
    const double rate = std::pow(1 + 0.065 / 12, 12.0 / 52.0) - 1;
    const int n = 40 * 52;
    const double growth = std::pow(1 + rate, n);
    const double payment = std::ceil(250000 * rate * growth / (growth - 1) * 100) / 100;
    std::vector<PlainEntry> schedule;
    double balance = 250000;
    double totalInterest = 0;
    int64_t day = 9136;  // 2025-01-06 as days since 2000-01-01
    for (int k = 0; k < n && balance > 0; ++k, day += 7) {
      const double interest = std::round(balance * rate * 100) / 100;
      double principal = std::min(payment - interest, balance);
      balance = std::round((balance - principal) * 100) / 100;
      totalInterest += interest;
      schedule.push_back({k + 1, day, principal + interest, principal, interest, balance});
    }
    benchmark::DoNotOptimize(totalInterest);
    benchmark::DoNotOptimize(schedule.data());
  }
}
BENCHMARK(BM_WeeklyScheduleFloor)->Name("Schedule/floor")->Unit(benchmark::kMicrosecond);

}  // namespace
