#include "platform/macos/dispatch/main_thread_work.h"

#include <memory>
#include <utility>

namespace karno::platform {

bool runOnMainThread(Dispatch& dispatch, Block block, std::int64_t nanosecondsMax) {
  if (dispatch.isMainThread()) {
    block();
    return true;
  }
  const std::shared_ptr<DispatchGroup> done = dispatch.makeGroup();
  done->enter();
  dispatch.mainEvents().async([block = std::move(block), done] {
    const std::shared_ptr<void> leaving(nullptr, [&done](void*) { done->leave(); });
    block();
  });
  return done->wait(nanosecondsMax);
}

}  // namespace karno::platform
