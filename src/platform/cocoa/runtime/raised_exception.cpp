#include "platform/cocoa/runtime/raised_exception.h"

#include <utility>

#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::objc {
namespace {

thread_local std::string lastRaised;
thread_local bool isNoting = false;

std::string textOrNothing(Id string) { return string == nullptr ? std::string() : text(string); }

}  // namespace

void noteRaised(Id exception) noexcept {
  if (std::exchange(isNoting, true)) return;
  try {
    const AutoreleasePool pool;
    lastRaised = textOrNothing(send(exception, "name"));
    const std::string reason = textOrNothing(send(exception, "reason"));
    if (!reason.empty()) lastRaised += ": " + reason;
  } catch (...) {
    lastRaised.clear();
  }
  isNoting = false;
}

std::string takeRaised() { return std::exchange(lastRaised, {}); }

}  // namespace karno::platform::objc
