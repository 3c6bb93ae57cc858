#include <map>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "LObjects/LObject.h"
#include "LObjects/PropertySlots.h"
#include "LObjects/Value.h"

namespace ledgeon {
namespace {

// Amounts inline and boxed: the boundary of a 64-bit mantissa, signs, exponents, NaN.
TEST(ValueTest, AmountsKeepEveryPartThroughCopiesAndMoves) {
  const UInt128 twoTo64 = UInt128{1} << 64;
  const Amount cases[] = {
      Amount::zero(),
      Amount::fromString("0.00"),
      Amount::fromString("-0"),
      Amount::fromString("-0.01"),
      Amount::fromString("1234.5600"),
      Amount::fromParts(twoTo64 - 1, -4, true),
      Amount::fromParts(twoTo64, -4, true),
      Amount::fromString("99999999999999999999999999999999999999"),
      Amount::fromParts(7, 127, false),
      Amount::fromParts(7, -128, true),
      Amount::notANumber(),
  };
  for (const Amount& amount : cases) {
    SCOPED_TRACE(amount.stringValue());
    const Value value(amount);
    Value copy = value;
    Value moved = std::move(copy);
    for (const Value* v : {&value, static_cast<const Value*>(&moved)}) {
      ASSERT_EQ(v->kind(), Value::Kind::Amount);
      const Amount back = v->asAmount();
      EXPECT_TRUE(back.mantissa() == amount.mantissa());
      EXPECT_EQ(back.exponent(), amount.exponent());
      EXPECT_EQ(back.isSignNegative(), amount.isSignNegative());
      EXPECT_EQ(back.isNaN(), amount.isNaN());
      EXPECT_EQ(back.stringValue(), amount.stringValue());
    }
    EXPECT_TRUE(copy.isNull());  // moved from
  }
}

TEST(ValueTest, EveryKindSurvivesCopyAssignmentAndCompares) {
  LObject account(Model::shared().requireEntity("Account"), 1, nullptr);
  LObject* const object = &account;
  const std::vector<Value> values = {
      Value(),
      Value(true),
      Value(int64_t{-42}),
      Value(2.5),
      Value(Amount::fromString("12.5")),
      Value("a text long enough not to fit any small-string buffer at all"),
      Value(Date(750000000.0)),
      Value(Bytes{1, 2, 3}),
      Value(PropertyList{{"key", "value"}}),
      Value(object),
      Value(ObjectSet{object}),
      Value(ValueList{Value(1), Value("x")}),
      Value(ToManyEdit::adding({object})),
  };
  for (size_t i = 0; i < values.size(); ++i) {
    SCOPED_TRACE(values[i].description());
    Value assigned = Value("to be replaced");
    assigned = values[i];
    EXPECT_EQ(assigned.kind(), values[i].kind());
    EXPECT_EQ(assigned, values[i]);
    const Value& same = assigned;
    assigned = same;  // self-assignment keeps the value
    EXPECT_EQ(assigned, values[i]);
    for (size_t j = 0; j < values.size(); ++j) {
      if (i != j) {
        EXPECT_FALSE(values[i] == values[j]) << values[j].description();
      }
    }
  }
  EXPECT_EQ(Value(int64_t{3}), Value(Amount::fromString("3.00")));  // numbers by value
  EXPECT_THROW(Value(int64_t{3}).asString(), std::logic_error);
}

TEST(ValueTest, CopiesSharedAcrossThreadsReleaseTheirTextOnce) {
  // Run under AddressSanitizer: a lost or doubled release shows as a leak or a double free.
  const Value text(std::string(100, 'x'));
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&text] {
      for (int i = 0; i < 10000; ++i) {
        Value copy = text;
        Value other = std::move(copy);
        EXPECT_EQ(other.asString().size(), 100u);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(text.asString(), std::string(100, 'x'));
}

// Random sets and clears against a std::map: order, presence and values must always agree.
TEST(PropertySlotsTest, BehavesAsASortedMapWithoutNulls) {
  std::mt19937 random(7);
  PropertySlots slots;
  std::map<int, int64_t> expected;
  for (int step = 0; step < 20000; ++step) {
    const int slot = static_cast<int>(random() % 60);
    if (random() % 3 == 0) {
      slots.set(slot, Value());
      expected.erase(slot);
    } else {
      const auto number = static_cast<int64_t>(random());
      slots.set(slot, Value(number));
      expected[slot] = number;
    }
    if (step % 500 == 0) {
      slots.eraseIf([](int s) { return s % 7 == 0; });
      std::erase_if(expected, [](const auto& entry) { return entry.first % 7 == 0; });
    }
    ASSERT_EQ(slots.size(), expected.size());
  }
  std::vector<std::pair<int, int64_t>> seen;
  slots.forEach([&](int slot, const Value& value) { seen.emplace_back(slot, value.asInteger()); });
  const std::vector<std::pair<int, int64_t>> ordered(expected.begin(), expected.end());
  EXPECT_EQ(seen, ordered);
  for (int slot = 0; slot < 60; ++slot) {
    const Value* value = slots.find(slot);
    ASSERT_EQ(value != nullptr, expected.count(slot) == 1) << slot;
    if (value) {
      EXPECT_EQ(value->asInteger(), expected[slot]);
    }
  }
}

}  // namespace
}  // namespace ledgeon
