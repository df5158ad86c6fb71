#include "message_check.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <objc/message.h>
#include <objc/runtime.h>

#include <algorithm>
#include <atomic>
#include <mutex>

#include "platform/never_destroyed.h"

namespace karno::platform::trial {
namespace {

using objc::kMessages;
using objc::Message;

bool isListed(std::string_view selector) {
  return std::ranges::any_of(kMessages, [&](const Message& row) { return row.selector == selector; });
}

bool hasRow(std::string_view className, char kind, std::string_view selector) {
  return std::ranges::any_of(kMessages, [&](const Message& row) {
    return row.className == className && row.kind == kind && row.selector == selector;
  });
}

// The class itself or one above it. A class is an object too, for which the instance methods of the root
// answer.
bool hasRowForClass(Class cls, char kind, std::string_view selector) {
  for (Class each = cls; each != nullptr; each = class_getSuperclass(each)) {
    if (hasRow(class_getName(each), kind, selector)) return true;
  }
  return kind == '+' && hasRow("NSObject", '-', selector);
}

bool hasRowForName(std::string_view className, char kind, std::string_view selector) {
  if (hasRow(className, kind, selector)) return true;
  const auto known = reinterpret_cast<Class>(objc_getClass(className.data()));
  return known != nullptr && hasRowForClass(known, kind, selector);
}

// The classes of a library lie in its data.
bool isMadeAtRunTime(Class cls) {
  Dl_info place = {};
  return ::dladdr(reinterpret_cast<const void*>(cls), &place) == 0;
}

// Made by a test, on nothing but the root.
bool isStandIn(Class cls) {
  if (!isMadeAtRunTime(cls)) return false;
  while (isMadeAtRunTime(cls)) cls = class_getSuperclass(cls);
  return class_getSuperclass(cls) == nullptr;
}

struct Watch {
  std::atomic<bool> isOn = false;
  std::mutex mutex;
  MessageCheck check;
  std::function<void(const std::string&)> handler;
};

Watch& watch() {
  static NeverDestroyed<Watch> one;
  return *one;
}

void look(objc::Id receiver, objc::Sel selector) {
  std::string missing;
  {
    const std::lock_guard lock(watch().mutex);
    missing = watch().check.missingRow(receiver, selector);
  }
  if (!missing.empty()) watch().handler(missing);
}

}  // namespace

std::string MessageCheck::missingRow(objc::Id receiver, objc::Sel selector) {
  const Class classOfReceiver = object_getClass(receiver);
  if (covered_.contains({classOfReceiver, selector})) return {};

  const bool isClass = class_isMetaClass(classOfReceiver) != 0;
  const Class cls = isClass ? reinterpret_cast<Class>(receiver) : classOfReceiver;
  const char kind = isClass ? '+' : '-';
  const std::string_view name = sel_getName(selector);
  if (isListed(name) && !hasRowForClass(cls, kind, name) && !isCoveredForStandIn(cls, kind, name)) {
    return fmt::format("{}[{} {}]", kind, class_getName(cls), name);
  }
  covered_.emplace(classOfReceiver, selector);
  return {};
}

bool MessageCheck::isCoveredForStandIn(Class cls, char kind, std::string_view selector) {
  if (!isStandIn(cls)) return false;
  const auto [entry, isNew] = standsInFor_.try_emplace(cls);
  Candidates& candidates = entry->second;
  if (isNew) {
    for (const Message& row : kMessages) candidates.insert(row.className);
  }
  std::erase_if(candidates, [&](std::string_view each) { return !hasRowForName(each, kind, selector); });
  return !candidates.empty();
}

void watchMessages(std::function<void(const std::string& missingRow)> handler) {
  watch().handler = std::move(handler);
  watch().isOn = true;
}

objc::detail::Function uncheckedFunction(objc::Id receiver, objc::Sel selector, bool /*returnsInMemory*/) {
  return reinterpret_cast<objc::detail::Function>(objc_msg_lookup(receiver, selector));
}

}  // namespace karno::platform::trial

// In the place of the platform's own, which the linker leaves out for it.
namespace karno::platform::objc {

detail::Function detail::messageFunction(Id receiver, Sel selector, bool returnsInMemory) {
  if (trial::watch().isOn) trial::look(receiver, selector);
  return trial::uncheckedFunction(receiver, selector, returnsInMemory);
}

}  // namespace karno::platform::objc
