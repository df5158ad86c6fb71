#include <fmt/format.h>

#include <array>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/strings.h"
#include "scenario.h"

namespace karno::test {
namespace {

constexpr int kThreads = 4;
constexpr int kBlocksPerThread = 2'500;

struct Burst {
  std::array<int, kThreads> next = {};
  int done = 0;
  int outOfOrder = 0;
};

void postBurst() {
  const auto burst = std::make_shared<Burst>();
  for (int thread = 0; thread < kThreads; ++thread) {
    std::thread([burst, thread] {
      for (int number = 0; number < kBlocksPerThread; ++number) {
        later([burst, thread, number] {
          int& expected = burst->next[static_cast<std::size_t>(thread)];
          burst->outOfOrder += expected == number ? 0 : 1;
          expected = number + 1;
          if (++burst->done == kThreads * kBlocksPerThread) {
            say(fmt::format("{} blocks, {} out of order", burst->done, burst->outOfOrder));
            terminate();
          }
        });
      }
    }).detach();
  }
}

// The first block waits in an alert for the answer that a key press started by an event gives.
void showAlertInFirstBlock(platform::Queue& queue) {
  queue.async([] {
    say("block 1 begins");
    const long answer = platform::host().alerts.runModal(
        {.messageText = "First", .informativeText = "", .buttons = {{"OK", "\r"}}});
    say(fmt::format("block 1 ends with {}", answer));
  });
  platform::Dispatch& dispatch = platform::host().dispatch;
  dispatch.mainQueue().async([] { say("block 2"); });
  dispatch.mainOperationQueue().async([] {
    say("block 3");
    terminate();
  });
  dispatch.mainEvents().async([] {
    say("event");
    pressWhenActive("Return");
  });
}

void throwInBlocks() {
  using namespace platform;
  later([] { throw std::runtime_error("no such file"); });
  later([] {
    const objc::Object array = objc::make("NSMutableArray");
    objc::send(array, "objectAtIndex:", objc::UInteger{7});
  });
  later([] {
    say("next block");
    terminate();
  });
}

}  // namespace

void runQueueScenario(std::string_view name) {
  if (name == "burst") {
    postBurst();
  } else if (name == "alert-in-block") {
    showAlertInFirstBlock(platform::host().dispatch.mainQueue());
  } else if (name == "alert-in-operation") {
    showAlertInFirstBlock(platform::host().dispatch.mainOperationQueue());
  } else if (name == "throwing-blocks") {
    throwInBlocks();
  }
}

}  // namespace karno::test
