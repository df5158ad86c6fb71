#include "platform/cocoa/runtime/main_queue.h"

#include <gtest/gtest.h>

#include "../screen.h"

namespace karno::test {
namespace {

TEST(MainQueueOnScreen, ABurstFromSeveralThreadsRunsInEachThreadsOrder) {
  EXPECT_EQ(onScreen("queue/burst").output,
            "did finish launching\n10000 blocks, 0 out of order\nwill terminate\n");
}

TEST(MainQueueOnScreen, LaterBlocksRunWhileABlockShowsAnAlert) {
  EXPECT_EQ(onScreen("queue/alert-in-block").output,
            "did finish launching\n"
            "block 1 begins\n"
            "block 2\n"
            "block 3\n"
            "block 1 ends with 1000\n"
            "will terminate\n");
}

TEST(MainQueueOnScreen, WhatABlockThrowsIsLoggedAndTheNextOneRuns) {
  EXPECT_EQ(onScreen("queue/throwing-blocks").output,
            "did finish launching\n"
            "main queue: no such file\n"
            "main queue: an exception was raised\n"
            "next block\n"
            "will terminate\n");
}

}  // namespace
}  // namespace karno::test
