#pragma once

#include "OnlineBankingFramework/OFXBase.h"

// The plain records nested in bill-pay, payee, transfer and e-mail messages, and the profile,
// branding and challenge records of the root.
namespace ledgeon {

#define LEDGEON_OFXBANKACCOUNT_PROPERTIES(X) \
  X(OFXString, bankID, BankID)               \
  X(OFXString, branchID, BranchID)           \
  X(OFXString, acctID, AcctID)               \
  X(OFXString, acctType, AcctType)           \
  X(OFXString, acctKey, AcctKey)

class OFXBankAccount : public OFXObject {
  LEDGEON_OFX_CLASS(OFXBankAccount, LEDGEON_OFXBANKACCOUNT_PROPERTIES)
};

#define LEDGEON_OFXPAYEE_PROPERTIES(X) \
  X(OFXString, name, Name)             \
  X(OFXString, addr1, Addr1)           \
  X(OFXString, addr2, Addr2)           \
  X(OFXString, addr3, Addr3)           \
  X(OFXString, city, City)             \
  X(OFXString, state, State)           \
  X(OFXString, postalCode, PostalCode) \
  X(OFXString, country, Country)       \
  X(OFXString, phone, Phone)

class OFXPayee : public OFXObject {
  LEDGEON_OFX_CLASS(OFXPayee, LEDGEON_OFXPAYEE_PROPERTIES)
};

#define LEDGEON_OFXPAYEEEXTEND_PROPERTIES(X)   \
  X(OFXString, idScope, IdScope)               \
  X(OFXString, nameModifiable, NameModifiable) \
  X(OFXString, daysToPay, DaysToPay)

class OFXPayeeExtend : public OFXObject {
  LEDGEON_OFX_CLASS(OFXPayeeExtend, LEDGEON_OFXPAYEEEXTEND_PROPERTIES)
};

#define LEDGEON_OFXPAYEERESPONSE_PROPERTIES(X) \
  X(OFXString, payeeListID, PayeeListID)       \
  X(OFXRef<OFXPayee>, payee, Payee)            \
  X(OFXRef<OFXPayeeExtend>, extend, Extend)    \
  X(OFXString, payAcct, PayAcct)

class OFXPayeeResponse : public OFXObject {
  LEDGEON_OFX_CLASS(OFXPayeeResponse, LEDGEON_OFXPAYEERESPONSE_PROPERTIES)
};

#define LEDGEON_OFXADJUSTMENT_PROPERTIES(X)                  \
  X(OFXString, adjustmentNumber, AdjustmentNumber)           \
  X(OFXString, adjustmentDescription, AdjustmentDescription) \
  X(OFXString, amountString, AmountString)                   \
  X(OFXString, dateString, DateString)

class OFXAdjustment : public OFXBase {
  LEDGEON_OFX_CLASS(OFXAdjustment, LEDGEON_OFXADJUSTMENT_PROPERTIES)
};

#define LEDGEON_OFXDISCOUNT_PROPERTIES(X)  \
  X(OFXString, rate, Rate)                 \
  X(OFXString, dateString, DateString)     \
  X(OFXString, amountString, AmountString) \
  X(OFXString, discountDescription, DiscountDescription)

class OFXDiscount : public OFXBase {
  LEDGEON_OFX_CLASS(OFXDiscount, LEDGEON_OFXDISCOUNT_PROPERTIES)
};

#define LEDGEON_OFXLINEITEM_PROPERTIES(X)  \
  X(OFXString, amountString, AmountString) \
  X(OFXString, itemDescription, ItemDescription)

class OFXLineItem : public OFXObject {
  LEDGEON_OFX_CLASS(OFXLineItem, LEDGEON_OFXLINEITEM_PROPERTIES)
};

#define LEDGEON_OFXINVOICE_PROPERTIES(X)               \
  X(OFXString, invoiceNumber, InvoiceNumber)           \
  X(OFXString, totalAmountString, TotalAmountString)   \
  X(OFXString, dateInvoiceString, DateInvoiceString)   \
  X(OFXString, invoiceDescription, InvoiceDescription) \
  X(OFXList<OFXDiscount>, discounts, Discounts)        \
  X(OFXList<OFXAdjustment>, adjustments, Adjustments)  \
  X(OFXList<OFXLineItem>, lineItems, LineItems)

class OFXInvoice : public OFXObject {
  LEDGEON_OFX_CLASS(OFXInvoice, LEDGEON_OFXINVOICE_PROPERTIES)
};

#define LEDGEON_OFXPAYMENTEXTEND_PROPERTIES(X)         \
  X(OFXString, paymentFor, PaymentFor)                 \
  X(OFXString, checkNum, CheckNum)                     \
  X(OFXString, paymentDescription, PaymentDescription) \
  X(OFXList<OFXInvoice>, invoices, Invoices)

class OFXPaymentExtend : public OFXObject {
  LEDGEON_OFX_CLASS(OFXPaymentExtend, LEDGEON_OFXPAYMENTEXTEND_PROPERTIES)
};

#define LEDGEON_OFXPAYMENTINFO_PROPERTIES(X)  \
  X(OFXRef<OFXBankAccount>, account, Account) \
  X(OFXString, amountString, AmountString)    \
  X(Amount, amount, Amount)                   \
  X(OFXString, payeeID, PayeeID)              \
  X(OFXRef<OFXPayee>, payee, Payee)           \
  X(OFXString, payeeListID, PayeeListID)      \
  X(OFXString, payAcct, PayAcct)              \
  X(OFXString, dateDueString, DateDueString)  \
  X(OFXDate, dateDue, DateDue)                \
  X(OFXString, memo, Memo)

class OFXPaymentInfo : public OFXObject {
  LEDGEON_OFX_CLASS(OFXPaymentInfo, LEDGEON_OFXPAYMENTINFO_PROPERTIES)
  void fixupData();
};

#define LEDGEON_OFXBILLPAYSTATE_PROPERTIES(X)            \
  X(OFXString, processingStatus, ProcessingStatus)       \
  X(OFXString, dateProcessedString, DateProcessedString) \
  X(OFXDate, dateProcessed, DateProcessed)

class OFXBillPayState : public OFXObject {
  LEDGEON_OFX_CLASS(OFXBillPayState, LEDGEON_OFXBILLPAYSTATE_PROPERTIES)
};

#define LEDGEON_OFXBILLPAYRESPONSE_PROPERTIES(X)      \
  X(OFXString, serverTransID, ServerTransID)          \
  X(OFXString, payeeListID, PayeeListID)              \
  X(OFXString, currency, Currency)                    \
  X(OFXRef<OFXPaymentInfo>, paymentInfo, PaymentInfo) \
  X(OFXRef<OFXPaymentExtend>, extend, Extend)         \
  X(OFXRef<OFXBillPayState>, state, State)

class OFXBillPayResponse : public OFXObject {
  LEDGEON_OFX_CLASS(OFXBillPayResponse, LEDGEON_OFXBILLPAYRESPONSE_PROPERTIES)
};

#define LEDGEON_OFXMAIL_PROPERTIES(X)                \
  X(OFXString, userID, UserID)                       \
  X(OFXString, dateCreatedString, DateCreatedString) \
  X(OFXDate, dateCreated, DateCreated)               \
  X(OFXString, from, From)                           \
  X(OFXString, to, To)                               \
  X(OFXString, subject, Subject)                     \
  X(OFXString, messageBody, MessageBody)             \
  X(OFXString, incImages, IncImages)                 \
  X(OFXString, useHTML, UseHTML)

class OFXMail : public OFXObject {
  LEDGEON_OFX_CLASS(OFXMail, LEDGEON_OFXMAIL_PROPERTIES)
  void fixupData();
};

#define LEDGEON_OFXEMAILITEM_PROPERTIES(X)   \
  X(OFXString, kind, Kind)                   \
  X(OFXString, acctID, AcctID)               \
  X(OFXString, serverTransID, ServerTransID) \
  X(OFXRef<OFXMail>, mail, Mail)

// One e-mail with the account it concerns ("MAILRS", "BANKMAILRS" or "PMTMAILRS" in kind).
class OFXEmailItem : public OFXObject {
  LEDGEON_OFX_CLASS(OFXEmailItem, LEDGEON_OFXEMAILITEM_PROPERTIES)
};

// The answer of an e-mail transaction: one e-mail item.
class OFXEmailResponse : public OFXEmailItem {
  LEDGEON_OFX_CLASS(OFXEmailResponse, LEDGEON_OFX_NO_PROPERTIES)
};

#define LEDGEON_OFXMESSAGESETINFO_PROPERTIES(X) \
  X(OFXString, name, Name)                      \
  X(OFXString, version, Version)                \
  X(OFXString, url, Url)                        \
  X(OFXString, signonRealm, SignonRealm)

// One message set an institution's profile offers (MSGSETCORE).
class OFXMessageSetInfo : public OFXObject {
  LEDGEON_OFX_CLASS(OFXMessageSetInfo, LEDGEON_OFXMESSAGESETINFO_PROPERTIES)
};

#define LEDGEON_OFXPROFILE_PROPERTIES(X)                 \
  X(OFXString, fiName, FiName)                           \
  X(OFXString, addr1, Addr1)                             \
  X(OFXString, addr2, Addr2)                             \
  X(OFXString, city, City)                               \
  X(OFXString, state, State)                             \
  X(OFXString, postalCode, PostalCode)                   \
  X(OFXString, country, Country)                         \
  X(OFXString, csPhone, CsPhone)                         \
  X(OFXString, url, Url)                                 \
  X(OFXString, email, Email)                             \
  X(OFXString, dateProfileUpString, DateProfileUpString) \
  X(OFXDate, dateProfileUp, DateProfileUp)               \
  X(OFXString, signonRealm, SignonRealm)                 \
  X(OFXString, clientUIDRequired, ClientUIDRequired)     \
  X(OFXString, changePINFirst, ChangePINFirst)           \
  X(OFXList<OFXMessageSetInfo>, messageSets, MessageSets)

// The institution's profile response (PROFRS): its address, message sets and sign-on rules.
class OFXProfile : public OFXBase {
  LEDGEON_OFX_CLASS(OFXProfile, LEDGEON_OFXPROFILE_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXBRAND_PROPERTIES(X) \
  X(OFXString, bid, Bid)               \
  X(OFXString, name, Name)             \
  X(OFXString, status, Status)         \
  X(OFXString, url, Url)               \
  X(OFXString, dateUpdateString, DateUpdateString)

// A branding answer for one BID.
class OFXBrand : public OFXBase {
  LEDGEON_OFX_CLASS(OFXBrand, LEDGEON_OFXBRAND_PROPERTIES)
};

#define LEDGEON_OFXCHALLENGE_PROPERTIES(X) \
  X(OFXString, phraseID, PhraseID)         \
  X(OFXString, phraseLabel, PhraseLabel)

// One question of a multi-factor sign-on challenge (MFACHALLENGE).
class OFXChallenge : public OFXBase {
  LEDGEON_OFX_CLASS(OFXChallenge, LEDGEON_OFXCHALLENGE_PROPERTIES)
};

}  // namespace ledgeon
