// The reader is fed the converter's XML in pieces; cut anywhere, the pieces must give what the
// whole text gives: the same objects, or the same failure with the same line and column.
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXException.h"
#include "OnlineBankingFramework/OFXRootController.h"
#include "OnlineBankingFramework/OfxConvert.h"
#include "OnlineBankingFramework/XMLMapping.h"
#include "Utilities/Resources.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

template <typename Read>
std::string outcome(Read&& read) {
  try {
    return read()->toJSON().dump();
  } catch (const OFXException& e) {
    return "failed: " + e.description();
  }
}

TEST(XMLMappingReaderTest, PiecesOfAnySizeReadAsTheWholeText) {
  const auto mapping = XMLMapping::fromFile(resourcePath("ofxXMLMapping.xml"), "OFX");
  size_t files = 0;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(testing::sharedTestData("ofx"))) {
    if (!entry.is_regular_file() || entry.path().extension() == ".md") continue;
    ++files;
    const std::string text = OFXRootController::decodeOFXText(testing::readFile(entry.path()));
    const std::string xml = OfxConvert::convertOFXToXML(std::string_view(text));
    const std::string whole = outcome([&] { return mapping->unmarshal(xml); });
    for (const size_t pieceSize : {size_t{1}, size_t{7}, size_t{64}, size_t{1000}}) {
      const std::string pieces = outcome([&] {
        XMLMapping::Reader reader(*mapping);
        for (size_t at = 0; at < xml.size(); at += pieceSize) {
          reader.feed(std::string_view(xml).substr(at, pieceSize));
        }
        return reader.finish();
      });
      ASSERT_EQ(pieces, whole) << entry.path() << " in pieces of " << pieceSize;
    }
    // The converter's own hand-over gives the same XML.
    std::string handedOver;
    OfxConvert::convertOFXToXML(std::string(text),
                                [&](std::string_view piece) { handedOver.append(piece); });
    EXPECT_EQ(handedOver, xml) << entry.path();
  }
  EXPECT_GT(files, 20u);
}

}  // namespace
}  // namespace ledgeon
