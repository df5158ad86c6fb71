#pragma once
#include <string>

#include "platform/cocoa/runtime/objc.h"

namespace karno::platform {

// Keeps App Nap away from this process while it lives; the Mac may still go to sleep. Any thread, also
// another for the end than for the beginning.
class ProcessActivity {
 public:
  explicit ProcessActivity(const std::string& reason);
  ~ProcessActivity();
  ProcessActivity(const ProcessActivity&) = delete;
  ProcessActivity& operator=(const ProcessActivity&) = delete;

 private:
  objc::Object token_;
};

}  // namespace karno::platform
