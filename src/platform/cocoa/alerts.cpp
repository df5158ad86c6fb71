#include "platform/cocoa/alerts.h"

#include "platform/cocoa/guarded.h"
#include "platform/cocoa/strings.h"
#include "platform/platform.h"

namespace karno::platform::cocoa {
namespace {

using objc::send;

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

long CocoaAlerts::runModal(const Alert& alert) {
  const objc::AutoreleasePool pool;
  const auto answer = objc::guarded("alert", [&alert] {
    const objc::Object native = makeAlert(alert);
    return send<objc::Integer>(native, "runModal");
  });
  if (!answer) {
    host().consoleLog.log(answer.error().localizedDescription());
    return kAlertNotShown;
  }
  return answer.value();
}

}  // namespace karno::platform::cocoa
