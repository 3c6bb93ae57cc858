#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ledgeon {

// What the sign-on of a request says. User id and password are escaped for SGML when written.
struct OFXSignonSettings {
  std::string dtClient;  // OFXDates::currentDateInOFXFormat() when sending
  std::string userID;
  std::string password;
  bool anonymousUserID = false;  // the program's own bill-pay institution signs on anonymously
  std::string org;
  std::string fid;
  std::string appID;
  std::string appVersion;
  std::string clientUID;    // empty: no CLIENTUID line
  std::string newPassword;  // non-empty: a PIN-change request follows the sign-on
  std::string pinChangeTRNUID;
};

// One account's statement request.
struct OFXStatementRequest {
  std::string trnUID;
  std::string bankID;  // routing number (bank) or broker id (investment)
  std::string acctID;
  std::string acctType;
  std::optional<std::string> dtStart;  // "yyyyMMdd"; none lets the server choose
  bool is401k = false;
};

// The texts of OFX 1.x requests (SGML, CR LF line ends), written byte for byte as institutions
// expect them. The direct-connect session assembles them into one file.
class OFXRequestWriter final {
 public:
  static constexpr std::string_view kLineEnd = "\r\n";
  static constexpr std::string_view kAnonymousUserID = "anonymous00000000000000000000000";

  // The header block and its blank line: VERSION 103 when the profile requires a client UID.
  static std::string ofxVersionedHeader(std::string_view lastFileUID, std::string_view newFileUID,
                                        bool clientUIDRequired);
  // "<OFX>" and the sign-on message set.
  static std::string signon(const OFXSignonSettings& settings);
  static std::string bankStatementRequest(const OFXStatementRequest& request);
  static std::string creditCardStatementRequest(const OFXStatementRequest& request);
  static std::string investmentStatementRequest(const OFXStatementRequest& request);
  // The same wrapped in their message sets, closing "</OFX>" included.
  static std::string bankStatementFile(const OFXStatementRequest& request);
  static std::string creditCardStatementFile(const OFXStatementRequest& request);
  static std::string investmentStatementFile(const OFXStatementRequest& request);
};

}  // namespace ledgeon
