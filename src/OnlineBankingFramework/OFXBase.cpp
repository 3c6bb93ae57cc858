#include "OnlineBankingFramework/OFXBase.h"

#include <strings.h>

namespace ledgeon {

const OFXClassInfo& OFXBase::staticClassInfo() {
  static const OFXClassInfo info = ofx_detail::makeClassInfo<OFXBase, OFXObject>(
      "OFXBase", {ofx_detail::makeProperty("ofxStatus", &OFXBase::ofxStatus_),
                  ofx_detail::makeProperty("ofxStatusSignon", &OFXBase::ofxStatusSignon_),
                  ofx_detail::makeProperty("ofxStatusPinChange", &OFXBase::ofxStatusPinChange_)});
  return info;
}

const OFXStatus& OFXBase::successStatus() {
  static const OFXStatus success;
  return success;
}

bool OFXBase::signonError() const {
  return ofxStatusSignon().errorCode() != 0 &&
         strcasecmp(ofxStatusSignon().severity().c_str(), "ERROR") == 0;
}

void OFXBase::bubbleUpOFXError(const OFXBase* child) {
  if (child == nullptr || child->ofxStatus().isSuccess()) return;
  ofxStatus().copyFrom(child->ofxStatus());
}

}  // namespace ledgeon
