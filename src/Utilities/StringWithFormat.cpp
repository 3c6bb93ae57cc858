#include "Utilities/StringWithFormat.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <fmt/format.h>

namespace ledgeon {

namespace {

// The shortest text that reads back as the same double, without a trailing ".0", as a boxed
// number describes itself.
std::string describeDouble(double value) {
  std::string text = fmt::format("{}", value);
  if (text.size() > 2 && text.ends_with(".0")) text.resize(text.size() - 2);
  return text;
}

bool isLengthModifier(char c) {
  return c == 'h' || c == 'l' || c == 'q' || c == 'z' || c == 't' || c == 'j' || c == 'L';
}

bool isFlag(char c) { return c == '-' || c == '+' || c == ' ' || c == '0' || c == '#'; }

// Formats one numeric conversion with the C library, after the length modifiers have been
// replaced by the widest type of the conversion's kind.
std::string formatNumber(const std::string& flagsWidthPrecision, char conversion,
                         const FormatArgument& argument) {
  std::vector<char> buffer(64);
  auto run = [&](auto value, const char* length) {
    const std::string cFormat = "%" + flagsWidthPrecision + length + conversion;
    for (;;) {
      // The C format was rebuilt from checked flags, width and precision, with a length modifier
      // matching the value passed, so the C library reads exactly one argument of that type.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
      const int written = std::snprintf(buffer.data(), buffer.size(), cFormat.c_str(), value);
#pragma GCC diagnostic pop
      if (written < 0) return std::string();
      if (static_cast<size_t>(written) < buffer.size()) return std::string(buffer.data());
      buffer.resize(static_cast<size_t>(written) + 1);
    }
  };
  switch (conversion) {
    case 'd':
    case 'i':
      return run(static_cast<long long>(argument.asInteger()), "ll");
    case 'u':
    case 'x':
    case 'X':
    case 'o':
      return run(static_cast<unsigned long long>(argument.asUnsigned()), "ll");
    case 'c':
      return run(static_cast<int>(argument.asInteger()), "");
    default:
      return run(argument.asDouble(), "");
  }
}

}  // namespace

std::string FormatArgument::description() const {
  return std::visit(
      [](const auto& v) -> std::string {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::string>) {
          return v;
        } else if constexpr (std::is_same_v<T, double>) {
          return describeDouble(v);
        } else {
          return std::to_string(v);
        }
      },
      value_);
}

int64_t FormatArgument::asInteger() const {
  return std::visit(
      [](const auto& v) -> int64_t {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::string>) {
          return std::strtoll(v.c_str(), nullptr, 10);
        } else {
          return static_cast<int64_t>(v);
        }
      },
      value_);
}

uint64_t FormatArgument::asUnsigned() const {
  if (const auto* u = std::get_if<uint64_t>(&value_)) return *u;
  return static_cast<uint64_t>(asInteger());
}

double FormatArgument::asDouble() const {
  return std::visit(
      [](const auto& v) -> double {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::string>) {
          return std::strtod(v.c_str(), nullptr);
        } else {
          return static_cast<double>(v);
        }
      },
      value_);
}

std::string stringWithFormatArguments(std::string_view format,
                                      std::initializer_list<FormatArgument> arguments) {
  std::string out;
  out.reserve(format.size() + 16 * arguments.size());
  auto next = arguments.begin();
  const FormatArgument missing(nullptr);
  auto takeArgument = [&]() -> const FormatArgument& {
    return next == arguments.end() ? missing : *next++;
  };

  for (size_t i = 0; i < format.size(); ++i) {
    const char c = format[i];
    if (c != '%') {
      out += c;
      continue;
    }
    size_t j = i + 1;
    std::string flagsWidthPrecision;
    while (j < format.size() && isFlag(format[j])) flagsWidthPrecision += format[j++];
    while (j < format.size() &&
           (std::isdigit(static_cast<unsigned char>(format[j])) != 0 || format[j] == '.')) {
      flagsWidthPrecision += format[j++];
    }
    while (j < format.size() && isLengthModifier(format[j])) ++j;
    if (j >= format.size()) {
      out.append(format.substr(i));
      break;
    }
    const char conversion = format[j];
    switch (conversion) {
      case '%':
        out += '%';
        break;
      case '@':
      case 's':
        out += takeArgument().description();
        break;
      case 'd':
      case 'i':
      case 'u':
      case 'x':
      case 'X':
      case 'o':
      case 'c':
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
        out += formatNumber(flagsWidthPrecision, conversion, takeArgument());
        break;
      default:  // not a conversion: keep the text as written
        out.append(format.substr(i, j - i + 1));
        break;
    }
    i = j;
  }
  return out;
}

}  // namespace ledgeon
