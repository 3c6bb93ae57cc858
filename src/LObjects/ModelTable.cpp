#include "LObjects/Model.h"

namespace ledgeon {

namespace {

// One line per property. Every relationship names its inverse on the target entity.
PropertyDescription attribute(const char* name, AttributeType type, bool readOnly = false) {
  PropertyDescription p;
  p.name = name;
  p.type = type;
  p.readOnly = readOnly;
  return p;
}
PropertyDescription S(const char* name) { return attribute(name, AttributeType::String); }
PropertyDescription N(const char* name) { return attribute(name, AttributeType::Integer); }
PropertyDescription A(const char* name) { return attribute(name, AttributeType::Amount); }
PropertyDescription D(const char* name) { return attribute(name, AttributeType::Date); }
PropertyDescription P(const char* name) { return attribute(name, AttributeType::Dictionary); }
PropertyDescription readOnly(PropertyDescription p) {
  p.readOnly = true;
  return p;
}
PropertyDescription relationship(const char* name, PropertyKind kind, const char* target,
                                 const char* inverse) {
  PropertyDescription p;
  p.name = name;
  p.kind = kind;
  p.targetName = target;
  p.inverseName = inverse;
  return p;
}
PropertyDescription One(const char* name, const char* target, const char* inverse) {
  return relationship(name, PropertyKind::ToOne, target, inverse);
}
PropertyDescription Many(const char* name, const char* target, const char* inverse) {
  return relationship(name, PropertyKind::ToMany, target, inverse);
}

using Props = std::vector<PropertyDescription>;

std::vector<Model::EntityDeclaration> buildTable() {
  std::vector<Model::EntityDeclaration> t;
  auto E = [&t](const char* name, const char* parent, Props props = {}) {
    t.push_back({name, parent, std::move(props)});
  };

  E("LObject", "",
    {S("name"), readOnly(D("creationTimestamp")), S("dataSource"), N("deletionCount"), S("guid"),
     readOnly(D("modificationTimestamp")), readOnly(N("ledgeonId")), S("syncID")});

  E("Account", "LObject",
    {N("active"),
     S("bankRoutingNumber"),
     S("billpayRoutingNumber"),
     P("checkPrintingProperties"),
     N("costBasisAlgorithmDebt"),
     N("costBasisAlgorithmMutualFund"),
     N("costBasisAlgorithmOption"),
     N("costBasisAlgorithmOther"),
     N("costBasisAlgorithmStock"),
     A("creditLimit"),
     S("currency"),
     P("filters"),
     N("importLID"),
     S("importSourceFileID"),
     S("importSourceID"),
     A("interestRate"),
     N("lastCheckNum"),
     N("liquidity"),
     N("loanCompoundingPeriod"),
     A("loanFIPaymentAmount"),
     D("loanFIPaymentDueDate"),
     A("loanOpeningBalance"),
     D("loanFirstPaymentDate"),
     N("loanHasBeenSetUp"),
     N("loanHasOfferedToConvertLiability"),
     D("loanNextPaymentDate"),
     N("loanPaymentFrequency"),
     N("loanPaymentPeriod"),
     N("loanRateType"),
     A("loanTerm"),
     N("loanTermType"),
     N("loanUseMaturityDate"),
     N("mostRecentDownloadSessionNumber"),
     S("notes"),
     S("ofxBillPayServiceStatus"),
     N("ofxTransferDestEnabled"),
     N("ofxTransferSourceEnabled"),
     N("ofxPaymentsEnabled"),
     S("ofxLastPaymentToken"),
     S("ofxLastTransferToken"),
     S("ofxLastBankMailToken"),
     N("onlineBankingAccountInfoSessionNeeded"),
     N("onlineBankingAccountIsEnabled"),
     N("onlineBankingAccountIsInBIDChange"),
     S("onlineBankingAccountNumber"),
     N("onlineBankingCCAccountID"),
     N("onlineBankingChangePINFirstCompleted"),
     S("onlineBankingConnectionType"),
     S("onlineBankingCustomerID"),
     S("onlineBankingDTEND"),
     D("onlineBankingLastConnectedTimestamp"),
     S("onlineBankingLastTOKEN"),
     S("onlineBankingLastUUID"),
     A("onlineBankingLedgerBalanceAmount"),
     D("onlineBankingLedgerBalanceDate"),
     S("onlineBankingOFXAccountType"),
     S("onlineBankingPreviousBID"),
     S("onlineBankingServerID"),
     S("onlineBillpayAccountNumber"),
     S("onlineBillpayConnectionType"),
     S("onlineBillpayCustomerID"),
     S("onlineBillpayOFXAccountType"),
     P("reconcileInfo"),
     S("regionCode"),
     D("reviewedTimestamp"),
     N("scheduleLookaheadDays"),
     N("scheduleLookaheadEnabled"),
     N("statusNumAttempts"),
     N("statusTransactionCount"),
     N("syncResetRequired"),
     N("syncWithCloud"),
     N("taxable"),
     N("usedInReports"),
     N("usedInAutoUpdates"),
     S("userDescription"),
     N("noCashTransactions"),
     N("singleMutualFund"),
     N("candidateNoCashTransactions"),
     N("candidateSingleMutualFund"),
     N("confirmationNeeded"),
     One("billpayProviderInstitution", "FinancialInstitution", "billpayAccounts"),
     One("cloudFILogin", "CloudFILogin", "accounts"),
     Many("downloadSessions", "DownloadSession", "account"),
     One("error", "LError", "account"),
     One("financialInstitution", "FinancialInstitution", "accounts"),
     Many("fiStatements", "FIStatement", "account"),
     Many("fiTransactionList", "FITransaction", "account"),
     One("loanInterestCategory", "CategoryTag", "loanAccount"),
     One("loanSmartTransaction", "SmartCashFlowTransaction", "loanAccount"),
     Many("loanSplits", "LoanSplitEntry", "account"),
     One("ofxEmail", "OFXEmail", "account"),
     One("openingBalancePlaceholder", "Transaction", "openingBalanceAccount"),
     Many("positions", "Position", "account"),
     Many("sentTransactions", "Transaction", "sendAccount"),
     Many("smartTransactions", "SmartCashFlowTransaction", "smartAccount"),
     Many("targetTransactions", "Transaction", "targetAccount"),
     Many("transactions", "Transaction", "account"),
     One("type", "AccountType", "accounts")});

  E("AccountType", "LObject",
    {N("implicitSign"), Many("accounts", "Account", "type"),
     One("parent", "AccountType", "subTypes"), Many("subTypes", "AccountType", "parent"),
     Many("tags", "AccountTag", "accountTypes")});
  for (const char* name : {"Checking", "Savings", "CreditCard", "Brokerage", "GenericLoan"}) {
    E(name, "AccountType");
  }
  for (const char* name : {"BrokerageCanadaPRPP", "BrokerageCanadaRDSP", "BrokerageCanadaRESP",
                           "BrokerageCanadaRPP", "BrokerageCanadaRRIF", "BrokerageCanadaRRSP",
                           "BrokerageCanadaTFSA", "BrokerageEducationSavings", "BrokerageNormal",
                           "BrokerageOther", "BrokerageTrust", "BrokerageUGMA", "Retirement"}) {
    E(name, "Brokerage");
  }
  for (const char* name : {"RetirementIRA", "RetirementKEOGH", "RetirementRothIRA", "RetirementSEP",
                           "RetirementSIMPLE", "DeferredCompRetirement"}) {
    E(name, "Retirement");
  }
  for (const char* name : {"DeferredCompRetirement401K", "DeferredCompRetirement403B",
                           "DeferredCompRetirementRoth401k"}) {
    E(name, "DeferredCompRetirement");
  }
  for (const char* name :
       {"AutoLoan", "CommercialLoan", "ConstructionLoan", "ConsumerLoan", "HomeEquityLoan",
        "LineOfCredit", "MilitaryLoan", "Mortgage", "SMBLoan", "StudentLoan"}) {
    E(name, "GenericLoan");
  }

  E("Transaction", "LObject",
    {D("enteredDate"),
     D("postedDate"),
     S("importSourceFileID"),
     S("importSourceID"),
     S("onlineBankingServerID"),
     S("note"),
     S("fiNote"),
     A("amount"),
     N("reconcileStatus"),
     N("userStatusOverride"),
     N("type"),
     S("reference"),
     One("account", "Account", "transactions"),
     Many("attachments", "Attachment", "transaction"),
     One("downloadSession", "DownloadSession", "transactions"),
     Many("entries", "CashFlowTransactionEntry", "parent"),
     One("error", "LError", "transaction"),
     One("fiTransaction", "FITransaction", "transactions"),
     One("ofxEmail", "OFXEmail", "transaction"),
     One("openingBalanceAccount", "Account", "openingBalancePlaceholder"),
     One("sendAccount", "Account", "sentTransactions"),
     One("targetAccount", "Account", "targetTransactions"),
     A("placeholderTargetAmount"),
     D("placeholderTargetDate"),
     N("orderID"),
     N("matched"),
     S("matchSource")});
  E("CashFlowTransaction", "Transaction",
    {One("action", "CashFlowAction", "transactions"), P("checkProperties"), S("ofxPayeeListID"),
     One("userPayee", "UserPayee", "cashFlowTransactions"),
     One("fiPayee", "FIPayee", "cashFlowTransactions"), N("miscFlags"), S("checkNumber"),
     N("sendRequestState"), D("sentTransactionStatusDate"), S("clientAssignedTransactionUID")});
  E("SmartCashFlowTransaction", "CashFlowTransaction",
    {N("autoPost"), One("recurrenceEnd", "RecurrenceEnd", "transaction"), N("toBeSent"),
     One("loanAccount", "Account", "loanSmartTransaction"),
     One("smartAccount", "Account", "smartTransactions"),
     Many("scheduleEntries", "ScheduleEntry", "transaction"),
     Many("adjustments", "ScheduleAdjustmentEntry", "parent")});
  E("InvestmentTransaction", "Transaction",
    {A("numerator"), A("denominator"), A("commission"), A("costBasis"), A("units"),
     A("placeholderCostBasis"), A("placeholderCostBasisUnits"), A("placeholderTargetUnits"),
     A("placeholderUnitsOnTargetDate"), D("acquisitionDate"),
     One("position", "Position", "transactions"), Many("lotMods", "LotMod", "transaction"),
     Many("lotAssignments", "LotAssignment", "sourceTransaction"),
     Many("incomingLotAssignments", "LotAssignment", "destinationTransaction")});
  E("CashFlowTransactionEntry", "LObject",
    {One("parent", "CashFlowTransaction", "entries"), Many("userTags", "UserTag", "taggedEntries"),
     One("categoryTag", "CategoryTag", "cashFlowTransactionEntries"), N("sequenceNumber"),
     S("transfer"), N("miscFlags"), A("amount"), S("note")});

  E("Tag", "LObject", {S("userDescription"), S("internalName")});
  E("CashFlowTag", "Tag",
    {N("taxCopyNum"), N("taxRefCA"), N("taxRefUS"), N("editable"), N("userAssignable"),
     N("budgetable"), N("trendable"),
     Many("cashFlowTransactionEntries", "CashFlowTransactionEntry", "categoryTag"), N("favorite"),
     N("flexibility"), N("importLID"), N("retired"), S("importSourceClass"),
     S("importSourceFileID"), S("importSourceID"), readOnly(N("grouping")), N("type")});
  E("CategoryTag", "CashFlowTag",
    {N("categoryID"), S("lcsKnownCategoryId"), N("custom"), N("syncWithCloud"),
     Many("budgetLineItems", "BudgetLineItem", "categoryTag"),
     One("loanAccount", "Account", "loanInterestCategory"),
     One("loanSplits", "LoanSplitEntry", "category"),
     One("parentCategory", "CategoryTag", "subCategories"),
     Many("subCategories", "CategoryTag", "parentCategory")});
  E("UserTag", "CashFlowTag", {Many("taggedEntries", "CashFlowTransactionEntry", "userTags")});
  E("AccountTag", "Tag", {Many("accountTypes", "AccountType", "tags")});

  E("UserPayee", "LObject",
    {Many("cashFlowTransactions", "CashFlowTransaction", "userPayee"),
     Many("fiPayees", "FIPayee", "userPayee"), S("address"), N("visibilityType"), S("address1"),
     S("address2"), S("address3"), S("city"), S("country"), N("infoChanged"),
     N("markedForDeletion"), S("phoneNumber"), S("postalCode"), S("state"), S("userAccountNumber"),
     Many("bpFIPayees", "BPFIPayee", "userPayee"),
     One("billerAccount", "BillPresentmentBillerAccount", "userPayee"), N("showInBillCenter"),
     N("eBillEnabled")});

  E("Security", "LObject",
    {A("latestClosingPrice"),
     D("latestQuoteDate"),
     A("latestPriceChange"),
     A("latestPriceChangePercent"),
     S("assetClass"),
     A("assetClassPercentageDOMESTICBOND"),
     A("assetClassPercentageINTLBOND"),
     A("assetClassPercentageINTLSTOCK"),
     A("assetClassPercentageLARGESTOCK"),
     A("assetClassPercentageMONEYMRKT"),
     A("assetClassPercentageOTHER"),
     A("assetClassPercentageSMALLSTOCK"),
     S("issueType"),
     S("ticker"),
     N("type"),
     N("taxFree"),
     S("goalString"),
     N("shouldDownloadQuotes"),
     D("mostRecentQuoteDownloadTimestamp"),
     D("couponMaturityDate"),
     A("couponRate"),
     D("debtMaturityDate"),
     A("debtMaturityRate"),
     N("debtType"),
     N("interestFrequencyType"),
     N("debtRatingType"),
     D("debtCallDate"),
     A("backLoadFeeRate"),
     A("faceValueUnitPrice"),
     D("expireDate"),
     S("optionType"),
     A("sharesPerContract"),
     A("strikePrice"),
     N("costBasisAlgorithm"),
     Many("positions", "Position", "security"),
     Many("quotes", "SecurityQuote", "security"),
     Many("splits", "SecuritySplit", "security"),
     Many("securityIDs", "SecurityID", "security")});
  E("SecurityID", "LObject",
    {S("uniqueID"), S("uniqueIDType"), One("security", "Security", "securityIDs")});
  E("SecurityQuote", "LObject",
    {A("openingPrice"), A("closingPrice"), A("highestPrice"), A("lowestPrice"), A("volume"),
     D("quoteDate"), S("chosenDetailDataSource"), One("security", "Security", "quotes"),
     Many("details", "SecurityQuoteDetail", "quote")});
  E("SecurityQuoteDetail", "LObject",
    {S("detailDataSource"), A("closingPrice"), D("quoteDate"),
     One("quote", "SecurityQuote", "details")});
  E("SecuritySplit", "LObject",
    {A("denominator"), A("numerator"), D("splitDate"), One("security", "Security", "splits")});
  E("Position", "LObject",
    {N("costBasisAlgorithm"), N("type"), S("uniqueID"), S("uniqueIDType"),
     One("account", "Account", "positions"), Many("lots", "Lot", "position"),
     One("security", "Security", "positions"),
     Many("transactions", "InvestmentTransaction", "position")});
  E("Lot", "LObject",
    {D("acquisitionDate"), A("initialCostBasis"), D("initialTransactionDate"), A("initialUnits"),
     A("latestCostBasis"), D("latestTransactionDate"), A("latestUnits"),
     Many("lotMods", "LotMod", "lot"), One("position", "Position", "lots")});
  E("LotMod", "LObject",
    {A("afterCostBasis"), A("afterPositionCostBasis"), A("afterPositionUnits"), A("afterUnits"),
     A("beforeCostBasis"), A("beforeUnits"), N("termType"), D("transactionDate"),
     N("transactionLedgeonId"), One("lot", "Lot", "lotMods"),
     One("transaction", "InvestmentTransaction", "lotMods"),
     Many("lotAssignments", "LotAssignment", "lotMod")});
  E("LotAssignment", "LObject",
    {A("units"), One("lotMod", "LotMod", "lotAssignments"),
     One("destinationTransaction", "InvestmentTransaction", "incomingLotAssignments"),
     One("sourceTransaction", "InvestmentTransaction", "lotAssignments")});

  E("FITransaction", "LObject",
    {One("account", "Account", "fiTransactionList"),
     A("accruedInterest"),
     A("amount"),
     A("commission"),
     A("denominator"),
     S("fiTransactionID"),
     A("fee"),
     S("importSourceFileID"),
     S("incomeType"),
     A("load"),
     A("numerator"),
     S("payeeName"),
     A("penalty"),
     D("postedDate"),
     S("serverTransID"),
     A("stateWithholding"),
     A("taxes"),
     Many("transactions", "Transaction", "fiTransaction"),
     N("type"),
     A("units"),
     A("withholding"),
     S("ccPayeeName"),
     S("rulePayeeName"),
     N("ccCategoryID"),
     N("ruleCategoryID"),
     S("ccCategoryName"),
     S("ruleCategoryName")});
  E("ForexQuote", "LObject",
    {A("exchangeRate"), A("manualExchangeRate"), S("fromCurrency"), S("toCurrency"),
     D("quoteDate")});
  E("Attachment", "LObject",
    {S("originalFilePath"), S("storedFilePath"), S("cloudURI"), N("syncWithCloud"),
     P("otherInformation"), One("transaction", "CashFlowTransaction", "attachments")});
  E("LError", "LObject",
    {N("errorStatus"), S("errorDomain"), N("errorCode"), S("subClassName"), N("severityLevel"),
     S("errorDescription"), S("recoverySuggestion"), P("customInformation"),
     One("account", "Account", "error"),
     One("financialInstitution", "FinancialInstitution", "error"),
     One("transaction", "Transaction", "error")});
  E("SyncError", "LObject",
    {N("errorCode"), S("errorDomain"), S("errorDescription"), S("entityName"), S("objectSyncID")});
  E("LoanSplitEntry", "LObject",
    {One("account", "Account", "loanSplits"), One("category", "CategoryTag", "loanSplits"),
     A("amount"), N("miscFlags"), N("sequenceNumber"), S("transfer")});
  E("ScheduleEntry", "LObject",
    {S("pattern"), One("transaction", "SmartCashFlowTransaction", "scheduleEntries")});
  E("ScheduleAdjustmentEntry", "LObject",
    {D("originalScheduledDate"), D("adjustedDate"), A("adjustedAmount"),
     One("parent", "SmartCashFlowTransaction", "adjustments")});
  E("RecurrenceEnd", "LObject",
    {D("endDate"), N("occurrenceCount"),
     One("transaction", "SmartCashFlowTransaction", "recurrenceEnd")});

  E("GenericComponent", "LObject", {S("componentIdentifier"), P("settings")});
  E("Budget", "GenericComponent",
    {D("startDate"), N("period"), Many("lineItems", "BudgetLineItem", "budget")});
  E("BudgetLineItem", "LObject",
    {One("budget", "Budget", "lineItems"), One("categoryTag", "CategoryTag", "budgetLineItems"),
     Many("targets", "BudgetTarget", "lineItem"), N("summarize"), N("rollover"), N("period")});
  E("BudgetTarget", "LObject",
    {A("amount"), D("startDate"), D("endDate"), One("lineItem", "BudgetLineItem", "targets")});
  E("DocumentProperty", "LObject", {S("stringValue")});

  E("FinancialInstitution", "LObject",
    {S("fiIdentifier"), S("ofxURL"), S("ofxOrganization"), S("ofxFID"),
     Many("accounts", "Account", "financialInstitution"),
     Many("billpayAccounts", "Account", "billpayProviderInstitution"),
     One("error", "LError", "financialInstitution")});
  E("DownloadSession", "LObject",
    {N("sessionNumber"), D("sessionDate"), One("account", "Account", "downloadSessions"),
     Many("transactions", "Transaction", "downloadSession")});
  E("CloudFILogin", "LObject",
    {S("loginIdentifier"), S("providerIdentifier"), N("status"),
     Many("accounts", "Account", "cloudFILogin")});
  E("OFXEmail", "LObject",
    {S("subject"), S("body"), D("sentDate"), One("account", "Account", "ofxEmail"),
     One("transaction", "Transaction", "ofxEmail")});
  E("FIStatement", "LObject",
    {D("startDate"), D("endDate"), A("ledgerBalance"), A("availableBalance"),
     One("account", "Account", "fiStatements")});
  E("FIBalance", "LObject",
    {S("balanceDescription"), N("balanceType"), A("value"), D("balanceDate")});
  E("FIPosition", "LObject",
    {S("uniqueID"), S("uniqueIDType"), A("units"), A("unitPrice"), A("marketValue"),
     D("priceDate")});
  E("FIStateOFX", "LObject",
    {S("fiIdentifier"), S("customerID"), S("lastSessionUUID"), S("lastToken"),
     D("lastConnectedTimestamp"), P("state")});
  E("FIPayee", "LObject",
    {S("payeeID"), S("payeeListID"), Many("cashFlowTransactions", "CashFlowTransaction", "fiPayee"),
     One("userPayee", "UserPayee", "fiPayees")});
  E("CashFlowAction", "LObject",
    {N("actionType"), Many("transactions", "CashFlowTransaction", "action")});
  E("Alert", "LObject", {S("message"), D("alertDate"), N("alertType"), N("dismissed")});
  E("BPFIPayee", "LObject",
    {S("payeeID"), S("payeeListID"), One("userPayee", "UserPayee", "bpFIPayees")});
  E("BPFinancialInstitution", "LObject", {S("fiIdentifier"), S("serviceURL")});
  E("BillPresentmentBill", "LObject",
    {A("amountDue"), A("minimumAmountDue"), D("dueDate"), N("status"), S("billIdentifier")});
  E("BillPresentmentBillerAccount", "LObject",
    {S("billerIdentifier"), S("accountNumber"), N("status"),
     One("userPayee", "UserPayee", "billerAccount")});
  E("BillPresentmentBillerLogin", "LObject", {S("billerIdentifier"), N("status")});
  E("BillPresentmentDocumentMetaData", "LObject",
    {S("documentIdentifier"), S("mimeType"), D("documentDate")});
  E("GenericType", "LObject", {N("typeCode")});
  E("Report", "LObject", {P("parameters"), N("reportType"), N("favorite")});
  E("ToolLObject", "LObject", {P("toolSettings")});
  E("SmartRegister", "ToolLObject", {S("predicateFormat"), N("sortOrder")});
  return t;
}

}  // namespace

const std::vector<Model::EntityDeclaration>& ledgerModelTable() {
  static const std::vector<Model::EntityDeclaration> table = buildTable();
  return table;
}

}  // namespace ledgeon
