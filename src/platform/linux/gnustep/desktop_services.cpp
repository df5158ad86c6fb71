#include "platform/linux/gnustep/desktop_services.h"

#include "platform/cocoa/shared_workspace.h"
#include "platform/linux/gnustep/method_replacement.h"

// GNUstep's application object (gui 0.29) is a citizen of a GNUstep desktop, which the launcher does not run
// on. No default turns that off, so the messages that begin it are answered here:
// - While it finishes launching, it makes the shared workspace, which starts the notification daemon gdnc,
//   runs make_services and keeps a list of launched applications in a folder of the whole user.
// - It registers the program under its name as a provider of services; a second launcher of the same user
//   finds the name taken and asks what to do.
// - A text that gets the focus offers its selection to other windows; the main thread waits 5 s for the
//   pasteboard daemon gpbs to start. Copying by hand still starts it.
// - While it terminates, it makes a folder for user defaults, of which the launcher stores none, and starts
//   gdnc only to tell it that nobody observes any more.
namespace karno::platform::cocoa {
namespace {

using objc::Id;
using objc::Sel;

Id (*originalSharedWorkspace)(Id, Sel) = nullptr;
bool isWorkspaceWanted = false;

Id sharedWorkspaceWhenWanted(Id workspaceClass, Sel selector) {
  return isWorkspaceWanted ? originalSharedWorkspace(workspaceClass, selector) : nullptr;
}

Id answerNil(Id, Sel) { return nullptr; }

void doNothing(Id, Sel) {}

objc::Boolean sayDone(Id, Sel) { return 1; }

Class metaclassOf(objc::ClassName name) {
  return object_getClass(reinterpret_cast<Id>(objc::classNamed(name)));
}

}  // namespace

void keepDesktopServicesAway() {
  if (originalSharedWorkspace != nullptr) {
    return;
  }
  // The user's settings are read when these are made, before their storing is replaced.
  const Id userDefaults = objc::send(objc::classNamed("NSUserDefaults"), "standardUserDefaults");
  originalSharedWorkspace =
      replaceMethod(metaclassOf("NSWorkspace"), "sharedWorkspace", sharedWorkspaceWhenWanted);
  replaceMethod(objc::classNamed("GSServicesManager"), "registerAsServiceProvider", doNothing);
  replaceMethod(objc::classNamed("NSTextView"), "copySelection", doNothing);
  replaceMethod(object_getClass(userDefaults), "synchronize", sayDone);
  replaceMethod(metaclassOf("NSDistributedNotificationCenter"), "defaultCenter", answerNil);
}

objc::Id sharedWorkspace() {
  isWorkspaceWanted = true;
  return objc::send(objc::classNamed("NSWorkspace"), "sharedWorkspace");
}

}  // namespace karno::platform::cocoa
