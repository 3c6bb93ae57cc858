#include "Documents/LCatalogMetadata.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <ctime>

#include <fmt/format.h>
#include <openssl/evp.h>

namespace ledgeon {

namespace {

Error fieldError(const std::string& origin, const char* key, const char* expected) {
  return Error::make(kLErrorDomain, 1,
                     origin + ": catalog metadata field " + key + " is not " + expected);
}

}  // namespace

std::string LCatalogMetadata::encodeTimestamp(Date date) {
  const double unix = date.unixTime();
  const double whole = std::floor(unix);
  auto micro = static_cast<long>(std::lround((unix - whole) * 1e6));
  auto seconds = static_cast<std::time_t>(whole);
  if (micro >= 1000000) {
    micro -= 1000000;
    ++seconds;
  }
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}Z", parts.tm_year + 1900,
                     parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                     micro);
}

std::optional<Date> LCatalogMetadata::decodeTimestamp(const std::string& text) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, consumed = 0;
  long micro = 0;
  if (text.size() != 27 ||
      std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%6ldZ%n", &year, &month, &day, &hour,
                  &minute, &second, &micro, &consumed) != 7 ||
      consumed != 27) {
    return std::nullopt;
  }
  if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60 ||
      micro < 0) {
    return std::nullopt;
  }
  std::tm parts{};
  parts.tm_year = year - 1900;
  parts.tm_mon = month - 1;
  parts.tm_mday = day;
  parts.tm_hour = hour;
  parts.tm_min = minute;
  parts.tm_sec = second;
  const std::time_t seconds = timegm(&parts);
  return Date::fromUnixTime(static_cast<double>(seconds) + static_cast<double>(micro) / 1e6);
}

std::string LCatalogMetadata::encodeData(const std::vector<uint8_t>& data) {
  std::string text(4 * ((data.size() + 2) / 3) + 1, '\0');
  const int written = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), data.data(),
                                      static_cast<int>(data.size()));
  text.resize(static_cast<std::size_t>(written));
  return text;
}

std::optional<std::vector<uint8_t>> LCatalogMetadata::decodeData(const std::string& text) {
  if (text.size() % 4 != 0) return std::nullopt;
  for (char c : text) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '+' && c != '/' && c != '=') {
      return std::nullopt;
    }
  }
  std::vector<uint8_t> data(text.size() / 4 * 3 + 1);
  const int written =
      EVP_DecodeBlock(data.data(), reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<int>(text.size()));
  if (written < 0) return std::nullopt;
  // EVP_DecodeBlock counts the padding as zero bytes.
  std::size_t size = static_cast<std::size_t>(written);
  if (!text.empty() && text.back() == '=') --size;
  if (text.size() > 1 && text[text.size() - 2] == '=') --size;
  data.resize(size);
  return data;
}

std::optional<std::string> LCatalogMetadata::decodeURL(const std::string& text) {
  if (text.empty()) return text;
  const auto colon = text.find(':');
  if (colon == std::string::npos || colon == 0) return std::nullopt;
  for (std::size_t i = 0; i < colon; ++i) {
    const char c = text[i];
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '+' && c != '-' && c != '.') {
      return std::nullopt;
    }
  }
  return text;
}

Result<void> LCatalogMetadata::readFromDictionary(const LPropertyList& dictionary,
                                                  const std::string& origin) {
  if (!dictionary.isDictionary()) {
    return Error::make(kLErrorDomain, 1, origin + ": catalog metadata is not a dictionary");
  }
  LCatalogMetadata read;
  auto has = [&](const char* key) { return dictionary.contains(key); };
  auto text = [&](const char* key, std::string& field) -> bool {
    if (!has(key)) return true;
    auto value = dictionary.string(key);
    if (!value) return false;
    field = *value;
    return true;
  };
  struct TextField {
    const char* key;
    std::string* field;
  };
  const TextField texts[] = {
      {"encodingVersion", &read.encodingVersion},
      {"encodingCompatibility", &read.encodingCompatibility},
      {"errorTitle", &read.errorTitle},
      {"errorMessage", &read.errorMessage},
      {"bundleName", &read.bundleName},
      {"bundleIdentifier", &read.bundleIdentifier},
      {"bundleVersion", &read.bundleVersion},
      {"bundleShortVersionString", &read.bundleShortVersionString},
      {"publicKey", &read.publicKey},
      {"passwordHint", &read.passwordHint},
      {"clientId", &read.clientId},
      {"userId", &read.userId},
      {"dataSetId", &read.dataSetId},
  };
  for (const auto& [key, field] : texts) {
    if (!text(key, *field)) return fieldError(origin, key, "a text");
  }
  std::string encoded;
  if (!text("errorURL", encoded)) return fieldError(origin, "errorURL", "a text");
  auto url = decodeURL(encoded);
  if (!url) return fieldError(origin, "errorURL", "a URL");
  read.errorURL = *url;
  encoded.clear();
  if (!text("timestamp", encoded)) return fieldError(origin, "timestamp", "a text");
  if (!encoded.empty()) {
    read.timestamp = decodeTimestamp(encoded);
    if (!read.timestamp) return fieldError(origin, "timestamp", "a date");
  }
  struct DataField {
    const char* key;
    std::vector<uint8_t>* field;
  };
  const DataField datas[] = {{"passwordSalt", &read.passwordSalt},
                             {"metadataIV", &read.metadataIV},
                             {"dataBaseIV", &read.dataBaseIV},
                             {"zipIV", &read.zipIV}};
  for (const auto& [key, field] : datas) {
    encoded.clear();
    if (!text(key, encoded)) return fieldError(origin, key, "a text");
    auto bytes = decodeData(encoded);
    if (!bytes) return fieldError(origin, key, "base-64 data");
    *field = std::move(*bytes);
  }
  if (has("passwordRounds")) {
    auto rounds = dictionary.integer("passwordRounds");
    if (!rounds || *rounds < 0) return fieldError(origin, "passwordRounds", "a number");
    read.passwordRounds = *rounds;
  }
  *this = std::move(read);
  return {};
}

