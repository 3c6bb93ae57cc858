#pragma once

#include <stdexcept>
#include <type_traits>
#include <utility>
#include <variant>

#include "Utilities/Error.h"

namespace ledgeon {

// A value or the Error that prevented it. Reading the wrong alternative is a programming error.
template <typename T>
class [[nodiscard]] Result final {
 public:
  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}      // NOLINT: implicit
  Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}  // NOLINT: implicit

  bool ok() const noexcept { return state_.index() == 0; }
  explicit operator bool() const noexcept { return ok(); }

  T& value() & { return std::get<0>(checked(true)); }
  const T& value() const& { return std::get<0>(checked(true)); }
  T&& value() && { return std::get<0>(std::move(checked(true))); }
  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }
  T& operator*() & { return value(); }
  const T& operator*() const& { return value(); }

  const Error& error() const { return std::get<1>(checked(false)); }

 private:
  const std::variant<T, Error>& checked(bool wantValue) const {
    if (ok() != wantValue) {
      throw std::logic_error(wantValue
                                 ? "Result holds an error: " + std::get<1>(state_).description()
                                 : "Result holds a value, not an error");
    }
    return state_;
  }
  std::variant<T, Error>& checked(bool wantValue) {
    std::as_const(*this).checked(wantValue);
    return state_;
  }

  std::variant<T, Error> state_;
};

// Success or the Error that prevented it.
template <>
class [[nodiscard]] Result<void> final {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)), failed_(true) {}  // NOLINT: implicit

  bool ok() const noexcept { return !failed_; }
  explicit operator bool() const noexcept { return ok(); }
  const Error& error() const {
    if (!failed_) throw std::logic_error("Result holds success, not an error");
    return error_;
  }

 private:
  Error error_;
  bool failed_ = false;
};

}  // namespace ledgeon
