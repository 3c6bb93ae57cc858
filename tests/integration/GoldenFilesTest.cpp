// Golden files: each folder of tests/data is one format. Every input in it goes through the
// `ledgeon` commands that read that format, and what they print is compared with NAME.expected
// beside the input. The OFX folder also covers every file of the shared real-world corpus; their
// expected outputs live under tests/data/ofx/shared/ with the corpus's own relative paths.
// After an intended change of output, regenerate and review the diff before committing:
//   LEDGEON_REGENERATE_GOLDEN=1 ctest --preset dev -R GoldenFiles
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TestSupport.h"

namespace ledgeon {
namespace {

namespace fs = std::filesystem;

struct GoldenCase {
  fs::path input;
  fs::path expected;
  std::string displayName;  // how the input is named in the output: stable across machines
};

fs::path dataFolder(const std::string& format) {
  return fs::path(LEDGEON_SOURCE_DIR) / "tests" / "data" / format;
}

bool isInput(const fs::path& path, const std::vector<std::string>& extensions) {
  const std::string name = path.filename().string();
  return std::any_of(extensions.begin(), extensions.end(), [&](const std::string& extension) {
    return name.size() > extension.size() && name.ends_with(extension);
  });
}

std::vector<GoldenCase> ownCases(const std::string& format,
                                 const std::vector<std::string>& extensions) {
  std::vector<GoldenCase> cases;
  for (const auto& entry : fs::directory_iterator(dataFolder(format))) {
    if (!entry.is_regular_file() || !isInput(entry.path(), extensions)) continue;
    const std::string name = entry.path().filename().string();
    cases.push_back({entry.path(), dataFolder(format) / (name + ".expected"), name});
  }
  return cases;
}

// Every file of the shared OFX corpus but its licences and notes.
std::vector<GoldenCase> sharedOfxCases() {
  std::vector<GoldenCase> cases;
  const fs::path root = testing::sharedTestData("ofx");
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (!entry.is_regular_file()) continue;
    const std::string name = entry.path().filename().string();
    if (name.starts_with(".") || name.starts_with("README") || name.starts_with("LICENSE") ||
        name.starts_with("NOTICE") || name.starts_with("COPYING")) {
      continue;
    }
    const std::string relative = fs::relative(entry.path(), root).string();
    cases.push_back({entry.path(), dataFolder("ofx") / "shared" / (relative + ".expected"),
                     "shared/" + relative});
  }
  return cases;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  if (from.empty()) return;
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// One command's part of the golden text: its arguments, its status when it failed, its output.
std::string section(const std::vector<std::string>& shownArguments,
                    const testing::CliResult& result) {
  std::string text = "$ ledgeon";
  for (const std::string& argument : shownArguments) text += " " + argument;
  text += "\n";
  if (result.exitStatus != 0) {
    text += "exit " + std::to_string(result.exitStatus) + "\n" + result.err;
  }
  return text + result.out;
}

std::string ofxDump(const GoldenCase& golden, const testing::TempFolder& home) {
  const auto result =
      testing::runCli({"ofx", "dump", "--json", golden.input.string()}, home.path());
  return section({"ofx", "dump", "--json", golden.displayName}, result);
}

// A new document, the import, then what the ledger holds.
std::string importAndList(const GoldenCase& golden, const testing::TempFolder& home) {
  const std::string document = (home / "Golden.ledgeon").string();
  std::string text;
  const auto created = testing::runCli({"new", document}, home.path());
  if (created.exitStatus != 0) return section({"new", "DOC"}, created);
  const std::vector<std::vector<std::string>> steps = {
      {"import", document, golden.input.string(), "--json"},
      {"accounts", document, "--json"},
      {"transactions", document, "--json"}};
  for (const auto& arguments : steps) {
    std::vector<std::string> shown = arguments;
    for (std::string& argument : shown) {
      if (argument == document) argument = "DOC";
      if (argument == golden.input.string()) argument = golden.displayName;
    }
    text += section(shown, testing::runCli(arguments, home.path(), ""));
  }
  return text;
}

void runFolder(
    const std::vector<GoldenCase>& cases,
    const std::function<std::string(const GoldenCase&, const testing::TempFolder&)>& produce) {
  ASSERT_FALSE(cases.empty());
  const bool regenerate = std::getenv("LEDGEON_REGENERATE_GOLDEN") != nullptr;
  for (const GoldenCase& golden : cases) {
    testing::TempFolder home;
    std::string actual = produce(golden, home);
    replaceAll(actual, golden.input.string(), golden.displayName);
    replaceAll(actual, golden.input.parent_path().string(), "INPUT_FOLDER");
    replaceAll(actual, home.path().string(), "HOME");
    if (regenerate) {
      fs::create_directories(golden.expected.parent_path());
      std::ofstream(golden.expected, std::ios::binary) << actual;
      continue;
    }
    ASSERT_TRUE(fs::exists(golden.expected))
        << golden.expected << " is missing: regenerate with LEDGEON_REGENERATE_GOLDEN=1";
    const std::string expected = testing::readFile(golden.expected);
    if (actual == expected) continue;
    const fs::path actualFile = home / "actual";
    std::ofstream(actualFile, std::ios::binary) << actual;
    const auto diff =
        testing::runProgram({"diff", "-u", golden.expected.string(), actualFile.string()});
    ADD_FAILURE() << golden.displayName << " differs from its golden file:\n" << diff.out;
  }
}

TEST(GoldenFiles, OfxDumps) {
  auto cases = ownCases("ofx", {".ofx", ".lfx"});
  const auto shared = sharedOfxCases();
  cases.insert(cases.end(), shared.begin(), shared.end());
  runFolder(cases, ofxDump);
}

TEST(GoldenFiles, LifImports) { runFolder(ownCases("lif", {".lif"}), importAndList); }

TEST(GoldenFiles, CsvImports) { runFolder(ownCases("csv", {".csv"}), importAndList); }

}  // namespace
}  // namespace ledgeon
