#include "platform/linux/updater/feed/appcast.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>

#include "../../../support/forked_process.h"
#include "platform/linux/dispatch/threads.h"

namespace karno::platform::updates {
namespace {

using test::ForkedProcess;

// Nobody joins the thread that reads, nor tells it to stop.
TEST(AppcastReader, MayBeAtWorkWhenTheProcessEnds) {
  std::string items;
  for (int count = 0; count < 5000; ++count) items += "<item><title>&amp;</title><enclosure url='a'/></item>";
  const std::string feed = "<rss><channel>" + items + "</channel></rss>";

  ForkedProcess process([&feed]() -> int {
    const auto timesRead = std::make_shared<std::atomic<int>>(0);
    startThread([feed, timesRead] {
      while (parseAppcast(feed)) ++*timesRead;
    });
    while (*timesRead == 0) continue;
    std::exit(42);
  });

  EXPECT_EQ(process.exitStatus(), 42);
}

}  // namespace
}  // namespace karno::platform::updates
