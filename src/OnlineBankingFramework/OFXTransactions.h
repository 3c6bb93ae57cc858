#pragma once

#include "OnlineBankingFramework/OFXBase.h"
#include "OnlineBankingFramework/OFXRecords.h"

namespace ledgeon {

#define LEDGEON_OFXTRANSACTIONBASE_PROPERTIES(X)         \
  X(OFXString, transactionUniqueID, TransactionUniqueID) \
  X(OFXString, cltCookie, CltCookie)

// A transaction aggregate of a message set: its TRNUID and CLTCOOKIE.
class OFXTransactionBase : public OFXBase {
  LEDGEON_OFX_CLASS(OFXTransactionBase, LEDGEON_OFXTRANSACTIONBASE_PROPERTIES)
};

#define LEDGEON_OFXTRANSACTION_PROPERTIES(X)           \
  X(OFXString, type, Type)                             \
  X(OFXString, transactionType, TransactionType)       \
  X(OFXString, datePostedString, DatePostedString)     \
  X(OFXDate, datePosted, DatePosted)                   \
  X(OFXString, checkNum, CheckNum)                     \
  X(Amount, amount, Amount)                            \
  X(OFXString, amountString, AmountString)             \
  X(Amount, balance, Balance)                          \
  X(OFXString, fitid, Fitid)                           \
  X(OFXString, serverTransID, ServerTransID)           \
  X(OFXString, name, Name)                             \
  X(OFXString, memo, Memo)                             \
  X(OFXString, dateUserString, DateUserString)         \
  X(OFXDate, dateUser, DateUser)                       \
  X(OFXString, reference, Reference)                   \
  X(OFXString, bankAccountTo, BankAccountTo)           \
  X(OFXString, subAccountSecurity, SubAccountSecurity) \
  X(OFXString, subAccountFund, SubAccountFund)         \
  X(OFXString, categoryString, CategoryString)         \
  X(OFXString, dateSettleString, DateSettleString)     \
  X(OFXDate, dateSettle, DateSettle)                   \
  X(OFXString, importLIDString, ImportLIDString)       \
  X(int64_t, importLID, ImportLID)                     \
  X(OFXString, acctSID, AcctSID)

// One statement transaction (STMTTRN), and the base of the investment transactions. The amount is
// kept as the server's text and as a decimal; `balance` is the running balance.
class OFXTransaction : public OFXTransactionBase {
  LEDGEON_OFX_CLASS(OFXTransaction, LEDGEON_OFXTRANSACTION_PROPERTIES)

  OFXTransaction();
  void fixupData() override;

  // The download session that accepted the transaction; set at acceptance, not owned.
  const void* downloadSession() const { return downloadSession_; }
  void setDownloadSession(const void* session) { downloadSession_ = session; }

 private:
  const void* downloadSession_ = nullptr;
};

#define LEDGEON_OFXBILLPAYTRANSACTION_PROPERTIES(X) \
  X(OFXString, action, Action)                      \
  X(OFXRef<OFXBillPayResponse>, response, Response)

// A bill-payment transaction response (PMTTRNRS, or a recurring one).
class OFXBillPayTransaction : public OFXTransactionBase {
  LEDGEON_OFX_CLASS(OFXBillPayTransaction, LEDGEON_OFXBILLPAYTRANSACTION_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXPAYEETRANSACTION_PROPERTIES(X) \
  X(OFXString, action, Action)                    \
  X(OFXRef<OFXPayeeResponse>, response, Response)

// A payee-list transaction response (PAYEETRNRS): added, modified or deleted payee.
class OFXPayeeTransaction : public OFXTransactionBase {
  LEDGEON_OFX_CLASS(OFXPayeeTransaction, LEDGEON_OFXPAYEETRANSACTION_PROPERTIES)
};

#define LEDGEON_OFXTRANSFERINFO_PROPERTIES(X) \
  X(OFXString, fromBankID, FromBankID)        \
  X(OFXString, fromAcctID, FromAcctID)        \
  X(OFXString, fromAcctType, FromAcctType)    \
  X(OFXString, toBankID, ToBankID)            \
  X(OFXString, toAcctID, ToAcctID)            \
  X(OFXString, toAcctType, ToAcctType)        \
  X(OFXString, amountString, AmountString)    \
  X(Amount, amount, Amount)                   \
  X(OFXString, dateDueString, DateDueString)  \
  X(OFXDate, dateDue, DateDue)

// The XFERINFO aggregate of an intra-bank transfer.
class OFXTransferInfo : public OFXTransactionBase {
  LEDGEON_OFX_CLASS(OFXTransferInfo, LEDGEON_OFXTRANSFERINFO_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXTRANSFERRESPONSE_PROPERTIES(X)        \
  X(OFXString, currency, Currency)                       \
  X(OFXString, serverTransID, ServerTransID)             \
  X(OFXRef<OFXTransferInfo>, transferInfo, TransferInfo) \
  X(OFXString, dateProjectedString, DateProjectedString) \
  X(OFXString, dateProcessedString, DateProcessedString) \
  X(OFXDate, dateProcessed, DateProcessed)

// INTRARS: the server's answer to a transfer request.
class OFXTransferResponse : public OFXTransactionBase {
  LEDGEON_OFX_CLASS(OFXTransferResponse, LEDGEON_OFXTRANSFERRESPONSE_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXTRANSFERTRANSACTION_PROPERTIES(X) \
  X(OFXString, action, Action)                       \
  X(OFXRef<OFXTransferResponse>, response, Response)

// An intra-bank transfer transaction response (INTRATRNRS).
class OFXTransferTransaction : public OFXTransactionBase {
  LEDGEON_OFX_CLASS(OFXTransferTransaction, LEDGEON_OFXTRANSFERTRANSACTION_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXEMAILTRANSACTION_PROPERTIES(X) X(OFXRef<OFXEmailResponse>, response, Response)

// An e-mail transaction response (MAILTRNRS, BANKMAILTRNRS, PMTMAILTRNRS).
class OFXEmailTransaction : public OFXTransactionBase {
  LEDGEON_OFX_CLASS(OFXEmailTransaction, LEDGEON_OFXEMAILTRANSACTION_PROPERTIES)
  void fixupData() override;
};

}  // namespace ledgeon
