#include "TerminalUserInterface.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <termios.h>
#include <unistd.h>

#include "Platform/Services.h"
#include "Utilities/AsciiText.h"

namespace ledgeon::cli {

namespace {

volatile std::sig_atomic_t interruptRequested = 0;

extern "C" void noteInterrupt(int /*signal*/) { interruptRequested = 1; }

// A bar on stderr, redrawn in place; only when stderr is a terminal. While it shows, Ctrl-C asks
// the work to stop, so that it can leave the document as it found it; a second Ctrl-C ends the
// program at once.
class TerminalProgress final : public Progress {
 public:
  explicit TerminalProgress(std::string text)
      : text_(std::move(text)), visible_(::isatty(STDERR_FILENO) != 0) {
    interruptRequested = 0;
    struct sigaction action {};
    action.sa_handler = noteInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, &previousInterruptAction_);
    draw();
  }
  ~TerminalProgress() override {
    sigaction(SIGINT, &previousInterruptAction_, nullptr);
    if (visible_) std::cerr << '\n';
  }
  TerminalProgress(const TerminalProgress&) = delete;
  TerminalProgress& operator=(const TerminalProgress&) = delete;
  void setText(const std::string& text) override {
    text_ = text;
    draw();
  }
  void setBarText(const std::string& text) override {
    barText_ = text;
    draw();
  }
  void setMaximum(double maximum) override {
    maximum_ = maximum;
    draw();
  }
  void setValue(double value) override {
    value_ = value;
    draw();
  }
  bool isCancelled() const override { return interruptRequested != 0; }

 private:
  void draw() const {
    if (!visible_) return;
    constexpr std::size_t kWidth = 30;
    const double fraction = maximum_ > 0 ? std::clamp(value_ / maximum_, 0.0, 1.0) : 0.0;
    const auto filled = static_cast<std::size_t>(std::lround(fraction * kWidth));
    std::cerr << fmt::format("\r\x1b[K[{}{}] {:3}% {} {}", std::string(filled, '#'),
                             std::string(kWidth - filled, ' '),
                             static_cast<int>(std::lround(fraction * 100)), text_, barText_)
              << std::flush;
  }
  std::string text_;
  std::string barText_;
  double maximum_ = 0;
  double value_ = 0;
  bool visible_;
  struct sigaction previousInterruptAction_ {};
};

}  // namespace

TerminalUserInterface& TerminalUserInterface::shared() {
  static const std::shared_ptr<TerminalUserInterface> instance = [] {
    auto created = std::make_shared<TerminalUserInterface>();
    Services::shared().setUserInterface(created);
    return created;
  }();
  return *instance;
}

AlertResponse TerminalUserInterface::runAlert(const Alert& alert) {
  std::cerr << alert.messageText << '\n';
  if (!alert.informativeText.empty()) std::cerr << alert.informativeText << '\n';
  std::string choices;
  for (std::size_t i = 0; i < alert.buttons.size(); ++i) {
    choices += fmt::format("{}[{}] {}", i ? "  " : "", i + 1, alert.buttons[i]);
  }
  std::cerr << choices << '\n';
  auto answer = [&](std::size_t index) {
    std::cerr << "> " << alert.buttons[index] << '\n';
    return AlertResponse{index, false};
  };
  for (std::size_t i = 0; i < alert.buttons.size() && !standingAnswer_.empty(); ++i) {
    if (asciiLowercased(alert.buttons[i]) == asciiLowercased(standingAnswer_)) return answer(i);
  }
  while (!presetAnswers_.empty()) {
    const std::string wanted = asciiLowercased(presetAnswers_.front());
    presetAnswers_.pop_front();
    for (std::size_t i = 0; i < alert.buttons.size(); ++i) {
      if (asciiLowercased(alert.buttons[i]) == wanted) return answer(i);
    }
    std::cerr << "(answer \"" << wanted << "\" is not one of the buttons)\n";
  }
  if (::isatty(STDIN_FILENO) == 0) return answer(alert.buttons.size() - 1);
  for (std::string line;;) {
    std::cerr << "Choose 1-" << alert.buttons.size() << ": " << std::flush;
    if (!std::getline(std::cin, line)) break;
    std::size_t index = 0;
    try {
      index = static_cast<std::size_t>(std::stoul(line));
    } catch (const std::exception&) {
      continue;
    }
    if (index < 1 || index > alert.buttons.size()) continue;
    AlertResponse response{index - 1, false};
    if (alert.suppressionTitle) {
      std::cerr << *alert.suppressionTitle << " [y/N] " << std::flush;
      std::string tick;
      std::getline(std::cin, tick);
      response.suppressionChecked = asciiLowercased(tick).rfind('y', 0) == 0;
    }
    return response;
  }
  return answer(alert.buttons.size() - 1);
}

std::optional<std::string> TerminalUserInterface::askForPassword(const PasswordPrompt& prompt) {
  std::cerr << prompt.messageText << '\n';
  if (!prompt.informativeText.empty()) std::cerr << prompt.informativeText << '\n';
  if (!prompt.hint.empty()) std::cerr << "Hint: " << prompt.hint << '\n';
  std::cerr << "Password: " << std::flush;
  termios saved{};
  const bool terminal = ::isatty(STDIN_FILENO) != 0 && ::tcgetattr(STDIN_FILENO, &saved) == 0;
  if (terminal) {
    termios silent = saved;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    ::tcsetattr(STDIN_FILENO, TCSANOW, &silent);
  }
  std::string password;
  const bool read = static_cast<bool>(std::getline(std::cin, password));
  if (terminal) {
    ::tcsetattr(STDIN_FILENO, TCSANOW, &saved);
    std::cerr << '\n';
  }
  if (!read) return std::nullopt;
  return password;
}

std::unique_ptr<Progress> TerminalUserInterface::beginProgress(const std::string& text) {
  return std::make_unique<TerminalProgress>(text);
}

void TerminalUserInterface::revealInFileManager(const std::filesystem::path& file) {
  std::cerr << file.string() << '\n';
  // A file manager only makes sense to someone at a desktop; scripts and remote shells get the
  // path alone.
  const bool desktop =
      std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
  if (!desktop || ::isatty(STDIN_FILENO) == 0) return;
  const std::string folder = file.parent_path().string();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::string program = "xdg-open";
  char* const arguments[] = {program.data(), const_cast<char*>(folder.c_str()), nullptr};
  pid_t child = 0;
  // Not waited for: the file manager outlives this program.
  if (posix_spawnp(&child, "xdg-open", &actions, nullptr, arguments, environ) != 0) {
    std::cerr << "(no file manager could be opened)\n";
  }
  posix_spawn_file_actions_destroy(&actions);
}

}  // namespace ledgeon::cli
