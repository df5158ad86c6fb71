#include "platform/cocoa/windows/application_icon.h"

#include "platform/cocoa/runtime/strings.h"
#include "platform/linux/gnustep/launcher_icon.h"
#include "platform/linux/gnustep/method_replacement.h"
#include "platform/platform.h"

namespace karno::platform::cocoa {
namespace {

using objc::Id;

objc::Object loadIcon() {
  const objc::AutoreleasePool pool;
  const auto path = host().bundles.mainBundle().pathForResource("karno", "png", "");
  if (!path) return {};
  const Id allocated = objc::send(objc::classNamed("NSImage"), "alloc");
  return objc::Object::adopting(objc::send(allocated, "initWithContentsOfFile:", objc::string(*path)));
}

Id (*originalIcon)(Id, objc::Sel) = nullptr;

Id launcherIcon(Id application, objc::Sel selector) {
  static const objc::Object icon = loadIcon();
  return icon ? icon.get() : originalIcon(application, selector);
}

}  // namespace

void useLauncherIcon() {
  if (originalIcon != nullptr) return;
  originalIcon = replaceMethod(objc::classNamed("NSApplication"), "applicationIconImage", launcherIcon);
}

Id applicationIcon() {
  return objc::send(objc::send(objc::classNamed("NSApplication"), "sharedApplication"),
                    "applicationIconImage");
}

}  // namespace karno::platform::cocoa
