#pragma once

#include <deque>
#include <string>

#include "Platform/UserInterface.h"

namespace ledgeon::cli {

// Asks on the terminal: alerts and progress on stderr, answers from stdin when it is a terminal.
// Answers given in advance (the --answer flags) are used first; with neither, the last button
// (the cancelling one) is pressed, so an unattended run never hangs on a question.
class TerminalUserInterface final : public UserInterface {
 public:
  static TerminalUserInterface& shared();

  void addPresetAnswer(std::string button) { presetAnswers_.push_back(std::move(button)); }
  // The button pressed whenever an alert offers it, before any preset answer is used; "" for
  // none. For the question a command may or may not meet (the one a successful import ends
  // with), which a preset answer would outlive.
  void setStandingAnswer(std::string button) { standingAnswer_ = std::move(button); }

  AlertResponse runAlert(const Alert& alert) override;
  std::optional<std::string> askForPassword(const PasswordPrompt& prompt) override;
  std::unique_ptr<Progress> beginProgress(const std::string& text) override;
  // Prints the file's path; on a desktop, with a person at the terminal, also opens its folder.
  void revealInFileManager(const std::filesystem::path& file) override;

 private:
  std::deque<std::string> presetAnswers_;
  std::string standingAnswer_;
};

}  // namespace ledgeon::cli
