// Decimal arithmetic must never touch the heap: balances are summed in tight loops. The global
// allocation functions of this test program count the allocations made while counting is on.
#include <atomic>
#include <cstdlib>
#include <new>
#include <vector>

#include <gtest/gtest.h>

#include "Utilities/LArithmetic.h"

namespace {

std::atomic<bool> counting{false};
std::atomic<long> allocations{0};

void* allocate(std::size_t size) {
  if (counting.load(std::memory_order_relaxed)) allocations.fetch_add(1);
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}

}  // namespace

// Every replaceable form that allocates without extended alignment, and the matching releases,
// so the sanitizer's allocator never sees a block it did not hand out.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return allocate(size);
  } catch (...) {
    return nullptr;
  }
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return allocate(size);
  } catch (...) {
    return nullptr;
  }
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }

namespace ledgeon {
namespace {

// Counts the allocations made by `body`.
template <typename Body>
long allocationsDuring(Body body) {
  allocations = 0;
  counting = true;
  body();
  counting = false;
  return allocations.load();
}

TEST(AmountAllocationTest, CountingSeesAnAllocation) {
  EXPECT_EQ(allocationsDuring([] {
              int* volatile p = new int(1);
              delete p;
            }),
            1);
}

TEST(AmountAllocationTest, ArithmeticComparisonAndRoundingNeverAllocate) {
  // Everyday amounts, wide mantissas, far-apart exponents, zero, NaN, and operands that overflow,
  // underflow or divide by zero.
  const char* const texts[] = {"0",
                               "1",
                               "-1",
                               "19.99",
                               "-1234.56",
                               "0.001",
                               "1e10",
                               "3",
                               "7",
                               "12345678901234567890123456789012345678",
                               "-99999999999999999999999999999999999999",
                               "1e-120",
                               "1e120",
                               "0.5",
                               "2.5"};
  std::vector<Amount> values{Amount::notANumber()};  // built before counting
  for (const char* text : texts) values.push_back(Amount::fromString(text));
  const RoundingMode modes[] = {RoundingMode::Plain, RoundingMode::Down, RoundingMode::Up,
                                RoundingMode::Bankers};
  int checked = 0;
  const long count = allocationsDuring([&] {
    for (const Amount& a : values) {
      for (const Amount& b : values) {
        for (const RoundingMode mode : modes) {
          checked += Amount::add(a, b, mode).value.isNaN();
          checked += Amount::subtract(a, b, mode).value.isNaN();
          checked += Amount::multiply(a, b, mode).value.isNaN();
          checked += Amount::divide(a, b, mode).value.isNaN();
        }
        checked += static_cast<int>(a.compare(b)) + a.isLessThan(b) + (a == b);
      }
      for (const RoundingMode mode : modes) {
        for (const int scale : {-3, 0, 2, 6}) {
          checked += Amount::roundToScale(a, scale, mode).value.isNaN();
        }
        checked += Amount::power(a, 3, mode).value.isNaN();
        checked += Amount::multiplyByPowerOf10(a, 5, mode).value.isNaN();
      }
      checked += a.round().isNaN() + a.roundWithScale(2).isNaN() + a.abs().isNaN() +
                 a.decimalNumberByNegating().isNaN() + a.roundUpToMajorDollarAmount().isNaN();
    }
  });
  EXPECT_EQ(count, 0);
  EXPECT_GT(checked, 0);  // the work above was done
}

TEST(AmountAllocationTest, AccumulatorArithmeticWithoutErrorsNeverAllocates) {
  const Amount values[] = {Amount::fromString("19.99"), Amount::fromString("-0.5"),
                           Amount::fromString("1e-3"), Amount::fromString("3")};
  LArithmetic total;
  const long count = allocationsDuring([&] {
    for (int pass = 0; pass < 10; ++pass) {
      for (const Amount& value : values) {
        total.addDecimalValue(value);
        total.subtractDecimalValue(values[0]);
        total.multiplyByDecimalValue(value);
        total.divideByDecimalValue(value);
        total.roundWithScale(4);
        total.addDecimalValue(value);
        (void)total.isLessThanDecimal(value);
        (void)total.isEqualToDecimal(value);
      }
    }
  });
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(total.isNotNaN());
}

}  // namespace
}  // namespace ledgeon
