#include "OnlineBankingFramework/OFXStatus.h"

#include "Utilities/StringWithFormat.h"

namespace ledgeon {

LEDGEON_OFX_DEFINE_CLASS(OFXStatus, OFXObject, LEDGEON_OFXSTATUS_PROPERTIES)

void OFXStatus::copyFrom(const OFXStatus& other) {
  errorCode_ = other.errorCode_;
  severity_ = other.severity_;
  message_ = other.message_;
}

std::string OFXStatus::description() const {
  return stringWithFormat("Err Code: %ld, Severity: %@, Message: %@", errorCode_, severity_,
                          message_);
}

}  // namespace ledgeon
