#pragma once

#include "OnlineBankingFramework/OFXTransactions.h"

// The investment transactions of an INVTRANLIST. Each keeps the common INVTRAN fields in the
// OFXTransaction properties (the trade date in datePosted, TOTAL in amount) and the security and
// trade details here, as the server's texts.
namespace ledgeon {

#define LEDGEON_OFXINVESTMENTTRANSACTION_PROPERTIES(X) \
  X(OFXString, uniqueID, UniqueID)                     \
  X(OFXString, uniqueIDType, UniqueIDType)             \
  X(OFXString, action, Action)                         \
  X(OFXString, units, Units)                           \
  X(OFXString, unitPrice, UnitPrice)                   \
  X(OFXString, markup, Markup)                         \
  X(OFXString, markdown, Markdown)                     \
  X(OFXString, commission, Commission)                 \
  X(OFXString, taxes, Taxes)                           \
  X(OFXString, fees, Fees)                             \
  X(OFXString, load, Load)                             \
  X(OFXString, withholding, Withholding)               \
  X(OFXString, currencyRate, CurrencyRate)             \
  X(OFXString, currencySymbol, CurrencySymbol)         \
  X(OFXString, posType, PosType)                       \
  X(OFXString, inv401KSource, Inv401KSource)           \
  X(OFXString, relatedFitid, RelatedFitid)             \
  X(OFXString, avgCostBasis, AvgCostBasis)

class OFXInvestmentTransaction : public OFXTransaction {
  LEDGEON_OFX_CLASS(OFXInvestmentTransaction, LEDGEON_OFXINVESTMENTTRANSACTION_PROPERTIES)
};

#define LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(Class, Base) \
  class Class : public Base {                            \
    LEDGEON_OFX_CLASS(Class, LEDGEON_OFX_NO_PROPERTIES)  \
  };

LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXBuyInvestmentTransaction, OFXInvestmentTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXSellInvestmentTransaction, OFXInvestmentTransaction)

#define LEDGEON_OFXSPLITINVESTMENTTRANSACTION_PROPERTIES(X) \
  X(OFXString, oldUnits, OldUnits)                          \
  X(OFXString, newUnits, NewUnits)                          \
  X(OFXString, numerator, Numerator)                        \
  X(OFXString, denominator, Denominator)                    \
  X(OFXString, fractionalCash, FractionalCash)

class OFXSplitInvestmentTransaction : public OFXInvestmentTransaction {
  LEDGEON_OFX_CLASS(OFXSplitInvestmentTransaction, LEDGEON_OFXSPLITINVESTMENTTRANSACTION_PROPERTIES)
};

LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXTransferInvestmentTransaction, OFXInvestmentTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentIncomeTransaction, OFXInvestmentTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentReinvestTransaction,
                                    OFXInvestmentIncomeTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentExpenseTransaction, OFXInvestmentTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentMarginInterestTransaction,
                                    OFXInvestmentTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentRetOfCapTransaction, OFXInvestmentTransaction)
// The name's spelling is kept: stored documents and scripts know the class by it.
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentMutalFundTransaction, OFXInvestmentTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXBuyMutualFundTransaction, OFXInvestmentMutalFundTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXSellMutualFundTransaction, OFXInvestmentMutalFundTransaction)

#define LEDGEON_OFXINVESTMENTDEBTTRANSACTION_PROPERTIES(X) \
  X(OFXString, accruedInterest, AccruedInterest)           \
  X(OFXString, sellReason, SellReason)

class OFXInvestmentDebtTransaction : public OFXInvestmentTransaction {
  LEDGEON_OFX_CLASS(OFXInvestmentDebtTransaction, LEDGEON_OFXINVESTMENTDEBTTRANSACTION_PROPERTIES)
};

LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentBuyDebtTransaction, OFXInvestmentDebtTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentSellDebtTransaction, OFXInvestmentDebtTransaction)

#define LEDGEON_OFXINVESTMENTOPTIONTRANSACTION_PROPERTIES(X) \
  X(OFXString, sharesPerContract, SharesPerContract)         \
  X(OFXString, relatedType, RelatedType)

class OFXInvestmentOptionTransaction : public OFXInvestmentTransaction {
  LEDGEON_OFX_CLASS(OFXInvestmentOptionTransaction,
                    LEDGEON_OFXINVESTMENTOPTIONTRANSACTION_PROPERTIES)
};

LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentBuyOptionTransaction,
                                    OFXInvestmentOptionTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentSellOptionTransaction,
                                    OFXInvestmentOptionTransaction)
LEDGEON_OFX_SIMPLE_INVESTMENT_CLASS(OFXInvestmentClosureOptionTransaction,
                                    OFXInvestmentOptionTransaction)

}  // namespace ledgeon
