#include "platform/cocoa/runtime/class_builder.h"

#include <fmt/format.h>
#include <objc/runtime.h>

namespace karno::platform::objc {
namespace {

constexpr const char* kStateName = "karnoState";

}  // namespace

void detail::logExceptionOfMethod(Sel selector) noexcept {
  try {
    logException(sel_getName(selector));
  } catch (...) {
  }
}

ClassBuilder::ClassBuilder(const char* name, Class superclass)
    : name_(name), cls_(objc_allocateClassPair(superclass, name, 0)) {}

void ClassBuilder::add(Class cls, const char* selector, detail::Function function,
                       const std::string& encoding) {
  if (cls != nullptr) {
    class_addMethod(cls, sel_registerName(selector), reinterpret_cast<IMP>(function), encoding.c_str());
  }
}

Class ClassBuilder::metaclass() const { return object_getClass(reinterpret_cast<Id>(cls_)); }

ClassBuilder& ClassBuilder::adopt(const char* protocol) {
  if (const auto found = objc_getProtocol(protocol); cls_ != nullptr && found != nullptr) {
    class_addProtocol(cls_, found);
  }
  return *this;
}

ClassBuilder& ClassBuilder::state() {
  if (cls_ != nullptr) {
    constexpr unsigned char kLog2Alignment = 3;
    class_addIvar(cls_, kStateName, sizeof(void*), kLog2Alignment, "^v");
  }
  return *this;
}

Class ClassBuilder::registerClass() {
  if (cls_ == nullptr) {
    return reinterpret_cast<Class>(objc_getClass(name_));
  }
  objc_registerClassPair(cls_);
  return cls_;
}

Sel selectorOf(const char* method) { return sel_registerName(method); }

void* stateOf(Id object) {
  void* state = nullptr;
  object_getInstanceVariable(object, kStateName, &state);
  return state;
}

void setState(Id object, void* state) { object_setInstanceVariable(object, kStateName, state); }

}  // namespace karno::platform::objc
