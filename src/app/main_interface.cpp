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

}  // namespace

std::shared_ptr<platform::ApplicationDelegate> loadMainInterface() {
  const auto objects = std::make_shared<Interface>(Interface{
      .mainWindow = std::make_shared<MainWindow>(platform::host().windows.promptWindow()),
      .delegate = std::make_shared<AppDelegate>(),
  });
  objects->delegate->setMainWindow(objects->mainWindow);
  return {objects, objects->delegate.get()};
}

}  // namespace karno
