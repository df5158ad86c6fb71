#include "platform/macos/machine/identifiers.h"

#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/macos/foundation/guarded_answer.h"

namespace karno::platform {

std::string FoundationIdentifiers::makeUUID() {
  const objc::AutoreleasePool pool;
  return guardedAnswer("making an identifier", std::string(), [] {
    return objc::text(objc::send(objc::send(objc::classNamed("NSUUID"), "UUID"), "UUIDString"));
  });
}

}  // namespace karno::platform
