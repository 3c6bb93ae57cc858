// The per-class fix-ups (raw texts to dates and amounts) and validations of the message classes.
#include <algorithm>
#include <numeric>

#include "OnlineBankingFramework/OFXDates.h"
#include "OnlineBankingFramework/OFXRoot.h"
#include "OnlineBankingFramework/OFXText.h"

namespace ledgeon {

namespace {

OFXDate ofxDate(const std::string& text) {
  if (text.empty()) return std::nullopt;
  return OFXDates::dateFromOFXString(text);
}

// A server's amount: a "," is the decimal point; text that is not a number is logged and read
// as zero, so that no NaN travels on.
Amount ofxAmount(const std::string& text) {
  std::string normalized = text;
  std::replace(normalized.begin(), normalized.end(), ',', '.');
  return Amount::safeDecimalNumberWithString(normalized);
}

}  // namespace

OFXTransaction::OFXTransaction() : balance_(Amount::notANumber()) {}

void OFXTransaction::fixupData() {
  datePosted_ = ofxDate(datePostedString_);
  dateUser_ = ofxDate(dateUserString_);
  dateSettle_ = ofxDate(dateSettleString_);
  amount_ = ofxAmount(amountString_);
  if (!importLIDString_.empty()) {
    const Amount lid = numberFromXMLString(importLIDString_, false, true);
    importLID_ = lid.isNaN() ? 0 : lid.longLongValue();
  }
}

void OFXTransferInfo::fixupData() {
  amount_ = ofxAmount(amountString_);
  dateDue_ = ofxDate(dateDueString_);
}

void OFXTransferResponse::fixupData() {
  dateProcessed_ = ofxDate(dateProcessedString_);
  if (transferInfo_) transferInfo_->fixupData();
}

void OFXTransferTransaction::fixupData() {
  if (response_) response_->fixupData();
}

void OFXPaymentInfo::fixupData() {
  amount_ = ofxAmount(amountString_);
  dateDue_ = ofxDate(dateDueString_);
}

void OFXBillPayTransaction::fixupData() {
  if (response_ && response_->paymentInfo()) response_->paymentInfo()->fixupData();
  if (response_ && response_->state()) {
    response_->state()->setDateProcessed(ofxDate(response_->state()->dateProcessedString()));
  }
}

void OFXMail::fixupData() { dateCreated_ = ofxDate(dateCreatedString_); }

void OFXEmailTransaction::fixupData() {
  if (response_ && response_->mail()) response_->mail()->fixupData();
}

void OFXProfile::fixupData() { dateProfileUp_ = ofxDate(dateProfileUpString_); }

void OFXBalance::fixupData() { dateAsOf_ = ofxDate(dateAsOfString_); }

void OFXInvPosition::fixupData() { datePriceAsOf_ = ofxDate(datePriceAsOfString_); }

void OFXSecurity::fixupData() { dateAsOf_ = ofxDate(dateAsOfString_); }

void OFXStatement::fixupData() {
  availableDate_ = ofxDate(availableDateString_);
  ledgerDate_ = ofxDate(ledgerDateString_);
  for (auto& transaction : transactions_) {
    transaction->fixupData();
    if (transaction->acctSID().empty()) transaction->setAcctSID(acctSID_);
  }
}

void OFXStatement::postImportValidate() {
  OFXBase::postImportValidate();
  bubbleUpOFXErrorsInItems(transactions_);
}

void OFXStatement::setRunningBalances() {
  const Amount ledger = numberFromXMLString(ledgerBalance_, true, true);
  if (ledger.isNaN() || transactions_.empty()) return;
  std::vector<size_t> order(transactions_.size());
  std::iota(order.begin(), order.end(), size_t{0});
  // Oldest first; undated transactions count as the oldest.
  std::stable_sort(order.begin(), order.end(), [this](size_t a, size_t b) {
    const auto& da = transactions_[a]->datePosted();
    const auto& db = transactions_[b]->datePosted();
    if (!db) return false;
    if (!da) return true;
    return *da < *db;
  });
  Amount running = ledger;
  for (auto it = order.rbegin(); it != order.rend(); ++it) {
    auto& transaction = *transactions_[*it];
    transaction.setBalance(running);
    running = running.decimalNumberBySubtracting(transaction.amount());
  }
}

void OFXInvStatement::fixupData() {
  OFXStatement::fixupData();
  dateAsOf_ = ofxDate(dateAsOfString_);
  for (auto& position : positions_) position->fixupData();
  for (auto& balance : balances_) balance->fixupData();
}

void OFXSyncBase::postImportValidate() { OFXBase::postImportValidate(); }

#define LEDGEON_OFX_SYNC_METHODS(Class)                                        \
  void Class::fixupData() {                                                    \
    for (auto& transaction : transactions_) transaction->fixupData();          \
  }                                                                            \
  void Class::postImportValidate() {                                           \
    OFXSyncBase::postImportValidate();                                         \
    for (auto& transaction : transactions_) transaction->postImportValidate(); \
    bubbleUpOFXErrorsInItems(transactions_);                                   \
  }

LEDGEON_OFX_SYNC_METHODS(OFXBillPaySync)
LEDGEON_OFX_SYNC_METHODS(OFXPayeeSync)
LEDGEON_OFX_SYNC_METHODS(OFXTransferSync)
LEDGEON_OFX_SYNC_METHODS(OFXEmailSync)

}  // namespace ledgeon
