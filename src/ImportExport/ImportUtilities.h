#pragma once

#include <filesystem>
#include <string>

#include "ImportExport/ImportLog.h"
#include "Utilities/Date.h"
#include "Utilities/Result.h"

namespace ledgeon {

// Where imports leave their logs: a fresh converted-data folder inside the document package per
// import, and a named copy in the application's logs folder.
class ImportUtilities final {
 public:
  ImportUtilities() = delete;

  // "Converted Data", else "Converted Data 2", "Converted Data 3" ... : the first name not yet
  // taken inside `packageFolder`. Creates it.
  static Result<std::filesystem::path> nextFreeConvertedDataFolder(
      const std::filesystem::path& packageFolder);
  // "Ledgeon LIF Import Log for <file name without extension> at <time stamp>.txt", the time stamp
  // written "yyyy-MM-dd HH.mm.ss" in the user's zone (no characters file systems refuse).
  static std::string lifLogFileName(const std::filesystem::path& importedFile, Date now);
  // Writes `log` as plain text to `file`, replacing it.
  static Result<void> writeLog(const ImportLog& log, const std::filesystem::path& file);
  // Writes "logfile.txt" into the next free converted-data folder of `packageFolder` and the named
  // log into `logsFolder`; returns the path of the latter (the one to show the user).
  static Result<std::filesystem::path> writeLIFImportLogs(
      const ImportLog& log, const std::filesystem::path& importedFile,
      const std::filesystem::path& packageFolder, const std::filesystem::path& logsFolder,
      Date now);
};

}  // namespace ledgeon
