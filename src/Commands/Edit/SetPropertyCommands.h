#pragma once

#include <memory>

#include "Commands/CommandFamilyEntity.h"
#include "Commands/SetLObjectPropertyCommand.h"

// The property-setting commands of the ledger's entities: the generic edit by dictionary, for one
// entity class each, refusing an entity of another class. Menu titles read "Change Note
// Transaction": the verb, the property and the entity's noun.

// Defines a property-setting command `Name`, derived from `Base`, for `Entity` objects.
#define LEDGEON_DEFINE_SET_COMMAND(Name, Base, Entity)                                        \
  class Name : public Base {                                                                  \
   public:                                                                                    \
    LEDGEON_COMMAND_CLASS(Name, Base)                                                         \
    static constexpr const char* kEntityClass = Entity;                                       \
    Name(LObject& entity, EditDict dictionary,                                                \
         std::shared_ptr<LCommandDocument> document = nullptr)                                \
        : Base(requireEntityOfClass(entity, kEntityClass, kClassName), std::move(dictionary), \
               std::move(document)) {}                                                        \
  };

// X(Name, Base, Entity) for every property-setting command, bases before the classes derived
// from them.
#define LEDGEON_SET_COMMANDS(X)                                                                    \
  X(SetAccountPropertyCommand, SetLObjectPropertyCommand, "Account")                               \
  X(SetAlertPropertyCommand, SetLObjectPropertyCommand, "Alert")                                   \
  X(SetAttachmentPropertyCommand, SetLObjectPropertyCommand, "Attachment")                         \
  X(SetBPFIPayeePropertyCommand, SetLObjectPropertyCommand, "BPFIPayee")                           \
  X(SetBPFinancialInstitutionPropertyCommand, SetLObjectPropertyCommand, "BPFinancialInstitution") \
  X(SetBillPresentmentBillPropertyCommand, SetLObjectPropertyCommand, "BillPresentmentBill")       \
  X(SetBillPresentmentBillerAccountPropertyCommand, SetLObjectPropertyCommand,                     \
    "BillPresentmentBillerAccount")                                                                \
  X(SetBillPresentmentBillerLoginPropertyCommand, SetLObjectPropertyCommand,                       \
    "BillPresentmentBillerLogin")                                                                  \
  X(SetBillPresentmentDocumentMetaDataPropertyCommand, SetLObjectPropertyCommand,                  \
    "BillPresentmentDocumentMetaData")                                                             \
  X(SetBudgetLineItemPropertyCommand, SetLObjectPropertyCommand, "BudgetLineItem")                 \
  X(SetBudgetPropertyCommand, SetLObjectPropertyCommand, "Budget")                                 \
  X(SetBudgetTargetPropertyCommand, SetLObjectPropertyCommand, "BudgetTarget")                     \
  X(SetCashFlowActionPropertyCommand, SetLObjectPropertyCommand, "CashFlowAction")                 \
  X(SetCashFlowTagPropertyCommand, SetLObjectPropertyCommand, "CashFlowTag")                       \
  X(SetCashFlowTransactionEntryPropertyCommand, SetLObjectPropertyCommand,                         \
    "CashFlowTransactionEntry")                                                                    \
  X(SetCashFlowTransactionPropertyCommand, SetLObjectPropertyCommand, "CashFlowTransaction")       \
  X(SetFIBalancePropertyCommand, SetLObjectPropertyCommand, "FIBalance")                           \
  X(SetFIPayeePropertyCommand, SetLObjectPropertyCommand, "FIPayee")                               \
  X(SetFIPositionPropertyCommand, SetLObjectPropertyCommand, "FIPosition")                         \
  X(SetFIStateOFXPropertyCommand, SetLObjectPropertyCommand, "FIStateOFX")                         \
  X(SetFIStatementPropertyCommand, SetLObjectPropertyCommand, "FIStatement")                       \
  X(SetFITransactionPropertyCommand, SetLObjectPropertyCommand, "FITransaction")                   \
  X(SetForexQuotePropertyCommand, SetLObjectPropertyCommand, "ForexQuote")                         \
  X(SetInvestmentTransactionPropertyCommand, SetLObjectPropertyCommand, "InvestmentTransaction")   \
  X(SetLoanSplitEntryPropertyCommand, SetLObjectPropertyCommand, "LoanSplitEntry")                 \
  X(SetLotAssignmentPropertyCommand, SetLObjectPropertyCommand, "LotAssignment")                   \
  X(SetLotModPropertyCommand, SetLObjectPropertyCommand, "LotMod")                                 \
  X(SetLotPropertyCommand, SetLObjectPropertyCommand, "Lot")                                       \
  X(SetOFXEmailPropertyCommand, SetLObjectPropertyCommand, "OFXEmail")                             \
  X(SetPositionPropertyCommand, SetLObjectPropertyCommand, "Position")                             \
  X(SetLErrorPropertyCommand, SetLObjectPropertyCommand, "LError")                                 \
  X(SetReportPropertyCommand, SetLObjectPropertyCommand, "Report")                                 \
  X(SetScheduleAdjustmentEntryPropertyCommand, SetLObjectPropertyCommand,                          \
    "ScheduleAdjustmentEntry")                                                                     \
  X(SetScheduleEntryPropertyCommand, SetLObjectPropertyCommand, "ScheduleEntry")                   \
  X(SetSecurityIDPropertyCommand, SetLObjectPropertyCommand, "SecurityID")                         \
  X(SetSecurityPropertyCommand, SetLObjectPropertyCommand, "Security")                             \
  X(SetSecurityQuoteDetailPropertyCommand, SetLObjectPropertyCommand, "SecurityQuoteDetail")       \
  X(SetSecurityQuotePropertyCommand, SetLObjectPropertyCommand, "SecurityQuote")                   \
  X(SetSecuritySplitPropertyCommand, SetLObjectPropertyCommand, "SecuritySplit")                   \
  X(SetSmartCashFlowTransactionPropertyCommand, SetLObjectPropertyCommand,                         \
    "SmartCashFlowTransaction")                                                                    \
  X(SetSmartRegisterPropertyCommand, SetLObjectPropertyCommand, "SmartRegister")                   \
  X(SetTagPropertyCommand, SetLObjectPropertyCommand, "Tag")                                       \
  X(SetUserPayeePropertyCommand, SetLObjectPropertyCommand, "UserPayee")                           \
  X(SetCategoryTagPropertyCommand, SetCashFlowTagPropertyCommand, "CategoryTag")                   \
  X(SetUserTagPropertyCommand, SetCashFlowTagPropertyCommand, "UserTag")

namespace ledgeon {

LEDGEON_SET_COMMANDS(LEDGEON_DEFINE_SET_COMMAND)

}  // namespace ledgeon
