#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Utilities/NotificationCenter.h"

namespace ledgeon {
namespace {

TEST(NotificationCenter, DeliversByNameAndSenderInOrder) {
  NotificationCenter center;
  int senderA = 0, senderB = 0;
  std::vector<std::string> seen;
  ScopedObserver all(center, "", [&](const Notification& n) { seen.push_back("all:" + n.name); });
  ScopedObserver byName(center, "AddTransaction",
                        [&](const Notification& n) { seen.push_back("add:" + n.name); });
  ScopedObserver bySender(
      center, "ChangeAccount", [&](const Notification&) { seen.push_back("change:A"); }, &senderA);

  center.postNotificationName("AddTransaction");
  center.postNotificationName("ChangeAccount", &senderB);
  center.postNotificationName("ChangeAccount", &senderA, std::string("info"));
  EXPECT_EQ(seen, (std::vector<std::string>{"all:AddTransaction", "add:AddTransaction",
                                            "all:ChangeAccount", "all:ChangeAccount", "change:A"}));
}

TEST(NotificationCenter, ObserverRemovedDuringDeliveryIsNotCalled) {
  NotificationCenter center;
  int laterCalls = 0;
  NotificationCenter::Token later = 0;
  center.addObserver("N", [&](const Notification&) { center.removeObserver(later); });
  later = center.addObserver("N", [&](const Notification&) { ++laterCalls; });
  center.postNotificationName("N");
  center.postNotificationName("N");
  EXPECT_EQ(laterCalls, 0);
}

TEST(NotificationCenter, ScopedObserverStopsAtEndOfScope) {
  NotificationCenter center;
  int calls = 0;
  {
    ScopedObserver observer(center, "N", [&](const Notification&) { ++calls; });
    ScopedObserver moved = std::move(observer);
    center.postNotificationName("N");
  }
  center.postNotificationName("N");
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace ledgeon
