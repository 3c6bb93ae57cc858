#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <httplib.h>

#include "Platform/HttpClient.h"
#include "Threading/RunLoop.h"

namespace ledgeon {
namespace {

using namespace std::chrono_literals;

RunLoop::Clock::time_point in(RunLoop::Clock::duration duration) {
  return RunLoop::Clock::now() + duration;
}

TEST(RunLoopTest, TheFirstLoopIsTheMainLoopUntilItGoes) {
  ASSERT_EQ(RunLoop::main(), nullptr);
  {
    RunLoop loop;
    EXPECT_EQ(RunLoop::main(), &loop);
    EXPECT_TRUE(RunLoop::isMainThread());
    std::thread([&] {
      EXPECT_FALSE(RunLoop::isMainThread());
      RunLoop other;  // a loop of another thread does not take over
      EXPECT_EQ(RunLoop::main(), &loop);
      EXPECT_TRUE(other.isOwnerThread());
      EXPECT_FALSE(loop.isOwnerThread());
    }).join();
  }
  EXPECT_EQ(RunLoop::main(), nullptr);
  EXPECT_THROW(performOnMainThread([] {}, false), std::logic_error);
}

TEST(RunLoopTest, CallsFromOtherThreadsRunOnTheOwnerInTheOrderGiven) {
  RunLoop loop;
  const auto owner = std::this_thread::get_id();
  std::vector<int> order;
  std::atomic<bool> offThread{false};
  std::thread worker([&] {
    for (int i = 0; i < 100; ++i) {
      performOnMainThread(
          [&, i] {
            if (std::this_thread::get_id() != owner) offThread = true;
            order.push_back(i);
          },
          false);
    }
  });
  EXPECT_TRUE(loop.runUntil([&] { return order.size() == 100; }, in(10s)));
  worker.join();
  EXPECT_FALSE(offThread);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(order[static_cast<size_t>(i)], i);
}

TEST(RunLoopTest, WaitingCallsReturnAfterRunningWithWhatTheyDid) {
  RunLoop loop;
  int value = 0;
  std::atomic<bool> returned{false};
  std::thread worker([&] {
    const bool ran = performOnMainThread([&] { value = 42; }, true);
    // The owner's write is visible here: the call returned only after it ran.
    EXPECT_TRUE(ran);
    EXPECT_EQ(value, 42);
    EXPECT_THROW(performOnMainThread([] { throw std::runtime_error("refused"); }, true),
                 std::runtime_error);
    returned = true;
    RunLoop::main()->wakeUp();  // the flag is not a call on the loop
  });
  EXPECT_TRUE(loop.runUntil([&] { return returned.load(); }, in(10s)));
  worker.join();
}

TEST(RunLoopTest, AWaitingCallFromTheOwnerRunsAtOnce) {
  RunLoop loop;
  bool ran = false;
  EXPECT_TRUE(performOnMainThread([&] { ran = true; }, true));
  EXPECT_TRUE(ran);
  ran = false;
  EXPECT_TRUE(loop.perform([&] { ran = true; }, false));
  EXPECT_FALSE(ran) << "a call that does not wait runs when the loop turns";
  EXPECT_EQ(loop.runOnce(), 1u);
  EXPECT_TRUE(ran);
}

TEST(RunLoopTest, DelayedCallsRunWhenDueInOrderOfDueTime) {
  struct Row {
    double seconds;
    std::string label;
  };
  const std::vector<Row> rows = {{0.06, "c"}, {0.0, "a"}, {0.03, "b1"}, {0.03, "b2"}, {30, "z"}};
  RunLoop loop;
  std::vector<std::string> order;
  for (const auto& row : rows) {
    loop.performAfterDelay([&, row] { order.push_back(row.label); }, row.seconds);
  }
  EXPECT_TRUE(loop.runUntil([&] { return order.size() == 4; }, in(10s)));
  EXPECT_EQ(order, (std::vector<std::string>{"a", "b1", "b2", "c"}));
  // The call due in 30 s does not run in a short turn of the loop.
  EXPECT_FALSE(loop.runUntil([&] { return order.size() > 4; }, in(50ms)));
  EXPECT_EQ(loop.pendingCount(), 1u);
}

TEST(RunLoopTest, CancellingDropsOnlyTheCallsAimedAtThatTarget) {
  RunLoop loop;
  int document = 0;
  int otherDocument = 0;
  std::string ran;
  loop.performAfterDelay([&] { ran += "d1"; }, 0, &document);
  const auto second = loop.performAfterDelay([&] { ran += "d2"; }, 0, &document);
  loop.performAfterDelay([&] { ran += "o"; }, 0, &otherDocument);
  loop.performAfterDelay([&] { ran += "n"; }, 0);
  const auto kept = loop.performAfterDelay([&] { ran += "k"; }, 0, &otherDocument);

  EXPECT_TRUE(loop.cancelPerformRequest(kept));
  EXPECT_FALSE(loop.cancelPerformRequest(kept));
  EXPECT_EQ(loop.cancelPerformRequests(&document), 2u);
  EXPECT_FALSE(loop.cancelPerformRequest(second));
  EXPECT_EQ(loop.runOnce(), 2u);
  EXPECT_EQ(ran, "on");
  EXPECT_EQ(loop.cancelPerformRequests(&otherDocument), 0u) << "a call that ran cannot be dropped";
}

TEST(RunLoopTest, ACallThatQueuesItselfWaitsForTheNextTurn) {
  RunLoop loop;
  int runs = 0;
  std::function<void()> again = [&] {
    ++runs;
    loop.perform(again, false);
  };
  loop.perform(again, false);
  EXPECT_EQ(loop.runOnce(), 1u);
  EXPECT_EQ(loop.runOnce(), 1u);
  EXPECT_EQ(runs, 2);
}

TEST(RunLoopTest, ACallMayRunTheLoopAgain) {
  RunLoop loop;
  std::string order;
  loop.perform(
      [&] {
        order += "outer ";
        loop.perform([&] { order += "inner "; }, false);
        EXPECT_TRUE(
            loop.runUntil([&] { return order.find("inner") != std::string::npos; }, in(5s)));
        order += "back";
      },
      false);
  EXPECT_EQ(loop.runOnce(), 1u);
  EXPECT_EQ(order, "outer inner back");
}

TEST(RunLoopTest, RunUntilGivesUpAtTheDeadlineAndWakesForWork) {
  RunLoop loop;
  EXPECT_FALSE(loop.runUntil(in(20ms)));
  EXPECT_EQ(loop.runOnce(30ms), 0u);
  std::atomic<bool> flag{false};
  std::thread worker([&] {
    std::this_thread::sleep_for(20ms);
    flag = true;
    loop.wakeUp();  // the flag is not a call on the loop: tell the loop to look again
  });
  EXPECT_TRUE(loop.runUntil([&] { return flag.load(); }, in(10s)));
  worker.join();
}

TEST(RunLoopTest, OnlyTheOwnerTurnsTheLoop) {
  RunLoop loop;
  std::thread([&] {
    EXPECT_THROW(loop.runOnce(), std::logic_error);
    EXPECT_THROW(loop.runUntil(in(1ms)), std::logic_error);
  }).join();
}

TEST(RunLoopTest, AWaitingThreadIsReleasedWhenTheLoopGoesAway) {
  auto loop = std::make_unique<RunLoop>();
  std::atomic<int> result{-1};
  std::thread worker([&] { result = loop->perform([] {}, true) ? 1 : 0; });
  while (loop->pendingCount() == 0) std::this_thread::sleep_for(1ms);
  loop.reset();
  worker.join();
  EXPECT_EQ(result.load(), 0);
}

// An asynchronous HTTP request given no dispatcher completes on the main run loop's thread.
TEST(RunLoopTest, HttpCompletionsRunOnTheMainRunLoop) {
  httplib::Server server;
  server.Post("/echo", [](const httplib::Request& request, httplib::Response& response) {
    response.set_content(request.body, "text/plain");
  });
  const int port = server.bind_to_any_port("127.0.0.1");
  std::thread serving([&] { server.listen_after_bind(); });
  while (!server.is_running()) std::this_thread::sleep_for(1ms);

  RunLoop loop;
  CurlHttpClient client;
  std::vector<std::string> bodies;
  std::atomic<bool> offThread{false};
  const auto owner = std::this_thread::get_id();
  for (const std::string body : {"one", "two"}) {
    HttpRequest request;
    request.method = "POST";
    request.url = "http://127.0.0.1:" + std::to_string(port) + "/echo";
    request.body = body;
    request.timeoutSeconds = 10;
    client.sendAsync(request, [&](Result<HttpResponse> result) {
      if (std::this_thread::get_id() != owner) offThread = true;
      bodies.push_back(result.ok() ? result->body : result.error().description());
    });
  }
  EXPECT_TRUE(loop.runUntil([&] { return bodies.size() == 2; }, in(20s)));
  client.waitForOutstandingRequests();
  server.stop();
  serving.join();
  EXPECT_FALSE(offThread);
  std::sort(bodies.begin(), bodies.end());
  EXPECT_EQ(bodies, (std::vector<std::string>{"one", "two"}));
}

}  // namespace
}  // namespace ledgeon
