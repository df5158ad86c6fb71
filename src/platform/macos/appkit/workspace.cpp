#include "platform/macos/appkit/workspace.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/posix/console_line.h"

namespace karno::platform {

void MacWorkspace::openURL(const std::string& url) {
  const cocoa::ThreadPoolScope scope;
  objc::guardedAndLogged("open a URL", [&url] {
    const objc::Id parsed = objc::send(objc::classNamed("NSURL"), "URLWithString:", objc::string(url));
    if (parsed == nullptr) {
      writeConsoleLine("Workspace: this is no URL and cannot be opened: " + url);
      return;
    }
    objc::send<bool>(objc::send(objc::classNamed("NSWorkspace"), "sharedWorkspace"), "openURL:", parsed);
  });
}

}  // namespace karno::platform
