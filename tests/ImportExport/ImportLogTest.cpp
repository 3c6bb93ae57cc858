#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "ImportExport/ImportLog.h"
#include "ImportExport/ImportUtilities.h"
#include "Utilities/LDateUtilities.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

ImportLog sampleLog() {
  ImportLog log("Import Log", "Importing /tmp/home.lif");
  log.add(ImportLogSeverity::kInfo, "Process account Checking");
  log.add(ImportLogSeverity::kWarning, "Unrecognized account type Property")
      .addChild(ImportLogSeverity::kDetail, "Line 6: TProperty");
  log.add(ImportLogSeverity::kError, "The file could not be read.");
  log.add(ImportLogSeverity::kInfo, "Accounts with stock splits:\n");
  return log;
}

TEST(ImportLogTest, PlainTextIsTheTreeIndentedWithSeverities) {
  EXPECT_EQ(sampleLog().plainText(),
            "Import Log\n"
            "  Importing /tmp/home.lif\n"
            "  Process account Checking\n"
            "  WARNING: Unrecognized account type Property\n"
            "    Line 6: TProperty\n"
            "  ERROR: The file could not be read.\n"
            "  Accounts with stock splits:\n");
}

TEST(ImportLogTest, JsonKeepsTheTree) {
  const auto json = nlohmann::json::parse(sampleLog().jsonText());
  EXPECT_EQ(json["severity"], 2);
  EXPECT_EQ(json["text"], "Import Log");
  ASSERT_EQ(json["children"].size(), 5u);
  EXPECT_EQ(json["children"][2]["severity"], 3);
  EXPECT_EQ(json["children"][2]["children"][0]["text"], "Line 6: TProperty");
  EXPECT_EQ(sampleLog().count(ImportLogSeverity::kWarning), 1u);
}

TEST(ImportLogTest, ConvertedDataFoldersAreNeverReused) {
  testing::TempFolder package;
  auto first = ImportUtilities::nextFreeConvertedDataFolder(package.path());
  auto second = ImportUtilities::nextFreeConvertedDataFolder(package.path());
  auto third = ImportUtilities::nextFreeConvertedDataFolder(package.path());
  ASSERT_TRUE(first && second && third);
  EXPECT_EQ(first->filename(), "Converted Data");
  EXPECT_EQ(second->filename(), "Converted Data 2");
  EXPECT_EQ(third->filename(), "Converted Data 3");
  EXPECT_TRUE(std::filesystem::is_directory(*third));
}

TEST(ImportLogTest, LogsAreWrittenInBothPlaces) {
  testing::TempFolder folder;
  const Date now = Date::fromUnixTime(1767225600.0 + 3723.0);  // 2026-01-01 01:02:03 GMT
  const std::string name = ImportUtilities::lifLogFileName("/data/Home Finances.lif", now);
  EXPECT_EQ(name.rfind("Ledgeon LIF Import Log for Home Finances at 20", 0), 0u) << name;
  EXPECT_EQ(name.find(':'), std::string::npos);
  EXPECT_EQ(name.substr(name.size() - 4), ".txt");

  const ImportLog log = sampleLog();
  auto named = ImportUtilities::writeLIFImportLogs(log, "/data/Home Finances.lif",
                                                   folder / "Doc.ledgeon", folder / "logs", now);
  ASSERT_TRUE(named);
  EXPECT_EQ(named->filename(), name);
  EXPECT_EQ(testing::readFile(*named), log.plainText());
  EXPECT_EQ(testing::readFile(folder / "Doc.ledgeon" / "Converted Data" / "logfile.txt"),
            log.plainText());

  // A logs folder that cannot be made (a file is in the way) is an error, not a crash.
  { std::ofstream blocker(folder / "blocked"); }
  EXPECT_FALSE(ImportUtilities::writeLIFImportLogs(log, "x.lif", folder / "Doc.ledgeon",
                                                   folder / "blocked" / "logs", now));
}

}  // namespace
}  // namespace ledgeon
