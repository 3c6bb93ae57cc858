#pragma once

#include <cstdint>

namespace ledgeon {

// Tags of the main menu's command items. A command's verb is the title of its item, read from the
// resource table "MainMenuCommands.strings" (tag = title).
inline constexpr uint32_t kMainMenuTagCreate = 100;
inline constexpr uint32_t kMainMenuTagDelete = 101;
inline constexpr uint32_t kMainMenuTagChange = 102;
inline constexpr uint32_t kMainMenuTagDuplicate = 103;
inline constexpr uint32_t kMainMenuTagImport = 104;
inline constexpr uint32_t kMainMenuTagMerge = 105;
inline constexpr uint32_t kMainMenuTagUnmerge = 106;
inline constexpr uint32_t kMainMenuTagConvert = 107;
inline constexpr uint32_t kMainMenuTagEdit = 108;
inline constexpr uint32_t kMainMenuTagUpdate = 109;
inline constexpr uint32_t kMainMenuTagPost = 110;
inline constexpr uint32_t kMainMenuTagDownload = 111;

}  // namespace ledgeon
