// Amount and LArithmetic beside the raw 128-bit integer operation they are built on. Operands are
// money-like (up to 12 digits, two decimals, signs at random) in a table small enough to stay in
// the first-level cache.
//
// Every benchmark runs its operation once per table entry per iteration, so the benchmark loop
// itself costs the same tiny amount everywhere. Floors and variants do the same work around the
// operation: they load the same entries, keep no dependence between entries unless the group is
// about one (Sum), and store every result into an output array; a variant also folds the
// calculation error it was given into a flag, as a caller that checks it would.
#include <array>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "Utilities/Amount.h"
#include "Utilities/LArithmetic.h"

namespace ledgeon {
namespace {

constexpr size_t kCount = 256;

struct Operands {
  std::array<UInt128, kCount> rawA{};
  std::array<UInt128, kCount> rawB{};
  std::array<Amount, kCount> a{};
  std::array<Amount, kCount> b{};
  std::array<std::string, kCount> text{};

  Operands() {
    std::mt19937_64 random(42);
    std::uniform_int_distribution<uint64_t> big(1, 999'999'999'999ULL);
    std::uniform_int_distribution<uint64_t> small(1, 99'999ULL);
    std::bernoulli_distribution negative(0.3);
    for (size_t i = 0; i < kCount; ++i) {
      rawA[i] = big(random);
      rawB[i] = small(random);
      a[i] = Amount::fromParts(rawA[i], -2, negative(random));
      b[i] = Amount::fromParts(rawB[i], -2, negative(random));
      text[i] = a[i].stringValue();
    }
  }
};

const Operands& operands() {
  static const Operands instance;
  return instance;
}

// Where results go. The arrays are handed to the optimiser as escaping, so no store is dropped.
struct Outputs {
  std::array<UInt128, kCount> raw{};
  std::array<Amount, kCount> amount{};
  std::array<bool, kCount> flag{};
  std::array<ComparisonResult, kCount> order{};
};

Outputs& outputs() {
  static Outputs instance;
  return instance;
}

// Runs `operation(o, out, i)` for every entry of the table per iteration; it returns the error
// flag of the entry (0 for floors), which is folded and kept alive with the outputs.
template <typename Operation>
void run(benchmark::State& state, Operation operation) {
  const auto& o = operands();
  auto& out = outputs();
  for (auto _ : state) {
    unsigned errors = 0;
    for (size_t i = 0; i < kCount; ++i) errors |= operation(o, out, i);
    benchmark::DoNotOptimize(errors);
    benchmark::DoNotOptimize(&out);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kCount));
}

unsigned flagOf(const Calculation& c) { return static_cast<unsigned>(c.error); }

// Add: one unsigned 128-bit addition per entry, stored.
void addFloor(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.raw[i] = o.rawA[i] + o.rawB[i];
    return 0U;
  });
}
void addAmount(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    Calculation c = Amount::add(o.a[i], o.b[i], RoundingMode::Bankers);
    out.amount[i] = c.value;
    return flagOf(c);
  });
}
// The same with the result held in a const local: GCC 12 does not break a const aggregate into
// registers, so the result goes through the stack and reading it back waits for the stores.
void addAmountConstLocal(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    const Calculation c = Amount::add(o.a[i], o.b[i], RoundingMode::Bankers);
    out.amount[i] = c.value;
    return flagOf(c);
  });
}
void subtractAmount(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    Calculation c = Amount::subtract(o.a[i], o.b[i], RoundingMode::Bankers);
    out.amount[i] = c.value;
    return flagOf(c);
  });
}
void addLArithmetic(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    LArithmetic sum(o.a[i]);
    sum.addDecimalValue(o.b[i]);
    out.amount[i] = sum.decimalValue();
    return 0U;  // LArithmetic logs its errors itself
  });
}

// Sum: a running total over the table, reset every pass: each addition waits for the previous
// one, so this measures the latency of one addition where Add measures throughput.
template <typename Step>
void runSum(benchmark::State& state, Step step) {
  const auto& o = operands();
  auto& out = outputs();
  for (auto _ : state) {
    step(o, out);
    benchmark::DoNotOptimize(&out);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kCount));
}
void sumFloor(benchmark::State& s) {
  runSum(s, [](const Operands& o, Outputs& out) {
    UInt128 total = 0;
    for (size_t i = 0; i < kCount; ++i) total += o.rawA[i];
    out.raw[0] = total;
  });
}
void sumAmount(benchmark::State& s) {
  runSum(s, [](const Operands& o, Outputs& out) {
    Amount total;
    unsigned errors = 0;
    for (size_t i = 0; i < kCount; ++i) {
      Calculation c = Amount::add(total, o.a[i], RoundingMode::Bankers);
      total = c.value;
      errors |= flagOf(c);
    }
    out.amount[0] = total;
    out.flag[0] = errors != 0;
  });
}
void sumLArithmetic(benchmark::State& s) {
  runSum(s, [](const Operands& o, Outputs& out) {
    LArithmetic total;
    for (size_t i = 0; i < kCount; ++i) total.addDecimalValue(o.a[i]);
    out.amount[0] = total.decimalValue();
  });
}

// Multiply: one 128-bit product per entry (operands small enough that it is exact), stored.
void multiplyFloor(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.raw[i] = o.rawA[i] * o.rawB[i];
    return 0U;
  });
}
void multiplyAmount(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    Calculation c = Amount::multiply(o.a[i], o.b[i], RoundingMode::Bankers);
    out.amount[i] = c.value;
    return flagOf(c);
  });
}
void multiplyLArithmetic(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    LArithmetic product(o.a[i]);
    product.multiplyByDecimalValue(o.b[i]);
    out.amount[i] = product.decimalValue();
    return 0U;
  });
}

