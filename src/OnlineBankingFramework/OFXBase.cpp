#include "OnlineBankingFramework/OFXBase.h"

#include <strings.h>

namespace ledgeon {

LEDGEON_OFX_DEFINE_CLASS(OFXBase, OFXObject, LEDGEON_OFXBASE_PROPERTIES)

OFXBase::OFXBase()
    : ofxStatus_(std::make_unique<OFXStatus>()),
      ofxStatusSignon_(std::make_unique<OFXStatus>()),
      ofxStatusPinChange_(std::make_unique<OFXStatus>()) {}

int64_t OFXBase::statusResult() const { return ofxStatus_ ? ofxStatus_->errorCode() : 0; }

bool OFXBase::signonError() const {
  return ofxStatusSignon_ && ofxStatusSignon_->errorCode() != 0 &&
         strcasecmp(ofxStatusSignon_->severity().c_str(), "ERROR") == 0;
}

void OFXBase::bubbleUpOFXError(const OFXBase* child) {
  if (child == nullptr || !child->ofxStatus_ || child->ofxStatus_->isSuccess()) return;
  if (!ofxStatus_) ofxStatus_ = std::make_unique<OFXStatus>();
  ofxStatus_->copyFrom(*child->ofxStatus_);
}

void OFXBase::postImportValidate() {
  if (!ofxStatus_) ofxStatus_ = std::make_unique<OFXStatus>();
  if (!ofxStatusSignon_) ofxStatusSignon_ = std::make_unique<OFXStatus>();
  if (!ofxStatusPinChange_) ofxStatusPinChange_ = std::make_unique<OFXStatus>();
}

}  // namespace ledgeon
