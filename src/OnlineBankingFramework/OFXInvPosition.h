#pragma once

#include "OnlineBankingFramework/OFXBase.h"

namespace ledgeon {

#define LEDGEON_OFXINVPOSITION_PROPERTIES(X)             \
  X(OFXString, uniqueID, UniqueID)                       \
  X(OFXString, uniqueIDType, UniqueIDType)               \
  X(OFXString, heldInAccount, HeldInAccount)             \
  X(OFXString, posType, PosType)                         \
  X(OFXString, units, Units)                             \
  X(OFXString, unitPrice, UnitPrice)                     \
  X(OFXString, marketValue, MarketValue)                 \
  X(OFXString, datePriceAsOfString, DatePriceAsOfString) \
  X(OFXDate, datePriceAsOf, DatePriceAsOf)               \
  X(OFXString, currencyRate, CurrencyRate)               \
  X(OFXString, currencySymbol, CurrencySymbol)           \
  X(OFXString, memo, Memo)                               \
  X(OFXString, inv401KSource, Inv401KSource)

// A holding of an investment statement (INVPOSLIST entry), as the server's texts.
class OFXInvPosition : public OFXBase {
  LEDGEON_OFX_CLASS(OFXInvPosition, LEDGEON_OFXINVPOSITION_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXSTOCKPOS_PROPERTIES(X) \
  X(OFXString, unitsStreet, UnitsStreet)  \
  X(OFXString, unitsUser, UnitsUser)      \
  X(OFXString, reinvestDividends, ReinvestDividends)

class OFXStockPos : public OFXInvPosition {
  LEDGEON_OFX_CLASS(OFXStockPos, LEDGEON_OFXSTOCKPOS_PROPERTIES)
};

#define LEDGEON_OFXMFPOS_PROPERTIES(X)               \
  X(OFXString, unitsStreet, UnitsStreet)             \
  X(OFXString, unitsUser, UnitsUser)                 \
  X(OFXString, reinvestDividends, ReinvestDividends) \
  X(OFXString, reinvestCapitalGains, ReinvestCapitalGains)

class OFXMFPos : public OFXInvPosition {
  LEDGEON_OFX_CLASS(OFXMFPos, LEDGEON_OFXMFPOS_PROPERTIES)
};

class OFXDebtPos : public OFXInvPosition {
  LEDGEON_OFX_CLASS(OFXDebtPos, LEDGEON_OFX_NO_PROPERTIES)
};

#define LEDGEON_OFXOPTIONPOS_PROPERTIES(X) X(OFXString, secured, Secured)

class OFXOptionPos : public OFXInvPosition {
  LEDGEON_OFX_CLASS(OFXOptionPos, LEDGEON_OFXOPTIONPOS_PROPERTIES)
};

class OFXOtherPos : public OFXInvPosition {
  LEDGEON_OFX_CLASS(OFXOtherPos, LEDGEON_OFX_NO_PROPERTIES)
};

}  // namespace ledgeon
