#include "Platform/HttpClient.h"

#include <condition_variable>
#include <mutex>
#include <thread>

#include <curl/curl.h>
#include <strings.h>

#include "Platform/Preferences.h"
#include "Platform/Services.h"

namespace ledgeon {

namespace {

constexpr double kDefaultTimeoutSeconds = 60;

void initialiseCurlOnce() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

size_t appendBody(char* data, size_t size, size_t count, void* user) {
  static_cast<std::string*>(user)->append(data, size * count);
  return size * count;
}

size_t appendHeader(char* data, size_t size, size_t count, void* user) {
  auto* headers = static_cast<std::vector<std::pair<std::string, std::string>>*>(user);
  std::string_view line(data, size * count);
  if (line.starts_with("HTTP/")) headers->clear();  // a new response after a redirect
  const size_t colon = line.find(':');
  if (colon != std::string_view::npos) {
    std::string_view value = line.substr(colon + 1);
    while (!value.empty() && (value.front() == ' ' || value.front() == '\t'))
      value.remove_prefix(1);
    while (!value.empty() &&
           (value.back() == '\r' || value.back() == '\n' || value.back() == ' ')) {
      value.remove_suffix(1);
    }
    headers->emplace_back(std::string(line.substr(0, colon)), std::string(value));
  }
  return size * count;
}

double timeoutFor(const HttpRequest& request) {
  if (request.timeoutSeconds > 0) return request.timeoutSeconds;
  const double preferred = Services::shared().preferences().doubleForKey("defaultTimeoutInterval");
  return preferred > 0 ? preferred : kDefaultTimeoutSeconds;
}

void splitContentType(const std::string& contentType, HttpResponse& response) {
  const size_t semicolon = contentType.find(';');
  response.mimeType = contentType.substr(0, semicolon);
  const size_t charset = contentType.find("charset=");
  if (charset != std::string::npos) {
    response.textEncoding = contentType.substr(charset + 8);
    const size_t end = response.textEncoding.find(';');
    if (end != std::string::npos) response.textEncoding.resize(end);
  }
}

}  // namespace

std::string HttpResponse::header(std::string_view name) const {
  for (const auto& [key, value] : headers) {
    if (key.size() == name.size() && strncasecmp(key.c_str(), name.data(), name.size()) == 0) {
      return value;
    }
  }
  return {};
}

struct CurlHttpClient::State {
  CURLSH* share = nullptr;
  std::mutex cookieMutex;
  std::mutex threadsMutex;
  std::condition_variable threadsDone;
  size_t outstanding = 0;

