#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

std::string demoFile(const char* name) {
  return std::string(LEDGEON_SOURCE_DIR) + "/resources/demo/" + name;
}

TEST(ImportCommand, ImportsIntoAnEmptyDocumentOnceAndPrintsTheLog) {
  testing::TempFolder home;
  const std::string document = (home / "Family.ledgeon").string();
  ASSERT_EQ(testing::runCli({"new", document}, home.path()).exitStatus, 0);

  const auto imported =
      testing::runCli({"import", document, demoFile("household.lif")}, home.path());
  ASSERT_EQ(imported.exitStatus, 0) << imported.err;
  EXPECT_NE(imported.out.find("Everyday Checking - 5 transactions\n"), std::string::npos)
      << imported.out;
  EXPECT_NE(imported.out.find("Cash balance doesn't match for account Everyday Checking."),
            std::string::npos);

  // The document now holds transactions: a second LIF import is refused.
  const auto again =
      testing::runCli({"import", document, demoFile("household.lif"), "--json"}, home.path());
  EXPECT_EQ(again.exitStatus, 1);
  EXPECT_NE(again.err.find("can only import lif files into empty documents."), std::string::npos)
      << again.err;
  EXPECT_EQ(again.out, "");  // refused before anything was read

  // A CSV export is recognised from its content and goes into an account of its own.
  const auto csv =
      testing::runCli({"import", document, demoFile("transactions.csv"), "--json"}, home.path());
  ASSERT_EQ(csv.exitStatus, 0) << csv.err;
  const auto log = nlohmann::json::parse(csv.out);
  EXPECT_EQ(log["children"].back()["text"], "transactions.csv - 7 transactions\n");
}

TEST(ImportCommand, ShellImportIsOneUndoableStep) {
  testing::TempFolder home;
  const std::string document = (home / "Family.ledgeon").string();
  ASSERT_EQ(testing::runCli({"new", document}, home.path()).exitStatus, 0);
  const auto shell =
      testing::runCli({"shell", document}, home.path(),
                      "import " + demoFile("household.lif") + "\nundo\nredo\nundo\n");
  ASSERT_EQ(shell.exitStatus, 0) << shell.err;
  EXPECT_NE(shell.out.find("Everyday Checking - 5 transactions\n"), std::string::npos);
  EXPECT_NE(shell.out.find("Undo Import"), std::string::npos) << shell.out;
  EXPECT_NE(shell.out.find("Redo Import"), std::string::npos) << shell.out;
  // Undone last: the document is empty again, so the file can be imported once more.
  const auto again = testing::runCli({"import", document, demoFile("household.lif")}, home.path());
  EXPECT_EQ(again.exitStatus, 0) << again.err;
}

TEST(ImportCommand, BadArgumentsFailWithAMessage) {
  testing::TempFolder home;
  const std::string document = (home / "Family.ledgeon").string();
  ASSERT_EQ(testing::runCli({"new", document}, home.path()).exitStatus, 0);
  const auto missing =
      testing::runCli({"import", document, (home / "none.lif").string()}, home.path());
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_NE(missing.err.find("none.lif"), std::string::npos);
  const auto format = testing::runCli(
      {"import", document, demoFile("household.lif"), "--format", "qif"}, home.path());
  EXPECT_NE(format.exitStatus, 0);
}

}  // namespace
}  // namespace ledgeon
