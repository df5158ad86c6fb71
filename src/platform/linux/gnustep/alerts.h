#pragma once
#include "platform/alerts.h"

namespace karno::platform {

// Modal alerts in a window of our own that looks as a Mac's alert does; the framework's has the style for a
// title and ignores the icon and the width of the screen. An alert that cannot be shown is reported on the
// console log and answers cocoa::kAlertNotShown, which is no button.
class LinuxAlerts final : public Alerts {
 public:
  long runModal(const Alert& alert) override;
};

}  // namespace karno::platform
