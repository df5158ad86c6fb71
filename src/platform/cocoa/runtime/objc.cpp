#include "platform/cocoa/runtime/objc.h"

#include <objc/runtime.h>

#include <atomic>
#include <map>
#include <mutex>
#include <string>

namespace karno::platform::objc {
namespace {

struct Overrides {
  std::atomic<bool> any = false;  // spares every look-up the mutex while there is none
  std::mutex mutex;
  std::map<std::string, Class, std::less<>> standIns;
};

Overrides& overrides() {
  static Overrides all;
  return all;
}

void setOverride(ClassName name, Class standIn) {
  Overrides& all = overrides();
  const std::lock_guard lock(all.mutex);
  if (standIn == nullptr) {
    all.standIns.erase(name.name());
  } else {
    all.standIns[name.name()] = standIn;
  }
  all.any = !all.standIns.empty();
}

Class overrideOf(const char* name) {
  Overrides& all = overrides();
  if (!all.any) {
    return nullptr;
  }
  const std::lock_guard lock(all.mutex);
  const auto found = all.standIns.find(name);
  return found == all.standIns.end() ? nullptr : found->second;
}

Class lookUp(const char* name) {
  const Class standIn = overrideOf(name);
  return standIn != nullptr ? standIn : reinterpret_cast<Class>(objc_getClass(name));
}

}  // namespace

Class classNamed(ClassName name) { return lookUp(name.name()); }

ClassOverride::ClassOverride(ClassName name, Class standIn)
    : name_(name), previous_(overrideOf(name.name())) {
  setOverride(name, standIn);
}

ClassOverride::~ClassOverride() { setOverride(name_, previous_); }

Sel registered(Selector selector) {
  // Registering is idempotent, so threads that race here store the same pointer.
  static std::array<std::atomic<Sel>, kMessageCount> known = {};
  std::atomic<Sel>& slot = known[selector.index()];
  Sel answer = slot.load(std::memory_order_acquire);
  if (answer == nullptr) {
    answer = sel_registerName(selector.name());
    slot.store(answer, std::memory_order_release);
  }
  return answer;
}

bool isPresent(const Message& message) {
  // Looking a class up can initialise it.
  const AutoreleasePool pool;
  Class owner = lookUp(message.className.data());
  if (owner == nullptr) {
    return false;
  }
  if (message.kind == '+') {
    owner = object_getClass(reinterpret_cast<Id>(owner));
  }
  return class_respondsToSelector(owner, sel_registerName(message.selector.data())) != 0;
}

namespace detail {

Id retain(Id object) { return send(object, "retain"); }
void release(Id object) { send<void>(object, "release"); }

}  // namespace detail

Object make(ClassName name) { return Object::adopting(send(send(classNamed(name), "alloc"), "init")); }

bool isKindOf(Id object, ClassName name) { return send<bool>(object, "isKindOfClass:", classNamed(name)); }

bool respondsTo(Receiver object, Selector selector) {
  return send<bool>(object, "respondsToSelector:", registered(selector));
}

}  // namespace karno::platform::objc
