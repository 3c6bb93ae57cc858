#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "OnlineBankingFramework/OFXRoot.h"

namespace ledgeon {

class OFXOnlineSession;

// Reads one OFX response (a direct-connect answer or a web-connect file) into an OFXRoot and
// answers questions about it. A response that cannot be read leaves an empty root whose status
// (code 2000, severity "ERROR") says why. Main thread only.
class OFXRootController final {
 public:
  static constexpr int64_t kParseFailureCode = 2000;

  OFXRootController();

  // Parses the file; false when it could not be read or parsed (see statusMessage()).
  bool openOFXFile(const std::filesystem::path& path, bool isDirectConnect);
  // The same for a response already in memory, as raw bytes of any declared encoding.
  bool openOFXData(std::string bytes, bool isDirectConnect);

  OFXRoot& root() { return *root_; }
  const OFXRoot& root() const { return *root_; }
  const OFXList<OFXStatement>& statements() const { return root_->statements(); }
  const OFXString& userID() const { return root_->userID(); }
  const OFXProfile* profile() const { return root_->FIProfileData().get(); }
  int64_t statusResult() const { return root_->statusResult(); }
  const OFXString& statusSeverity() const { return root_->ofxStatus().severity(); }
  const OFXString& statusMessage() const { return root_->ofxStatus().message(); }
  // The account id and type of the statement at `index`; empty past the end.
  std::string accountID(size_t index) const;
  std::string acctType(size_t index) const;
  const OFXString& bid() const { return root_->bid(); }
  const OFXString& org() const { return root_->org(); }
  // The DTEND of the first statement.
  std::string statementEndDateString() const;
  void setBID(std::string bid) { root_->setBid(std::move(bid)); }
  void setUserID(std::string userID) { root_->setUserID(std::move(userID)); }

  OFXOnlineSession* onlineSessionObject() const { return onlineSessionObject_; }
  void setOnlineSessionObject(OFXOnlineSession* session) { onlineSessionObject_ = session; }

  // The response's text as UTF-8: the declared or detected encoding, else Windows-1252.
  static std::string decodeOFXText(std::string bytes);
  // Text to XML to objects, with fix-ups and validation; throws OFXException.
  static std::unique_ptr<OFXRoot> parseOFXText(std::string text, bool isDirectConnect);

 private:
  void failWith(const std::string& message);

  std::unique_ptr<OFXRoot> root_;
  OFXOnlineSession* onlineSessionObject_ = nullptr;
};

}  // namespace ledgeon
