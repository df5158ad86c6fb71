#include "stand_in.h"

#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <stdexcept>

#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

using Allocate = objc::Id (*)(objc::Id, objc::Sel);
using Deallocate = void (*)(objc::Id, objc::Sel);

// The runtime declares a method's function with other arguments on each system.
template <class Method>
Method methodOf(Class cls, objc::Sel selector) {
  return reinterpret_cast<Method>(reinterpret_cast<void (*)()>(class_getMethodImplementation(cls, selector)));
}

Class classNSObject() { return reinterpret_cast<Class>(objc_getClass("NSObject")); }

objc::Id allocateCounted(objc::Id self, objc::Sel selector) {
  StandIns::countLive(1);
  const Class metaclass = object_getClass(reinterpret_cast<objc::Id>(classNSObject()));
  return methodOf<Allocate>(metaclass, selector)(self, selector);
}

void deallocateCounted(objc::Id self, objc::Sel selector) {
  StandIns::countLive(-1);
  methodOf<Deallocate>(classNSObject(), selector)(self, selector);
}

}  // namespace

objc::Id StandIns::answerTo(const std::string& message) const {
  const auto found = answers_.find(message);
  return found == answers_.end() ? nullptr : found->second.get();
}

StandInClass::StandInClass(const char* name) : cls_(objc_allocateClassPair(classNSObject(), name, 0)) {
  classMethod("alloc", "@@:", allocateCounted);
  method("dealloc", "v@:", deallocateCounted);
}

void StandInClass::require(const char* selector, const char* types, const std::string& code) {
  EXPECT_EQ(simplifiedEncoding(types), code) << "is what the function for " << selector << " has";
}

void StandInClass::add(const char* selector, const char* types, void (*function)()) {
  class_addMethod(cls_, sel_registerName(selector), reinterpret_cast<IMP>(function), types);
}

void StandInClass::addToClass(const char* selector, const char* types, void (*function)()) {
  const Class metaclass = object_getClass(reinterpret_cast<objc::Id>(cls_));
  class_addMethod(metaclass, sel_registerName(selector), reinterpret_cast<IMP>(function), types);
}

Class StandInClass::registerClass() {
  objc_registerClassPair(cls_);
  return cls_;
}

objc::Object instanceOf(Class cls) {
  return objc::Object::adopting(objc::send(objc::send(cls, "alloc"), "init"));
}

objc::Id answer(objc::Sel selector) { return StandIns::current().answerTo(sel_getName(selector)); }

objc::Id recordAndAnswer(objc::Sel selector, const std::string& arguments) {
  return recordAndAnswer(std::string(sel_getName(selector)), arguments);
}

objc::Id recordAndAnswer(const std::string& name, const std::string& arguments) {
  StandIns& standIns = StandIns::current();
  standIns.record(arguments.empty() ? name : name + " " + arguments);
  if (standIns.raises()) throw std::runtime_error("raised by a stand-in");
  return standIns.answerTo(name);
}

std::string shown(objc::Id string) { return string == nullptr ? "nil" : objc::text(string); }

}  // namespace karno::platform::trial
