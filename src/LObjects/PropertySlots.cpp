#include "LObjects/PropertySlots.h"

#include <algorithm>
#include <new>

namespace ledgeon {

PropertySlots::~PropertySlots() {
  for (uint16_t i = 0; i < size_; ++i) values_[i].~Value();
  ::operator delete(values_);
}

uint16_t PropertySlots::position(int slot) const {
  const uint16_t* first = slots();
  return static_cast<uint16_t>(std::lower_bound(first, first + size_, slot) - first);
}

const Value* PropertySlots::find(int slot) const {
  const uint16_t i = position(slot);
  return (i < size_ && slots()[i] == slot) ? values_ + i : nullptr;
}

void PropertySlots::grow(size_t capacity) {
  if (capacity <= capacity_) return;
  auto* block = static_cast<Value*>(::operator new(capacity*(sizeof(Value) + sizeof(uint16_t))));
  auto* blockSlots = reinterpret_cast<uint16_t*>(block + capacity);
  for (uint16_t i = 0; i < size_; ++i) {
    new (block + i) Value(std::move(values_[i]));
    values_[i].~Value();
    blockSlots[i] = slots()[i];
  }
  ::operator delete(values_);
  values_ = block;
  capacity_ = static_cast<uint16_t>(capacity);
}

void PropertySlots::reserve(size_t count) { grow(count); }

void PropertySlots::set(int slot, Value value) {
  const uint16_t i = position(slot);
  const bool present = i < size_ && slots()[i] == slot;
  if (present) {
    if (!value.isNull()) {
      values_[i] = std::move(value);
      return;
    }
    for (uint16_t j = i; j + 1 < size_; ++j) {
      values_[j] = std::move(values_[j + 1]);
      slots()[j] = slots()[j + 1];
    }
    values_[--size_].~Value();
    return;
  }
  if (value.isNull()) return;
  // Objects gain values a few at a time while edited: grow by half, from room for four.
  if (size_ == capacity_) grow(std::max<size_t>(4, size_t{capacity_} + capacity_ / 2));
  if (i == size_) {
    new (values_ + size_) Value(std::move(value));
  } else {
    new (values_ + size_) Value(std::move(values_[size_ - 1]));
    slots()[size_] = slots()[size_ - 1];
    for (uint16_t j = static_cast<uint16_t>(size_ - 1); j > i; --j) {
      values_[j] = std::move(values_[j - 1]);
      slots()[j] = slots()[j - 1];
    }
    values_[i] = std::move(value);
  }
  slots()[i] = static_cast<uint16_t>(slot);
  ++size_;
}

}  // namespace ledgeon
