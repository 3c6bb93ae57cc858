#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace ledgeon {

// Error domains the program reports in.
inline constexpr const char* kLErrorDomain = "LErrorDomain";
inline constexpr const char* kURLErrorDomain = "NSURLErrorDomain";
inline constexpr const char* kHTTPErrorDomain = "HTTPErrorDomain";
inline constexpr const char* kCocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr const char* kPOSIXErrorDomain = "NSPOSIXErrorDomain";

// The code a user's cancel is reported with, in the Cocoa domain.
inline constexpr int64_t kUserCancelledErrorCode = 3072;

// Keys of Error::userInfo.
inline constexpr const char* kLocalizedDescriptionKey = "NSLocalizedDescription";
inline constexpr const char* kFilePathErrorKey = "NSFilePath";

// A failure a caller is expected to handle: a domain, a code and descriptive user-info.
struct Error {
  std::string domain;
  int64_t code = 0;
  std::map<std::string, std::string> userInfo;

  static Error make(std::string domain, int64_t code, std::string description);
  static Error userCancelled();

  // The user-facing text: NSLocalizedDescription when present, else "<domain> error <code>".
  std::string localizedDescription() const;
  bool isUserCancelled() const;
  std::string description() const;
};

}  // namespace ledgeon
