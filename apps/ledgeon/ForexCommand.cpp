#include <iostream>
#include <memory>
#include <string>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "CliValues.h"
#include "DataBase/DataBase.h"
#include "DataBase/LForex.h"
#include "OLB/LForexRefresh.h"
#include "Platform/HttpClient.h"
#include "Platform/Preferences.h"
#include "Platform/Services.h"
#include "Subcommand.h"

namespace ledgeon::cli {

namespace {

void refresh(const std::string& document, const std::string& host, bool json) {
  auto db = openDocument(document);
  // A host given on the command line holds for this run only; the preferences file is untouched.
  if (!host.empty()) {
    Services::shared().preferences().setObject(ForexRateService::kHostPreference, host);
  }
  CurlHttpClient client;
  LForex& forex = LForex::sharedForex();
  LForexRefresh refresher(forex, client);
  auto stored = refresher.refreshForexQuotes(*db);
  if (!stored) {
    throw CommandFailure(fmt::format("{}: exchange rates not refreshed: {}", document,
                                     stored.error().localizedDescription()));
  }
  if (json) {
    auto quotes = nlohmann::json::array();
    for (LObject* quote : *stored) {
      quotes.push_back({{"fromCurrency", quote->stringForKey("fromCurrency")},
                        {"toCurrency", quote->stringForKey("toCurrency")},
                        {"exchangeRate", quote->amountForKey("exchangeRate").stringValue()},
                        {"quoteDate", formatDate(quote->valueForKey("quoteDate").asDate())}});
    }
    std::cout
        << nlohmann::json{{"homeCurrency", forex.homeCurrencyCode()}, {"quotes", quotes}}.dump(2)
        << '\n';
    return;
  }
  if (stored->empty()) {
    std::cout << "No exchange rates stored (home currency " << forex.homeCurrencyCode() << ").\n";
    return;
  }
  for (LObject* quote : *stored) {
    std::cout << fmt::format("1 {} = {} {}  ({})\n", quote->stringForKey("fromCurrency"),
                             quote->amountForKey("exchangeRate").stringValue(),
                             quote->stringForKey("toCurrency"),
                             formatDate(quote->valueForKey("quoteDate").asDate()));
  }
}

const SubcommandRegistration registration(320, [](CLI::App& app) {
  auto* forexCommand = app.add_subcommand("forex", "Exchange rates of a document");
  forexCommand->require_subcommand(1);
  auto* refreshCommand = forexCommand->add_subcommand(
      "refresh",
      "Fetch the rates of the currencies the document's accounts use into its home currency "
      "(document property \"HomeCurrencyCode\", USD when unset) and store them");
  auto document = std::make_shared<std::string>();
  auto host = std::make_shared<std::string>();
  auto json = std::make_shared<bool>(false);
  refreshCommand->add_option("DOC", *document, "Document package folder")->required();
  refreshCommand->add_option("--host", *host,
                             "Rate service URL (default: the preference \"forexServiceHost\")");
  refreshCommand->add_flag("--json", *json, "Print the stored quotes as JSON");
  refreshCommand->callback([document, host, json] { refresh(*document, *host, *json); });
});

}  // namespace

}  // namespace ledgeon::cli
