// Reads arbitrary bytes as backup information, and as a whole backup archive whose information
// is read without unpacking it.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

#include "Documents/LBackupInfo.h"
#include "Documents/LDocumentPackage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 64 * 1024) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (auto info = ledgeon::LBackupInfo::readFromData(bytes, "fuzz.plist")) {
    (void)info->propertyList().binaryData();
  }
  static const std::string path =
      "/tmp/ledgeon-backup-fuzz-" + std::to_string(::getpid()) + ".ledgeonbackup";
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  (void)ledgeon::LDocumentPackage::backupInfoForBackupPath(path);
  ::unlink(path.c_str());
  return 0;
}
