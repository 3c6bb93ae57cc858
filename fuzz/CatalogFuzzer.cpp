// Reads arbitrary bytes as a catalog: every segment in order, the metadata of segment 20 parsed.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

#include <unistd.h>

#include "Documents/LCatalogCoder.h"
#include "Documents/LCatalogMetadata.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 64 * 1024) return 0;
  static const std::string path = "/tmp/ledgeon-catalog-fuzz-" + std::to_string(::getpid());
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  auto reader = ledgeon::LCatalogCoder::unarchiverWithPath(path);
  if (!reader) return 0;
  using Type = ledgeon::LCatalogSegmentType;
  bool hasPublicKey = false;
  for (Type type : {Type::kMark, Type::kMetadata, Type::kDocumentKey, Type::kRecoveryKey,
                    Type::kPrivateMetadata, Type::kDataBase, Type::kContents}) {
    if (type == Type::kRecoveryKey && !hasPublicKey) continue;
    auto segment = (*reader)->unarchiveNextSegmentOfType(type);
    if (!segment) break;
    if (type == Type::kMetadata) {
      auto metadata = ledgeon::LCatalogMetadata::unarchiveFromData(segment->data, "fuzz");
      if (!metadata) break;
      hasPublicKey = !metadata->publicKey.empty();
      (void)metadata->archivedData();
    }
  }
  (*reader)->close();
  ::unlink(path.c_str());
  return 0;
}
