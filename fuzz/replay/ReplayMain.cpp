// Runs a fuzz target over every file of its corpus folders, so the corpus is a regression test in
// builds without libFuzzer.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  size_t runs = 0;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path folder(argv[i]);
    if (!std::filesystem::is_directory(folder)) {
      std::fprintf(stderr, "%s: not a corpus folder\n", argv[i]);
      return 1;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (!entry.is_regular_file()) continue;
      std::ifstream in(entry.path(), std::ios::binary);
      std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                 std::istreambuf_iterator<char>());
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
      ++runs;
    }
  }
  std::printf("replayed %zu inputs\n", runs);
  return runs == 0 ? 1 : 0;
}
