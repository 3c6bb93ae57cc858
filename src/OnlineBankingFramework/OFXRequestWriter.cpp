#include "OnlineBankingFramework/OFXRequestWriter.h"

#include <algorithm>
#include <cctype>

#include "OnlineBankingFramework/OFXText.h"

namespace ledgeon {

namespace {

class Lines {
 public:
  Lines& operator()(std::string_view tag, std::string_view value = {}) {
    text_.append(tag).append(value).append(OFXRequestWriter::kLineEnd);
    return *this;
  }
  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

void writeIncludeTransactions(Lines& lines, const OFXStatementRequest& request) {
  lines("<INCTRAN>");
  if (request.dtStart) lines("<DTSTART>", *request.dtStart);
  lines("<INCLUDE>", "Y")("</INCTRAN>");
}

}  // namespace

std::string OFXRequestWriter::ofxVersionedHeader(std::string_view lastFileUID,
                                                 std::string_view newFileUID,
                                                 bool clientUIDRequired) {
  Lines lines;
  lines("OFXHEADER:100")("DATA:OFXSGML")("VERSION:", clientUIDRequired ? "103" : "102");
  lines("SECURITY:NONE")("ENCODING:USASCII")("CHARSET:1252")("COMPRESSION:NONE");
  lines("OLDFILEUID:", lastFileUID.empty() ? "NONE" : lastFileUID)("NEWFILEUID:", newFileUID);
  lines("");
  return lines.take();
}

std::string OFXRequestWriter::signon(const OFXSignonSettings& settings) {
  std::string userID = settings.userID;
  if (settings.anonymousUserID) {
    userID = kAnonymousUserID;
    std::transform(userID.begin(), userID.end(), userID.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  }
  Lines lines;
  lines("<OFX>")("<SIGNONMSGSRQV1>")("<SONRQ>")("<DTCLIENT>", settings.dtClient);
  lines("<USERID>", reformatForSGML(userID))("<USERPASS>", reformatForSGML(settings.password));
  lines("<GENUSERKEY>", "N")("<LANGUAGE>", "ENG")("<FI>")("<ORG>", settings.org);
  lines("<FID>", settings.fid)("</FI>")("<APPID>", settings.appID);
  lines("<APPVER>", settings.appVersion);
  if (!settings.clientUID.empty()) lines("<CLIENTUID>", settings.clientUID);
  lines("</SONRQ>");
  if (!settings.newPassword.empty()) {
    lines("<PINCHTRNRQ>")("<TRNUID>", settings.pinChangeTRNUID)("<PINCHRQ>");
    lines("<USERID>", reformatForSGML(userID));
    lines("<NEWUSERPASS>", reformatForSGML(settings.newPassword));
    lines("</PINCHRQ>")("</PINCHTRNRQ>");
  }
  lines("</SIGNONMSGSRQV1>");
  return lines.take();
}

std::string OFXRequestWriter::bankStatementRequest(const OFXStatementRequest& request) {
  Lines lines;
  lines("<STMTTRNRQ>")("<TRNUID>", request.trnUID)("<STMTRQ>");
  lines("<BANKACCTFROM>")("<BANKID>", request.bankID)("<ACCTID>", request.acctID);
  lines("<ACCTTYPE>", request.acctType)("</BANKACCTFROM>");
  writeIncludeTransactions(lines, request);
  lines("</STMTRQ>")("</STMTTRNRQ>");
  return lines.take();
}

std::string OFXRequestWriter::creditCardStatementRequest(const OFXStatementRequest& request) {
  Lines lines;
  lines("<CCSTMTTRNRQ>")("<TRNUID>", request.trnUID)("<CCSTMTRQ>");
  lines("<CCACCTFROM>")("<ACCTID>", request.acctID)("</CCACCTFROM>");
  writeIncludeTransactions(lines, request);
  lines("</CCSTMTRQ>")("</CCSTMTTRNRQ>");
  return lines.take();
}

std::string OFXRequestWriter::investmentStatementRequest(const OFXStatementRequest& request) {
  Lines lines;
  lines("<INVSTMTTRNRQ>")("<TRNUID>", request.trnUID)("<INVSTMTRQ>");
  lines("<INVACCTFROM>")("<BROKERID>", request.bankID)("<ACCTID>", request.acctID);
  lines("</INVACCTFROM>");
  writeIncludeTransactions(lines, request);
  lines("<INCOO>", "N")("<INCPOS>")("<INCLUDE>", "Y")("</INCPOS>")("<INCBAL>", "Y");
  if (request.is401k) lines("<INC401K>", "Y")("<INC401KBAL>", "Y");
  lines("</INVSTMTRQ>")("</INVSTMTTRNRQ>");
  return lines.take();
}

std::string OFXRequestWriter::bankStatementFile(const OFXStatementRequest& request) {
  return "<BANKMSGSRQV1>\r\n" + bankStatementRequest(request) + "</BANKMSGSRQV1>\r\n</OFX>\r\n";
}

std::string OFXRequestWriter::creditCardStatementFile(const OFXStatementRequest& request) {
  return "<CREDITCARDMSGSRQV1>\r\n" + creditCardStatementRequest(request) +
         "</CREDITCARDMSGSRQV1>\r\n</OFX>\r\n";
}

std::string OFXRequestWriter::investmentStatementFile(const OFXStatementRequest& request) {
  return "<INVSTMTMSGSRQV1>\r\n" + investmentStatementRequest(request) +
         "</INVSTMTMSGSRQV1>\r\n</OFX>\r\n";
}

}  // namespace ledgeon
