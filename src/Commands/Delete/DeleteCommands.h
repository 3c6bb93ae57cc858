#pragma once

#include <memory>

#include "Commands/CommandFamilyEntity.h"
#include "Commands/DeleteLObjectCommand.h"

// The deletion commands of the ledger's entities. Each names its entity class and refuses an
// entity of another class; its undo noun is the entity's ("UndoNoun_Account").

// Defines a deletion command `Name`, derived from `Base`, that deletes `Entity` objects.
#define LEDGEON_DEFINE_DELETE_COMMAND(Name, Base, Entity)                                      \
  class Name : public Base {                                                                   \
   public:                                                                                     \
    LEDGEON_COMMAND_CLASS(Name, Base)                                                          \
    static constexpr const char* kEntityClass = Entity;                                        \
    explicit Name(LObject& entity, std::shared_ptr<LCommandDocument> document = nullptr)       \
        : Base(requireEntityOfClass(entity, kEntityClass, kClassName), std::move(document)) {} \
  };

// X(Name, Base, Entity) for every generated deletion command, bases before the classes derived
// from them. The transaction deletions are written out in DeleteTransactionCommand.h.
#define LEDGEON_DELETE_COMMANDS(X)                                                               \
  X(DeleteAccountCommand, DeleteLObjectCommand, "Account")                                       \
  X(DeleteAlertCommand, DeleteLObjectCommand, "Alert")                                           \
  X(DeleteAttachmentCommand, DeleteLObjectCommand, "Attachment")                                 \
  X(DeleteBPFIPayeeCommand, DeleteLObjectCommand, "BPFIPayee")                                   \
  X(DeleteBPFinancialInstitutionCommand, DeleteLObjectCommand, "BPFinancialInstitution")         \
  X(DeleteBillPresentmentBillCommand, DeleteLObjectCommand, "BillPresentmentBill")               \
  X(DeleteBillPresentmentBillerAccountCommand, DeleteLObjectCommand,                             \
    "BillPresentmentBillerAccount")                                                              \
  X(DeleteBillPresentmentBillerLoginCommand, DeleteLObjectCommand, "BillPresentmentBillerLogin") \
  X(DeleteBillPresentmentDocumentMetaDataCommand, DeleteLObjectCommand,                          \
    "BillPresentmentDocumentMetaData")                                                           \
  X(DeleteBudgetCommand, DeleteLObjectCommand, "Budget")                                         \
  X(DeleteBudgetLineItemCommand, DeleteLObjectCommand, "BudgetLineItem")                         \
  X(DeleteBudgetTargetCommand, DeleteLObjectCommand, "BudgetTarget")                             \
  X(DeleteCashFlowActionCommand, DeleteLObjectCommand, "CashFlowAction")                         \
  X(DeleteCashFlowTagCommand, DeleteLObjectCommand, "CashFlowTag")                               \
  X(DeleteCashFlowTransactionEntryCommand, DeleteLObjectCommand, "CashFlowTransactionEntry")     \
  X(DeleteCloudFILoginCommand, DeleteLObjectCommand, "CloudFILogin")                             \
  X(DeleteFIBalanceCommand, DeleteLObjectCommand, "FIBalance")                                   \
  X(DeleteFIPositionCommand, DeleteLObjectCommand, "FIPosition")                                 \
  X(DeleteFIStateOFXCommand, DeleteLObjectCommand, "FIStateOFX")                                 \
  X(DeleteFIStatementCommand, DeleteLObjectCommand, "FIStatement")                               \
  X(DeleteFITransactionCommand, DeleteLObjectCommand, "FITransaction")                           \
  X(DeleteForexQuoteCommand, DeleteLObjectCommand, "ForexQuote")                                 \
  X(DeleteLoanSplitEntryCommand, DeleteLObjectCommand, "LoanSplitEntry")                         \
  X(DeleteLotAssignmentCommand, DeleteLObjectCommand, "LotAssignment")                           \
  X(DeleteLotCommand, DeleteLObjectCommand, "Lot")                                               \
  X(DeleteLotModCommand, DeleteLObjectCommand, "LotMod")                                         \
  X(DeleteOFXEmailCommand, DeleteLObjectCommand, "OFXEmail")                                     \
  X(DeletePositionCommand, DeleteLObjectCommand, "Position")                                     \
  X(DeleteLErrorCommand, DeleteLObjectCommand, "LError")                                         \
  X(DeleteReportCommand, DeleteLObjectCommand, "Report")                                         \
  X(DeleteScheduleAdjustmentEntryCommand, DeleteLObjectCommand, "ScheduleAdjustmentEntry")       \
  X(DeleteScheduleEntryCommand, DeleteLObjectCommand, "ScheduleEntry")                           \
  X(DeleteSecurityCommand, DeleteLObjectCommand, "Security")                                     \
  X(DeleteSecurityIDCommand, DeleteLObjectCommand, "SecurityID")                                 \
  X(DeleteSecurityQuoteCommand, DeleteLObjectCommand, "SecurityQuote")                           \
  X(DeleteSecurityQuoteDetailCommand, DeleteLObjectCommand, "SecurityQuoteDetail")               \
  X(DeleteSecuritySplitCommand, DeleteLObjectCommand, "SecuritySplit")                           \
  X(DeleteSmartRegisterCommand, DeleteLObjectCommand, "SmartRegister")                           \
  X(DeleteUserPayeeCommand, DeleteLObjectCommand, "UserPayee")                                   \
  X(Private_DeleteCashFlowTransactionEntryCommand, DeleteLObjectCommand,                         \
    "CashFlowTransactionEntry")                                                                  \
  X(DeleteCategoryTagCommand, DeleteCashFlowTagCommand, "CategoryTag")                           \
  X(DeleteUserTagCommand, DeleteCashFlowTagCommand, "UserTag")

namespace ledgeon {

LEDGEON_DELETE_COMMANDS(LEDGEON_DEFINE_DELETE_COMMAND)

}  // namespace ledgeon
