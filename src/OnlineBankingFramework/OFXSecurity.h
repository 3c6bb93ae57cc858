#pragma once

#include "OnlineBankingFramework/OFXBase.h"

namespace ledgeon {

#define LEDGEON_OFXSECURITY_PROPERTIES(X)      \
  X(OFXString, uniqueID, UniqueID)             \
  X(OFXString, uniqueIDType, UniqueIDType)     \
  X(OFXString, secName, SecName)               \
  X(OFXString, ticker, Ticker)                 \
  X(OFXString, quotesDownload, QuotesDownload) \
  X(OFXString, watchList, WatchList)           \
  X(OFXString, hideInLists, HideInLists)       \
  X(OFXString, fiid, Fiid)                     \
  X(OFXString, rating, Rating)                 \
  X(OFXString, unitPrice, UnitPrice)           \
  X(OFXString, currencyRate, CurrencyRate)     \
  X(OFXString, currencySymbol, CurrencySymbol) \
  X(OFXString, memo, Memo)                     \
  X(OFXString, taxFree, TaxFree)               \
  X(OFXString, dateAsOfString, DateAsOfString) \
  X(OFXDate, dateAsOf, DateAsOf)               \
  X(OFXString, assetClass, AssetClass)         \
  X(OFXString, fiAssetClass, FiAssetClass)

// A security of the SECLIST; the subclasses add the fields of their kind.
class OFXSecurity : public OFXBase {
  LEDGEON_OFX_CLASS(OFXSecurity, LEDGEON_OFXSECURITY_PROPERTIES)
  void fixupData() override;
};

#define LEDGEON_OFXSTOCKSECURITY_PROPERTIES(X) \
  X(OFXString, stockType, StockType)           \
  X(OFXString, yield, Yield)

class OFXStockSecurity : public OFXSecurity {
  LEDGEON_OFX_CLASS(OFXStockSecurity, LEDGEON_OFXSTOCKSECURITY_PROPERTIES)
};

#define LEDGEON_OFXMUTUALFUNDSECURITY_PROPERTIES(X) \
  X(OFXString, mutualFundType, MutualFundType)      \
  X(OFXString, yield, Yield)

class OFXMutualFundSecurity : public OFXSecurity {
  LEDGEON_OFX_CLASS(OFXMutualFundSecurity, LEDGEON_OFXMUTUALFUNDSECURITY_PROPERTIES)
};

#define LEDGEON_OFXDEBTSECURITY_PROPERTIES(X) \
  X(OFXString, parValue, ParValue)            \
  X(OFXString, debtType, DebtType)            \
  X(OFXString, debtClass, DebtClass)          \
  X(OFXString, couponRate, CouponRate)        \
  X(OFXString, dateMaturityString, DateMaturityString)

class OFXDebtSecurity : public OFXSecurity {
  LEDGEON_OFX_CLASS(OFXDebtSecurity, LEDGEON_OFXDEBTSECURITY_PROPERTIES)
};

#define LEDGEON_OFXOPTIONSECURITY_PROPERTIES(X)      \
  X(OFXString, optionType, OptionType)               \
  X(OFXString, strikePrice, StrikePrice)             \
  X(OFXString, dateExpireString, DateExpireString)   \
  X(OFXString, sharesPerContract, SharesPerContract) \
  X(OFXString, underlyingUniqueID, UnderlyingUniqueID)

class OFXOptionSecurity : public OFXSecurity {
  LEDGEON_OFX_CLASS(OFXOptionSecurity, LEDGEON_OFXOPTIONSECURITY_PROPERTIES)
};

#define LEDGEON_OFXOTHERSECURITY_PROPERTIES(X) X(OFXString, typeDescription, TypeDescription)

class OFXOtherSecurity : public OFXSecurity {
  LEDGEON_OFX_CLASS(OFXOtherSecurity, LEDGEON_OFXOTHERSECURITY_PROPERTIES)
};

class OFXIndexSecurity : public OFXOtherSecurity {
  LEDGEON_OFX_CLASS(OFXIndexSecurity, LEDGEON_OFX_NO_PROPERTIES)
};

}  // namespace ledgeon
