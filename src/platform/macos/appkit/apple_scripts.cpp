#include "platform/macos/appkit/apple_scripts.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform {
namespace {

// NSAppleScript answers an event descriptor, and nil when the script failed.
std::optional<std::string> run(const std::string& source) {
  const objc::Id allocated = objc::send(objc::classNamed("NSAppleScript"), "alloc");
  const auto script = objc::Object::adopting(objc::send(allocated, "initWithSource:", objc::string(source)));
  objc::Id error = nullptr;
  if (objc::send(script, "executeAndReturnError:", &error) != nullptr) return std::nullopt;
  return error == nullptr ? "(null)" : objc::text(objc::send(error, "description"));
}

}  // namespace

std::optional<std::string> FoundationAppleScripts::execute(const std::string& source) {
  const objc::AutoreleasePool pool;
  const auto ran = objc::guarded("run a script", [&source] { return run(source); });
  return ran ? ran.value() : ran.error().localizedDescription();
}

}  // namespace karno::platform
