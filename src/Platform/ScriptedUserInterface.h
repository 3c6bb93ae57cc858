#pragma once

#include <deque>
#include <string>
#include <vector>

#include "Platform/UserInterface.h"

namespace ledgeon {

// Answers from a script and remembers every question, for tests and unattended runs. Alerts are
// answered by button title in script order; once the script is used up, the last button (the
// cancelling one by convention) is pressed. Each alert and progress event is recorded.
class ScriptedUserInterface final : public UserInterface {
 public:
  struct AlertAnswer {
    std::string button;
    bool suppressionChecked = false;
  };

  void addAlertAnswer(AlertAnswer answer) { alertAnswers_.push_back(std::move(answer)); }
  void addPassword(std::string password) { passwords_.push_back(std::move(password)); }
  void cancelProgressAfter(int updates) { cancelAfterUpdates_ = updates; }

  AlertResponse runAlert(const Alert& alert) override;
  std::optional<std::string> askForPassword(const PasswordPrompt& prompt) override;
  std::unique_ptr<Progress> beginProgress(const std::string& text) override;
  void revealInFileManager(const std::filesystem::path& file) override {
    revealedFiles_.push_back(file);
  }

  const std::vector<Alert>& alertsShown() const { return alertsShown_; }
  const std::vector<PasswordPrompt>& passwordPromptsShown() const { return promptsShown_; }
  // "text: ...", "bar: ...", "maximum: ...", "value: ..." lines in the order they happened.
  const std::vector<std::string>& progressEvents() const { return progressEvents_; }
  const std::vector<std::filesystem::path>& revealedFiles() const { return revealedFiles_; }

 private:
  friend class ScriptedProgress;
  std::deque<AlertAnswer> alertAnswers_;
  std::deque<std::string> passwords_;
  std::vector<Alert> alertsShown_;
  std::vector<PasswordPrompt> promptsShown_;
  std::vector<std::string> progressEvents_;
  std::vector<std::filesystem::path> revealedFiles_;
  int cancelAfterUpdates_ = -1;
};

}  // namespace ledgeon
