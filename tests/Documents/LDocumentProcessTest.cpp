// Documents met by more than one process: the lock seen from a second `ledgeon`, and a writer
// killed with SIGKILL in the middle of a batch.
#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "DataBase/DataBase.h"
#include "DocumentTestEnvironment.h"
#include "Documents/LDocument.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

namespace fs = std::filesystem;

// Reads the program's lines until one equals `wanted`; false when it ended first.
bool readUntil(testing::BackgroundCli& program, const std::string& wanted) {
  for (;;) {
    const std::string line = program.readLine();
    if (line == wanted) return true;
    if (line.empty()) return false;
  }
}

TEST(LDocumentProcessTest, NewThenInfoReportTheSameDocument) {
  testing::TempFolder home, folder;
  const fs::path document = folder / "Household.ledgeon";
  const auto made = testing::runCli({"new", document.string(), "--json"}, home.path());
  ASSERT_EQ(made.exitStatus, 0) << made.err;
  const auto created = nlohmann::json::parse(made.out);
  EXPECT_EQ(created["categories"].get<size_t>(), LDocument::defaultCategoryNames().size());

  const auto info = testing::runCli({"info", document.string(), "--json"}, home.path());
  ASSERT_EQ(info.exitStatus, 0) << info.err;
  const auto shown = nlohmann::json::parse(info.out);
  EXPECT_EQ(shown["package"], document.string());
  EXPECT_EQ(shown["modelVersion"], "Ledgeon 1");
  EXPECT_EQ(shown["clientDocumentId"], created["clientDocumentId"]);
  EXPECT_EQ(shown["counts"]["CategoryTag"], created["categories"]);
  EXPECT_EQ(shown["counts"]["Mortgage"], 1);
  EXPECT_TRUE(shown["lockHolders"].empty());
  EXPECT_TRUE(shown["lastBackup"].is_null());

  const auto again = testing::runCli({"new", document.string()}, home.path());
  EXPECT_EQ(again.exitStatus, 1);
  EXPECT_NE(again.err.find("could not be opened"), std::string::npos) << again.err;
}

TEST(LDocumentProcessTest, SecondProcessSeesTheDocumentHeldByTheFirst) {
  testing::TempFolder home, folder;
  const fs::path document = folder / "Shared.ledgeon";
  ASSERT_EQ(testing::runCli({"new", document.string()}, home.path()).exitStatus, 0);

  testing::BackgroundCli holder({"info", document.string(), "--hold"}, home.path());
  ASSERT_TRUE(readUntil(holder, "Objects:"));

  const auto refused = testing::runCli({"info", document.string(), "--json"}, home.path());
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_NE(refused.err.find("The document \u201cShared.ledgeon\u201d is already open in another "
                             "application."),
            std::string::npos)
      << refused.err;
  EXPECT_NE(refused.err.find(
                "To open this document, quit the application \u201cLedgeon\u201d (PID " +
                std::to_string(holder.pid()) + "), then click the \u201cTry Again\u201d button."),
            std::string::npos)
      << refused.err;
  EXPECT_TRUE(refused.out.empty());

  const auto anyway = testing::runCli(
      {"info", document.string(), "--json", "--answer", "Open Anyway"}, home.path());
  ASSERT_EQ(anyway.exitStatus, 0) << anyway.err;
  const auto shown = nlohmann::json::parse(anyway.out);
  ASSERT_EQ(shown["lockHolders"].size(), 1u);
  EXPECT_EQ(shown["lockHolders"][0]["pid"], holder.pid());

  EXPECT_EQ(holder.finish(), 0);
  const auto after = testing::runCli({"info", document.string(), "--json"}, home.path());
  ASSERT_EQ(after.exitStatus, 0) << after.err;
  EXPECT_TRUE(nlohmann::json::parse(after.out)["lockHolders"].empty());
}

struct KillMoment {
  const char* name;
  const char* afterLine;
  int delayMilliseconds;
  enum Expect { kNone, kAll, kEither } expect;
};

TEST(LDocumentProcessTest, WriterKilledMidBatchLeavesAllOrNoneOfTheBatch) {
  constexpr size_t kBatch = 6000;
  const KillMoment moments[] = {
      {"before the batch", "ready", 0, KillMoment::kNone},
      {"while creating", "created 3000", 0, KillMoment::kNone},
      {"as the commit starts", "committing", 0, KillMoment::kEither},
      {"early in the commit", "committing", 20, KillMoment::kEither},
      {"late in the commit", "committing", 150, KillMoment::kEither},
      {"after the commit", "committed", 0, KillMoment::kAll},
  };
  for (const KillMoment& moment : moments) {
    SCOPED_TRACE(moment.name);
    DocumentTestEnvironment environment;
    const fs::path document = environment.path("Batch.ledgeon");
    auto created = LDocument::createNewDocument(document);
    ASSERT_TRUE(created);
    (*created)->close();

    testing::BackgroundCli writer(LEDGEON_BATCH_WRITER_PATH,
                                  {document.string(), std::to_string(kBatch)}, environment.home());
    ASSERT_TRUE(readUntil(writer, moment.afterLine));
    std::this_thread::sleep_for(std::chrono::milliseconds(moment.delayMilliseconds));
    ASSERT_EQ(::kill(writer.pid(), SIGKILL), 0);
    EXPECT_EQ(writer.finish(), 128 + SIGKILL);

    // The killed writer's lock is stale: the document opens without a question.
    auto reopened = LDocument::initWithContentsOfURL(document);
    ASSERT_TRUE(reopened) << reopened.error().description();
    EXPECT_TRUE(environment.userInterface().alertsShown().empty());
    DataBase& db = (*reopened)->dataBase();
    EXPECT_EQ(db.countForInstancesOfClass("Account"), 1u);
    const size_t transactions = db.countForInstancesOfClass("CashFlowTransaction");
    EXPECT_EQ(db.countForInstancesOfClass("CashFlowTransactionEntry"), transactions);
    switch (moment.expect) {
      case KillMoment::kNone:
        EXPECT_EQ(transactions, 0u);
        break;
      case KillMoment::kAll:
        EXPECT_EQ(transactions, kBatch);
        break;
      case KillMoment::kEither:
        EXPECT_TRUE(transactions == 0 || transactions == kBatch) << transactions;
        break;
    }
  }
}

}  // namespace
}  // namespace ledgeon
