#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Documents/LPropertyList.h"
#include "Utilities/Date.h"
#include "Utilities/Result.h"

namespace ledgeon {

// What a catalog says about itself: the encoding and who wrote it, what a reader needs to derive
// the key (salt, rounds, hint), the recovery key's name, and the initialisation vectors and cloud
// identities of the private part. Archived as a dictionary whose dates, bytes and URLs are texts.
class LCatalogMetadata final {
 public:
  static constexpr const char* kCurrentEncodingVersion = "v100";

  std::string encodingVersion = kCurrentEncodingVersion;
  std::string encodingCompatibility;
  std::string errorTitle;
  std::string errorMessage;
  std::string errorURL;
  std::string bundleName;
  std::string bundleIdentifier;
  std::string bundleVersion;
  std::string bundleShortVersionString;
  std::optional<Date> timestamp;
  std::string publicKey;
  std::string passwordHint;
  std::vector<uint8_t> passwordSalt;
  int64_t passwordRounds = 0;
  std::vector<uint8_t> metadataIV;
  std::string clientId;
  std::string userId;
  std::string dataSetId;
  std::vector<uint8_t> dataBaseIV;
  std::vector<uint8_t> zipIV;

  // Fills the fields from `dictionary`; `origin` names the source in errors. Missing keys leave
  // their fields empty; a key of the wrong kind is an error naming it.
  Result<void> readFromDictionary(const LPropertyList& dictionary, const std::string& origin);
  void writeToDictionary(LPropertyList& dictionary) const;
  std::vector<uint8_t> archivedData() const;
  static Result<LCatalogMetadata> unarchiveFromData(const std::vector<uint8_t>& data,
                                                    const std::string& origin);
  // Takes every field that is set in `other`.
  void updateFromMetadata(const LCatalogMetadata& other);

  // The part stored in the clear: everything but the cloud identities and the data vectors.
  LCatalogMetadata publicMetadata() const;
  // The part stored enciphered: the metadata vector, the cloud identities and the data vectors.
  LCatalogMetadata privateMetadata() const;

  static std::string encodeTimestamp(Date date);
  static std::optional<Date> decodeTimestamp(const std::string& text);
  static std::string encodeData(const std::vector<uint8_t>& data);
  static std::optional<std::vector<uint8_t>> decodeData(const std::string& text);
  static std::string encodeURL(const std::string& url) { return url; }
  static std::optional<std::string> decodeURL(const std::string& text);

  bool operator==(const LCatalogMetadata&) const = default;
};

}  // namespace ledgeon
