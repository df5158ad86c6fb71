#include "platform/cocoa/windows/application_icon.h"

namespace karno::platform::cocoa {

objc::Id applicationIcon() {
  return objc::send(objc::send(objc::classNamed("NSApplication"), "sharedApplication"),
                    "applicationIconImage");
}

}  // namespace karno::platform::cocoa
