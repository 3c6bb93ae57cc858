#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace ledgeon {

// One argument of stringWithFormat: a number or the description of any value.
class FormatArgument final {
 public:
  template <std::signed_integral T>
  FormatArgument(T value) : value_(static_cast<int64_t>(value)) {}  // NOLINT: implicit
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) FormatArgument(T value)
      : value_(static_cast<uint64_t>(value)) {}                   // NOLINT: implicit
  FormatArgument(bool value) : value_(int64_t{value ? 1 : 0}) {}  // NOLINT: implicit
  template <std::floating_point T>
  FormatArgument(T value) : value_(static_cast<double>(value)) {}  // NOLINT: implicit
  FormatArgument(const char* text) : value_(text ? std::string(text) : "(null)") {}  // NOLINT
  FormatArgument(std::string text) : value_(std::move(text)) {}         // NOLINT: implicit
  FormatArgument(std::string_view text) : value_(std::string(text)) {}  // NOLINT: implicit
  FormatArgument(std::nullptr_t) : value_(std::string("(null)")) {}     // NOLINT: implicit
  template <typename T>
  requires requires(const T& t) {
    { t.description() } -> std::convertible_to<std::string>;
  }
  FormatArgument(const T& value) : value_(std::string(value.description())) {}  // NOLINT
  template <typename T>
  FormatArgument(const std::optional<T>& value)  // NOLINT: implicit
      : FormatArgument(value ? FormatArgument(*value) : FormatArgument(nullptr)) {}

  // What %@ prints.
  std::string description() const;
  int64_t asInteger() const;
  uint64_t asUnsigned() const;
  double asDouble() const;

 private:
  std::variant<int64_t, uint64_t, double, std::string> value_;
};

std::string stringWithFormatArguments(std::string_view format,
                                      std::initializer_list<FormatArgument> arguments);

// Fills the program's printf-style texts: "%@" prints any value's description, and the usual
// integer, floating and string conversions ("%ld", "%lu", "%.2f", "%s", "%%") keep their C
// meaning. A missing argument prints as "(null)"; extra arguments are ignored.
template <typename... Args>
std::string stringWithFormat(std::string_view format, const Args&... args) {
  return stringWithFormatArguments(format, {FormatArgument(args)...});
}

}  // namespace ledgeon
