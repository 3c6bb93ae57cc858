#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace ledgeon {

// The whole content of a file, byte for byte; std::nullopt when it cannot be opened.
std::optional<std::string> readFileContents(const std::filesystem::path& path);

}  // namespace ledgeon
