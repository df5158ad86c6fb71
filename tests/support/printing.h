#pragma once
#include <ostream>

#include "platform/alerts.h"
#include "platform/error.h"
#include "platform/value.h"

// How values of the port look in the message of a failed test, and when alerts count as equal.
namespace karno::platform {

inline void PrintTo(const Value& value, std::ostream* out) { *out << value.description(); }
inline void PrintTo(const Error& error, std::ostream* out) { *out << error.description(); }

inline bool operator==(const AlertButton& a, const AlertButton& b) {
  return a.title == b.title && a.keyEquivalent == b.keyEquivalent;
}

inline bool operator==(const Alert& a, const Alert& b) {
  return a.style == b.style && a.messageText == b.messageText && a.informativeText == b.informativeText &&
         a.buttons == b.buttons;
}

inline void PrintTo(const Alert& alert, std::ostream* out) {
  *out << "alert of style " << static_cast<unsigned long>(alert.style) << ": " << alert.messageText << " / "
       << alert.informativeText;
  for (const AlertButton& button : alert.buttons) *out << " [" << button.title << "]";
}

}  // namespace karno::platform
