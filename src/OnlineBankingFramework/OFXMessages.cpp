// The class tables of the message classes, and the fix-ups that turn their raw texts into values.
#include "OnlineBankingFramework/ForexRateService.h"
#include "OnlineBankingFramework/OFXDates.h"
#include "OnlineBankingFramework/OFXRoot.h"
#include "OnlineBankingFramework/OFXText.h"
#include "OnlineBankingFramework/internal/OFXClassList.h"

namespace ledgeon {

LEDGEON_OFX_DEFINE_CLASS(OFXBankAccount, OFXObject, LEDGEON_OFXBANKACCOUNT_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXPayee, OFXObject, LEDGEON_OFXPAYEE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXPayeeExtend, OFXObject, LEDGEON_OFXPAYEEEXTEND_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXPayeeResponse, OFXObject, LEDGEON_OFXPAYEERESPONSE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXAdjustment, OFXBase, LEDGEON_OFXADJUSTMENT_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXDiscount, OFXBase, LEDGEON_OFXDISCOUNT_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXLineItem, OFXObject, LEDGEON_OFXLINEITEM_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvoice, OFXObject, LEDGEON_OFXINVOICE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXPaymentExtend, OFXObject, LEDGEON_OFXPAYMENTEXTEND_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXPaymentInfo, OFXObject, LEDGEON_OFXPAYMENTINFO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXBillPayState, OFXObject, LEDGEON_OFXBILLPAYSTATE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXBillPayResponse, OFXObject, LEDGEON_OFXBILLPAYRESPONSE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXMail, OFXObject, LEDGEON_OFXMAIL_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXEmailItem, OFXObject, LEDGEON_OFXEMAILITEM_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXEmailResponse, OFXEmailItem, LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXMessageSetInfo, OFXObject, LEDGEON_OFXMESSAGESETINFO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXProfile, OFXBase, LEDGEON_OFXPROFILE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXBrand, OFXBase, LEDGEON_OFXBRAND_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXChallenge, OFXBase, LEDGEON_OFXCHALLENGE_PROPERTIES)

LEDGEON_OFX_DEFINE_CLASS(OFXTransactionBase, OFXBase, LEDGEON_OFXTRANSACTIONBASE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXTransaction, OFXTransactionBase, LEDGEON_OFXTRANSACTION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXBillPayTransaction, OFXTransactionBase,
                         LEDGEON_OFXBILLPAYTRANSACTION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXPayeeTransaction, OFXTransactionBase,
                         LEDGEON_OFXPAYEETRANSACTION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXTransferInfo, OFXTransactionBase, LEDGEON_OFXTRANSFERINFO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXTransferResponse, OFXTransactionBase,
                         LEDGEON_OFXTRANSFERRESPONSE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXTransferTransaction, OFXTransactionBase,
                         LEDGEON_OFXTRANSFERTRANSACTION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXEmailTransaction, OFXTransactionBase,
                         LEDGEON_OFXEMAILTRANSACTION_PROPERTIES)

LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentTransaction, OFXTransaction,
                         LEDGEON_OFXINVESTMENTTRANSACTION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXBuyInvestmentTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXSellInvestmentTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXSplitInvestmentTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFXSPLITINVESTMENTTRANSACTION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXTransferInvestmentTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentIncomeTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentReinvestTransaction, OFXInvestmentIncomeTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentExpenseTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentMarginInterestTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentRetOfCapTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentMutalFundTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXBuyMutualFundTransaction, OFXInvestmentMutalFundTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXSellMutualFundTransaction, OFXInvestmentMutalFundTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentDebtTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFXINVESTMENTDEBTTRANSACTION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentBuyDebtTransaction, OFXInvestmentDebtTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentSellDebtTransaction, OFXInvestmentDebtTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentOptionTransaction, OFXInvestmentTransaction,
                         LEDGEON_OFXINVESTMENTOPTIONTRANSACTION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentBuyOptionTransaction, OFXInvestmentOptionTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentSellOptionTransaction, OFXInvestmentOptionTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvestmentClosureOptionTransaction, OFXInvestmentOptionTransaction,
                         LEDGEON_OFX_NO_PROPERTIES)

LEDGEON_OFX_DEFINE_CLASS(OFXInvPosition, OFXBase, LEDGEON_OFXINVPOSITION_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXStockPos, OFXInvPosition, LEDGEON_OFXSTOCKPOS_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXMFPos, OFXInvPosition, LEDGEON_OFXMFPOS_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXDebtPos, OFXInvPosition, LEDGEON_OFX_NO_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXOptionPos, OFXInvPosition, LEDGEON_OFXOPTIONPOS_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXOtherPos, OFXInvPosition, LEDGEON_OFX_NO_PROPERTIES)

LEDGEON_OFX_DEFINE_CLASS(OFXSecurity, OFXBase, LEDGEON_OFXSECURITY_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXStockSecurity, OFXSecurity, LEDGEON_OFXSTOCKSECURITY_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXMutualFundSecurity, OFXSecurity,
                         LEDGEON_OFXMUTUALFUNDSECURITY_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXDebtSecurity, OFXSecurity, LEDGEON_OFXDEBTSECURITY_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXOptionSecurity, OFXSecurity, LEDGEON_OFXOPTIONSECURITY_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXOtherSecurity, OFXSecurity, LEDGEON_OFXOTHERSECURITY_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXIndexSecurity, OFXOtherSecurity, LEDGEON_OFX_NO_PROPERTIES)

