#include <atomic>
#include <chrono>
#include <thread>

#include <arpa/inet.h>
#include <curl/curl.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Platform/HttpClient.h"
#include "Platform/Preferences.h"
#include "Platform/Services.h"

namespace ledgeon {
namespace {

// A real HTTP server on 127.0.0.1 for the length of a test.
class TestServer {
 public:
  TestServer() {
    server_.Post("/echo", [](const httplib::Request& request, httplib::Response& response) {
      response.set_header("X-Got-Type", request.get_header_value("Content-Type"));
      response.set_content(request.body, "application/x-ofx; charset=us-ascii");
    });
    server_.Get("/set-cookie", [](const httplib::Request&, httplib::Response& response) {
      response.set_header("Set-Cookie", "session=abc123; Path=/");
      response.set_content("set", "text/plain");
    });
    server_.Get("/show-cookie", [](const httplib::Request& request, httplib::Response& response) {
      response.set_content(request.get_header_value("Cookie"), "text/plain");
    });
    server_.Get("/slow", [](const httplib::Request&, httplib::Response& response) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1500));
      response.set_content("late", "text/plain");
    });
    server_.Get("/fail", [](const httplib::Request&, httplib::Response& response) {
      response.status = 500;
      response.set_content("broken", "text/plain");
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ~TestServer() {
    server_.stop();
    thread_.join();
  }
  std::string url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
};

// Accepts one connection and closes it without answering.
class HangUpServer {
 public:
  HangUpServer() {
    socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::listen(socket_, 1);
    socklen_t length = sizeof address;
    ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] {
      const int connection = ::accept(socket_, nullptr, nullptr);
      char buffer[1024];
      (void)::recv(connection, buffer, sizeof buffer, 0);
      ::close(connection);
    });
  }
  ~HangUpServer() {
    thread_.join();
    ::close(socket_);
  }
  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  int socket_ = -1;
  int port_ = 0;
  std::thread thread_;
};

HttpRequest get(std::string url, double timeoutSeconds = 5) {
  HttpRequest request;
  request.url = std::move(url);
  request.timeoutSeconds = timeoutSeconds;
  return request;
}

HttpRequest post(std::string url, std::string body) {
  HttpRequest request = get(std::move(url));
  request.method = "POST";
  request.body = std::move(body);
  return request;
}

TEST(HttpClientTest, PostsAndReadsTheAnswer) {
  TestServer server;
  CurlHttpClient client;
  HttpRequest request = post(server.url("/echo"), "OFXHEADER:100\r\n");
  request.headers = {{"Content-Type", "application/x-ofx"}};
  auto response = client.send(request);
  ASSERT_TRUE(response.ok()) << response.error().description();
  EXPECT_EQ(response->statusCode, 200);
  EXPECT_EQ(response->body, "OFXHEADER:100\r\n");
  EXPECT_EQ(response->header("x-got-type"), "application/x-ofx");
  EXPECT_EQ(response->mimeType, "application/x-ofx");
  EXPECT_EQ(response->textEncoding, "us-ascii");

  auto failed = client.send(get(server.url("/fail")));
  ASSERT_TRUE(failed.ok());
  EXPECT_EQ(failed->statusCode, 500);  // an HTTP status is an answer, not a transport failure
}

TEST(HttpClientTest, KeepsCookiesAcrossRequests) {
  TestServer server;
  CurlHttpClient client;
  ASSERT_TRUE(client.send(get(server.url("/set-cookie"))).ok());
  auto shown = client.send(get(server.url("/show-cookie")));
  ASSERT_TRUE(shown.ok());
  EXPECT_EQ(shown->body, "session=abc123");
  CurlHttpClient other;  // a separate client has its own jar
  auto fresh = other.send(get(server.url("/show-cookie")));
  ASSERT_TRUE(fresh.ok());
  EXPECT_EQ(fresh->body, "");
}

TEST(HttpClientTest, TransportFailuresMapOntoUrlErrors) {
  TestServer server;
  CurlHttpClient client;
  // The time-out comes from the preferences when the request does not set one.
  auto preferences = std::make_shared<Preferences>();
  preferences->setObject("defaultTimeoutInterval", 0.3);
  Services::shared().setPreferences(preferences);
  auto slow = client.send(get(server.url("/slow"), 0));
  Services::shared().setPreferences(std::make_shared<Preferences>());
  ASSERT_FALSE(slow.ok());
  EXPECT_EQ(slow.error().domain, kURLErrorDomain);
  EXPECT_EQ(slow.error().code, -1001);
  EXPECT_EQ(slow.error().userInfo.at("severity"), "ERROR");

  auto refused = client.send(get("http://127.0.0.1:1/"));
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().code, -1004);

  HangUpServer hangUp;
  auto lost = client.send(get(hangUp.url()));
  ASSERT_FALSE(lost.ok());
  EXPECT_EQ(lost.error().code, -1005);

  const struct {
    CURLcode curl;
    int64_t url;
  } table[] = {{CURLE_OPERATION_TIMEDOUT, -1001},
               {CURLE_COULDNT_CONNECT, -1004},
               {CURLE_GOT_NOTHING, -1005},
               {CURLE_INTERFACE_FAILED, -1009},
               {CURLE_LOGIN_DENIED, -1012},
               {CURLE_SSL_CONNECT_ERROR, -1200},
               {CURLE_PEER_FAILED_VERIFICATION, -1202},
               {CURLE_COULDNT_RESOLVE_HOST, -1003}};
  for (const auto& row : table) {
    EXPECT_EQ(static_cast<int64_t>(CurlHttpClient::urlErrorCodeForCurlCode(row.curl)), row.url)
        << row.curl;
  }
}

TEST(HttpClientTest, AsynchronousRequestsCompleteThroughTheDispatcher) {
  TestServer server;
  CurlHttpClient client;
  std::atomic<int> dispatched{0};
  std::atomic<int> completed{0};
  for (int i = 0; i < 3; ++i) {
    client.sendAsync(
        post(server.url("/echo"), std::to_string(i)),
        [&, i](Result<HttpResponse> result) {
          if (result.ok() && result->body == std::to_string(i)) ++completed;
        },
        [&](std::function<void()> work) {
          ++dispatched;
          work();
        });
  }
  client.waitForOutstandingRequests();
  EXPECT_EQ(dispatched.load(), 3);
  EXPECT_EQ(completed.load(), 3);
}

}  // namespace
}  // namespace ledgeon