// Divide: one 128-bit quotient per entry, stored. Amount carries its quotient on to 38 digits.
void divideFloor(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.raw[i] = o.rawA[i] / o.rawB[i];
    return 0U;
  });
}
void divideAmount(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    Calculation c = Amount::divide(o.a[i], o.b[i], RoundingMode::Bankers);
    out.amount[i] = c.value;
    return flagOf(c);
  });
}
void divideLArithmetic(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    LArithmetic quotient(o.a[i]);
    quotient.divideByDecimalValue(o.b[i]);
    out.amount[i] = quotient.decimalValue();
    return 0U;
  });
}

// Compare: one unsigned 128-bit "less than" per entry, stored as a flag. The three-way compare
// stores its ordering instead.
void compareFloor(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.flag[i] = o.rawA[i] < o.rawB[i];
    return 0U;
  });
}
void compareAmount(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.flag[i] = o.a[i].isLessThan(o.b[i]);
    return 0U;
  });
}
void compareAmountThreeWay(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.order[i] = o.a[i].compare(o.b[i]);
    return 0U;
  });
}
void compareLArithmetic(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.flag[i] = LArithmetic(o.a[i]).isLessThanDecimal(o.b[i]);
    return 0U;
  });
}

// Round: the floor rounds a mantissa with two decimals to whole units, half up, and stores it.
void roundFloor(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.raw[i] = (o.rawA[i] + 50) / 100;
    return 0U;
  });
}
void roundAmount(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    Calculation c = Amount::roundToScale(o.a[i], 0, RoundingMode::Plain);
    out.amount[i] = c.value;
    return flagOf(c);
  });
}
void roundLArithmetic(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    LArithmetic value(o.a[i]);
    value.roundWithScale(0);
    out.amount[i] = value.decimalValue();
    return 0U;
  });
}

// The floor reads the digits of the same text into an integer.
void parseFloor(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    UInt128 value = 0;
    for (const char c : o.text[i]) {
      if (c >= '0' && c <= '9') value = value * 10 + static_cast<unsigned>(c - '0');
    }
    out.raw[i] = value;
    return 0U;
  });
}
void parseAmount(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.amount[i] = Amount::fromString(o.text[i]);
    return 0U;
  });
}
void parseAmountLocale(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs& out, size_t i) {
    out.amount[i] = Amount::fromString(o.text[i], "en_US");
    return 0U;
  });
}

// The floor writes the digits of the raw mantissa. Every variant's text is handed to the optimiser
// the same way.
void formatFloor(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs&, size_t i) {
    char buffer[48];
    char* end = buffer + sizeof buffer;
    char* p = end;
    UInt128 value = o.rawA[i];
    do {
      *--p = static_cast<char>('0' + static_cast<int>(value % 10));
      value /= 10;
    } while (value != 0);
    std::string text(p, end);
    benchmark::DoNotOptimize(text);
    return 0U;
  });
}
void formatAmount(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs&, size_t i) {
    std::string text = o.a[i].stringValue();
    benchmark::DoNotOptimize(text);
    return 0U;
  });
}
void formatLArithmetic(benchmark::State& s) {
  run(s, [](const Operands& o, Outputs&, size_t i) {
    std::string text = LArithmetic(o.a[i]).description();
    benchmark::DoNotOptimize(text);
    return 0U;
  });
}

BENCHMARK(addFloor)->Name("Add/floor");
BENCHMARK(addAmount)->Name("Add/Amount");
BENCHMARK(addAmountConstLocal)->Name("Add/AmountConstLocal");
BENCHMARK(subtractAmount)->Name("Add/AmountSubtract");
BENCHMARK(addLArithmetic)->Name("Add/LArithmetic");
BENCHMARK(sumFloor)->Name("Sum/floor");
BENCHMARK(sumAmount)->Name("Sum/Amount");
BENCHMARK(sumLArithmetic)->Name("Sum/LArithmetic");
BENCHMARK(multiplyFloor)->Name("Multiply/floor");
BENCHMARK(multiplyAmount)->Name("Multiply/Amount");
BENCHMARK(multiplyLArithmetic)->Name("Multiply/LArithmetic");
BENCHMARK(divideFloor)->Name("Divide/floor");
BENCHMARK(divideAmount)->Name("Divide/Amount");
BENCHMARK(divideLArithmetic)->Name("Divide/LArithmetic");
BENCHMARK(compareFloor)->Name("Compare/floor");
BENCHMARK(compareAmount)->Name("Compare/Amount");
BENCHMARK(compareAmountThreeWay)->Name("Compare/AmountThreeWay");
BENCHMARK(compareLArithmetic)->Name("Compare/LArithmetic");
BENCHMARK(roundFloor)->Name("Round/floor");
BENCHMARK(roundAmount)->Name("Round/Amount");
BENCHMARK(roundLArithmetic)->Name("Round/LArithmetic");
BENCHMARK(parseFloor)->Name("Parse/floor");
BENCHMARK(parseAmount)->Name("Parse/Amount");
BENCHMARK(parseAmountLocale)->Name("Parse/AmountLocale");
BENCHMARK(formatFloor)->Name("Format/floor");
BENCHMARK(formatAmount)->Name("Format/Amount");
BENCHMARK(formatLArithmetic)->Name("Format/LArithmetic");

}  // namespace
}  // namespace ledgeon
