// Differential test: thousands of random operations through Amount and through Python's decimal
// module at 38 digits (tests/Utilities/amount_oracle.py), which must agree on every value and on
// whether digits were lost.
//
// Deliberate differences, kept out of the random cases:
//  - Amount's exponent is 8 bits: the cases stay far from 10^-128 and 10^165, where Amount
//    reports underflow or overflow and Python does not.
//  - A power whose exact value needs more than 256 bits is rounded at each squaring, not once;
//    the cases stay within the exactly computed range.
//  - Any value to the power 0 is one, zero included (Python leaves 0 ** 0 undefined).
//  - Rounding to a scale never adds digits (1.5 at scale 3 stays 1.5), which the oracle mirrors.
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "Utilities/Amount.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

int bitWidth(UInt128 value) {
  int bits = 0;
  for (; value != 0; value >>= 1) ++bits;
  return bits;
}

struct OracleCase {
  std::string op;
  Amount a;
  Amount b;
  int integer = 0;  // the power or the scale
  RoundingMode mode = RoundingMode::Plain;

  std::string line() const {
    const std::string second =
        op == "pow" || op == "round" ? std::to_string(integer) : b.stringValue();
    return op + " " + a.stringValue() + " " + second + " " + std::to_string(static_cast<int>(mode));
  }
};

class CaseGenerator {
 public:
  explicit CaseGenerator(uint64_t seed) : random_(seed) {}

  // Mostly money-sized values, some with all 38 digits; scales from -5 to 10.
  Amount amount(int maxDigits = 38) {
    if (pick(0, 30) == 0) return Amount::zero();
    const int digits = pick(0, 3) == 0 ? pick(1, maxDigits) : pick(1, std::min(maxDigits, 12));
    UInt128 mantissa = 0;
    for (int i = 0; i < digits; ++i) mantissa = mantissa * 10 + static_cast<unsigned>(pick(0, 9));
    if (mantissa == 0) mantissa = 1;
    return Amount::fromParts(mantissa, -pick(-5, 10), pick(0, 1) == 1);
  }

  OracleCase next() {
    static const char* const kOps[] = {"add", "sub", "mul", "div", "pow", "round"};
    OracleCase c;
    c.op = kOps[pick(0, 5)];
    c.mode = static_cast<RoundingMode>(pick(0, 3));
    if (c.op == "pow") {
      c.integer = pick(0, 12);
      // Keep the exact power within 256 bits.
      do {
        c.a = amount(c.integer <= 2 ? 38 : 6);
      } while (static_cast<uint64_t>(bitWidth(c.a.mantissa())) * static_cast<unsigned>(c.integer) >
               256);
    } else if (c.op == "round") {
      c.a = amount();
      c.integer = pick(-5, 10);
    } else {
      c.a = amount();
      do {
        c.b = amount();
      } while (c.op == "div" && c.b.isZero());
    }
    return c;
  }

 private:
  int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  std::mt19937_64 random_;
};

Calculation evaluate(const OracleCase& c) {
  if (c.op == "add") return Amount::add(c.a, c.b, c.mode);
  if (c.op == "sub") return Amount::subtract(c.a, c.b, c.mode);
  if (c.op == "mul") return Amount::multiply(c.a, c.b, c.mode);
  if (c.op == "div") return Amount::divide(c.a, c.b, c.mode);
  if (c.op == "pow") return Amount::power(c.a, static_cast<unsigned>(c.integer), c.mode);
  return Amount::roundToScale(c.a, c.integer, c.mode);
}

std::vector<std::string> runOracle(const std::filesystem::path& input) {
  const std::string command = "python3 '" + std::string(LEDGEON_SOURCE_DIR) +
                              "/tests/Utilities/amount_oracle.py' < '" + input.string() + "'";
  std::vector<std::string> lines;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return lines;
  std::string current;
  for (int ch = std::fgetc(pipe); ch != EOF; ch = std::fgetc(pipe)) {
    if (ch == '\n') {
      lines.push_back(current);
      current.clear();
    } else {
      current += static_cast<char>(ch);
    }
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return lines;
}

TEST(AmountOracleTest, AgreesWithPythonDecimalOnRandomOperations) {
  constexpr int kCases = 12000;
  CaseGenerator generator(20260101);
  std::vector<OracleCase> cases;
  testing::TempFolder folder;
  {
    std::ofstream input(folder / "cases.txt");
    for (int i = 0; i < kCases; ++i) {
      cases.push_back(generator.next());
      input << cases.back().line() << '\n';
    }
  }
  const auto expected = runOracle(folder / "cases.txt");
  ASSERT_EQ(expected.size(), cases.size()) << "the oracle did not answer every case";
  int failures = 0;
  for (size_t i = 0; i < cases.size() && failures < 20; ++i) {
    const Calculation got = evaluate(cases[i]);
    std::string value = got.value.stringValue();
    if (cases[i].op != "round") {
      value += got.error == CalculationError::LossOfPrecision ? " inexact" : " exact";
    } else {
      value += expected[i].substr(expected[i].find(' '));  // rounding reports no loss
    }
    if (value != expected[i]) {
      ++failures;
      ADD_FAILURE() << cases[i].line() << "\n  Amount: " << value << "\n  Python: " << expected[i];
    }
  }
}

}  // namespace
}  // namespace ledgeon
