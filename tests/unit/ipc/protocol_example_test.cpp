#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CoreFoundation/CoreFoundation.h"
#include "elements_are.h"
#include "ipc/wrapper_notification.h"

// In the C++ example of docs/protocol.md, which is compiled as it stands there.
void quitWasChosen();

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::DistributedPost;

TEST(ProtocolExample, PostsWhatTheLauncherListensFor) {
  quitWasChosen();

  EXPECT_THAT(test::distributedPosts(),
              ElementsAre(DistributedPost{
                  .name = std::string(kWrapperNotificationName),
                  .object = std::string(kWrapperNotificationObject),
                  .userInfo = {{std::string(kWrapperMessageKey), std::string(kUserSelectedQuit)}},
                  .options = kCFNotificationDeliverImmediately}));
  EXPECT_EQ(test::liveDictionaries(), 0);
}

}  // namespace
}  // namespace karno
