// Reads arbitrary bytes as a lock record and, when it parses, judges who holds it.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Documents/DocumentLocking.h"
#include "Documents/LFileLockInfo.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 64 * 1024) return 0;
  auto lock = ledgeon::LFileLockInfo::readFromData(
      std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.plist");
  if (!lock) return 0;
  static const ledgeon::LFileLockInfo current = ledgeon::LFileLockInfo::currentProcess();
  lock->currentOwner(current);
  (void)ledgeon::lockConflictAlert(*lock, "Fuzz.ledgeon");
  (void)lock->propertyList().binaryData();
  return 0;
}