LEDGEON_OFX_DEFINE_CLASS(OFXBalance, OFXBase, LEDGEON_OFXBALANCE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXStatement, OFXBase, LEDGEON_OFXSTATEMENT_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXInvStatement, OFXStatement, LEDGEON_OFXINVSTATEMENT_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXAccounts, OFXBase, LEDGEON_OFXACCOUNTS_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXAccountInfoList, OFXBase, LEDGEON_OFXACCOUNTINFOLIST_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXLotAssignment, OFXBase, LEDGEON_OFXLOTASSIGNMENT_PROPERTIES)

LEDGEON_OFX_DEFINE_CLASS(OFXSyncBase, OFXBase, LEDGEON_OFXSYNCBASE_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXBillPaySync, OFXSyncBase, LEDGEON_OFXBILLPAYSYNC_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXPayeeSync, OFXSyncBase, LEDGEON_OFXPAYEESYNC_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXTransferSync, OFXSyncBase, LEDGEON_OFXTRANSFERSYNC_PROPERTIES)
LEDGEON_OFX_DEFINE_CLASS(OFXEmailSync, OFXSyncBase, LEDGEON_OFXEMAILSYNC_PROPERTIES)

LEDGEON_OFX_DEFINE_CLASS(OFXRoot, OFXBase, LEDGEON_OFXROOT_PROPERTIES)

const std::vector<const OFXClassInfo*>& builtInOFXClasses() {
  static const std::vector<const OFXClassInfo*> classes = {
      &OFXStatus::staticClassInfo(),
      &OFXBase::staticClassInfo(),
      &OFXBankAccount::staticClassInfo(),
      &OFXPayee::staticClassInfo(),
      &OFXPayeeExtend::staticClassInfo(),
      &OFXPayeeResponse::staticClassInfo(),
      &OFXAdjustment::staticClassInfo(),
      &OFXDiscount::staticClassInfo(),
      &OFXLineItem::staticClassInfo(),
      &OFXInvoice::staticClassInfo(),
      &OFXPaymentExtend::staticClassInfo(),
      &OFXPaymentInfo::staticClassInfo(),
      &OFXBillPayState::staticClassInfo(),
      &OFXBillPayResponse::staticClassInfo(),
      &OFXMail::staticClassInfo(),
      &OFXEmailItem::staticClassInfo(),
      &OFXEmailResponse::staticClassInfo(),
      &OFXMessageSetInfo::staticClassInfo(),
      &OFXProfile::staticClassInfo(),
      &OFXBrand::staticClassInfo(),
      &OFXChallenge::staticClassInfo(),
      &OFXTransactionBase::staticClassInfo(),
      &OFXTransaction::staticClassInfo(),
      &OFXBillPayTransaction::staticClassInfo(),
      &OFXPayeeTransaction::staticClassInfo(),
      &OFXTransferInfo::staticClassInfo(),
      &OFXTransferResponse::staticClassInfo(),
      &OFXTransferTransaction::staticClassInfo(),
      &OFXEmailTransaction::staticClassInfo(),
      &OFXInvestmentTransaction::staticClassInfo(),
      &OFXBuyInvestmentTransaction::staticClassInfo(),
      &OFXSellInvestmentTransaction::staticClassInfo(),
      &OFXSplitInvestmentTransaction::staticClassInfo(),
      &OFXTransferInvestmentTransaction::staticClassInfo(),
      &OFXInvestmentIncomeTransaction::staticClassInfo(),
      &OFXInvestmentReinvestTransaction::staticClassInfo(),
      &OFXInvestmentExpenseTransaction::staticClassInfo(),
      &OFXInvestmentMarginInterestTransaction::staticClassInfo(),
      &OFXInvestmentRetOfCapTransaction::staticClassInfo(),
      &OFXInvestmentMutalFundTransaction::staticClassInfo(),
      &OFXBuyMutualFundTransaction::staticClassInfo(),
      &OFXSellMutualFundTransaction::staticClassInfo(),
      &OFXInvestmentDebtTransaction::staticClassInfo(),
      &OFXInvestmentBuyDebtTransaction::staticClassInfo(),
      &OFXInvestmentSellDebtTransaction::staticClassInfo(),
      &OFXInvestmentOptionTransaction::staticClassInfo(),
      &OFXInvestmentBuyOptionTransaction::staticClassInfo(),
      &OFXInvestmentSellOptionTransaction::staticClassInfo(),
      &OFXInvestmentClosureOptionTransaction::staticClassInfo(),
      &OFXInvPosition::staticClassInfo(),
      &OFXStockPos::staticClassInfo(),
      &OFXMFPos::staticClassInfo(),
      &OFXDebtPos::staticClassInfo(),
      &OFXOptionPos::staticClassInfo(),
      &OFXOtherPos::staticClassInfo(),
      &OFXSecurity::staticClassInfo(),
      &OFXStockSecurity::staticClassInfo(),
      &OFXMutualFundSecurity::staticClassInfo(),
      &OFXDebtSecurity::staticClassInfo(),
      &OFXOptionSecurity::staticClassInfo(),
      &OFXOtherSecurity::staticClassInfo(),
      &OFXIndexSecurity::staticClassInfo(),
      &OFXBalance::staticClassInfo(),
      &OFXStatement::staticClassInfo(),
      &OFXInvStatement::staticClassInfo(),
      &OFXAccounts::staticClassInfo(),
      &OFXAccountInfoList::staticClassInfo(),
      &OFXLotAssignment::staticClassInfo(),
      &OFXSyncBase::staticClassInfo(),
      &OFXBillPaySync::staticClassInfo(),
      &OFXPayeeSync::staticClassInfo(),
      &OFXTransferSync::staticClassInfo(),
      &OFXEmailSync::staticClassInfo(),
      &OFXRoot::staticClassInfo(),
      &ForexRates::staticClassInfo(),
      &ForexRate::staticClassInfo(),
  };
  return classes;
}

}  // namespace ledgeon
