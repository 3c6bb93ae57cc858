#include "Platform/ScriptedUserInterface.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

namespace ledgeon {

class ScriptedProgress final : public Progress {
 public:
  explicit ScriptedProgress(ScriptedUserInterface& owner) : owner_(owner) {}
  void setText(const std::string& text) override { record("text: " + text); }
  void setBarText(const std::string& text) override { record("bar: " + text); }
  void setMaximum(double maximum) override { record(fmt::format("maximum: {}", maximum)); }
  void setValue(double value) override { record(fmt::format("value: {}", value)); }
  bool isCancelled() const override {
    return owner_.cancelAfterUpdates_ >= 0 && updates_ >= owner_.cancelAfterUpdates_;
  }

 private:
  void record(std::string event) {
    owner_.progressEvents_.push_back(std::move(event));
    ++updates_;
  }
  ScriptedUserInterface& owner_;
  int updates_ = 0;
};

AlertResponse ScriptedUserInterface::runAlert(const Alert& alert) {
  if (alert.buttons.empty()) throw std::logic_error("An alert needs at least one button");
  alertsShown_.push_back(alert);
  if (alertAnswers_.empty()) return {alert.buttons.size() - 1, false};
  AlertAnswer answer = std::move(alertAnswers_.front());
  alertAnswers_.pop_front();
  const auto found = std::find(alert.buttons.begin(), alert.buttons.end(), answer.button);
  if (found == alert.buttons.end()) {
    throw std::logic_error("Scripted answer \"" + answer.button + "\" is not a button of \"" +
                           alert.messageText + "\"");
  }
  return {static_cast<std::size_t>(found - alert.buttons.begin()), answer.suppressionChecked};
}

std::optional<std::string> ScriptedUserInterface::askForPassword(const PasswordPrompt& prompt) {
  promptsShown_.push_back(prompt);
  if (passwords_.empty()) return std::nullopt;
  std::string password = std::move(passwords_.front());
  passwords_.pop_front();
  return password;
}

std::unique_ptr<Progress> ScriptedUserInterface::beginProgress(const std::string& text) {
  progressEvents_.push_back("begin: " + text);
  return std::make_unique<ScriptedProgress>(*this);
}

}  // namespace ledgeon
