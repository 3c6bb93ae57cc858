#include <gtest/gtest.h>

#include "Utilities/StringsTable.h"

namespace ledgeon {
namespace {

TEST(StringsTable, ReadsPairsCommentsAndEscapes) {
  auto table = StringsTable::parse(
      "/* nouns\n   of classes */\n"
      "\"ClassNounSingular_Account\" = \"Account\";\n"
      "// a comment\n"
      "\"Quoted\"=\"say \\\"hi\\\"\\nnow\";",
      "test.strings");
  ASSERT_TRUE(table.ok()) << table.error().localizedDescription();
  EXPECT_EQ(table->size(), 2u);
  EXPECT_EQ(table->lookup("ClassNounSingular_Account"), "Account");
  EXPECT_EQ(table->lookup("Quoted"), "say \"hi\"\nnow");
  EXPECT_EQ(table->lookup("Missing"), std::nullopt);
}

TEST(StringsTable, NamesTheLineOfASyntaxError) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      {"\"a\" = \"b\";\n\n\"c\" \"d\";", "bad.strings:3: expected '='"},
      {"\"a\" = \"b\"\n", "bad.strings:2: expected ';'"},
      {"\"a\" = \"unterminated;\n", "bad.strings:2: unterminated string"},
      {"key = \"v\";", "bad.strings:1: expected a quoted string"},
  };
  for (const auto& c : cases) {
    auto table = StringsTable::parse(c.text, "bad.strings");
    ASSERT_FALSE(table.ok()) << c.text;
    EXPECT_EQ(table.error().localizedDescription(), c.message);
  }
}

TEST(LocalizedString, FallsBackToTheKey) {
  EXPECT_EQ(LocalizedString("NoSuchKey_Anywhere"), "NoSuchKey_Anywhere");
  EXPECT_EQ(LocalizedString("Key", "NoSuchTable"), "Key");
}

}  // namespace
}  // namespace ledgeon
