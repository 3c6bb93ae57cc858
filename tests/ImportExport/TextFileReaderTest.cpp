#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ImportExport/TextFileReader.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

TEST(TextFileReaderTest, SplitsAtEveryLineTerminator) {
  struct Case {
    std::string text;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {"a\nb\rc\r\nd", {"a", "b", "c", "d"}},
      {"a\n\nb\n", {"a", "", "b"}},
      {"a\r\n\r\nb", {"a", "", "b"}},
      {"\n", {""}},
      {"", {}},
      {"a\xE2\x80\xA8"
       "b\xE2\x80\xA9"
       "c",
       {"a", "b", "c"}},
      {"a\xE2\x80\xAA"
       "b",
       {"a\xE2\x80\xAA"
        "b"}},  // not a terminator
      {"a\r\rb", {"a", "", "b"}},
      {"a\n\rb", {"a", "", "b"}},
  };
  for (const Case& c : cases) {
    const auto lines = TextFileReader::splitLines(c.text);
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.end()), c.lines) << c.text;
  }
}

TEST(TextFileReaderTest, DetectsAndConvertsEncodings) {
  struct Case {
    std::string bytes;
    std::string encoding;
    std::string text;
  };
  const Case cases[] = {
      {"Caf\xC3\xA9", "UTF-8", "Caf\xC3\xA9"},
      {"\xEF\xBB\xBFPCaf\xC3\xA9", "UTF-8", "PCaf\xC3\xA9"},
      {std::string("\xFF\xFEP\0a\0y\0\xE9\0", 10), "UTF-16LE", "Pay\xC3\xA9"},
      {std::string("\xFE\xFF\0P\0a\0y\0\xE9", 10), "UTF-16BE", "Pay\xC3\xA9"},
      // A Windows export: e acute and the euro sign in code page 1252.
      {"PCaf\xE9 pour 5\x80 le caf\xE9 du march\xE9\n", "windows-1252",
       "PCaf\xC3\xA9 pour 5\xE2\x82\xAC le caf\xC3\xA9 du march\xC3\xA9\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(TextFileReader::detectEncoding(c.bytes), c.encoding) << c.text;
    EXPECT_EQ(TextFileReader::decode(c.bytes), c.text) << c.encoding;
  }
}

TEST(TextFileReaderTest, GarbageDecodesToValidText) {
  std::string garbage;
  for (int i = 0; i < 4096; ++i) garbage += static_cast<char>((i * 7919) % 256);
  const std::string text = TextFileReader::decode(garbage);
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(TextFileReader::detectEncoding(text), "UTF-8");
}

TEST(TextFileReaderTest, ReadingAMissingFileFails) {
  testing::TempFolder folder;
  const auto text = TextFileReader::readFile(folder / "missing.lif");
  ASSERT_FALSE(text);
  EXPECT_NE(text.error().localizedDescription().find("missing.lif"), std::string::npos);
}

}  // namespace
}  // namespace ledgeon
