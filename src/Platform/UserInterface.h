#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ledgeon {

// A question put to the user: a message, an explanation, buttons (the first is the default) and
// an optional suppression check box ("Don't ask me again ...").
struct Alert {
  std::string messageText;
  std::string informativeText;
  std::vector<std::string> buttons;
  std::optional<std::string> suppressionTitle;
};

// The user's answer: the index of the pressed button and whether the suppression box was ticked.
struct AlertResponse {
  std::size_t buttonIndex = 0;
  bool suppressionChecked = false;
};

// A password question; an empty `hint` shows none.
struct PasswordPrompt {
  std::string messageText;
  std::string informativeText;
  std::string hint;
};

// A progress window for long work: main text, a value against a maximum, a text on the bar and a
// cancel request from the user that the work polls.
class Progress {
 public:
  virtual ~Progress() = default;
  virtual void setText(const std::string& text) = 0;
  virtual void setBarText(const std::string& text) = 0;
  virtual void setMaximum(double maximum) = 0;
  virtual void setValue(double value) = 0;
  virtual bool isCancelled() const = 0;
};

// Everything the library asks of the person in front of the program. The CLI answers on a
// terminal (or from flags); tests answer from a script. Main thread only.
class UserInterface {
 public:
  virtual ~UserInterface() = default;
  virtual AlertResponse runAlert(const Alert& alert) = 0;
  // The entered password, or nothing when the user cancelled.
  virtual std::optional<std::string> askForPassword(const PasswordPrompt& prompt) = 0;
  virtual std::unique_ptr<Progress> beginProgress(const std::string& text) = 0;
  // Shows the user where `file` is, in the file manager where there is one.
  virtual void revealInFileManager(const std::filesystem::path& file) = 0;
};

}  // namespace ledgeon
