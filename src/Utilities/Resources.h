#pragma once

#include <filesystem>
#include <string_view>

namespace ledgeon {

// The folder of the program's resource files (string tables, mappings, sample data):
// $LEDGEON_RESOURCES_DIR when set, else the folder the build was made from.
std::filesystem::path resourcesDirectory();
std::filesystem::path resourcePath(std::string_view fileName);

}  // namespace ledgeon
