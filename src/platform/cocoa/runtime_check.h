#pragma once
#include "platform/cocoa/runtime/selectors.h"
#include "platform/runtime_check.h"

namespace karno::platform::cocoa {

// Looks the table of messages up in the Objective-C runtime.
class CocoaRuntimeCheck final : public RuntimeCheck {
 public:
  // `system`: the rows that are sent on this system alone, MacOSOnly or GNUstepOnly.
  explicit CocoaRuntimeCheck(objc::Where system) : system_(system) {}

  std::string programPath() const override;
  bool isExecutable(const std::string& path) const override;
  MessageCensus systemMessages() const override;
  Result<MessageCensus> updaterMessages(const std::string& framework) const override;
  bool exceptionsBecomeErrors() const override;

 private:
  const objc::Where system_;
};

}  // namespace karno::platform::cocoa
