#include "OnlineBankingFramework/OFXRoot.h"

#include <cctype>
#include <climits>

#include "OnlineBankingFramework/OFXException.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

// The integer a text starts with, after blanks and an optional sign; 0 when there is none.
long integerValue(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  long value = 0;
  for (; i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])); ++i) {
    if (value > (LONG_MAX - 9) / 10) return negative ? LONG_MIN : LONG_MAX;
    value = value * 10 + (text[i] - '0');
  }
  return negative ? -value : value;
}

template <typename T>
void validateAndBubble(OFXRoot& root, OFXList<T>& items) {
  for (auto& item : items) item->postImportValidate();
  root.bubbleUpOFXErrorsInItems(items);
}

}  // namespace

long OFXRoot::OFXVersion(std::string_view text) {
  constexpr std::string_view kHeader = "OFXHEADER";
  for (size_t at = text.find(kHeader); at != std::string_view::npos;
       at = text.find(kHeader, at + 1)) {
    size_t i = at + kHeader.size();
    const size_t nonDigits = i;
    while (i < text.size() && !std::isdigit(static_cast<unsigned char>(text[i]))) ++i;
    if (i == nonDigits || i == text.size()) continue;
    long version = 0;
    for (; i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])); ++i) {
      if (version < LONG_MAX / 10) version = version * 10 + (text[i] - '0');
    }
    return version;
  }
  return 0;
}

bool OFXRoot::isXMLOFX(std::string_view text) { return OFXVersion(text) >= 200; }

void OFXRoot::combineCCandBankingArrays() {
  if (ccStatements_.empty()) return;
  for (auto& statement : ccStatements_) statements_.push_back(std::move(statement));
  ccStatements_.clear();
}

void OFXRoot::fixupData() {
  if (FIProfileData_) FIProfileData_->fixupData();
  for (auto& statement : statements_) statement->fixupData();
  for (auto& statement : invStatements_) statement->fixupData();
  for (auto& security : securities_) security->fixupData();
  for (auto& sync : mailSyncs_) sync->fixupData();
}

void OFXRoot::postImportValidate() {
  OFXBase::postImportValidate();
  if (!bid_.empty()) bid_ = stringWithFormat("%ld", integerValue(bid_));
  if (ofxStatusSignon().errorCode() != 0) ofxStatus().copyFrom(ofxStatusSignon());
  validateAndBubble(*this, statements_);
  validateAndBubble(*this, invStatements_);
  validateAndBubble(*this, transferSyncs_);
  validateAndBubble(*this, billPaySyncs_);
  validateAndBubble(*this, payeeSyncs_);
  validateAndBubble(*this, mailSyncs_);
  validateAndBubble(*this, transferTransactions_);
  validateAndBubble(*this, billPayTransactions_);
  validateAndBubble(*this, payeeTransactions_);
  if (bid_.empty()) bid_ = fid_;
  // A failed sign-on explains itself, and a direct-connect session knows whom it asked; every
  // other response must say which institution it comes from.
  if (bid_.empty() && !signonError() && !directConnect_) {
    throw OFXException("InvalidOFX", "Missing bid data");
  }
}

void OFXRoot::setRunningBalances() {
  for (auto& statement : statements_) statement->setRunningBalances();
}

size_t OFXRoot::accountCount() const {
  size_t count = 0;
  for (const auto& list : accountInfoList_) count += list->accounts().size();
  return count;
}

size_t OFXRoot::numberOfStatements() const {
  return statements_.size() + ccStatements_.size() + invStatements_.size();
}

size_t OFXRoot::totalNumberOfTransactions() const {
  return numberOfTransactionsInStatements(statements_) +
         numberOfTransactionsInStatements(ccStatements_) +
         numberOfTransactionsInStatements(invStatements_);
}

size_t OFXRoot::numberOfTransactionsInStatementIndex(size_t index) const {
  if (index < statements_.size()) return numberOfTransactionsInStatement(statements_[index].get());
  index -= statements_.size();
  if (index < invStatements_.size()) {
    return numberOfTransactionsInStatement(invStatements_[index].get());
  }
  return 0;
}

size_t OFXRoot::numberOfTransactionsInStatement(const OFXStatement* statement) {
  return statement ? statement->transactions().size() : 0;
}

void OFXRoot::storeUsingOnlineSessionObject(OFXOnlineSession& session, const void* relatedObject) {
  session.storeOFXRoot(*this, relatedObject);
}

void OFXRoot::updateSessionStatusForAccount(OFXOnlineSession& session, const void* account) const {
  session.updateSessionStatus(account, ofxStatus());
}

}  // namespace ledgeon
