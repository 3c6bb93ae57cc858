#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Commands/CreateLObjectCommand.h"
#include "Commands/DeleteLObjectCommand.h"
#include "Commands/LCommandClasses.h"
#include "Commands/SetLObjectPropertyCommand.h"
#include "LObjects/LObject.h"
#include "LObjects/Model.h"
#include "support/CommandTestDocument.h"

namespace ledgeon {
namespace {

using testing::CommandTestDocument;

// The ledger's command classes by the class they derive from, written out by hand: the generated
// families must produce exactly these names on exactly these bases.
struct Family {
  std::string base;
  std::vector<std::string> names;
};

const std::vector<Family>& expectedFamilies() {
  static const std::vector<Family> families = {
      {"KVCommand",
       {"CreateLObjectCommand", "DeleteLObjectCommand", "DuplicateLObjectCommand",
        "EditCashFlowTagCommand", "EditCashFlowTransactionEntryCommand", "GenericBatchCommand",
        "KVSetCommand"}},
      {"CreateLObjectCommand",
       {"CreateAccountCommand",
        "CreateAlertCommand",
        "CreateAttachmentCommand",
        "CreateBPFIPayeeCommand",
        "CreateBPFinancialInstitutionCommand",
        "CreateBillPresentmentBillCommand",
        "CreateBillPresentmentBillerAccountCommand",
        "CreateBillPresentmentBillerLoginCommand",
        "CreateBillPresentmentDocumentMetaDataCommand",
        "CreateBudgetCommand",
        "CreateBudgetLineItemCommand",
        "CreateBudgetTargetCommand",
        "CreateCashFlowActionCommand",
        "CreateCashFlowTagCommand",
        "CreateCloudFILoginCommand",
        "CreateFIBalanceCommand",
        "CreateFIPayeeCommand",
        "CreateFIPositionCommand",
        "CreateFIStateOFXCommand",
        "CreateFIStatementCommand",
        "CreateFITransactionCommand",
        "CreateForexQuoteCommand",
        "CreateLoanSplitEntryCommand",
        "CreateLotAssignmentCommand",
        "CreateLotCommand",
        "CreateLotModCommand",
        "CreateOFXEmailCommand",
        "CreatePositionCommand",
        "CreateLErrorCommand",
        "CreateReportCommand",
        "CreateScheduleAdjustmentEntryCommand",
        "CreateScheduleEntryCommand",
        "CreateSecurityCommand",
        "CreateSecurityIDCommand",
        "CreateSecurityQuoteCommand",
        "CreateSecurityQuoteDetailCommand",
        "CreateSecuritySplitCommand",
        "CreateSmartRegisterCommand",
        "CreateSyncErrorCommand",
        "CreateTagCommand",
        "CreateTransactionCommand",
        "CreateUserPayeeCommand"}},
      {"DeleteLObjectCommand",
       {"DeleteAccountCommand",
        "DeleteAlertCommand",
        "DeleteAttachmentCommand",
        "DeleteBPFIPayeeCommand",
        "DeleteBPFinancialInstitutionCommand",
        "DeleteBillPresentmentBillCommand",
        "DeleteBillPresentmentBillerAccountCommand",
        "DeleteBillPresentmentBillerLoginCommand",
        "DeleteBillPresentmentDocumentMetaDataCommand",
        "DeleteBudgetCommand",
        "DeleteBudgetLineItemCommand",
        "DeleteBudgetTargetCommand",
        "DeleteCashFlowActionCommand",
        "DeleteCashFlowTagCommand",
        "DeleteCashFlowTransactionEntryCommand",
        "DeleteCloudFILoginCommand",
        "DeleteFIBalanceCommand",
        "DeleteFIPositionCommand",
        "DeleteFIStateOFXCommand",
        "DeleteFIStatementCommand",
        "DeleteFITransactionCommand",
        "DeleteForexQuoteCommand",
        "DeleteLoanSplitEntryCommand",
        "DeleteLotAssignmentCommand",
        "DeleteLotCommand",
        "DeleteLotModCommand",
        "DeleteOFXEmailCommand",
        "DeletePositionCommand",
        "DeleteLErrorCommand",
        "DeleteReportCommand",
        "DeleteScheduleAdjustmentEntryCommand",
        "DeleteScheduleEntryCommand",
        "DeleteSecurityCommand",
        "DeleteSecurityIDCommand",
        "DeleteSecurityQuoteCommand",
        "DeleteSecurityQuoteDetailCommand",
        "DeleteSecuritySplitCommand",
        "DeleteSmartRegisterCommand",
        "DeleteTransactionCommand",
        "DeleteUserPayeeCommand",
        "Private_DeleteCashFlowTransactionEntryCommand"}},
      {"SetLObjectPropertyCommand",
       {"SetAccountPropertyCommand",
        "SetAlertPropertyCommand",
        "SetAttachmentPropertyCommand",
        "SetBPFIPayeePropertyCommand",
        "SetBPFinancialInstitutionPropertyCommand",
        "SetBillPresentmentBillPropertyCommand",
        "SetBillPresentmentBillerAccountPropertyCommand",
        "SetBillPresentmentBillerLoginPropertyCommand",
        "SetBillPresentmentDocumentMetaDataPropertyCommand",
        "SetBudgetLineItemPropertyCommand",
        "SetBudgetPropertyCommand",
        "SetBudgetTargetPropertyCommand",
        "SetCashFlowActionPropertyCommand",
        "SetCashFlowTagPropertyCommand",
        "SetCashFlowTransactionEntryPropertyCommand",
        "SetCashFlowTransactionPropertyCommand",
        "SetFIBalancePropertyCommand",
        "SetFIPayeePropertyCommand",
        "SetFIPositionPropertyCommand",
        "SetFIStateOFXPropertyCommand",
        "SetFIStatementPropertyCommand",
        "SetFITransactionPropertyCommand",
        "SetForexQuotePropertyCommand",
        "SetInvestmentTransactionPropertyCommand",
        "SetLoanSplitEntryPropertyCommand",
        "SetLotAssignmentPropertyCommand",
        "SetLotModPropertyCommand",
        "SetLotPropertyCommand",
        "SetOFXEmailPropertyCommand",
        "SetPositionPropertyCommand",
        "SetLErrorPropertyCommand",
        "SetReportPropertyCommand",
        "SetScheduleAdjustmentEntryPropertyCommand",
        "SetScheduleEntryPropertyCommand",
        "SetSecurityIDPropertyCommand",
        "SetSecurityPropertyCommand",
        "SetSecurityQuoteDetailPropertyCommand",
        "SetSecurityQuotePropertyCommand",
        "SetSecuritySplitPropertyCommand",
        "SetSmartCashFlowTransactionPropertyCommand",
        "SetSmartRegisterPropertyCommand",
        "SetTagPropertyCommand",
        "SetUserPayeePropertyCommand"}},
      {"CreateCashFlowTagCommand", {"CreateCategoryTagCommand", "CreateUserTagCommand"}},
      {"CreateCashFlowTransactionCommand", {"CreateSmartCashFlowTransactionCommand"}},
      {"CreateTransactionCommand",
       {"CreateCashFlowTransactionCommand", "CreateInvestmentTransactionCommand"}},
      {"DeleteCashFlowTagCommand", {"DeleteCategoryTagCommand", "DeleteUserTagCommand"}},
      {"DeleteCashFlowTransactionCommand", {"DeleteSmartCashFlowTransactionCommand"}},
      {"DeleteTransactionCommand",
       {"DeleteCashFlowTransactionCommand", "DeleteInvestmentTransactionCommand"}},
      {"DuplicateLObjectCommand",
       {"DuplicateBudgetCommand", "DuplicateCashFlowTransactionCommand"}},
      {"EditCashFlowTagCommand", {"EditCategoryTagCommand", "EditUserTagCommand"}},
      {"EditCashFlowTransactionEntryCommand", {"CreateCashFlowTransactionEntryCommand"}},
      {"KVSetCommand", {"SetLObjectPropertyCommand"}},
      {"SetCashFlowTagPropertyCommand",
       {"SetCategoryTagPropertyCommand", "SetUserTagPropertyCommand"}},
  };
  return families;
}

TEST(CommandClassesTest, EveryListedClassExistsOnItsBaseAndNoOther) {
  std::set<std::string> expected;
  for (const Family& family : expectedFamilies()) {
    for (const std::string& name : family.names) {
      expected.insert(name);
      const LCommandClassInfo* info = LCommandClasses::info(name);
      ASSERT_NE(info, nullptr) << name;
      EXPECT_EQ(info->baseClassName, family.base) << name;
      EXPECT_TRUE(LCommandClasses::isKindOfClass(name, "KVCommand")) << name;
    }
  }
  std::set<std::string> registered;
  for (const LCommandClassInfo& info : LCommandClasses::all()) {
    EXPECT_TRUE(registered.insert(std::string(info.className)).second)
        << info.className << " twice";
    if (!info.entityClass.empty()) {
      EXPECT_NE(Model::shared().entity(info.entityClass), nullptr) << info.className;
    }
  }
  EXPECT_EQ(registered, expected);
}

class CommandInstancesTest : public ::testing::Test {
 protected:
  std::shared_ptr<CommandTestDocument> document_ = CommandTestDocument::make();
};

// Each family class made by name is a real class of that name, deriving from its listed base,
// working on its entity class.
TEST_F(CommandInstancesTest, FamilyClassesMadeByNameAreThoseClasses) {
  size_t made = 0;
  for (const LCommandClassInfo& info : LCommandClasses::all()) {
    if (info.entityClass.empty()) continue;
    std::shared_ptr<KVCommand> command;
    if (info.family == LCommandFamily::Create) {
      command = LCommandClasses::makeCreateCommand(info.className, {}, document_);
    } else if (info.family == LCommandFamily::Delete || info.family == LCommandFamily::Set) {
      LObject& entity = document_->dataBase().createEntityType(info.entityClass);
      command = info.family == LCommandFamily::Delete
                    ? std::shared_ptr<KVCommand>(
                          LCommandClasses::makeDeleteCommand(info.className, entity, document_))
                    : LCommandClasses::makeSetCommand(info.className, entity,
                                                      {{"name", Value("x")}}, document_);
    }
    if (!command) {
      // Of the three families, only the abstract transaction creation has no factory.
      const bool generic = info.family == LCommandFamily::Create ||
                           info.family == LCommandFamily::Delete ||
                           info.family == LCommandFamily::Set;
      EXPECT_TRUE(!generic || info.className == "CreateTransactionCommand") << info.className;
      continue;
    }
    ++made;
    EXPECT_EQ(command->className(), info.className);
    EXPECT_TRUE(command->isKindOfClass(info.baseClassName)) << info.className;
    EXPECT_TRUE(command->isKindOfClass("KVCommand")) << info.className;
    EXPECT_FALSE(command->isKindOfClass("GenericBatchCommand")) << info.className;
    EXPECT_EQ(command->objectClass(), info.entityClass) << info.className;
  }
  EXPECT_GT(made, 130u);
}

TEST_F(CommandInstancesTest, FamilyCommandRefusesAnEntityOfAnotherClass) {
  LObject& payee = document_->dataBase().createEntity("UserPayee", {{"name", Value("Shop")}});
  EXPECT_THROW(LCommandClasses::makeDeleteCommand("DeleteAccountCommand", payee, document_),
               std::logic_error);
  EXPECT_THROW(
      LCommandClasses::makeSetCommand("SetCategoryTagPropertyCommand", payee, {}, document_),
      std::logic_error);
  LObject& userTag = document_->dataBase().createEntity("UserTag", {{"name", Value("trip")}});
  // A tag command accepts the tag kinds below it, but a category command not a user tag.
  EXPECT_NO_THROW(
      LCommandClasses::makeDeleteCommand("DeleteCashFlowTagCommand", userTag, document_));
  EXPECT_THROW(LCommandClasses::makeDeleteCommand("DeleteCategoryTagCommand", userTag, document_),
               std::logic_error);
}

// A kind without a creation command of its own is made by its parent's, as itself.
TEST_F(CommandInstancesTest, ParentCreationCommandMakesTheKindAskedFor) {
  auto create =
      LCommandClasses::createCommandForEntity("AccountTag", {{"name", Value("Joint")}}, document_);
  ASSERT_NE(create, nullptr);
  EXPECT_EQ(create->className(), "CreateTagCommand");
  ASSERT_TRUE(create->execute());
  EXPECT_EQ(create->createdObject()->className(), "AccountTag");
  EXPECT_EQ(LCommandClasses::createCommandForEntity("Checking", {}, document_), nullptr);
  EXPECT_EQ(LCommandClasses::makeCreateCommand("CreateNothingCommand", {}, document_), nullptr);
}

TEST(CommandClassesTest, EntityClassesFindTheirCommands) {
  struct Case {
    const char* entity;
    std::string create;
    std::string remove;
    std::string edit;
  };
  const Case cases[] = {
      {"Account", "CreateAccountCommand", "DeleteAccountCommand", "SetAccountPropertyCommand"},
      {"CategoryTag", "CreateCategoryTagCommand", "DeleteCategoryTagCommand",
       "EditCategoryTagCommand"},
      {"UserTag", "CreateUserTagCommand", "DeleteUserTagCommand", "EditUserTagCommand"},
      {"AccountTag", "CreateTagCommand", "", "SetTagPropertyCommand"},
      {"CashFlowTransaction", "CreateCashFlowTransactionCommand",
       "DeleteCashFlowTransactionCommand", "SetCashFlowTransactionPropertyCommand"},
      {"SmartCashFlowTransaction", "CreateSmartCashFlowTransactionCommand",
       "DeleteSmartCashFlowTransactionCommand", "SetSmartCashFlowTransactionPropertyCommand"},
      {"InvestmentTransaction", "CreateInvestmentTransactionCommand",
       "DeleteInvestmentTransactionCommand", "SetInvestmentTransactionPropertyCommand"},
      {"CashFlowTransactionEntry", "", "DeleteCashFlowTransactionEntryCommand",
       "SetCashFlowTransactionEntryPropertyCommand"},
      {"Checking", "", "", ""},
      {"Budget", "CreateBudgetCommand", "DeleteBudgetCommand", "SetBudgetPropertyCommand"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LCommandClasses::createCommandObjectClass(c.entity), c.create) << c.entity;
    EXPECT_EQ(LCommandClasses::deleteCommandObjectClass(c.entity), c.remove) << c.entity;
    EXPECT_EQ(LCommandClasses::editCommandObjectClass(c.entity), c.edit) << c.entity;
  }
}

}  // namespace
}  // namespace ledgeon