  static void lock(CURL*, curl_lock_data, curl_lock_access, void* user) {
    static_cast<State*>(user)->cookieMutex.lock();
  }
  static void unlock(CURL*, curl_lock_data, void* user) {
    static_cast<State*>(user)->cookieMutex.unlock();
  }
};

CurlHttpClient::CurlHttpClient() : state_(std::make_unique<State>()) {
  initialiseCurlOnce();
  state_->share = curl_share_init();
  curl_share_setopt(state_->share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  curl_share_setopt(state_->share, CURLSHOPT_LOCKFUNC, &State::lock);
  curl_share_setopt(state_->share, CURLSHOPT_UNLOCKFUNC, &State::unlock);
  curl_share_setopt(state_->share, CURLSHOPT_USERDATA, state_.get());
}

CurlHttpClient::~CurlHttpClient() {
  waitForOutstandingRequests();
  curl_share_cleanup(state_->share);
}

URLErrorCode CurlHttpClient::urlErrorCodeForCurlCode(int curlCode) {
  switch (static_cast<CURLcode>(curlCode)) {
    case CURLE_OPERATION_TIMEDOUT:
      return URLErrorCode::TimedOut;
    case CURLE_COULDNT_CONNECT:
      return URLErrorCode::CannotConnectToHost;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return URLErrorCode::CannotFindHost;
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
      return URLErrorCode::NetworkConnectionLost;
    case CURLE_INTERFACE_FAILED:
      return URLErrorCode::NotConnectedToInternet;
    case CURLE_LOGIN_DENIED:
      return URLErrorCode::UserCancelledAuthentication;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
      return URLErrorCode::SecureConnectionFailed;
    case CURLE_PEER_FAILED_VERIFICATION:
      return URLErrorCode::ServerCertificateUntrusted;
    case CURLE_URL_MALFORMAT:
      return URLErrorCode::BadURL;
    case CURLE_UNSUPPORTED_PROTOCOL:
      return URLErrorCode::UnsupportedURL;
    case CURLE_TOO_MANY_REDIRECTS:
      return URLErrorCode::TooManyRedirects;
    case CURLE_ABORTED_BY_CALLBACK:
      return URLErrorCode::Cancelled;
    default:
      return URLErrorCode::Unknown;
  }
}

Result<HttpResponse> CurlHttpClient::send(const HttpRequest& request) {
  std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), &curl_easy_cleanup);
  if (!curl) {
    Error error = Error::make(kURLErrorDomain, static_cast<int64_t>(URLErrorCode::Unknown),
                              "The HTTP client could not be started.");
    error.userInfo["severity"] = "ERROR";
    return error;
  }
  HttpResponse response;
  CURL* handle = curl.get();
  curl_easy_setopt(handle, CURLOPT_URL, request.url.c_str());
  curl_easy_setopt(handle, CURLOPT_SHARE, state_->share);
  curl_easy_setopt(handle, CURLOPT_COOKIEFILE, "");  // cookies on, kept in memory
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(handle, CURLOPT_MAXREDIRS, 16L);
  curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(timeoutFor(request) * 1000));
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &appendBody);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, &response.body);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &appendHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, &response.headers);
  if (request.method == "POST") {
    curl_easy_setopt(handle, CURLOPT_POST, 1L);
  } else if (request.method != "GET") {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request.method.c_str());
  }
  if (request.method != "GET" || !request.body.empty()) {
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, request.body.data());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE,
                     static_cast<curl_off_t>(request.body.size()));
  }
  curl_slist* headers = nullptr;
  headers = curl_slist_append(headers, "Expect:");  // send bodies at once, as browsers do
  for (const auto& [name, value] : request.headers) {
    headers = curl_slist_append(headers, (name + ": " + value).c_str());
  }
  curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
  char errorText[CURL_ERROR_SIZE] = {};
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorText);
  const CURLcode code = curl_easy_perform(handle);
  curl_slist_free_all(headers);
  if (code != CURLE_OK) {
    Error error = Error::make(
        kURLErrorDomain, static_cast<int64_t>(urlErrorCodeForCurlCode(code)),
        errorText[0] != '\0' ? std::string(errorText) : std::string(curl_easy_strerror(code)));
    error.userInfo["severity"] = "ERROR";
    error.userInfo["NSErrorFailingURLStringKey"] = request.url;
    return error;
  }
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &response.statusCode);
  const char* effectiveURL = nullptr;
  curl_easy_getinfo(handle, CURLINFO_EFFECTIVE_URL, &effectiveURL);
  response.url = effectiveURL ? effectiveURL : request.url;
  splitContentType(response.header("Content-Type"), response);
  return response;
}

void CurlHttpClient::sendAsync(HttpRequest request, Completion completion, Dispatcher dispatcher) {
  {
    std::lock_guard lock(state_->threadsMutex);
    ++state_->outstanding;
  }
  if (!dispatcher) dispatcher = Services::shared().mainThreadDispatcher();
  std::thread([this, request = std::move(request), completion = std::move(completion),
               dispatcher = std::move(dispatcher)]() mutable {
    auto result = std::make_shared<Result<HttpResponse>>(send(request));
    auto finish = [completion = std::move(completion), result] { completion(std::move(*result)); };
    if (dispatcher) {
      dispatcher(std::move(finish));
    } else {
      finish();
    }
    std::lock_guard lock(state_->threadsMutex);
    --state_->outstanding;
    state_->threadsDone.notify_all();
  }).detach();
}

void CurlHttpClient::waitForOutstandingRequests() {
  std::unique_lock lock(state_->threadsMutex);
  state_->threadsDone.wait(lock, [this] { return state_->outstanding == 0; });
}

}  // namespace ledgeon
