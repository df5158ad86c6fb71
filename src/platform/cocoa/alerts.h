#pragma once
#include "platform/alerts.h"

namespace karno::platform::cocoa {

// Modal alerts, NSAlert. An alert that cannot be shown is reported on the console log and answers
// kAlertNotShown, which is no button.
class CocoaAlerts final : public Alerts {
 public:
  long runModal(const Alert& alert) override;
};

inline constexpr long kAlertNotShown = -1001;  // NSModalResponseAbort

}  // namespace karno::platform::cocoa
