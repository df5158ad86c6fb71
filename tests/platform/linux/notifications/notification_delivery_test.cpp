#include "platform/linux/notifications/notification_delivery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "../../support/hand_queue.h"

namespace karno::platform {
namespace {

using test::HandQueue;

class NotificationDeliveryTest : public testing::Test {
 protected:
  NotificationDeliveryTest() {
    delivery->setRoomHandler([this] { ++roomCalls; });
    identifier = delivery->add(this, [this](const DistributedNotification&) { ++delivered; });
  }

  void receive(std::size_t count, const DistributedNotification& notification = {}) {
    for (std::size_t number = 0; number < count; ++number) delivery->receive(identifier, notification);
  }
  void deliver(std::size_t count) {
    main.runUntil([&] { return delivered >= count; });
  }

  static DistributedNotification ofBytes(std::size_t bytes) {
    return {.name = "name", .object = std::nullopt, .userInfo = {{"text", std::string(bytes, 'x')}}};
  }

  HandQueue main;
  std::shared_ptr<NotificationDelivery> delivery = std::make_shared<NotificationDelivery>(main);
  NotificationDelivery::Identifier identifier = 0;
  std::size_t delivered = 0;
  int roomCalls = 0;
};

TEST_F(NotificationDeliveryTest, HasNoRoomOnceSoManyWait) {
  receive(NotificationDelivery::kWaitingMax - 1);
  EXPECT_TRUE(delivery->hasRoom());

  receive(1);
  EXPECT_FALSE(delivery->hasRoom());
}

TEST_F(NotificationDeliveryTest, HasNoRoomOnceSoManyBytesWait) {
  receive(3, ofBytes(NotificationDelivery::kWaitingBytesMax / 4));
  EXPECT_TRUE(delivery->hasRoom());

  receive(1, ofBytes(NotificationDelivery::kWaitingBytesMax / 4));
  EXPECT_FALSE(delivery->hasRoom());
}

TEST_F(NotificationDeliveryTest, SaysOnceThatThereIsRoomAgainWhenHalfIsDelivered) {
  receive(NotificationDelivery::kWaitingMax);

  deliver(NotificationDelivery::kWaitingMax / 4);
  EXPECT_FALSE(delivery->hasRoom());
  EXPECT_EQ(roomCalls, 0);

  deliver(NotificationDelivery::kWaitingMax);
  EXPECT_TRUE(delivery->hasRoom());
  EXPECT_EQ(roomCalls, 1);
}

TEST_F(NotificationDeliveryTest, DeliversEverythingThatWasReceivedWithoutRoom) {
  receive(NotificationDelivery::kWaitingMax + 100);

  deliver(NotificationDelivery::kWaitingMax + 100);

  EXPECT_EQ(delivered, NotificationDelivery::kWaitingMax + 100);
}

TEST_F(NotificationDeliveryTest, LetsOtherBlocksOfTheMainQueueHaveTheirTurn) {
  std::size_t deliveredBefore = 0;
  bool hadTurn = false;
  receive(1000);
  main.async([&] {
    deliveredBefore = delivered;
    hadTurn = true;
  });

  main.runUntil([&] { return hadTurn; });

  EXPECT_LT(deliveredBefore, 1000U);
}

TEST_F(NotificationDeliveryTest, StartsNoHandlerOnceItIsClosed) {
  receive(10);

  delivery->close();
  main.runFor(std::chrono::milliseconds(20));

  EXPECT_EQ(delivered, 0U);
}

}  // namespace
}  // namespace karno::platform
