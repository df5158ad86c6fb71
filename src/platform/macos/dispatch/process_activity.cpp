#include "platform/macos/dispatch/process_activity.h"

#include <cstdint>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"

namespace karno::platform {
namespace {

constexpr std::uint64_t kUserInitiatedAllowingIdleSystemSleep = 0x00EFFFFF;

objc::Id processInfo() { return objc::send(objc::classNamed("NSProcessInfo"), "processInfo"); }

}  // namespace

ProcessActivity::ProcessActivity(const std::string& reason) {
  const cocoa::ThreadPoolScope pool;
  objc::guardedAndLogged("begin an activity", [&] {
    token_ = objc::Object::retaining(objc::send(processInfo(), "beginActivityWithOptions:reason:",
                                                kUserInitiatedAllowingIdleSystemSleep, objc::string(reason)));
  });
}

ProcessActivity::~ProcessActivity() {
  if (!token_) return;
  const cocoa::ThreadPoolScope pool;
  objc::guardedAndLogged("end an activity",
                         [this] { objc::send<void>(processInfo(), "endActivity:", token_); });
}

}  // namespace karno::platform
