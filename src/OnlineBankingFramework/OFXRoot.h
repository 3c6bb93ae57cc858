#pragma once

#include <string_view>

#include "OnlineBankingFramework/OFXInvestmentTransactions.h"
#include "OnlineBankingFramework/OFXOnlineSession.h"
#include "OnlineBankingFramework/OFXSecurity.h"
#include "OnlineBankingFramework/OFXStatement.h"
#include "OnlineBankingFramework/OFXSyncs.h"

namespace ledgeon {

#define LEDGEON_OFXROOT_PROPERTIES(X)                                            \
  X(bool, directConnect, DirectConnect)                                          \
  X(bool, investmentOFX, InvestmentOFX)                                          \
  X(OFXString, org, Org)                                                         \
  X(OFXString, fid, Fid)                                                         \
  X(OFXString, bid, Bid)                                                         \
  X(OFXList<OFXStatement>, statements, Statements)                               \
  X(OFXList<OFXStatement>, ccStatements, CcStatements)                           \
  X(OFXList<OFXInvStatement>, invStatements, InvStatements)                      \
  X(OFXList<OFXSecurity>, securities, Securities)                                \
  X(OFXList<OFXBrand>, brands, Brands)                                           \
  X(OFXList<OFXAccountInfoList>, accountInfoList, AccountInfoList)               \
  X(OFXList<OFXChallenge>, challenges, Challenges)                               \
  X(OFXList<OFXBillPaySync>, billPaySyncs, BillPaySyncs)                         \
  X(OFXList<OFXBillPayTransaction>, billPayTransactions, BillPayTransactions)    \
  X(OFXList<OFXPayeeSync>, payeeSyncs, PayeeSyncs)                               \
  X(OFXList<OFXPayeeTransaction>, payeeTransactions, PayeeTransactions)          \
  X(OFXList<OFXTransferSync>, transferSyncs, TransferSyncs)                      \
  X(OFXList<OFXTransferTransaction>, transferTransactions, TransferTransactions) \
  X(OFXList<OFXEmailSync>, mailSyncs, MailSyncs)                                 \
  X(OFXRef<OFXProfile>, FIProfileData, FIProfileData)                            \
  X(OFXString, userID, UserID)                                                   \
  X(OFXString, accessKey, AccessKey)

// One parsed OFX response: every message of it, owned by the root. Built once per response on one
// thread, read by the direct-connect session and the download pipeline, then dropped.
class OFXRoot : public OFXBase {
  LEDGEON_OFX_CLASS(OFXRoot, LEDGEON_OFXROOT_PROPERTIES)

  // The number after OFXHEADER in the raw text, 0 when there is none.
  static long OFXVersion(std::string_view text);
  // True for OFX 2.x (XML) text: a header version of 200 or more.
  static bool isXMLOFX(std::string_view text);

  // Appends the credit-card statements to the bank statements and empties ccStatements.
  void combineCCandBankingArrays();
  void fixupData() override;
  // Normalises the BID, moves statuses up to the root; throws OFXException ("InvalidOFX",
  // "Missing bid data") when neither BID nor FID is known.
  void postImportValidate() override;
  void setRunningBalances();

  size_t statementCount() const { return statements_.size(); }
  size_t ccStatementCount() const { return ccStatements_.size(); }
  size_t brandCount() const { return brands_.size(); }
  size_t challengeCount() const { return challenges_.size(); }
  size_t accountCount() const;
  // Bank, credit-card and investment statements together.
  size_t numberOfStatements() const;
  size_t totalNumberOfTransactions() const;
  // Index over statements, then investment statements; 0 past the end.
  size_t numberOfTransactionsInStatementIndex(size_t index) const;
  static size_t numberOfTransactionsInStatement(const OFXStatement* statement);
  template <typename T>
  static size_t numberOfTransactionsInStatements(const OFXList<T>& statements) {
    size_t count = 0;
    for (const auto& statement : statements)
      count += numberOfTransactionsInStatement(statement.get());
    return count;
  }

  // Hand the results to the download session and the ledger.
  void storeUsingOnlineSessionObject(OFXOnlineSession& session, const void* relatedObject);
  void updateSessionStatusForAccount(OFXOnlineSession& session, const void* account) const;
};

}  // namespace ledgeon
