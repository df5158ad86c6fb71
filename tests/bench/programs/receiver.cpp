#include "receiver.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <optional>
#include <stdexcept>
#include <thread>

#include "ipc/wrapper_notification.h"
#include "load.h"
#include "minimal/bare_observer.h"
#include "platform/platform.h"
#include "started_program.h"

namespace karno::bench {
namespace {

std::string textNumber(int number) { return fmt::format("bench-{}", number); }

}  // namespace

Receiver Receiver::launcher() {
  return {.command = {Programs::staged().launcher.string()},
          .ready = "(pid: ",
          .object = std::string(kWrapperNotificationObject)};
}

Receiver Receiver::bareObserver() {
  return {.command = {Programs::staged().bareObserver.string()},
          .ready = "listening",
          .object = std::string(kBareObserverObject)};
}

std::unique_ptr<SpokenProgram> Receiver::start() const {
  setenv("KARNO_BENCH_PROBE", "/dev/null", 1);
  setenv("KARNO_BENCH_WAIT", "1", 1);
  auto program = std::make_unique<SpokenProgram>(command);
  if (!program->lineWith(ready)) throw std::runtime_error("the receiver did not start");
  std::this_thread::sleep_for(std::chrono::milliseconds(amount(1500, 200)));
  return program;
}

void postNumber(const Receiver& receiver, int number) {
  auto notification = wrapperNotification(textNumber(number), std::nullopt);
  notification.object = receiver.object;
  if (!platform::host().distributedNotifications.post(notification)) {
    throw std::runtime_error("nothing could be posted");
  }
}

std::int64_t received(SpokenProgram& program, int number) {
  const auto line = program.lineWith("Received '" + textNumber(number) + "'");
  if (!line) throw std::runtime_error("a notification was not received");
  return line->readNanoseconds;
}

std::int64_t postAndRead(const Receiver& receiver, SpokenProgram& program, int first, int count) {
  auto posting = std::async(std::launch::async, [&receiver, first, count] {
    for (int number = first; number < first + count; ++number) postNumber(receiver, number);
  });
  std::int64_t last = 0;
  for (int number = first; number < first + count; ++number) last = received(program, number);
  posting.get();
  return last;
}

}  // namespace karno::bench
