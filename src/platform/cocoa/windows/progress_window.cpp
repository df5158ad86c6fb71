#include "platform/cocoa/windows/progress_window.h"

#include <algorithm>
#include <array>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/windows/button_row.h"
#include "platform/cocoa/windows/message_panel.h"

namespace karno::platform::cocoa {
namespace {

constexpr double kProgressMargin = 20;

// A message that would be higher than is comfortable at one width gets the next one.
constexpr std::array<double, 3> kWidths = {380, 520, 700};
constexpr double kComfortableHeight = 120;

constexpr double kBarHeight = 16;
constexpr double kBarGap = 12;
constexpr double kProgressButtonsGap = 16;
constexpr double kBarBottom = kProgressMargin + kButtonHeight + kProgressButtonsGap;
constexpr double kMessageBottom = kBarBottom + kBarHeight + kBarGap;

// So that bar and button stay on the smallest screen; what of a message is below is cut.
constexpr double kMessageHeightMax = 400;

}  // namespace

struct CocoaProgressWindow::Native {
  explicit Native(const ButtonOutlet& cancelButton)
      : cancel{window.addButton({}, "", "\033", [&cancelButton] { cancelButton.press(); })} {
    window.setTabOrder(cancel);
    // Only the cancel button ends what the window waits for.
    window.setCloseRequest([&cancelButton] { cancelButton.press(); });
  }

  Window window{kApplicationName, kWidths.front() + 2 * kProgressMargin, kMessageBottom + kProgressMargin,
                Window::Options{.miniaturizable = false}};
  Label message = window.addLabel({}, "", true);
  ProgressBar bar = window.addProgressBar({});
  std::vector<Button> cancel;  // the one button of the row
};

CocoaProgressWindow::CocoaProgressWindow() = default;
CocoaProgressWindow::~CocoaProgressWindow() = default;

void CocoaProgressWindow::setTitle(const std::string& title) {
  title_ = title;
  layOut();
}

void CocoaProgressWindow::layOut() {
  if (native_ == nullptr) return;
  const objc::AutoreleasePool pool;
  native_->window.setTitle(title_.empty() ? kApplicationName : title_);
  native_->message.setText(textField_.stringValue());
  native_->cancel.front().setTitle(cancelButton_.title());

  double width = 0;
  double messageHeight = 0;
  for (const double possibleWidth : kWidths) {
    width = std::max(possibleWidth, buttonRowWidth(native_->cancel));
    messageHeight = std::min(native_->message.heightForWidth(width), kMessageHeightMax);
    if (messageHeight <= kComfortableHeight) break;
  }
  native_->window.setContentSize(width + 2 * kProgressMargin,
                                 kMessageBottom + messageHeight + kProgressMargin);
  native_->message.setFrame({kProgressMargin, kMessageBottom, width, messageHeight});
  native_->bar.setAccessibilityLabel(native_->message.text());
  native_->bar.setFrame({kProgressMargin, kBarBottom, width, kBarHeight});
  layOutButtonRow(native_->cancel, kProgressMargin + width, kProgressMargin);
}

void CocoaProgressWindow::moveBar() {
  if (native_ == nullptr) return;
  native_->bar.setRange(progressIndicator_.minValue(), progressIndicator_.maxValue());
  native_->bar.setValue(progressIndicator_.doubleValue());
  if (!progressIndicator_.isAnimated()) native_->bar.stopAnimation();
}

void CocoaProgressWindow::show() {
  objc::guardedAndLogged("show a progress window", [this] {
    const objc::AutoreleasePool pool;
    if (native_ == nullptr) native_ = std::make_unique<Native>(cancelButton_);
    layOut();
    moveBar();
    if (!native_->window.isVisible()) native_->window.center();
    native_->window.show();
  });
}

void CocoaProgressWindow::close() {
  if (native_ == nullptr) return;
  objc::guardedAndLogged("close a progress window", [this] { native_->window.close(); });
}

}  // namespace karno::platform::cocoa
