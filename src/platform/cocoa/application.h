#pragma once
#include "platform/application.h"

namespace karno::platform::cocoa {

// The application object, NSApplication. Making this makes no application object: applicationMain() does,
// with a subclass and a delegate of ours. Main thread only.
class CocoaApplication final : public Application {
 public:
  bool isActive() const override;
  void activateIgnoringOtherApps() override;
  void setActivationPolicy(ActivationPolicy policy) override;
  void requestUserAttention(AttentionRequest request) override;
  void terminate() override;
};

}  // namespace karno::platform::cocoa
