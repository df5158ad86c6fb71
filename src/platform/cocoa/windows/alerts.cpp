#include "platform/cocoa/windows/alerts.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/platform.h"

namespace karno::platform::cocoa {
namespace {

using objc::send;

constexpr const char* kEscape = "\033";

objc::Object makeAlert(const Alert& alert) {
  objc::Object native = objc::make("NSAlert");
  send<void>(native, "setAlertStyle:", static_cast<objc::UInteger>(alert.style));
  send<void>(native, "setMessageText:", objc::string(alert.messageText));
  send<void>(native, "setInformativeText:", objc::string(alert.informativeText));
  for (const AlertButton& button : alert.buttons) {
    const objc::Id added = send(native, "addButtonWithTitle:", objc::string(button.title));
    if (!button.keyEquivalent.empty()) {
      send<void>(added, "setKeyEquivalent:", objc::string(button.keyEquivalent));
    }
  }
  return native;
}

}  // namespace

Alert withUsualKeys(Alert alert) {
  if (alert.buttons.size() == 2 && alert.buttons[1].keyEquivalent.empty() &&
      alert.buttons[0].keyEquivalent != kEscape) {
    alert.buttons[1].keyEquivalent = kEscape;
  }
  return alert;
}

long CocoaAlerts::runModal(const Alert& alert) {
  const objc::AutoreleasePool pool;
  const Alert complete = withUsualKeys(alert);
  const auto answer = objc::guarded("alert", [&complete] {
    const objc::Object native = makeAlert(complete);
    return send<objc::Integer>(native, "runModal");
  });
  if (!answer) {
    host().consoleLog.log(answer.error().localizedDescription());
    return kAlertNotShown;
  }
  return answer.value();
}

}  // namespace karno::platform::cocoa
