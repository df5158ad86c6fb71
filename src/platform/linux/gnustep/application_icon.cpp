#include "platform/cocoa/windows/application_icon.h"

#include "platform/cocoa/runtime/strings.h"
#include "platform/platform.h"

namespace karno::platform::cocoa {
namespace {

// The framework does not find the icon in a bundle of a Mac's layout. Without one its own picture stands.
objc::Object loadIcon() {
  const objc::AutoreleasePool pool;
  const auto path = host().bundles.mainBundle().pathForResource("karno", "png", "");
  if (!path) return {};
  const objc::Id allocated = objc::send(objc::classNamed("NSImage"), "alloc");
  return objc::Object::adopting(objc::send(allocated, "initWithContentsOfFile:", objc::string(*path)));
}

}  // namespace

objc::Id applicationIcon() {
  const objc::Id application = objc::send(objc::classNamed("NSApplication"), "sharedApplication");
  static const bool isSet = [application] {
    const objc::Object icon = loadIcon();
    if (icon) objc::send<void>(application, "setApplicationIconImage:", icon);
    return true;
  }();
  static_cast<void>(isSet);
  return objc::send(application, "applicationIconImage");
}

}  // namespace karno::platform::cocoa
