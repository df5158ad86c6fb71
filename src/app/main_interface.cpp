#include "app/main_interface.h"

#include "app/app_delegate.h"
#include "app/main_window.h"
#include "platform/platform.h"

namespace karno {
namespace {

struct Interface {
  std::shared_ptr<MainWindow> mainWindow;
  std::shared_ptr<AppDelegate> delegate;
};

void connectButtons(const std::shared_ptr<MainWindow>& mainWindow) {
  const std::weak_ptr<MainWindow> weak = mainWindow;
  mainWindow->continueButton().setAction([weak] {
    if (const auto self = weak.lock()) self->continueToInstallFusePressed();
  });
  mainWindow->cancelButton().setAction([weak] {
    if (const auto self = weak.lock()) self->cancelInstallFusePressed();
  });
}

}  // namespace

std::shared_ptr<platform::ApplicationDelegate> loadMainInterface() {
  const auto objects = std::make_shared<Interface>(Interface{
      .mainWindow = std::make_shared<MainWindow>(platform::host().windows.promptWindow()),
      .delegate = std::make_shared<AppDelegate>(),
  });
  connectButtons(objects->mainWindow);
  objects->delegate->setMainWindow(objects->mainWindow);
  return {objects, objects->delegate.get()};
}

}  // namespace karno
