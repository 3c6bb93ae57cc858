#pragma once

#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Utilities/StringWithFormat.h"

namespace ledgeon {

// The program's log: model failures ("ERROR: ...") and notable events, one line each. Lines go to
// the log file when one is set (the CLI sets one in the logs folder), to stderr when echoing is
// on, and to every active LogCapture. Thread-safe.
class Log final {
 public:
  static void write(std::string_view line);
  // Appends to `file` from now on (creating folders as needed); an empty path closes it.
  static bool setLogFile(const std::filesystem::path& file);
  static void setEchoToStandardError(bool echo);
  // False while no line would go anywhere (no file, no echo, no capture).
  static bool hasDestination();
};

// Formats with stringWithFormat and writes the line to the log. A line nobody would see is not
// formatted: some carry a whole downloaded file.
template <typename... Args>
void LLog(std::string_view format, const Args&... args) {
  if (Log::hasDestination()) Log::write(stringWithFormat(format, args...));
}

// Collects every line logged while it lives (in any thread); for tests and for callers that show
// a log to the user.
class LogCapture final {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<std::string> lines() const;
  bool contains(std::string_view text) const;  // some line contains `text`
  void clear();

 private:
  friend class Log;
  void append(std::string_view line);

  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

}  // namespace ledgeon
