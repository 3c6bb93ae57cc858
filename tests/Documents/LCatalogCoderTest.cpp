#include <fstream>

#include <gtest/gtest.h>

#include "Documents/LCatalogCoder.h"
#include "Documents/LCatalogMetadata.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

namespace fs = std::filesystem;

std::vector<uint8_t> bytes(const std::string& text) { return {text.begin(), text.end()}; }

LCatalogMetadata sampleMetadata() {
  LCatalogMetadata metadata;
  metadata.encodingCompatibility = "v100";
  metadata.errorTitle = "Newer document";
  metadata.errorMessage = "This document needs a newer version.";
  metadata.errorURL = "https://ledgeon.example/upgrade?from=v100";
  metadata.bundleName = "Ledgeon";
  metadata.bundleIdentifier = "org.ledgeon.Ledgeon";
  metadata.bundleVersion = "0.1.0";
  metadata.bundleShortVersionString = "0.1";
  metadata.timestamp = Date(730000000.123456);
  metadata.publicKey = "recovery-2024";
  metadata.passwordHint = "the usual";
  metadata.passwordSalt = {0x00, 0xFF, 0x10, 0x20, 0x30};
  metadata.passwordRounds = 250000;
  metadata.metadataIV = std::vector<uint8_t>(16, 0xA5);
  metadata.clientId = "client-1";
  metadata.userId = "user-1";
  metadata.dataSetId = "set-1";
  metadata.dataBaseIV = std::vector<uint8_t>(16, 0x01);
  metadata.zipIV = {0x02};
  return metadata;
}

TEST(LCatalogCoderTest, SegmentsRoundTripInOrderAndEmptyOnesAreNineBytes) {
  testing::TempFolder temp;
  const std::string path = (temp / "catalog").string();
  const struct {
    LCatalogSegmentType type;
    std::vector<uint8_t> data;
  } segments[] = {
      {LCatalogSegmentType::kMark, bytes(kCatalogMark)},
      {LCatalogSegmentType::kMetadata, sampleMetadata().publicMetadata().archivedData()},
      {LCatalogSegmentType::kDocumentKey, std::vector<uint8_t>(40, 0x11)},
      {LCatalogSegmentType::kPrivateMetadata, {}},
      {LCatalogSegmentType::kDataBase, std::vector<uint8_t>(70000, 0x7F)},
      {LCatalogSegmentType::kContents, bytes("PK")},
  };
  {
    auto writer = LCatalogCoder::archiverWithPath(path);
    ASSERT_TRUE(writer);
    for (const auto& s : segments) ASSERT_TRUE((*writer)->archiveSegmentWithType(s.type, s.data));
    ASSERT_TRUE((*writer)->close());
  }
  std::size_t expectedSize = 0;
  for (const auto& s : segments) expectedSize += 9 + s.data.size();
  EXPECT_EQ(fs::file_size(path), expectedSize);

  const std::string raw = testing::readFile(path);
  EXPECT_EQ(raw.substr(0, 9), std::string("\x0A\0\0\0\0\0\0\0\x07", 9));
  EXPECT_EQ(raw.substr(9, 7), "Ledgeon");

  auto reader = LCatalogCoder::unarchiverWithPath(path);
  ASSERT_TRUE(reader);
  for (const auto& s : segments) {
    auto segment = (*reader)->unarchiveNextSegmentOfType(s.type);
    ASSERT_TRUE(segment) << segment.error().description();
    EXPECT_EQ(segment->type, static_cast<uint8_t>(s.type));
    EXPECT_EQ(segment->length, s.data.size());
    EXPECT_EQ(segment->data, s.data);
  }
  EXPECT_TRUE((*reader)->atEnd());
  EXPECT_FALSE((*reader)->unarchiveNextSegmentOfType(LCatalogSegmentType::kContents));

  // Only an empty segment: the file is its header alone.
  const std::string emptyPath = (temp / "empty").string();
  auto writer = LCatalogCoder::archiverWithPath(emptyPath);
  ASSERT_TRUE(writer);
  ASSERT_TRUE((*writer)->archiveSegmentWithType(50, {}));
  ASSERT_TRUE((*writer)->close());
  EXPECT_EQ(testing::readFile(emptyPath), std::string("\x32\0\0\0\0\0\0\0\0", 9));
}

