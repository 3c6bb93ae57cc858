#include <stdexcept>

#include <gtest/gtest.h>

#include "Platform/ScriptedUserInterface.h"
#include "Platform/Services.h"

namespace ledgeon {
namespace {

Alert question() {
  return {"Do you want to back up?", "", {"Back Up", "Don’t Back Up"}, "Don’t ask me again"};
}

TEST(ScriptedUserInterfaceTest, AnswersInOrderThenPressesTheLastButton) {
  ScriptedUserInterface ui;
  ui.addAlertAnswer({"Don’t Back Up", true});
  ui.addAlertAnswer({"Back Up"});
  const struct {
    std::size_t button;
    bool suppressed;
  } expected[] = {{1, true}, {0, false}, {1, false}};
  for (const auto& e : expected) {
    const AlertResponse response = ui.runAlert(question());
    EXPECT_EQ(response.buttonIndex, e.button);
    EXPECT_EQ(response.suppressionChecked, e.suppressed);
  }
  EXPECT_EQ(ui.alertsShown().size(), 3u);
  EXPECT_EQ(ui.alertsShown()[0].suppressionTitle, "Don’t ask me again");

  ui.addAlertAnswer({"Maybe"});
  EXPECT_THROW(ui.runAlert(question()), std::logic_error);
  EXPECT_THROW(ui.runAlert(Alert{"no buttons", "", {}, std::nullopt}), std::logic_error);
}

TEST(ScriptedUserInterfaceTest, PasswordsAndProgress) {
  ScriptedUserInterface ui;
  ui.addPassword("secret");
  EXPECT_EQ(ui.askForPassword({"Password for “Home”", "", "the usual"}), "secret");
  EXPECT_EQ(ui.askForPassword({"Password for “Home”", "", ""}), std::nullopt);
  EXPECT_EQ(ui.passwordPromptsShown().size(), 2u);

  ui.cancelProgressAfter(3);
  auto progress = ui.beginProgress("Upgrading your Ledgeon data");
  progress->setText("Backing up your data file...");
  progress->setMaximum(10);
  EXPECT_FALSE(progress->isCancelled());
  progress->setValue(4);
  EXPECT_TRUE(progress->isCancelled());
  EXPECT_EQ(ui.progressEvents(), (std::vector<std::string>{"begin: Upgrading your Ledgeon data",
                                                           "text: Backing up your data file...",
                                                           "maximum: 10", "value: 4"}));
}

TEST(ScriptedUserInterfaceTest, ServicesHandOutTheInstalledOne) {
  auto scripted = std::make_shared<ScriptedUserInterface>();
  Services::shared().setUserInterface(scripted);
  EXPECT_EQ(&Services::shared().userInterface(), scripted.get());
  Services::shared().setUserInterface(nullptr);
  // Unattended: the cancelling button.
  EXPECT_EQ(Services::shared().userInterface().runAlert(question()).buttonIndex, 1u);
}

}  // namespace
}  // namespace ledgeon
