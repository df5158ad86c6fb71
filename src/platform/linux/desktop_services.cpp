#include "platform/linux/desktop_services.h"

#include <objc/runtime.h>

#include "platform/cocoa/objc.h"

// While it finishes launching, GNUstep's application object (gui 0.29) makes the shared workspace, which
// starts the notification daemon gdnc, runs make_services and keeps a list of launched applications in a
// folder of the whole user; and it registers the program under its name as a provider of services, where a
// second launcher of the same user finds the name taken. While it terminates, it makes a folder for user
// defaults, of which the launcher stores none, and starts gdnc only to tell it that nobody observes any more.
// No default turns any of this off, so the messages that begin it are answered here.
namespace karno::platform::cocoa {
namespace {

using WorkspaceMethod = objc::Id (*)(objc::Id, objc::Sel);

WorkspaceMethod originalSharedWorkspace = nullptr;
bool workspaceIsWanted = false;

objc::Id sharedWorkspaceWhenWanted(objc::Id workspaceClass, objc::Sel selector) {
  return workspaceIsWanted ? originalSharedWorkspace(workspaceClass, selector) : nullptr;
}

objc::Id noCenter(objc::Id, objc::Sel) { return nullptr; }

void registerNothing(objc::Id, objc::Sel) {}

objc::Boolean storeNothing(objc::Id, objc::Sel) { return 1; }

IMP replace(Class owner, objc::Selector name, objc::detail::Function replacement, const char* encoding) {
  return class_replaceMethod(owner, objc::registered(name), reinterpret_cast<IMP>(replacement), encoding);
}

Class metaclassOf(objc::ClassName name) {
  return object_getClass(reinterpret_cast<objc::Id>(objc::classNamed(name)));
}

}  // namespace

void keepDesktopServicesAway() {
  if (originalSharedWorkspace != nullptr) {
    return;
  }
  // Read before its storing is replaced.
  const objc::Id standardUserDefaults =
      objc::send(objc::classNamed("NSUserDefaults"), "standardUserDefaults");
  originalSharedWorkspace = reinterpret_cast<WorkspaceMethod>(
      replace(metaclassOf("NSWorkspace"), "sharedWorkspace",
              reinterpret_cast<objc::detail::Function>(sharedWorkspaceWhenWanted), "@@:"));
  replace(objc::classNamed("GSServicesManager"), "registerAsServiceProvider",
          reinterpret_cast<objc::detail::Function>(registerNothing), "v@:");
  replace(metaclassOf("NSDistributedNotificationCenter"), "defaultCenter",
          reinterpret_cast<objc::detail::Function>(noCenter), "@@:");
  replace(object_getClass(standardUserDefaults), "synchronize",
          reinterpret_cast<objc::detail::Function>(storeNothing), "C@:");
}

void allowWorkspace() { workspaceIsWanted = true; }

}  // namespace karno::platform::cocoa
