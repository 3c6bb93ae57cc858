#pragma once

namespace ledgeon {

class OFXRoot;
class OFXStatus;

// The download session that takes a parsed response into the ledger. Online banking in the
// ledger implements it; the message model only hands results over.
class OFXOnlineSession {
 public:
  virtual ~OFXOnlineSession() = default;
  // Takes the statements, securities and sync results of `root`; `relatedObject` is the account
  // or request the response answers, when known.
  virtual void storeOFXRoot(OFXRoot& root, const void* relatedObject) = 0;
  // Records the response's status against one account.
  virtual void updateSessionStatus(const void* account, const OFXStatus& status) = 0;
};

}  // namespace ledgeon
