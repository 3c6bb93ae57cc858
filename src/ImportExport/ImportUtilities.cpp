#include "ImportExport/ImportUtilities.h"

#include <fstream>
#include <memory>
#include <system_error>

#include <unicode/timezone.h>

#include "Utilities/DateFormatter.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {
namespace {

constexpr const char* kConvertedDataFolderName = "Converted Data";
constexpr const char* kConvertedDataLogFileName = "logfile.txt";

Error fileError(const std::filesystem::path& path, const std::string& what) {
  Error error =
      Error::make(kCocoaErrorDomain, 512, "The file \"" + path.filename().string() + "\" " + what);
  error.userInfo[kFilePathErrorKey] = path.string();
  return error;
}

// The user's zone, where "now" in a file name should read as the user's clock does.
std::string defaultTimeZoneId() {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
  icu::UnicodeString id;
  zone->getID(id);
  std::string text;
  id.toUTF8String(text);
  return text.empty() ? "GMT" : text;
}

}  // namespace

Result<std::filesystem::path> ImportUtilities::nextFreeConvertedDataFolder(
    const std::filesystem::path& packageFolder) {
  std::error_code code;
  std::filesystem::create_directories(packageFolder, code);
  if (code) return fileError(packageFolder, "could not be created: " + code.message());
  for (long number = 1;; ++number) {
    const std::string name = number == 1
                                 ? std::string(kConvertedDataFolderName)
                                 : stringWithFormat("%@ %ld", kConvertedDataFolderName, number);
    const std::filesystem::path folder = packageFolder / name;
    // create_directory reports false when the name is taken, which is the test we need, race-free.
    if (std::filesystem::create_directory(folder, code)) return folder;
    if (code) return fileError(folder, "could not be created: " + code.message());
  }
}

std::string ImportUtilities::lifLogFileName(const std::filesystem::path& importedFile, Date now) {
  const DateFormatter stamp("yyyy-MM-dd HH.mm.ss", "en_US_POSIX", defaultTimeZoneId());
  return stringWithFormat("Ledgeon LIF Import Log for %@ at %@.txt", importedFile.stem().string(),
                          stamp.stringFromDate(now));
}

Result<void> ImportUtilities::writeLog(const ImportLog& log, const std::filesystem::path& file) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  if (!stream) return fileError(file, "could not be written.");
  const std::string text = log.plainText();
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
  stream.close();
  if (!stream) return fileError(file, "could not be written.");
  return {};
}

Result<std::filesystem::path> ImportUtilities::writeLIFImportLogs(
    const ImportLog& log, const std::filesystem::path& importedFile,
    const std::filesystem::path& packageFolder, const std::filesystem::path& logsFolder, Date now) {
  auto converted = nextFreeConvertedDataFolder(packageFolder);
  if (!converted) return converted.error();
  if (auto written = writeLog(log, *converted / kConvertedDataLogFileName); !written) {
    return written.error();
  }
  std::error_code code;
  std::filesystem::create_directories(logsFolder, code);
  if (code) return fileError(logsFolder, "could not be created: " + code.message());
  const std::filesystem::path named = logsFolder / lifLogFileName(importedFile, now);
  if (auto written = writeLog(log, named); !written) return written.error();
  return named;
}

}  // namespace ledgeon
