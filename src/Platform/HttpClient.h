#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Utilities/Result.h"

namespace ledgeon {

// Error codes of the URL-loading domain (kURLErrorDomain) that transport failures map onto.
enum class URLErrorCode : int64_t {
  Unknown = -1,
  Cancelled = -999,
  BadURL = -1000,
  TimedOut = -1001,
  UnsupportedURL = -1002,
  CannotFindHost = -1003,
  CannotConnectToHost = -1004,
  NetworkConnectionLost = -1005,
  TooManyRedirects = -1007,
  NotConnectedToInternet = -1009,
  UserCancelledAuthentication = -1012,
  SecureConnectionFailed = -1200,
  ServerCertificateUntrusted = -1202,
};

struct HttpRequest {
  std::string method = "GET";
  std::string url;
  std::vector<std::pair<std::string, std::string>> headers;  // name, value; in order
  std::string body;
  double timeoutSeconds = 0;  // 0: the preferences' "defaultTimeoutInterval"
};

struct HttpResponse {
  long statusCode = 0;
  std::string url;  // after redirects
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  std::string mimeType;
  std::string textEncoding;  // the charset of the Content-Type, when given

  // The first header of that name, compared without case; empty when absent.
  std::string header(std::string_view name) const;
};

// HTTP(S) requests. Any HTTP status is a response; a transport failure (no connection, time-out,
// TLS failure ...) is an Error of the URL-loading domain whose user info carries "severity" =
// "ERROR". Thread-safe.
class HttpClient {
 public:
  using Completion = std::function<void(Result<HttpResponse>)>;
  // Runs a completion where the caller wants it (the main run loop for direct connect).
  using Dispatcher = std::function<void(std::function<void()>)>;

  virtual ~HttpClient() = default;
  virtual Result<HttpResponse> send(const HttpRequest& request) = 0;
  // Sends on a thread of its own and hands the outcome to `dispatcher`; without one, completion
  // runs on the main run loop when the program has one (Services::mainThreadDispatcher), and on
  // the request's thread otherwise.
  virtual void sendAsync(HttpRequest request, Completion completion,
                         Dispatcher dispatcher = nullptr) = 0;
  // Waits for every asynchronous request sent so far.
  virtual void waitForOutstandingRequests() = 0;
};

// The real client on libcurl: the system's CA store, one in-memory cookie jar shared by every
// request of the client, timeouts from the preferences.
class CurlHttpClient final : public HttpClient {
 public:
  CurlHttpClient();
  ~CurlHttpClient() override;
  CurlHttpClient(const CurlHttpClient&) = delete;
  CurlHttpClient& operator=(const CurlHttpClient&) = delete;

  Result<HttpResponse> send(const HttpRequest& request) override;
  void sendAsync(HttpRequest request, Completion completion,
                 Dispatcher dispatcher = nullptr) override;
  void waitForOutstandingRequests() override;

  // The URL-loading error code for a libcurl result code.
  static URLErrorCode urlErrorCodeForCurlCode(int curlCode);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace ledgeon
