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

// The alert with Escape for the second of two buttons when neither was given it: an alert that asks for yes
// or no, in whatever language, can be answered from the keyboard both ways.
Alert withUsualKeys(Alert alert);

}  // namespace karno::platform::cocoa