void LCatalogMetadata::writeToDictionary(LPropertyList& dictionary) const {
  dictionary.setString("encodingVersion", encodingVersion);
  dictionary.setString("encodingCompatibility", encodingCompatibility);
  dictionary.setString("errorTitle", errorTitle);
  dictionary.setString("errorMessage", errorMessage);
  dictionary.setString("errorURL", encodeURL(errorURL));
  dictionary.setString("bundleName", bundleName);
  dictionary.setString("bundleIdentifier", bundleIdentifier);
  dictionary.setString("bundleVersion", bundleVersion);
  dictionary.setString("bundleShortVersionString", bundleShortVersionString);
  dictionary.setString("timestamp", timestamp ? encodeTimestamp(*timestamp) : "");
  dictionary.setString("publicKey", publicKey);
  dictionary.setString("passwordHint", passwordHint);
  dictionary.setString("passwordSalt", encodeData(passwordSalt));
  dictionary.setInteger("passwordRounds", passwordRounds);
  dictionary.setString("metadataIV", encodeData(metadataIV));
  dictionary.setString("clientId", clientId);
  dictionary.setString("userId", userId);
  dictionary.setString("dataSetId", dataSetId);
  dictionary.setString("dataBaseIV", encodeData(dataBaseIV));
  dictionary.setString("zipIV", encodeData(zipIV));
}

std::vector<uint8_t> LCatalogMetadata::archivedData() const {
  LPropertyList dictionary = LPropertyList::dictionary();
  writeToDictionary(dictionary);
  const std::string bytes = dictionary.binaryData();
  return std::vector<uint8_t>(bytes.begin(), bytes.end());
}

Result<LCatalogMetadata> LCatalogMetadata::unarchiveFromData(const std::vector<uint8_t>& data,
                                                             const std::string& origin) {
  auto dictionary = LPropertyList::fromData(
      std::string_view(reinterpret_cast<const char*>(data.data()), data.size()), origin);
  if (!dictionary) return dictionary.error();
  LCatalogMetadata metadata;
  if (auto read = metadata.readFromDictionary(*dictionary, origin); !read) return read.error();
  return metadata;
}

void LCatalogMetadata::updateFromMetadata(const LCatalogMetadata& other) {
  auto take = [](auto& field, const auto& value) {
    if (!value.empty()) field = value;
  };
  take(encodingVersion, other.encodingVersion);
  take(encodingCompatibility, other.encodingCompatibility);
  take(errorTitle, other.errorTitle);
  take(errorMessage, other.errorMessage);
  take(errorURL, other.errorURL);
  take(bundleName, other.bundleName);
  take(bundleIdentifier, other.bundleIdentifier);
  take(bundleVersion, other.bundleVersion);
  take(bundleShortVersionString, other.bundleShortVersionString);
  if (other.timestamp) timestamp = other.timestamp;
  take(publicKey, other.publicKey);
  take(passwordHint, other.passwordHint);
  take(passwordSalt, other.passwordSalt);
  if (other.passwordRounds != 0) passwordRounds = other.passwordRounds;
  take(metadataIV, other.metadataIV);
  take(clientId, other.clientId);
  take(userId, other.userId);
  take(dataSetId, other.dataSetId);
  take(dataBaseIV, other.dataBaseIV);
  take(zipIV, other.zipIV);
}

LCatalogMetadata LCatalogMetadata::publicMetadata() const {
  LCatalogMetadata result = *this;
  result.clientId.clear();
  result.userId.clear();
  result.dataSetId.clear();
  result.dataBaseIV.clear();
  result.zipIV.clear();
  return result;
}

LCatalogMetadata LCatalogMetadata::privateMetadata() const {
  LCatalogMetadata result;
  result.encodingVersion.clear();
  result.metadataIV = metadataIV;
  result.clientId = clientId;
  result.userId = userId;
  result.dataSetId = dataSetId;
  result.dataBaseIV = dataBaseIV;
  result.zipIV = zipIV;
  return result;
}

}  // namespace ledgeon
