#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXException.h"
#include "OnlineBankingFramework/OFXRoot.h"
#include "OnlineBankingFramework/XMLMapping.h"
#include "Utilities/Resources.h"

namespace ledgeon {
namespace {

constexpr std::string_view kMapping = R"(<Mappings>
  <Mapping name="Status" type="object" class="OFXStatus" xmlPath="STATUS" objectPath="ofxStatus">
    <Mapping xmlPath="CODE" objectPath="errorCode" type="number"/>
    <Mapping xmlPath="SEVERITY" objectPath="severity" type="string" default="INFO"/>
  </Mapping>
  <Mapping rootName="R" type="object" class="OFXRoot">
    <Mapping ref="Status"/>
    <Mapping xmlPath="H/ORG" objectPath="org" type="string"/>
    <Mapping xmlPath="DC" objectPath="directConnect" type="string"/>
    <Mapping xmlPath="INV" objectPath="investmentOFX" type="constant" default="YES"/>
    <Mapping xmlPath="LIST" type="switch" objectPath="securities" isList="YES">
      <Mapping xmlPath="S" type="object" class="OFXStockSecurity">
        <Mapping type="constant" objectPath="memo" default="stock"/>
        <Mapping xmlPath="N" objectPath="secName" type="string"/>
      </Mapping>
      <Mapping xmlPath="M" type="object" class="OFXMutualFundSecurity"/>
    </Mapping>
  </Mapping>
</Mappings>)";

std::unique_ptr<OFXRoot> read(std::string_view xml) {
  auto mapping = XMLMapping::fromText(kMapping, "R", "test");
  auto object = mapping->unmarshal(xml);
  return std::unique_ptr<OFXRoot>(dynamic_cast<OFXRoot*>(object.release()));
}

std::string failure(std::string_view xml) {
  try {
    read(xml);
  } catch (const OFXException& e) {
    return e.description();
  }
  return "no failure";
}

TEST(XMLMappingTest, MapsPathsSwitchesConstantsAndDefaults) {
  auto root = read(
      "<R><STATUS><CODE>7</CODE></STATUS><UNKNOWN><ORG>no</ORG></UNKNOWN><H><ORG>A</ORG></H>"
      "<DC>true</DC><INV/><LIST><S><N>Acme</N></S><X/><M/></LIST></R>");
  EXPECT_EQ(root->statusResult(), 7);
  EXPECT_EQ(root->ofxStatus().severity(), "INFO");  // default for the missing element
  EXPECT_EQ(root->org(), "A");
  EXPECT_TRUE(root->directConnect());
  EXPECT_TRUE(root->investmentOFX());
  ASSERT_EQ(root->securities().size(), 2u);
  EXPECT_EQ(root->securities()[0]->secName(), "Acme");
  EXPECT_EQ(root->securities()[0]->memo(), "stock");
  EXPECT_EQ(root->securities()[1]->className(), "OFXMutualFundSecurity");
}

TEST(XMLMappingTest, BooleansReadYesAndTrueOnly) {
  const struct {
    const char* text;
    bool value;
  } cases[] = {{"YES", true}, {"true", true}, {"Y", false}, {"NO", false}, {"TRUE", false}};
  for (const auto& c : cases) {
    EXPECT_EQ(read(std::string("<R><DC>") + c.text + "</DC></R>")->directConnect(), c.value)
        << c.text;
  }
}

TEST(XMLMappingTest, FailuresNameTheirCause) {
  const struct {
    const char* xml;
    const char* message;
  } cases[] = {
      {"<R><H><ORG></ORG></H></R>", "Passed nil for value input string! (R/H/ORG"},
      {"<R><STATUS><CODE>x</CODE></STATUS></R>", "Invalid number: x"},
      {"<R><H>", "XMLParseError"},
      {"<R>&bogus;</R>", "XMLParseError"},
      {"<Q/>", "the document element is Q"},
  };
  for (const auto& c : cases) {
    EXPECT_NE(failure(c.xml).find(c.message), std::string::npos) << failure(c.xml);
  }
}

TEST(XMLMappingTest, BadResourcesAreRejected) {
  const struct {
    const char* resource;
    const char* message;
  } cases[] = {
      {R"(<M><Mapping rootName="R" type="object" class="OFXRoot"><Mapping xmlPath="A"
          objectPath="org" type="text"/></Mapping></M>)",
       "Invalid type: text"},
      {R"(<M><Mapping rootName="R" type="object" class="OFXRoot"><Mapping xmlPath="A"
          objectPath="nothing" type="string"/></Mapping></M>)",
       "OFXRoot has no property nothing"},
      {R"(<M><Mapping rootName="R" type="object" class="NoSuchClass"/></M>)",
       "unknown class NoSuchClass"},
      {R"(<M><Mapping rootName="R" type="object" class="OFXRoot"><Mapping ref="Nope"/></Mapping></M>)",
       "unknown ref Nope"},
      {R"(<M><Mapping rootName="X" type="object" class="OFXRoot"/></M>)",
       "no mapping has rootName R"},
  };
  for (const auto& c : cases) {
    try {
      XMLMapping::fromText(c.resource, "R", "bad.xml");
      ADD_FAILURE() << c.message;
    } catch (const OFXException& e) {
      EXPECT_NE(e.reason().find(c.message), std::string::npos) << e.reason();
    }
  }
}

TEST(XMLMappingTest, ShippedMappingsCompile) {
  EXPECT_NO_THROW(XMLMapping::fromFile(resourcePath("ofxXMLMapping.xml"), "OFX"));
}

}  // namespace
}  // namespace ledgeon

namespace ledgeon {
namespace {

// Regression: a constant on an element was also applied as a default when the element was
// missing, so every bank statement claimed to be an investment response. Constants now only
// apply when their element occurs.
TEST(XMLMappingTest, ConstantsApplyOnlyWhenTheirElementOccurs) {
  auto mapping = XMLMapping::fromText(kMapping, "R", "test");
  auto object = mapping->unmarshal("<R><H><ORG>A</ORG></H></R>");
  EXPECT_FALSE(dynamic_cast<OFXRoot&>(*object).investmentOFX());
}

}  // namespace
}  // namespace ledgeon
