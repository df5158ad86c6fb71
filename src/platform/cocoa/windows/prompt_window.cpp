#include "platform/cocoa/windows/prompt_window.h"

#include "platform/cocoa/runtime/guarded.h"

namespace karno::platform::cocoa {
namespace {

constexpr std::size_t kContinue = 0;
constexpr std::size_t kCancel = 1;

}  // namespace

void CocoaPromptWindow::makePanel() {
  std::vector<MessagePanel::ButtonSpec> buttons(2);
  buttons[kContinue] = {.title = "", .keyEquivalent = "\r", .onClick = [this] { continueButton_.press(); }};
  buttons[kCancel] = {.title = "", .keyEquivalent = "\033", .onClick = [this] { cancelButton_.press(); }};
  panel_ = std::make_unique<MessagePanel>(Window::Options{.miniaturizable = false}, std::move(buttons));
  panel_->window().setWillClose([this] { tellWillClose(); });
}

void CocoaPromptWindow::fillPanel() {
  if (panel_ == nullptr) return;
  panel_->setMessage(fuseMessage_.stringValue());
  panel_->setExplanation(continueMessage_.stringValue());
  panel_->setButtonTitle(kContinue, continueButton_.title());
  panel_->setButtonTitle(kCancel, cancelButton_.title());
  panel_->layOut();
}

void CocoaPromptWindow::makeKeyAndOrderFront() {
  objc::guardedAndLogged("show the prompt window", [this] {
    const objc::AutoreleasePool pool;
    if (panel_ == nullptr) makePanel();
    fillPanel();
    if (!panel_->window().isVisible()) panel_->window().center();
    panel_->window().show();
  });
}

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
  if (panel_ == nullptr) {
    tellWillClose();
    return;
  }
  objc::guardedAndLogged("close the prompt window", [this] { panel_->window().close(); });
}

void CocoaPromptWindow::tellWillClose() const {
  const auto told = observers_;
  for (const auto& observer : told) {
    // Like the notification centre: an observer removed by an earlier one is not told any more.
    if (!observer->removed) {
      objc::guardedAndLogged("window will close", observer->handler);
    }
  }
}

}  // namespace karno::platform::cocoa
