#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXString.h"

namespace ledgeon {
namespace {

TEST(OFXStringTest, KeepsEveryByteAndComparesAsItsText) {
  const std::string cases[] = {"", "A", "Payee number 123", std::string("a\0b", 3),
                               std::string(70000, 'x')};
  for (const std::string& text : cases) {
    const OFXString value(text);
    EXPECT_EQ(value.size(), text.size());
    EXPECT_EQ(value.empty(), text.empty());
    EXPECT_EQ(value.str(), text);
    EXPECT_TRUE(value == text);
    EXPECT_TRUE(value == std::string_view(text));
    EXPECT_EQ(value.c_str()[value.size()], '\0');
  }
  EXPECT_TRUE(OFXString() == "");
  EXPECT_FALSE(OFXString("ab") == "a");
}

TEST(OFXStringTest, CopiesMovesAndAssignmentsOwnTheirText) {
  OFXString first("first value");
  OFXString copy(first);
  first = "changed";
  EXPECT_EQ(copy, "first value");
  OFXString moved(std::move(copy));
  EXPECT_EQ(moved, "first value");
  EXPECT_TRUE(copy.empty());  // NOLINT: a moved-from text is empty
  const OFXString& same = moved;
  moved = same;  // assigning a text to itself keeps it
  EXPECT_EQ(moved, "first value");
  moved = std::move(first);
  EXPECT_EQ(moved, "changed");
  moved = std::string();
  EXPECT_TRUE(moved.empty());
  EXPECT_EQ(moved.find("x"), std::string::npos);
  EXPECT_EQ(OFXString("a<b").find("<"), 1u);
}

}  // namespace
}  // namespace ledgeon
