#include "Utilities/FileContents.h"

#include <fstream>
#include <sstream>

namespace ledgeon {

std::optional<std::string> readFileContents(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream text;
  text << in.rdbuf();
  return std::move(text).str();
}

}  // namespace ledgeon
