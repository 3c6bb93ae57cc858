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

  AlertResponse runAlert(const Alert& alert) override;
  std::optional<std::string> askForPassword(const PasswordPrompt& prompt) override;
  std::unique_ptr<Progress> beginProgress(const std::string& text) override;
  // Prints the file's path; on a desktop, with a person at the terminal, also opens its folder.
  void revealInFileManager(const std::filesystem::path& file) override;

 private:
  std::deque<std::string> presetAnswers_;
};

}  // namespace ledgeon::cli
