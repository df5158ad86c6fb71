#include "platform/macos/preferences/user_defaults.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"
#include "platform/macos/foundation/guarded_answer.h"
#include "platform/posix/console_line.h"

namespace karno::platform {
namespace {

// Nothing, with a line on the console log, where that raises.
template <class Open>
objc::Object opened(Open open) {
  return guardedAnswer("opening user defaults", objc::Object(), open);
}

objc::Object openSuite(const std::string& suiteName) {
  const objc::Id allocated = objc::send(objc::classNamed("NSUserDefaults"), "alloc");
  return objc::Object::adopting(objc::send(allocated, "initWithSuiteName:", objc::string(suiteName)));
}

}  // namespace

std::optional<Value> FoundationUserDefaults::objectForKey(std::string_view key) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer("reading a user default", std::optional<Value>(), [this, key] {
    return cocoa::valueOf(objc::send(defaults_, "objectForKey:", objc::string(key)));
  });
}

bool FoundationUserDefaults::boolForKey(std::string_view key) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer("reading a user default", false,
                       [this, key] { return objc::send<bool>(defaults_, "boolForKey:", objc::string(key)); });
}

void FoundationUserDefaults::setBool(bool value, std::string_view key) {
  if (!defaults_) {
    writeConsoleLine("User defaults: there is no suite " + name_ + " to store " + std::string(key) + " in");
    return;
  }
  const objc::AutoreleasePool pool;
  objc::guardedAndLogged("storing a user default", [this, value, key] {
    objc::send<void>(defaults_, "setBool:forKey:", value, objc::string(key));
  });
}

void FoundationUserDefaults::synchronize() {
  const objc::AutoreleasePool pool;
  objc::guardedAndLogged("storing user defaults",
                         [this] { static_cast<void>(objc::send<bool>(defaults_, "synchronize")); });
}

UserDefaults& FoundationUserDefaultsStore::standardUserDefaults() {
  std::call_once(standardMade_, [this] {
    const objc::AutoreleasePool pool;
    objc::Object standard = opened([] {
      return objc::Object::retaining(objc::send(objc::classNamed("NSUserDefaults"), "standardUserDefaults"));
    });
    standard_ = std::make_unique<FoundationUserDefaults>(std::move(standard), "standard");
  });
  return *standard_;
}

std::unique_ptr<UserDefaults> FoundationUserDefaultsStore::makeSuite(const std::string& suiteName) {
  const objc::AutoreleasePool pool;
  return std::make_unique<FoundationUserDefaults>(opened([&suiteName] { return openSuite(suiteName); }),
                                                  suiteName);
}

}  // namespace karno::platform