TEST(LCatalogCoderTest, DamagedCatalogsAreRefusedWithTheirOffset) {
  testing::TempFolder temp;
  const struct {
    const char* name;
    std::string content;
    uint8_t expectedType;
    const char* message;
  } cases[] = {
      {"wrong type", std::string("\x14\0\0\0\0\0\0\0\0", 9), 10,
       "catalog segment of type 20 where 10 was expected at offset 0"},
      {"short header", std::string("\x0A\0\0", 3), 10, "missing catalog segment 10 at offset 0"},
      {"length beyond the file", std::string("\x0A\0\0\0\0\0\0\0\x08Ledgeon", 16), 10,
       "catalog segment 10 is cut short at offset 0"},
      {"huge length", std::string("\x0A\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 9), 10,
       "catalog segment 10 is cut short"},
      {"empty file", "", 10, "missing catalog segment 10"},
  };
  for (const auto& c : cases) {
    const fs::path path = temp / c.name;
    std::ofstream(path, std::ios::binary) << c.content;
    auto reader = LCatalogCoder::unarchiverWithPath(path.string());
    ASSERT_TRUE(reader) << c.name;
    auto segment = (*reader)->unarchiveNextSegmentOfType(c.expectedType);
    ASSERT_FALSE(segment) << c.name;
    EXPECT_NE(segment.error().localizedDescription().find(c.message), std::string::npos)
        << c.name << ": " << segment.error().localizedDescription();
  }
  EXPECT_FALSE(LCatalogCoder::unarchiverWithPath((temp / "missing").string()));
  EXPECT_FALSE(LCatalogCoder::unarchiverWithPath(temp.path().string()));
  EXPECT_FALSE(LCatalogCoder::archiverWithPath((temp / "no" / "such" / "folder").string()));
}

TEST(LCatalogMetadataTest, ArchiveRoundTripAndTheTwoParts) {
  const LCatalogMetadata metadata = sampleMetadata();
  auto read = LCatalogMetadata::unarchiveFromData(metadata.archivedData(), "segment 20");
  ASSERT_TRUE(read) << read.error().description();
  EXPECT_EQ(*read, metadata);

  LPropertyList dictionary = LPropertyList::dictionary();
  metadata.writeToDictionary(dictionary);
  const std::vector<std::string> keys = {"encodingVersion",
                                         "encodingCompatibility",
                                         "errorTitle",
                                         "errorMessage",
                                         "errorURL",
                                         "bundleName",
                                         "bundleIdentifier",
                                         "bundleVersion",
                                         "bundleShortVersionString",
                                         "timestamp",
                                         "publicKey",
                                         "passwordHint",
                                         "passwordSalt",
                                         "passwordRounds",
                                         "metadataIV",
                                         "clientId",
                                         "userId",
                                         "dataSetId",
                                         "dataBaseIV",
                                         "zipIV"};
  EXPECT_EQ(dictionary.keys(), keys);
  EXPECT_EQ(dictionary.string("encodingVersion"), "v100");
  EXPECT_EQ(dictionary.string("timestamp"), "2024-02-19T01:46:40.123456Z");
  EXPECT_EQ(dictionary.string("passwordSalt"), "AP8QIDA=");
  EXPECT_EQ(dictionary.integer("passwordRounds"), 250000);

  const LCatalogMetadata publicPart = metadata.publicMetadata();
  EXPECT_TRUE(publicPart.clientId.empty() && publicPart.userId.empty() &&
              publicPart.dataSetId.empty() && publicPart.dataBaseIV.empty() &&
              publicPart.zipIV.empty());
  EXPECT_EQ(publicPart.passwordSalt, metadata.passwordSalt);
  EXPECT_EQ(publicPart.metadataIV, metadata.metadataIV);
  const LCatalogMetadata privatePart = metadata.privateMetadata();
  EXPECT_TRUE(privatePart.passwordHint.empty() && privatePart.passwordSalt.empty());
  EXPECT_EQ(privatePart.zipIV, metadata.zipIV);

  LCatalogMetadata joined = publicPart;
  joined.updateFromMetadata(privatePart);
  EXPECT_EQ(joined, metadata);
}

TEST(LCatalogMetadataTest, FieldsOfTheWrongKindAreNamed) {
  const struct {
    const char* xml;
    const char* message;
  } cases[] = {
      {"<dict><key>passwordSalt</key><string>***</string></dict>", "passwordSalt"},
      {"<dict><key>timestamp</key><string>yesterday</string></dict>", "timestamp"},
      {"<dict><key>errorURL</key><string>no scheme</string></dict>", "errorURL"},
      {"<dict><key>passwordHint</key><integer>3</integer></dict>", "passwordHint"},
      {"<dict><key>passwordRounds</key><string>many</string></dict>", "passwordRounds"},
      {"<array/>", "not a dictionary"},
  };
  for (const auto& c : cases) {
    const std::string xml =
        std::string("<?xml version=\"1.0\"?><plist version=\"1.0\">") + c.xml + "</plist>";
    auto read = LCatalogMetadata::unarchiveFromData({xml.begin(), xml.end()}, "catalog");
    ASSERT_FALSE(read) << c.xml;
    EXPECT_NE(read.error().localizedDescription().find(c.message), std::string::npos)
        << read.error().localizedDescription();
  }
  const struct {
    std::string text;
    std::optional<std::vector<uint8_t>> data;
  } encodings[] = {
      {"", std::vector<uint8_t>{}},
      {"AA==", std::vector<uint8_t>{0}},
      {"AAE=", std::vector<uint8_t>{0, 1}},
      {"AAEC", std::vector<uint8_t>{0, 1, 2}},
      {"AAE", std::nullopt},
      {"AA\nE", std::nullopt},
  };
  for (const auto& e : encodings) EXPECT_EQ(LCatalogMetadata::decodeData(e.text), e.data) << e.text;
}

}  // namespace
}  // namespace ledgeon
