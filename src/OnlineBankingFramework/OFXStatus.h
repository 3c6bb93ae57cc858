#pragma once

#include "OnlineBankingFramework/OFXObject.h"

namespace ledgeon {

#define LEDGEON_OFXSTATUS_PROPERTIES(X) \
  X(int64_t, errorCode, ErrorCode)      \
  X(OFXString, severity, Severity)      \
  X(OFXString, message, Message)

// The status triple of an OFX aggregate: the STATUS CODE, its SEVERITY ("INFO", "WARN",
// "ERROR") and the server's MESSAGE.
class OFXStatus : public OFXObject {
  LEDGEON_OFX_CLASS(OFXStatus, LEDGEON_OFXSTATUS_PROPERTIES)

  bool isSuccess() const { return errorCode_ == 0; }
  void copyFrom(const OFXStatus& other);
  // "Err Code: 2000, Severity: ERROR, Message: General error".
  std::string description() const override;
};

}  // namespace ledgeon
