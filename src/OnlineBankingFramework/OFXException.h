#pragma once

#include <stdexcept>
#include <string>

namespace ledgeon {

// A named parse failure inside the OFX reader ("InvalidOFX", "XMLParseError", ...). It never
// leaves the reader: OFXRootController catches it and reports it as the root's status.
class OFXException : public std::runtime_error {
 public:
  OFXException(std::string name, std::string reason)
      : std::runtime_error(name + ": " + reason),
        name_(std::move(name)),
        reason_(std::move(reason)) {}
  const std::string& name() const { return name_; }
  const std::string& reason() const { return reason_; }
  std::string description() const { return what(); }

 private:
  std::string name_;
  std::string reason_;
};

}  // namespace ledgeon
