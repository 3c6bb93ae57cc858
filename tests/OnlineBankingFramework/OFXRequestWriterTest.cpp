#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXRequestWriter.h"

namespace ledgeon {
namespace {

TEST(OFXRequestWriterTest, HeaderBlock) {
  EXPECT_EQ(OFXRequestWriter::ofxVersionedHeader("", "NEW-1", false),
            "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\n"
            "CHARSET:1252\r\nCOMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NEW-1\r\n\r\n");
  EXPECT_EQ(OFXRequestWriter::ofxVersionedHeader("OLD-9", "NEW-2", true),
            "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:103\r\nSECURITY:NONE\r\nENCODING:USASCII\r\n"
            "CHARSET:1252\r\nCOMPRESSION:NONE\r\nOLDFILEUID:OLD-9\r\nNEWFILEUID:NEW-2\r\n\r\n");
}

TEST(OFXRequestWriterTest, SignonEscapesAndAddsClientUID) {
  OFXSignonSettings settings{.dtClient = "20240301120000.000[-5:EST]",
                             .userID = "jo&ann",
                             .password = "p<w>d",
                             .org = "ORG",
                             .fid = "1234",
                             .appID = "LDGN",
                             .appVersion = "2300",
                             .clientUID = "C-UID",
                             .newPassword = "",
                             .pinChangeTRNUID = ""};
  EXPECT_EQ(OFXRequestWriter::signon(settings),
            "<OFX>\r\n<SIGNONMSGSRQV1>\r\n<SONRQ>\r\n<DTCLIENT>20240301120000.000[-5:EST]\r\n"
            "<USERID>jo&amp;ann\r\n<USERPASS>p&lt;w&gt;d\r\n<GENUSERKEY>N\r\n<LANGUAGE>ENG\r\n"
            "<FI>\r\n<ORG>ORG\r\n<FID>1234\r\n</FI>\r\n<APPID>LDGN\r\n<APPVER>2300\r\n"
            "<CLIENTUID>C-UID\r\n</SONRQ>\r\n</SIGNONMSGSRQV1>\r\n");
  settings.clientUID.clear();
  settings.anonymousUserID = true;
  settings.newPassword = "new";
  settings.pinChangeTRNUID = "T1";
  EXPECT_EQ(OFXRequestWriter::signon(settings),
            "<OFX>\r\n<SIGNONMSGSRQV1>\r\n<SONRQ>\r\n<DTCLIENT>20240301120000.000[-5:EST]\r\n"
            "<USERID>ANONYMOUS00000000000000000000000\r\n<USERPASS>p&lt;w&gt;d\r\n"
            "<GENUSERKEY>N\r\n<LANGUAGE>ENG\r\n<FI>\r\n<ORG>ORG\r\n<FID>1234\r\n</FI>\r\n"
            "<APPID>LDGN\r\n<APPVER>2300\r\n</SONRQ>\r\n<PINCHTRNRQ>\r\n<TRNUID>T1\r\n"
            "<PINCHRQ>\r\n<USERID>ANONYMOUS00000000000000000000000\r\n<NEWUSERPASS>new\r\n"
            "</PINCHRQ>\r\n</PINCHTRNRQ>\r\n</SIGNONMSGSRQV1>\r\n");
}

TEST(OFXRequestWriterTest, StatementRequests) {
  OFXStatementRequest request{.trnUID = "U1",
                              .bankID = "021000021",
                              .acctID = "12345",
                              .acctType = "CHECKING",
                              .dtStart = "20240101"};
  EXPECT_EQ(OFXRequestWriter::bankStatementRequest(request),
            "<STMTTRNRQ>\r\n<TRNUID>U1\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>021000021\r\n"
            "<ACCTID>12345\r\n<ACCTTYPE>CHECKING\r\n</BANKACCTFROM>\r\n<INCTRAN>\r\n"
            "<DTSTART>20240101\r\n<INCLUDE>Y\r\n</INCTRAN>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n");
  request.dtStart.reset();
  EXPECT_EQ(OFXRequestWriter::creditCardStatementFile(request),
            "<CREDITCARDMSGSRQV1>\r\n<CCSTMTTRNRQ>\r\n<TRNUID>U1\r\n<CCSTMTRQ>\r\n<CCACCTFROM>\r\n"
            "<ACCTID>12345\r\n</CCACCTFROM>\r\n<INCTRAN>\r\n<INCLUDE>Y\r\n</INCTRAN>\r\n"
            "</CCSTMTRQ>\r\n</CCSTMTTRNRQ>\r\n</CREDITCARDMSGSRQV1>\r\n</OFX>\r\n");
  request.is401k = true;
  request.dtStart = "20240202";
  EXPECT_EQ(OFXRequestWriter::investmentStatementRequest(request),
            "<INVSTMTTRNRQ>\r\n<TRNUID>U1\r\n<INVSTMTRQ>\r\n<INVACCTFROM>\r\n"
            "<BROKERID>021000021\r\n<ACCTID>12345\r\n</INVACCTFROM>\r\n<INCTRAN>\r\n"
            "<DTSTART>20240202\r\n<INCLUDE>Y\r\n</INCTRAN>\r\n<INCOO>N\r\n<INCPOS>\r\n"
            "<INCLUDE>Y\r\n</INCPOS>\r\n<INCBAL>Y\r\n<INC401K>Y\r\n<INC401KBAL>Y\r\n"
            "</INVSTMTRQ>\r\n</INVSTMTTRNRQ>\r\n");
}

}  // namespace
}  // namespace ledgeon
