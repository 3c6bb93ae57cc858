#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include <httplib.h>

#include "OnlineBankingFramework/ForexRateService.h"
#include "Platform/Preferences.h"
#include "Platform/Services.h"

namespace ledgeon::testing {

// A rate service of our own on 127.0.0.1, answering with whatever the test sets; installs
// preferences pointing "forexServiceHost" at it for as long as it lives.
class RateServer {
 public:
  RateServer() {
    server_.Post("/currencyapi/currency.asp",
                 [this](const httplib::Request& request, httplib::Response& response) {
                   ++requests_;
                   base_ = request.get_param_value("baseCurrency");
                   body_ = request.body;
                   response.status = status_;
                   response.set_content(answer_, "text/xml");
                 });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    auto preferences = std::make_shared<Preferences>();
    preferences->setObject(std::string(ForexRateService::kHostPreference), url());
    Services::shared().setPreferences(preferences);
  }
  ~RateServer() {
    Services::shared().setPreferences(std::make_shared<Preferences>());
    server_.stop();
    thread_.join();
  }
  RateServer(const RateServer&) = delete;
  RateServer& operator=(const RateServer&) = delete;

  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

  std::string answer_;
  int status_ = 200;
  std::atomic<int> requests_{0};
  std::string base_;
  std::string body_;

 private:
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
};

}  // namespace ledgeon::testing
