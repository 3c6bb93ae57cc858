#pragma once

#include "OnlineBankingFramework/OFXObject.h"
#include "OnlineBankingFramework/OFXStatus.h"

namespace ledgeon {

#define LEDGEON_OFXBASE_PROPERTIES(X) \
  X(ofxStatus, OfxStatus)             \
  X(ofxStatusSignon, OfxStatusSignon) \
  X(ofxStatusPinChange, OfxStatusPinChange)

// The accessors of a status: an absent status reads as success and is made when first written,
// so that the many aggregates a server leaves without one cost nothing.
#define LEDGEON_OFX_STATUS_ACCESSORS(name, Name)                                 \
 public:                                                                         \
  const OFXStatus& name() const { return name##_ ? *name##_ : successStatus(); } \
  OFXStatus& name() {                                                            \
    if (!name##_) name##_ = std::make_unique<OFXStatus>();                       \
    return *name##_;                                                             \
  }                                                                              \
  void set##Name(OFXRef<OFXStatus> value) { name##_ = std::move(value); }        \
                                                                                 \
 private:                                                                        \
  OFXRef<OFXStatus> name##_;

// The base of most message classes: the aggregate's own STATUS, the sign-on response's STATUS and
// the PIN-change response's STATUS.
class OFXBase : public OFXObject {
 public:
  static const OFXClassInfo& staticClassInfo();
  const OFXClassInfo& classInfo() const override { return staticClassInfo(); }
  LEDGEON_OFXBASE_PROPERTIES(LEDGEON_OFX_STATUS_ACCESSORS)

 public:
  // The error code of the aggregate's own status.
  int64_t statusResult() const { return ofxStatus().errorCode(); }
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
  // Checks the object after mapping and sets its status. The base checks nothing.
  virtual void postImportValidate() {}

 private:
  static const OFXStatus& successStatus();
};

}  // namespace ledgeon
