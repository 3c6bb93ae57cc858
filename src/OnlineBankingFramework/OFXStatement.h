#pragma once

#include "OnlineBankingFramework/OFXInvPosition.h"
#include "OnlineBankingFramework/OFXTransactions.h"

namespace ledgeon {

#define LEDGEON_OFXBALANCE_PROPERTIES(X)               \
  X(OFXString, name, Name)                             \
  X(OFXString, balanceDescription, BalanceDescription) \
  X(OFXString, balanceType, BalanceType)               \
  X(OFXString, value, Value)                           \
  X(OFXString, dateAsOfString, DateAsOfString)         \
  X(OFXDate, dateAsOf, DateAsOf)                       \
  X(OFXString, currencyRate, CurrencyRate)             \
  X(OFXString, currencySymbol, CurrencySymbol)

// One entry of a statement's BALLIST.
class OFXBalance : public OFXBase {
  LEDGEON_OFX_CLASS(OFXBalance, LEDGEON_OFXBALANCE_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXSTATEMENT_PROPERTIES(X)                         \
  X(OFXString, acctSID, AcctSID)                                   \
  X(OFXString, acctName, AcctName)                                 \
  X(OFXString, bankID, BankID)                                     \
  X(OFXString, acctID, AcctID)                                     \
  X(OFXString, acctType, AcctType)                                 \
  X(OFXString, availableBalance, AvailableBalance)                 \
  X(OFXString, availableDateString, AvailableDateString)           \
  X(OFXDate, availableDate, AvailableDate)                         \
  X(OFXString, ledgerBalance, LedgerBalance)                       \
  X(OFXString, ledgerDateString, LedgerDateString)                 \
  X(OFXDate, ledgerDate, LedgerDate)                               \
  X(OFXList<OFXTransaction>, transactions, Transactions)           \
  X(OFXString, statementStartDateString, StatementStartDateString) \
  X(OFXString, statementEndDateString, StatementEndDateString)     \
  X(OFXString, currency, Currency)                                 \
  X(OFXString, transactionUniqueID, TransactionUniqueID)

// A bank or credit-card statement (STMTTRNRS/CCSTMTTRNRS with its STMTRS). Balances are the
// server's texts; numberFromXMLString reads them.
class OFXStatement : public OFXBase {
  LEDGEON_OFX_CLASS(OFXStatement, LEDGEON_OFXSTATEMENT_PROPERTIES)

  void fixupData() override;
  void postImportValidate() override;
  // Fills each transaction's running balance, ending at the ledger balance.
  void setRunningBalances();
};

#define LEDGEON_OFXINVSTATEMENT_PROPERTIES(X)      \
  X(OFXString, brokerID, BrokerID)                 \
  X(OFXString, dateAsOfString, DateAsOfString)     \
  X(OFXDate, dateAsOf, DateAsOf)                   \
  X(OFXString, availableCash, AvailableCash)       \
  X(OFXString, marginBalance, MarginBalance)       \
  X(OFXString, shortBalance, ShortBalance)         \
  X(OFXString, buyPower, BuyPower)                 \
  X(OFXList<OFXInvPosition>, positions, Positions) \
  X(OFXList<OFXBalance>, balances, Balances)

// An investment statement (INVSTMTTRNRS with its INVSTMTRS): transactions of every kind,
// positions and balances.
class OFXInvStatement : public OFXStatement {
  LEDGEON_OFX_CLASS(OFXInvStatement, LEDGEON_OFXINVSTATEMENT_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXACCOUNTS_PROPERTIES(X)                                \
  X(OFXString, accountDescription, AccountDescription)                   \
  X(OFXString, phone, Phone)                                             \
  X(OFXString, accountKind, AccountKind)                                 \
  X(OFXString, bankID, BankID)                                           \
  X(OFXString, branchID, BranchID)                                       \
  X(OFXString, brokerID, BrokerID)                                       \
  X(OFXString, acctID, AcctID)                                           \
  X(OFXString, acctType, AcctType)                                       \
  X(OFXString, supportsTransactionDownload, SupportsTransactionDownload) \
  X(OFXString, transferSource, TransferSource)                           \
  X(OFXString, transferDestination, TransferDestination)                 \
  X(OFXString, serviceStatus, ServiceStatus)                             \
  X(OFXString, billPayAvailable, BillPayAvailable)

// One account of an account-information answer (ACCTINFO), of any kind ("BANK", "CC", "INV",
// "BILLPAY" in accountKind).
class OFXAccounts : public OFXBase {
  LEDGEON_OFX_CLASS(OFXAccounts, LEDGEON_OFXACCOUNTS_PROPERTIES)
};

#define LEDGEON_OFXACCOUNTINFOLIST_PROPERTIES(X)         \
  X(OFXString, transactionUniqueID, TransactionUniqueID) \
  X(OFXString, dateAccountUpString, DateAccountUpString) \
  X(OFXList<OFXAccounts>, accounts, Accounts)

// An account-information answer (ACCTINFOTRNRS): the customer's accounts at the institution.
class OFXAccountInfoList : public OFXBase {
  LEDGEON_OFX_CLASS(OFXAccountInfoList, LEDGEON_OFXACCOUNTINFOLIST_PROPERTIES)
};

#define LEDGEON_OFXLOTASSIGNMENT_PROPERTIES(X) \
  X(OFXString, fitid, Fitid)                   \
  X(OFXString, uniqueID, UniqueID)             \
  X(OFXString, units, Units)                   \
  X(OFXString, unitPrice, UnitPrice)           \
  X(OFXString, dateAcquiredString, DateAcquiredString)

// The lot a sale or transfer draws on.
class OFXLotAssignment : public OFXBase {
  LEDGEON_OFX_CLASS(OFXLotAssignment, LEDGEON_OFXLOTASSIGNMENT_PROPERTIES)
};

}  // namespace ledgeon
