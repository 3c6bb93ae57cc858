#include "Utilities/Log.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <iostream>

#include <fmt/format.h>

#include "Utilities/Clock.h"

namespace ledgeon {

namespace {

struct LogState {
  std::mutex mutex;
  std::ofstream file;
  bool echo = false;
  std::vector<LogCapture*> captures;
  std::atomic<bool> hasDestination{false};

  // Under the mutex, after any change of destinations.
  void updateDestinationsLocked() { hasDestination = file.is_open() || echo || !captures.empty(); }
};

LogState& state() {
  static LogState s;
  return s;
}

}  // namespace

void Log::write(std::string_view line) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  for (auto* capture : s.captures) capture->append(line);
  if (s.file.is_open()) {
    s.file << Clock::now().description() << ' ' << line << '\n';
    s.file.flush();
  }
  if (s.echo) std::cerr << line << '\n';
}

bool Log::setLogFile(const std::filesystem::path& file) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  if (s.file.is_open()) s.file.close();
  s.updateDestinationsLocked();
  if (file.empty()) return true;
  std::error_code ignored;
  std::filesystem::create_directories(file.parent_path(), ignored);
  s.file.open(file, std::ios::app);
  s.updateDestinationsLocked();
  return s.file.is_open();
}

void Log::setEchoToStandardError(bool echo) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  s.echo = echo;
  s.updateDestinationsLocked();
}

bool Log::hasDestination() { return state().hasDestination.load(); }

LogCapture::LogCapture() {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  s.captures.push_back(this);
  s.updateDestinationsLocked();
}

LogCapture::~LogCapture() {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  std::erase(s.captures, this);
  s.updateDestinationsLocked();
}

void LogCapture::append(std::string_view line) {
  std::lock_guard lock(mutex_);
  lines_.emplace_back(line);
}

std::vector<std::string> LogCapture::lines() const {
  std::lock_guard lock(mutex_);
  return lines_;
}

bool LogCapture::contains(std::string_view text) const {
  std::lock_guard lock(mutex_);
  return std::any_of(lines_.begin(), lines_.end(),
                     [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

void LogCapture::clear() {
  std::lock_guard lock(mutex_);
  lines_.clear();
}

}  // namespace ledgeon
