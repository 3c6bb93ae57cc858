#include <random>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "Utilities/JsonStreamWriter.h"

namespace ledgeon {
namespace {

// Writes `tree` through the writer, handing each subtree over whole or descending into it as
// `random` decides, so every mix of container calls and whole values is exercised.
void stream(JsonStreamWriter& writer, const nlohmann::json& tree, std::mt19937& random) {
  if (!tree.is_structured() || random() % 3 == 0) {
    writer.value(tree);
    return;
  }
  if (tree.is_object()) {
    writer.beginObject();
    for (const auto& [name, member] : tree.items()) {
      writer.key(name);
      stream(writer, member, random);
    }
  } else {
    writer.beginArray();
    for (const auto& element : tree) stream(writer, element, random);
  }
  writer.end();
}

nlohmann::json randomTree(std::mt19937& random, int depth) {
  switch (depth > 3 ? random() % 4 : random() % 6) {
    case 0:
      return nullptr;
    case 1:
      return "text \"quoted\"\n" + std::to_string(random() % 100);
    case 2:
      return static_cast<int64_t>(random() % 2000) - 1000;
    case 3:
      return random() % 2 == 0;
    case 4: {
      nlohmann::json array = nlohmann::json::array();
      for (unsigned i = random() % 4; i > 0; --i) array.push_back(randomTree(random, depth + 1));
      return array;
    }
    default: {
      nlohmann::json object = nlohmann::json::object();
      for (unsigned i = random() % 4; i > 0; --i) {
        object["k" + std::to_string(random() % 10)] = randomTree(random, depth + 1);
      }
      return object;
    }
  }
}

TEST(JsonStreamWriterTest, WritesWhatDumpingTheWholeTreeWrites) {
  std::mt19937 random(20261125);
  for (int round = 0; round < 2000; ++round) {
    const nlohmann::json tree = randomTree(random, 0);
    for (const int indent : {2, 4}) {
      std::ostringstream out;
      JsonStreamWriter writer(out, indent);
      stream(writer, tree, random);
      ASSERT_TRUE(writer.finished());
      ASSERT_EQ(out.str(), tree.dump(indent) + "\n") << "round " << round;
    }
  }
}

TEST(JsonStreamWriterTest, RefusesMisuse) {
  std::ostringstream out;
  JsonStreamWriter writer(out);
  EXPECT_THROW(writer.end(), std::logic_error);
  EXPECT_THROW(writer.key("outside"), std::logic_error);
  writer.beginObject();
  EXPECT_THROW(writer.value(1), std::logic_error);
  writer.key("a");
  EXPECT_THROW(writer.key("b"), std::logic_error);
  EXPECT_THROW(writer.end(), std::logic_error);
  writer.value(1);
  writer.end();
  EXPECT_THROW(writer.value(2), std::logic_error);
  EXPECT_EQ(out.str(), "{\n  \"a\": 1\n}\n");
}

}  // namespace
}  // namespace ledgeon
