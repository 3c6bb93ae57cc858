#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ImportExport/ImportFileKind.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

using Kind = ImportFileKind::Kind;

std::string utf16le(const std::string& ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) bytes += std::string{c, '\0'};
  return bytes;
}

TEST(ImportFileKindTest, FilesMeantForOtherReadersAreNamed) {
  struct Case {
    const char* name;
    std::string head;
    Kind kind;
    const char* description;
  };
  const std::vector<Case> cases = {
      {"lif", "\n!Type:Bank\nD1/1/24\n", Kind::kLIF, "This file looks like a LIF interchange file"},
      {"lif in UTF-16", utf16le("!Account\nNChecking\n"), Kind::kLIF,
       "This file looks like a LIF interchange file"},
      {"ofx 1", "OFXHEADER:100\r\nDATA:OFXSGML\r\n\r\n<OFX>\r\n", Kind::kOFX1,
       "This file looks like an OFX statement (OFX 1.x, SGML)"},
      {"ofx 1 without header", "<OFX><SIGNONMSGSRSV1>", Kind::kOFX1,
       "This file looks like an OFX statement (OFX 1.x, SGML)"},
      {"ofx 2", "<?xml version=\"1.0\"?>\n<?OFX OFXHEADER=\"200\" VERSION=\"220\"?>\n<OFX>",
       Kind::kOFX2, "This file looks like an OFX statement (OFX 2.x, XML)"},
      {"other xml", "<?xml version=\"1.0\"?><rates/>", Kind::kText, ""},
      {"csv", "\"Date\",\"Description\"\n\"1/02/2026\",\"Cafe\"\n", Kind::kText, ""},
      {"csv in UTF-16", utf16le("Date,Amount\n1/2/2026,4.50\n"), Kind::kText, ""},
      {"csv in windows-1252", "Date,Payee\n1/2/2026,Caf\xE9\n", Kind::kText, ""},
      {"zip", std::string("PK\x03\x04\x14\x00\x00\x00", 8), Kind::kBinary,
       "This file looks like a zip archive (a spreadsheet workbook is one), not text"},
      {"pdf", "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n", Kind::kBinary,
       "This file looks like a PDF document, not text"},
      {"sqlite", std::string("SQLite format 3\0\x10\x00", 18), Kind::kBinary,
       "This file looks like an SQLite database, not text"},
      {"nul bytes", std::string("ab\0cd", 5), Kind::kBinary,
       "This file looks like binary data, not text"},
      {"control bytes", "\x01\x02\x03\x04\x05 abc", Kind::kBinary,
       "This file looks like binary data, not text"},
      {"blank", " \n\t\r\n", Kind::kEmpty, ""},
      {"empty", "", Kind::kEmpty, ""},
  };
  for (const Case& c : cases) {
    const ImportFileKind kind = ImportFileKind::ofHead(c.head);
    EXPECT_EQ(kind.kind(), c.kind) << c.name;
    EXPECT_EQ(kind.description(), c.description) << c.name;
  }
}

TEST(ImportFileKindTest, ReadsOnlyTheHeadOfAFileAndFailsOnWhatCannotBeRead) {
  testing::TempFolder folder;
  const auto path = folder / "big.ofx";
  {
    std::ofstream out(path, std::ios::binary);
    out << "OFXHEADER:100\n" << std::string(1 << 20, 'x');
  }
  const auto kind = ImportFileKind::ofFile(path);
  ASSERT_TRUE(kind);
  EXPECT_EQ(kind->kind(), Kind::kOFX1);
  EXPECT_FALSE(ImportFileKind::ofFile(folder / "missing.csv"));
  EXPECT_FALSE(ImportFileKind::ofFile(folder.path()));
}

}  // namespace
}  // namespace ledgeon
