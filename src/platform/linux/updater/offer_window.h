#pragma once
#include "platform/linux/updater/update_services.h"

namespace karno::platform::updates {

// The window as a user of a Mac knows it: the application's icon, what there is, its release notes in a frame
// that scrolls, "skip" at the left, "later" and "install" at the right. Return installs, Escape and closing
// the window are "later".
class CocoaOfferWindows final : public OfferWindows {
 public:
  std::unique_ptr<OfferWindow> show(const OfferTexts& texts,
                                    std::function<void(long choice)> answer) override;
};

}  // namespace karno::platform::updates
