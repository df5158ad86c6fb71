#include "platform/linux/gnustep/alerts.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/windows/alerts.h"
#include "platform/cocoa/windows/message_panel.h"
#include "platform/linux/updater/update_texts.h"
#include "platform/platform.h"
#include "platform/posix/console_line.h"

namespace karno::platform {
namespace {

using cocoa::MessagePanel;
using cocoa::Window;

// The framework's own alert has this one where none was added, in English.
AlertButton onlyButton() {
  const updates::UpdateTexts texts(host().bundles.mainBundle(), host().files);
  return {.title = texts.text("OK"), .keyEquivalent = "\r"};
}

long answerOf(std::size_t index) { return kAlertFirstButtonReturn + static_cast<long>(index); }

Alert completed(const Alert& alert) {
  Alert complete = cocoa::withUsualKeys(alert);
  if (complete.buttons.empty()) complete.buttons.push_back(onlyButton());
  if (complete.buttons.front().keyEquivalent.empty()) complete.buttons.front().keyEquivalent = "\r";
  return complete;
}

// Closing the window by its frame is the answer that Escape gives, or that of the last button.
long answerOfClosing(const Alert& alert) {
  for (std::size_t i = 0; i < alert.buttons.size(); ++i) {
    if (alert.buttons[i].keyEquivalent == "\033") return answerOf(i);
  }
  return answerOf(alert.buttons.size() - 1);
}

std::vector<MessagePanel::ButtonSpec> buttonsOf(const Alert& alert) {
  std::vector<MessagePanel::ButtonSpec> specs;
  for (const AlertButton& button : alert.buttons) {
    const long answer = answerOf(specs.size());
    specs.push_back({.title = button.title, .keyEquivalent = button.keyEquivalent, .onClick = [answer] {
                       Window::stopModal(answer);
                     }});
  }
  return specs;
}

long show(const Alert& alert) {
  MessagePanel panel({.miniaturizable = false}, buttonsOf(alert));
  panel.setMessage(alert.messageText);
  panel.setExplanation(alert.informativeText);
  if (alert.style == AlertStyle::Critical) {
    const auto caution = host().bundles.mainBundle().pathForResource("caution", "png", "");
    if (caution) panel.setBadge(*caution);
  }
  panel.layOut();
  panel.window().setCloseRequest([answer = answerOfClosing(alert)] { Window::stopModal(answer); });
  panel.window().center();
  return panel.window().runModal();
}

}  // namespace

long LinuxAlerts::runModal(const Alert& alert) {
  const objc::AutoreleasePool pool;
  const Alert complete = completed(alert);
  const auto answer = objc::guarded("alert", [&complete] { return show(complete); });
  if (!answer) {
    writeConsoleLine(answer.error().localizedDescription());
    return cocoa::kAlertNotShown;
  }
  return answer.value();
}

}  // namespace karno::platform
