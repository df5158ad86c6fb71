#include "platform/cocoa/windows.h"

#include "platform/cocoa/guarded.h"

namespace karno::platform::cocoa {

void CocoaPromptWindow::addWillCloseObserver(std::function<void()> handler) {
  observers_.push_back(std::make_shared<Observer>(Observer{.handler = std::move(handler)}));
}

void CocoaPromptWindow::removeWillCloseObservers() {
  for (const auto& observer : observers_) {
    observer->removed = true;
  }
  observers_.clear();
}

void CocoaPromptWindow::close() {
  const auto told = observers_;
  for (const auto& observer : told) {
    // Like the notification centre: an observer removed by an earlier one is not told any more.
    if (!observer->removed) {
      objc::guardedAndLogged("window will close", observer->handler);
    }
  }
}

}  // namespace karno::platform::cocoa
