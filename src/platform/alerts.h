#pragma once
#include <string>
#include <vector>

namespace karno::platform {

enum class AlertStyle : unsigned long { Warning = 0, Informational = 1, Critical = 2 };

struct AlertButton {
  std::string title;
  std::string keyEquivalent;  // "\r" for Return, "\033" for Escape; empty leaves the platform's choice
};

struct Alert {
  AlertStyle style = AlertStyle::Warning;
  std::string messageText;
  std::string informativeText;
  std::vector<AlertButton> buttons;  // in the order added; the first is the default button
};

inline constexpr long kAlertFirstButtonReturn = 1000;
inline constexpr long kAlertSecondButtonReturn = 1001;

class Alerts {
 public:
  virtual ~Alerts() = default;

  // Shows the alert and waits for an answer: 1000 for the first button, 1001 for the second and so on.
  // Main thread only; events and the main operation queue go on while it is up.
  virtual long runModal(const Alert& alert) = 0;
};

}  // namespace karno::platform
