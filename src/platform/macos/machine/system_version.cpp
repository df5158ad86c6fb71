#include "platform/macos/machine/system_version.h"

#include "platform/macos/foundation/guarded_answer.h"

extern "C" const double NSAppKitVersionNumber;

namespace karno::platform {

bool FoundationSystemVersion::isAtLeast(int major, int minor, int patch) const {
  const objc::AutoreleasePool pool;
  const OperatingSystemVersion version = {major, minor, patch};
  return guardedAnswer("asking for the system's version", false, [version] {
    const objc::Id process = objc::send(objc::classNamed("NSProcessInfo"), "processInfo");
    return objc::send<bool>(process, "isOperatingSystemAtLeastVersion:", version);
  });
}

double FoundationSystemVersion::appKitVersionNumber() const { return NSAppKitVersionNumber; }

}  // namespace karno::platform
