#include "platform/macos/foundation/foundation_error.h"

#include "platform/cocoa/runtime/strings.h"

namespace karno::platform {

Error errorOf(objc::Id error) {
  return Error(
      objc::text(objc::send(error, "domain")), objc::send<objc::Integer>(error, "code"),
      {{std::string(kLocalizedDescriptionKey), objc::text(objc::send(error, "localizedDescription"))}});
}

}  // namespace karno::platform
