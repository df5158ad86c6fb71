#include "platform/macos/identifiers.h"

#include "platform/cocoa/objc.h"
#include "platform/cocoa/strings.h"

namespace karno::platform {

std::string FoundationIdentifiers::makeUUID() {
  const objc::AutoreleasePool pool;
  return objc::text(objc::send(objc::send(objc::classNamed("NSUUID"), "UUID"), "UUIDString"));
}

}  // namespace karno::platform
