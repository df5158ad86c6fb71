#include "platform/linux/dispatch/main_queue.h"

#include <gtest/gtest.h>

#include "../../cocoa/screen.h"

namespace karno::test {
namespace {

TEST(MainQueueOnScreen, ABurstFromSeveralThreadsRunsInEachThreadsOrder) {
  EXPECT_EQ(onScreen("queue/burst").output,
            "did finish launching\n10000 blocks, 0 out of order\nwill terminate\n");
}

constexpr const char* kBlocksAroundAnAlert =
    "did finish launching\n"
    "block 1 begins\n"
    "event\n"
    "block 1 ends with 1000\n"
    "block 2\n"
    "block 3\n"
    "will terminate\n";

TEST(MainQueueOnScreen, LaterBlocksWaitWhileABlockShowsAnAlertAndEventsDoNot) {
  EXPECT_EQ(onScreen("queue/alert-in-block").output, kBlocksAroundAnAlert);
}

TEST(MainQueueOnScreen, LaterBlocksWaitWhileAnOperationShowsAnAlertAndEventsDoNot) {
  EXPECT_EQ(onScreen("queue/alert-in-operation").output, kBlocksAroundAnAlert);
}

TEST(MainQueueOnScreen, WhatABlockThrowsIsLoggedAndTheNextOneRuns) {
  EXPECT_EQ(onScreen("queue/throwing-blocks").output,
            "did finish launching\n"
            "main queue: no such file\n"
            "main queue: NSRangeException: Index 7 is out of range 0 (in 'objectAtIndex:')\n"
            "next block\n"
            "will terminate\n");
}

}  // namespace
}  // namespace karno::test
