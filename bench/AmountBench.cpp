// Amount and LArithmetic beside the raw 128-bit integer operation they are built on. Operands are
// money-like (up to 12 digits, two decimals) and cycle through a table so no result is constant.
#include <array>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "Utilities/Amount.h"
#include "Utilities/LArithmetic.h"

namespace ledgeon {
namespace {

constexpr size_t kCount = 1024;

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
    for (size_t i = 0; i < kCount; ++i) {
      rawA[i] = big(random);
      rawB[i] = small(random);
      a[i] = Amount::fromParts(rawA[i], -2, i % 3 == 0);
      b[i] = Amount::fromParts(rawB[i], -2, false);
      text[i] = a[i].stringValue();
    }
  }
};

const Operands& operands() {
  static const Operands instance;
  return instance;
}

template <typename Operation>
void run(benchmark::State& state, Operation operation) {
  const auto& o = operands();
  size_t i = 0;
  for (auto _ : state) {
    operation(o, i);
    i = (i + 1) & (kCount - 1);
  }
}

void addFloor(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) { benchmark::DoNotOptimize(o.rawA[i] + o.rawB[i]); });
}
void addAmount(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    benchmark::DoNotOptimize(Amount::add(o.a[i], o.b[i], RoundingMode::Bankers));
  });
}
void addLArithmetic(benchmark::State& s) {
  LArithmetic sum;  // a running total, as in a balance: signs mixed, so it stays money-sized
  run(s, [&sum](const Operands& o, size_t i) {
    sum.addDecimalValue(o.a[i]);
    benchmark::DoNotOptimize(sum);
  });
}

void multiplyFloor(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) { benchmark::DoNotOptimize(o.rawA[i] * o.rawB[i]); });
}
void multiplyAmount(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    benchmark::DoNotOptimize(Amount::multiply(o.a[i], o.b[i], RoundingMode::Bankers));
  });
}
void multiplyLArithmetic(benchmark::State& s) {
  LArithmetic product;
  run(s, [&product](const Operands& o, size_t i) {
    product.setDecimal(o.a[i]);
    product.multiplyByDecimalValue(o.b[i]);
    benchmark::DoNotOptimize(product);
  });
}

void divideFloor(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) { benchmark::DoNotOptimize(o.rawA[i] / o.rawB[i]); });
}
void divideAmount(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    benchmark::DoNotOptimize(Amount::divide(o.a[i], o.b[i], RoundingMode::Bankers));
  });
}
void divideLArithmetic(benchmark::State& s) {
  LArithmetic quotient;
  run(s, [&quotient](const Operands& o, size_t i) {
    quotient.setDecimal(o.a[i]);
    quotient.divideByDecimalValue(o.b[i]);
    benchmark::DoNotOptimize(quotient);
  });
}

void compareFloor(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) { benchmark::DoNotOptimize(o.rawA[i] < o.rawB[i]); });
}
void compareAmount(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) { benchmark::DoNotOptimize(o.a[i].compare(o.b[i])); });
}
void compareLArithmetic(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    benchmark::DoNotOptimize(LArithmetic(o.a[i]).isLessThanDecimal(o.b[i]));
  });
}

// The floor rounds a mantissa with two decimals to whole units, half up.
void roundFloor(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) { benchmark::DoNotOptimize((o.rawA[i] + 50) / 100); });
}
void roundAmount(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    benchmark::DoNotOptimize(Amount::roundToScale(o.a[i], 0, RoundingMode::Plain));
  });
}
void roundLArithmetic(benchmark::State& s) {
  LArithmetic value;
  run(s, [&value](const Operands& o, size_t i) {
    value.setDecimal(o.a[i]);
    value.roundWithScale(0);
    benchmark::DoNotOptimize(value);
  });
}

// The floor reads the digits of the same text into an integer.
void parseFloor(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    UInt128 value = 0;
    for (const char c : o.text[i]) {
      if (c >= '0' && c <= '9') value = value * 10 + static_cast<unsigned>(c - '0');
    }
    benchmark::DoNotOptimize(value);
  });
}
void parseAmount(benchmark::State& s) {
  run(s,
      [](const Operands& o, size_t i) { benchmark::DoNotOptimize(Amount::fromString(o.text[i])); });
}
void parseAmountLocale(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    benchmark::DoNotOptimize(Amount::fromString(o.text[i], "en_US"));
  });
}

// The floor writes the digits of the raw mantissa.
void formatFloor(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    char buffer[48];
    char* end = buffer + sizeof buffer;
    char* p = end;
    UInt128 value = o.rawA[i];
    do {
      *--p = static_cast<char>('0' + static_cast<int>(value % 10));
      value /= 10;
    } while (value != 0);
    benchmark::DoNotOptimize(std::string(p, end));
  });
}
void formatAmount(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) { benchmark::DoNotOptimize(o.a[i].stringValue()); });
}
void formatLArithmetic(benchmark::State& s) {
  run(s, [](const Operands& o, size_t i) {
    benchmark::DoNotOptimize(LArithmetic(o.a[i]).description());
  });
}

BENCHMARK(addFloor)->Name("Add/floor");
BENCHMARK(addAmount)->Name("Add/Amount");
BENCHMARK(addLArithmetic)->Name("Add/LArithmetic");
BENCHMARK(multiplyFloor)->Name("Multiply/floor");
BENCHMARK(multiplyAmount)->Name("Multiply/Amount");
BENCHMARK(multiplyLArithmetic)->Name("Multiply/LArithmetic");
BENCHMARK(divideFloor)->Name("Divide/floor");
BENCHMARK(divideAmount)->Name("Divide/Amount");
BENCHMARK(divideLArithmetic)->Name("Divide/LArithmetic");
BENCHMARK(compareFloor)->Name("Compare/floor");
BENCHMARK(compareAmount)->Name("Compare/Amount");
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
