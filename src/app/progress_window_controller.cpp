#include "app/progress_window_controller.h"

#include "localise/karno_localise.h"
#include "platform/platform.h"

namespace karno {

std::shared_ptr<ProgressWindowController> ProgressWindowController::make() {
  struct Made : ProgressWindowController {
    explicit Made(std::unique_ptr<platform::ProgressWindow> window)
        : ProgressWindowController(std::move(window)) {}
  };
  const std::shared_ptr<ProgressWindowController> controller =
      std::make_shared<Made>(platform::host().windows.makeProgressWindow());
  controller->cancelButton().setTitle(KarnoLocalise::localise("CANCEL"));
  controller->cancelButton().setAction([weak = controller->weak_from_this()] {
    if (const auto self = weak.lock()) self->cancelButtonClicked();
  });
  return controller;
}

void ProgressWindowController::showWindow() {
  window_->show();
  progressIndicator().setMinValue(0.0);
  progressIndicator().setMaxValue(100.0);
  progressIndicator().setDoubleValue(0.0);
}

void ProgressWindowController::close() {
  window_->close();
  progressIndicator().stopAnimation();
}

void ProgressWindowController::cancelButtonClicked() {
  if (const auto target = delegate()) target->progressWindowControllerUserPressedCancel(*this);
}

void ProgressWindowController::setTitle(std::string title) {
  title_ = std::move(title);
  window_->setTitle(title_);
}

void ProgressWindowController::setMessage(std::string message) {
  message_ = std::move(message);
  textField().setStringValue(message_);
}

void ProgressWindowController::setProgress(std::int64_t progress) {
  progress_ = progress;
  progressIndicator().setDoubleValue(static_cast<double>(progress));
}

}  // namespace karno
