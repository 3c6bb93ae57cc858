#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Documents/LPropertyList.h"
#include "Utilities/Date.h"
#include "Utilities/Result.h"

namespace ledgeon {

// Why a backup was made; stored as its number in the backup information.
enum class BackupReason : int64_t {
  kManual = 0,     // the user asked for it
  kAutomatic = 1,  // the periodic backup, taken on close
  kPreUpdate = 2,  // taken before a new program version converts the document
};

inline constexpr const char* kBackupExtension = "ledgeonbackup";
inline constexpr const char* kBackupInfoFileName = "LedgeonBackupInfo.plist";

// What a backup archive says about itself ("LedgeonBackupInfo.plist" inside the archive).
struct LBackupInfo {
  Date dateCreated;
  std::string note;
  std::string originalFilePath;
  BackupReason reason = BackupReason::kManual;
  std::string UID;

  LPropertyList propertyList() const;
  static Result<LBackupInfo> readFromData(std::string_view data, const std::string& origin);
};

}  // namespace ledgeon
