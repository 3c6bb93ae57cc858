#pragma once

#include "OnlineBankingFramework/OFXTransactions.h"

namespace ledgeon {

#define LEDGEON_OFXSYNCBASE_PROPERTIES(X) \
  X(OFXString, token, Token)              \
  X(OFXString, lostSync, LostSync)        \
  X(OFXString, bankID, BankID)            \
  X(OFXString, acctID, AcctID)            \
  X(OFXString, acctType, AcctType)        \
  X(OFXString, transactionUniqueID, TransactionUniqueID)

// A synchronisation answer: the new TOKEN and the transactions since the last one.
class OFXSyncBase : public OFXBase {
  LEDGEON_OFX_CLASS(OFXSyncBase, LEDGEON_OFXSYNCBASE_PROPERTIES)
  void postImportValidate() override;
};

#define LEDGEON_OFX_SYNC_CLASS(Class, PROPERTIES) \
  class Class : public OFXSyncBase {              \
    LEDGEON_OFX_CLASS(Class, PROPERTIES)          \
    void fixupData() override;                    \
    void postImportValidate() override;           \
  };

#define LEDGEON_OFXBILLPAYSYNC_PROPERTIES(X) \
  X(OFXList<OFXBillPayTransaction>, transactions, Transactions)
#define LEDGEON_OFXPAYEESYNC_PROPERTIES(X) \
  X(OFXList<OFXPayeeTransaction>, transactions, Transactions)
#define LEDGEON_OFXTRANSFERSYNC_PROPERTIES(X) \
  X(OFXList<OFXTransferTransaction>, transactions, Transactions)
#define LEDGEON_OFXEMAILSYNC_PROPERTIES(X) \
  X(OFXList<OFXEmailTransaction>, transactions, Transactions)

LEDGEON_OFX_SYNC_CLASS(OFXBillPaySync, LEDGEON_OFXBILLPAYSYNC_PROPERTIES)
LEDGEON_OFX_SYNC_CLASS(OFXPayeeSync, LEDGEON_OFXPAYEESYNC_PROPERTIES)
LEDGEON_OFX_SYNC_CLASS(OFXTransferSync, LEDGEON_OFXTRANSFERSYNC_PROPERTIES)
LEDGEON_OFX_SYNC_CLASS(OFXEmailSync, LEDGEON_OFXEMAILSYNC_PROPERTIES)

}  // namespace ledgeon
