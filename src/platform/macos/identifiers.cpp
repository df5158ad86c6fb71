#include "platform/macos/identifiers.h"

#include "platform/cocoa/objc.h"
#include "platform/cocoa/strings.h"
#include "platform/macos/guarded_answer.h"

namespace karno::platform {

std::string FoundationIdentifiers::makeUUID() {
  const objc::AutoreleasePool pool;
  return guardedAnswer("making an identifier", std::string(), [] {
    return objc::text(objc::send(objc::send(objc::classNamed("NSUUID"), "UUID"), "UUIDString"));
  });
}

}  // namespace karno::platform
