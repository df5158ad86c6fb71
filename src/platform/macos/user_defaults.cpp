#include "platform/macos/user_defaults.h"

#include "platform/cocoa/guarded.h"
#include "platform/cocoa/strings.h"
#include "platform/cocoa/values.h"
#include "platform/posix/console_line.h"

namespace karno::platform {
namespace {

objc::Object openSuite(const std::string& suiteName) {
  const objc::Id allocated = objc::send(objc::classNamed("NSUserDefaults"), "alloc");
  return objc::Object::adopting(objc::send(allocated, "initWithSuiteName:", objc::string(suiteName)));
}

}  // namespace

std::optional<Value> FoundationUserDefaults::objectForKey(std::string_view key) const {
  const objc::AutoreleasePool pool;
  const auto value = objc::guarded("reading a user default", [this, key] {
    return cocoa::valueOf(objc::send(defaults_, "objectForKey:", objc::string(key)));
  });
  return value ? value.value() : std::nullopt;
}

bool FoundationUserDefaults::boolForKey(std::string_view key) const {
  const objc::AutoreleasePool pool;
  const auto value = objc::guarded("reading a user default", [this, key] {
    return objc::send<bool>(defaults_, "boolForKey:", objc::string(key));
  });
  return value && value.value();
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
    const objc::Id standard = objc::send(objc::classNamed("NSUserDefaults"), "standardUserDefaults");
    standard_ = std::make_unique<FoundationUserDefaults>(objc::Object::retaining(standard), "standard");
  });
  return *standard_;
}

std::unique_ptr<UserDefaults> FoundationUserDefaultsStore::makeSuite(const std::string& suiteName) {
  const objc::AutoreleasePool pool;
  const auto opened = objc::guarded("opening user defaults", [&suiteName] { return openSuite(suiteName); });
  return std::make_unique<FoundationUserDefaults>(opened ? opened.value() : objc::Object(), suiteName);
}

}  // namespace karno::platform
