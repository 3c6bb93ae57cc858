#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Commands/CreateCashFlowTransactionCommand.h"
#include "Commands/CreateLObjectCommand.h"

// The creation commands of the ledger's entities. Each names its entity class; its undo noun is
// the entity's ("UndoNoun_Account"), and its properties are validated against the entity before
// anything is created.

// Defines a creation command `Name`, derived from `Base`, that creates `Entity` objects.
#define LEDGEON_DEFINE_CREATE_COMMAND(Name, Base, Entity)                                          \
  class Name : public Base {                                                                       \
   public:                                                                                         \
    LEDGEON_COMMAND_CLASS(Name, Base)                                                              \
    static constexpr const char* kEntityClass = Entity;                                            \
    explicit Name(EditDict properties, std::shared_ptr<LCommandDocument> document = nullptr)       \
        : Base(kEntityClass, std::move(properties), std::move(document)) {}                        \
                                                                                                   \
   protected:                                                                                      \
    Name(std::string entityClass, EditDict properties, std::shared_ptr<LCommandDocument> document) \
        : Base(std::move(entityClass), std::move(properties), std::move(document)) {}              \
  };

// X(Name, Base, Entity) for every generated creation command, bases before the classes derived
// from them. CreateTransactionCommand and CreateCashFlowTransactionCommand are written out by hand.
#define LEDGEON_CREATE_COMMANDS(X)                                                               \
  X(CreateAccountCommand, CreateLObjectCommand, "Account")                                       \
  X(CreateAlertCommand, CreateLObjectCommand, "Alert")                                           \
  X(CreateAttachmentCommand, CreateLObjectCommand, "Attachment")                                 \
  X(CreateBPFIPayeeCommand, CreateLObjectCommand, "BPFIPayee")                                   \
  X(CreateBPFinancialInstitutionCommand, CreateLObjectCommand, "BPFinancialInstitution")         \
  X(CreateBillPresentmentBillCommand, CreateLObjectCommand, "BillPresentmentBill")               \
  X(CreateBillPresentmentBillerAccountCommand, CreateLObjectCommand,                             \
    "BillPresentmentBillerAccount")                                                              \
  X(CreateBillPresentmentBillerLoginCommand, CreateLObjectCommand, "BillPresentmentBillerLogin") \
  X(CreateBillPresentmentDocumentMetaDataCommand, CreateLObjectCommand,                          \
    "BillPresentmentDocumentMetaData")                                                           \
  X(CreateBudgetCommand, CreateLObjectCommand, "Budget")                                         \
  X(CreateBudgetLineItemCommand, CreateLObjectCommand, "BudgetLineItem")                         \
  X(CreateBudgetTargetCommand, CreateLObjectCommand, "BudgetTarget")                             \
  X(CreateCashFlowActionCommand, CreateLObjectCommand, "CashFlowAction")                         \
  X(CreateCashFlowTagCommand, CreateLObjectCommand, "CashFlowTag")                               \
  X(CreateCloudFILoginCommand, CreateLObjectCommand, "CloudFILogin")                             \
  X(CreateFIBalanceCommand, CreateLObjectCommand, "FIBalance")                                   \
  X(CreateFIPayeeCommand, CreateLObjectCommand, "FIPayee")                                       \
  X(CreateFIPositionCommand, CreateLObjectCommand, "FIPosition")                                 \
  X(CreateFIStateOFXCommand, CreateLObjectCommand, "FIStateOFX")                                 \
  X(CreateFIStatementCommand, CreateLObjectCommand, "FIStatement")                               \
  X(CreateFITransactionCommand, CreateLObjectCommand, "FITransaction")                           \
  X(CreateForexQuoteCommand, CreateLObjectCommand, "ForexQuote")                                 \
  X(CreateLoanSplitEntryCommand, CreateLObjectCommand, "LoanSplitEntry")                         \
  X(CreateLotAssignmentCommand, CreateLObjectCommand, "LotAssignment")                           \
  X(CreateLotCommand, CreateLObjectCommand, "Lot")                                               \
  X(CreateLotModCommand, CreateLObjectCommand, "LotMod")                                         \
  X(CreateOFXEmailCommand, CreateLObjectCommand, "OFXEmail")                                     \
  X(CreatePositionCommand, CreateLObjectCommand, "Position")                                     \
  X(CreateLErrorCommand, CreateLObjectCommand, "LError")                                         \
  X(CreateReportCommand, CreateLObjectCommand, "Report")                                         \
  X(CreateScheduleAdjustmentEntryCommand, CreateLObjectCommand, "ScheduleAdjustmentEntry")       \
  X(CreateScheduleEntryCommand, CreateLObjectCommand, "ScheduleEntry")                           \
  X(CreateSecurityCommand, CreateLObjectCommand, "Security")                                     \
  X(CreateSecurityIDCommand, CreateLObjectCommand, "SecurityID")                                 \
  X(CreateSecurityQuoteCommand, CreateLObjectCommand, "SecurityQuote")                           \
  X(CreateSecurityQuoteDetailCommand, CreateLObjectCommand, "SecurityQuoteDetail")               \
  X(CreateSecuritySplitCommand, CreateLObjectCommand, "SecuritySplit")                           \
  X(CreateSmartRegisterCommand, CreateLObjectCommand, "SmartRegister")                           \
  X(CreateSyncErrorCommand, CreateLObjectCommand, "SyncError")                                   \
  X(CreateTagCommand, CreateLObjectCommand, "Tag")                                               \
  X(CreateUserPayeeCommand, CreateLObjectCommand, "UserPayee")                                   \
  X(CreateCategoryTagCommand, CreateCashFlowTagCommand, "CategoryTag")                           \
  X(CreateUserTagCommand, CreateCashFlowTagCommand, "UserTag")                                   \
  X(CreateInvestmentTransactionCommand, CreateTransactionCommand, "InvestmentTransaction")

namespace ledgeon {

LEDGEON_CREATE_COMMANDS(LEDGEON_DEFINE_CREATE_COMMAND)

// Creates a scheduled cash-flow transaction with its split lines.
class CreateSmartCashFlowTransactionCommand : public CreateCashFlowTransactionCommand {
 public:
  LEDGEON_COMMAND_CLASS(CreateSmartCashFlowTransactionCommand, CreateCashFlowTransactionCommand)
  static constexpr const char* kEntityClass = "SmartCashFlowTransaction";
  CreateSmartCashFlowTransactionCommand(EditDict properties, std::vector<EditDict> creationLines,
                                        std::shared_ptr<LCommandDocument> document = nullptr)
      : CreateCashFlowTransactionCommand(kEntityClass, std::move(properties),
                                         std::move(creationLines), std::move(document)) {}
  std::string commandNoun() override;  // "UndoNoun_SmartCashFlowTransaction"
};

}  // namespace ledgeon
