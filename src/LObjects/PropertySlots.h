#pragma once

#include <cstdint>
#include <utility>

#include "LObjects/Value.h"

namespace ledgeon {

// The non-null property values of one ledger object, by slot. One heap block holds the values
// and, after them, their slot numbers in ascending order: a loaded object costs little more than
// the values it actually has. Not thread-safe (its object is main thread only).
class PropertySlots final {
 public:
  PropertySlots() = default;
  ~PropertySlots();
  PropertySlots(const PropertySlots&) = delete;
  PropertySlots& operator=(const PropertySlots&) = delete;

  // The value in `slot`, or null when the slot holds nothing.
  const Value* find(int slot) const;
  // Stores `value` in `slot`; a null value empties the slot.
  void set(int slot, Value value);
  // Makes room for `count` values in all, so that filling a loaded object allocates once.
  void reserve(size_t count);
  size_t size() const { return size_; }

  template <typename F>
  void forEach(F&& f) const {
    for (uint16_t i = 0; i < size_; ++i) f(static_cast<int>(slots()[i]), values_[i]);
  }
  template <typename P>
  void eraseIf(P&& predicate) {
    uint16_t kept = 0;
    for (uint16_t i = 0; i < size_; ++i) {
      if (predicate(static_cast<int>(slots()[i]))) continue;
      if (kept != i) {
        values_[kept] = std::move(values_[i]);
        slots()[kept] = slots()[i];
      }
      ++kept;
    }
    for (uint16_t i = kept; i < size_; ++i) values_[i].~Value();
    size_ = kept;
  }

 private:
  uint16_t* slots() const { return reinterpret_cast<uint16_t*>(values_ + capacity_); }
  uint16_t position(int slot) const;  // of the first slot number not below `slot`
  void grow(size_t capacity);

  Value* values_ = nullptr;
  uint16_t size_ = 0;
  uint16_t capacity_ = 0;
};

}  // namespace ledgeon
