#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXRoot.h"
#include "OnlineBankingFramework/OFXRootController.h"
#include "OnlineBankingFramework/OFXText.h"
#include "OnlineBankingFramework/OfxConvert.h"

namespace ledgeon {
namespace {

std::string body(std::string_view xml) {
  return std::string(xml.substr(OfxConvert::kXMLPrologue.size()));
}

TEST(OfxConvertTest, StripWhiteSpaceKeepsMessageBodies) {
  const struct {
    const char* in;
    const char* out;
  } cases[] = {
      {"<A>\r\n  <B>  x y  </B>\n</A>", "<A><B>x y</B></A>"},
      {"<A>\tv\t</A>", "<A>v</A>"},
      {"<NAME>A  B", "<NAME>A  B"},
      {"<MSGBODY>line 1\n\n  line 2\n</MSGBODY>\n<X>",
       "<MSGBODY>line 1\n\n  line 2\n</MSGBODY><X>"},
  };
  for (const auto& c : cases) EXPECT_EQ(OfxConvert::stripWhiteSpace(c.in), c.out) << c.in;
}

TEST(OfxConvertTest, SgmlGetsEndTagsAndThePrologue) {
  const struct {
    const char* in;
    const char* out;
  } cases[] = {
      // Header and trailer go; leaves get end tags; aggregates keep theirs.
      {"OFXHEADER:100\nDATA:OFXSGML\n\n<OFX><A><B>1<C>2</A></OFX>junk",
       "<OFX><A><B>1</B><C>2</C></A></OFX>"},
      // No header at all is SGML too.
      {"<OFX><CODE>0</OFX>", "<OFX><CODE>0</CODE></OFX>"},
      // Leading plus signs go.
      {"<OFX><TRNAMT>++25.00</OFX>", "<OFX><TRNAMT>25.00</TRNAMT></OFX>"},
      // A leaf named like a later aggregate is closed at its own value: the search for its end
      // tag stops at the end of the enclosing aggregate.
      {"<OFX><X><NAME>a</X><NAME><V>1</NAME></OFX>",
       "<OFX><X><NAME>a</NAME></X><NAME><V>1</V></NAME></OFX>"},
      // Already closed leaves stay as they are.
      {"<OFX><A>1</A><B>2</OFX>", "<OFX><A>1</A><B>2</B></OFX>"},
      // Entities are protected; a bare ampersand too.
      {"<OFX><NAME>A & B &lt;C&gt;</OFX>",
       "<OFX><NAME>A zXzAmPzXz B zXzLtzXzCzXzGtzXz</NAME></OFX>"},
      // CDATA values are kept whole.
      {"<OFX><MEMO><![CDATA[a<b]]><X>1</OFX>", "<OFX><MEMO><![CDATA[a<b]]></MEMO><X>1</X></OFX>"},
  };
  for (const auto& c : cases) {
    const std::string xml = OfxConvert::convertOFXToXML(c.in);
    ASSERT_EQ(xml.substr(0, OfxConvert::kXMLPrologue.size()), OfxConvert::kXMLPrologue) << c.in;
    EXPECT_EQ(body(xml), c.out) << c.in;
  }
}

TEST(OfxConvertTest, XmlPassesThroughWithoutEndTags) {
  const std::string in =
      "<?xml version=\"1.0\"?>\n<?OFX OFXHEADER=\"200\" VERSION=\"211\"?>\n<OFX>\n "
      "<A>+1</A>\n</OFX>";
  EXPECT_EQ(OfxConvert::convertOFXToXML(in),
            "<?xml version=\"1.0\"?><?OFX OFXHEADER=\"200\" VERSION=\"211\"?><OFX><A>+1</A></OFX>");
}

TEST(OfxConvertTest, VersionTest) {
  const struct {
    const char* text;
    long version;
    bool xml;
  } cases[] = {
      {"OFXHEADER:100\nVERSION:102", 100, false},
      {"<?OFX OFXHEADER=\"200\" VERSION=\"203\"?>", 200, true},
      {"OFXHEADER:100DATA:OFXSGMLVERSION:102", 100, false},
      {"<OFX></OFX>", 0, false},
      {"OFXHEADER", 0, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(OFXRoot::OFXVersion(c.text), c.version) << c.text;
    EXPECT_EQ(OFXRoot::isXMLOFX(c.text), c.xml) << c.text;
  }
}

TEST(OfxConvertTest, EntitiesAndNumbers) {
  EXPECT_EQ(
      restoreStandardXMLEntities(replaceXMLEntityReferences("A & B &amp; &apos;&quot;&lt;&gt;")),
      "A & B & '\"<>");
  EXPECT_EQ(reformatForSGML("a&b<c>"), "a&amp;b&lt;c&gt;");
  const struct {
    const char* text;
    bool decimal;
    bool ofxRules;
    const char* value;
  } numbers[] = {
      {"12,50", true, true, "12.5"},
      {"12,50", true, false, "NaN"},
      {"-00001500.0000", true, true, "-1500"},
      {"42", false, true, "42"},
      {"12.9", false, true, "12"},
      {"$120", true, true, "NaN"},
      {"", true, true, "NaN"},
  };
  for (const auto& n : numbers) {
    EXPECT_EQ(numberFromXMLString(n.text, n.decimal, n.ofxRules).stringValue(), n.value) << n.text;
  }
}

// End to end through the reader: the edge cases of values in an SGML response.
TEST(OfxConvertTest, SgmlValuesSurviveTheReader) {
  const std::string text =
      "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n<OFX><SIGNONMSGSRSV1><SONRS><STATUS>"
      "<CODE>0<SEVERITY>INFO</STATUS><FI><ORG>A & B<FID>00123</FI></SONRS></SIGNONMSGSRSV1>"
      "<BANKMSGSRSV1><STMTTRNRS><TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS><STMTRS>"
      "<CURDEF>USD<BANKACCTFROM><BANKID>1<ACCTID>2<ACCTTYPE>CHECKING</BANKACCTFROM>"
      "<BANKTRANLIST><STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20240301<TRNAMT>+25.00<FITID>f1"
      "<NAME>&lt;Shop&gt;</STMTTRN><STMTTRN><TRNTYPE>CREDIT<DTPOSTED>20240302<TRNAMT>12,50"
      "<FITID>f2<NAME>Pay</STMTTRN></BANKTRANLIST><LEDGERBAL><BALAMT>100<DTASOF>20240303"
      "</LEDGERBAL></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>trailing";
  OFXRootController controller;
  ASSERT_TRUE(controller.openOFXData(text, false)) << controller.statusMessage();
  const OFXRoot& root = controller.root();
  EXPECT_EQ(root.org(), "A & B");
  EXPECT_EQ(root.bid(), "00123");  // no BID: the FID stands in, unchanged
  const auto& transactions = root.statements().at(0)->transactions();
  ASSERT_EQ(transactions.size(), 2u);
  EXPECT_EQ(transactions[0]->amount().stringValue(), "25");
  EXPECT_EQ(transactions[0]->name(), "<Shop>");
  EXPECT_EQ(transactions[1]->amount().stringValue(), "12.5");
}

}  // namespace
}  // namespace ledgeon
