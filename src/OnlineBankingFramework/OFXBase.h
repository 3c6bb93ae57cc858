#pragma once

#include "OnlineBankingFramework/OFXObject.h"
#include "OnlineBankingFramework/OFXStatus.h"

namespace ledgeon {

#define LEDGEON_OFXBASE_PROPERTIES(X)                    \
  X(OFXRef<OFXStatus>, ofxStatus, OfxStatus)             \
  X(OFXRef<OFXStatus>, ofxStatusSignon, OfxStatusSignon) \
  X(OFXRef<OFXStatus>, ofxStatusPinChange, OfxStatusPinChange)

// The base of most message classes: the aggregate's own STATUS, the sign-on response's STATUS and
// the PIN-change response's STATUS. All three always exist (a success status until mapped).
class OFXBase : public OFXObject {
  LEDGEON_OFX_CLASS(OFXBase, LEDGEON_OFXBASE_PROPERTIES)

  OFXBase();

  // The error code of the aggregate's own status.
  int64_t statusResult() const;
  // True when sign-on failed: a non-zero code with severity "ERROR" (any case).
  bool signonError() const;
  // Copies a child's status to this object when the child's status is not a success.
  void bubbleUpOFXError(const OFXBase* child);
  template <typename T>
  void bubbleUpOFXErrorsInItems(const OFXList<T>& items) {
    for (const auto& item : items) bubbleUpOFXError(item.get());
  }

  // Parse the raw date and amount texts into values. The base does nothing.
  virtual void fixupData() {}
  // Checks the object after mapping and sets its status; the base only keeps every status
  // present.
  virtual void postImportValidate();
};

}  // namespace ledgeon
