#include "platform/platform.h"

#include <atomic>
#include <stdexcept>

namespace karno::platform {
namespace {

std::atomic<Platform*> installed{nullptr};

}  // namespace

Platform& host() {
  Platform* const platform = installed.load(std::memory_order_acquire);
  if (platform == nullptr) throw std::logic_error("no platform is installed");
  return *platform;
}

void install(Platform& platform) { installed.store(&platform, std::memory_order_release); }

}  // namespace karno::platform
