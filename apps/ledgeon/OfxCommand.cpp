#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "DemoStep.h"
#include "OnlineBankingFramework/OFXRootController.h"
#include "OnlineBankingFramework/OFXText.h"
#include "Subcommand.h"
#include "Utilities/Resources.h"

// OFX element texts print as their text.
template <>
struct fmt::formatter<ledgeon::OFXString> : fmt::formatter<std::string_view> {
  template <typename FormatContext>
  auto format(const ledgeon::OFXString& text, FormatContext& context) const {
    return fmt::formatter<std::string_view>::format(text.view(), context);
  }
};

namespace ledgeon::cli {

namespace {

// A server's amount text as an exact decimal string; null when it is not a number.
nlohmann::json decimalText(const std::string& text) {
  if (text.empty()) return nullptr;
  const Amount value = numberFromXMLString(text, true, true);
  return value.isNaN() ? nlohmann::json(nullptr) : nlohmann::json(value.stringValue());
}

nlohmann::json statusJSON(const OFXStatus& status) {
  return {{"errorCode", status.errorCode()},
          {"severity", status.severity()},
          {"message", status.message()}};
}

nlohmann::json statementJSON(const OFXStatement& statement) {
  nlohmann::json json = statement.toJSON();
  json["status"] = statusJSON(statement.ofxStatus());
  json["ledgerBalance"] = decimalText(statement.ledgerBalance());
  json["availableBalance"] = decimalText(statement.availableBalance());
  return json;
}

nlohmann::json rootJSON(const OFXRoot& root) {
  nlohmann::json json = root.toJSON();
  json["status"] = statusJSON(root.ofxStatus());
  auto statements = nlohmann::json::array();
  for (const auto& statement : root.statements()) statements.push_back(statementJSON(*statement));
  json["statements"] = statements;
  auto invStatements = nlohmann::json::array();
  for (const auto& statement : root.invStatements()) {
    invStatements.push_back(statementJSON(*statement));
  }
  json["invStatements"] = invStatements;
  return json;
}

void printStatement(std::ostream& out, const OFXStatement& statement) {
  out << fmt::format("  {} account {} ({}{}), currency {}\n",
                     statement.className() == "OFXInvStatement" ? "Investment" : "Statement",
                     statement.acctID(), statement.acctType().empty() ? "-" : statement.acctType(),
                     statement.bankID().empty() ? "" : ", bank " + statement.bankID(),
                     statement.currency());
  if (!statement.ledgerBalance().empty()) {
    out << fmt::format("    ledger balance {}  available {}\n",
                       decimalText(statement.ledgerBalance()).dump(),
                       decimalText(statement.availableBalance()).dump());
  }
  for (const auto& transaction : statement.transactions()) {
    const auto& posted = transaction->datePostedString();
    out << fmt::format("    {:<8} {:>14} {:<12} {}{}\n", posted.view().substr(0, 8),
                       transaction->amount().stringValue(),
                       transaction->transactionType().empty() ? transaction->type()
                                                              : transaction->transactionType(),
                       transaction->name(),
                       transaction->memo().empty() ? "" : " / " + transaction->memo());
  }
  if (const auto* inv = dynamic_cast<const OFXInvStatement*>(&statement)) {
    for (const auto& position : inv->positions()) {
      out << fmt::format("    position {} {}: {} units at {} = {}\n", position->uniqueIDType(),
                         position->uniqueID(), position->units(), position->unitPrice(),
                         position->marketValue());
    }
  }
}

void printRoot(std::ostream& out, const OFXRoot& root) {
  const OFXStatus& status = root.ofxStatus();
  out << fmt::format("Institution: {} (FID {}, BID {})\n", root.org(), root.fid(), root.bid());
  out << fmt::format("Status: {} {} {}\n", status.errorCode(), status.severity(), status.message());
  out << fmt::format("Statements: {}, transactions: {}\n", root.numberOfStatements(),
                     root.totalNumberOfTransactions());
  for (const auto& statement : root.statements()) printStatement(out, *statement);
  for (const auto& statement : root.invStatements()) printStatement(out, *statement);
  for (const auto& security : root.securities()) {
    out << fmt::format("  security {} {} {} ({})\n", security->uniqueIDType(), security->uniqueID(),
                       security->secName(), security->ticker());
  }
  if (root.accountCount() > 0) out << fmt::format("Accounts listed: {}\n", root.accountCount());
}

void dump(const std::filesystem::path& file, bool json) {
  OFXRootController controller;
  if (!controller.openOFXFile(file, false)) {
    throw CommandFailure(fmt::format("{}: {}", file.string(), controller.statusMessage()));
  }
  controller.root().setRunningBalances();
  if (json) {
    std::cout << rootJSON(controller.root()).dump(2) << '\n';
  } else {
    printRoot(std::cout, controller.root());
  }
}

const SubcommandRegistration registration(300, [](CLI::App& app) {
  auto* ofx = app.add_subcommand("ofx", "Read OFX statements (OFX 1.x SGML and 2.x XML)");
  ofx->require_subcommand(1);
  auto* dumpCommand =
      ofx->add_subcommand("dump", "Print the statements, securities and statuses of an OFX file");
  auto file = std::make_shared<std::string>();
  auto json = std::make_shared<bool>(false);
  dumpCommand->add_option("FILE", *file, "OFX or web-connect file (.ofx, .qfx, .lfx)")->required();
  dumpCommand->add_flag("--json", *json, "Print the message objects as JSON");
  dumpCommand->callback([file, json] { dump(*file, *json); });
});

const DemoStepRegistration demoStep(300, "OFX statements", [](DemoContext& context) {
  const auto sample = resourcePath("demo/checking-statement.ofx");
  OFXRootController controller;
  if (!controller.openOFXFile(sample, false)) {
    context.out << "The sample statement could not be read: " << controller.statusMessage() << '\n';
    return;
  }
  controller.root().setRunningBalances();
  context.out << "Reading " << sample.filename().string() << " (OFX 1.x, SGML):\n";
  printRoot(context.out, controller.root());
});

}  // namespace

}  // namespace ledgeon::cli
