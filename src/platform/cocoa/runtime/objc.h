#pragma once
#include <objc/objc.h>

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "platform/cocoa/runtime/selectors.h"

// Talking to Objective-C objects from C++ through the runtime's C interface. The only place that knows how a
// message is sent; the same calls run on macOS and on GNUstep.
namespace karno::platform::objc {

using Id = ::id;  // borrowed: lives as long as its owner or the current autorelease pool
using Sel = ::SEL;
using Boolean = ::BOOL;          // bool, signed char or unsigned char, by system and processor
using Integer = long;            // NSInteger
using UInteger = unsigned long;  // NSUInteger
struct Range {                   // NSRange
  UInteger location = 0;
  UInteger length = 0;
};
struct Point {  // NSPoint, in points
  double x = 0;
  double y = 0;
};
struct Size {  // NSSize, in points
  double width = 0;
  double height = 0;
};
struct Rect {  // NSRect; the origin is the lower left corner
  Point origin;
  Size size;
};

// A C int that a method really takes as int. A bare int is refused as an argument, since a literal meant for
// an NSInteger would leave the upper half of the register undefined.
struct CInt {
  int value;
};

// Starts the Objective-C side of the process: GNUstep wants the arguments before anything else is asked of
// it, macOS needs nothing. First thing in main(), before any other thread; further calls do nothing.
void startRuntime(int argc, char** argv);

// The class of that name, or null. A test can put another in its place, see ClassOverride.
Class classNamed(ClassName name);

// While it lives, classNamed() answers `standIn` for that name. Tests only; not while other threads look up.
class ClassOverride {
 public:
  ClassOverride(ClassName name, Class standIn);
  ~ClassOverride();
  ClassOverride(const ClassOverride&) = delete;
  ClassOverride& operator=(const ClassOverride&) = delete;

 private:
  ClassName name_;
  Class previous_;
};

Sel registered(Selector selector);

// Whether the class of this row exists and answers its message. A class can know a message without naming it
// (forwarding); none in the table does.
bool isPresent(const Message& message);

namespace detail {

using Function = void (*)();

// The function that carries a message to the receiver, which is not null. `returnsInMemory`: the result is a
// structure that the processor's calling convention puts into memory of the caller.
Function messageFunction(Id receiver, Sel selector, bool returnsInMemory);

Id retain(Id object);
void release(Id object);

}  // namespace detail

// Owns one reference to an Objective-C object, or none: copies retain, the destructor releases. As safe
// between threads as the object itself.
class Object {
 public:
  Object() = default;

  // Takes over a reference that is ours already (the result of alloc, copy, new).
  static Object adopting(Id object) { return Object(object); }

  // Adds a reference of our own to a borrowed object.
  static Object retaining(Id object) { return Object(detail::retain(object)); }

  Object(const Object& other) : object_(detail::retain(other.object_)) {}
  Object(Object&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Object& operator=(Object other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Object() { detail::release(object_); }

  Id get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  explicit Object(Id object) : object_(object) {}

  Id object_ = nullptr;
};

// What a message goes to.
class Receiver {
 public:
  Receiver(Id object) : id_(object) {}
  Receiver(Class cls) : id_(reinterpret_cast<Id>(cls)) {}
  Receiver(const Object& object) : id_(object.get()) {}
  Id id() const { return id_; }

 private:
  Id id_;
};

namespace detail {

inline Id argument(const Object& object) { return object.get(); }
inline Id argument(std::nullptr_t) { return nullptr; }
inline int argument(CInt number) { return number.value; }
inline Boolean argument(bool truth) { return static_cast<Boolean>(truth); }

template <class T>
T argument(const T& value) {
  static_assert(!std::is_same_v<T, int>, "say Integer, UInteger or CInt");
  return value;
}

template <class T>
using Wire = std::conditional_t<std::is_same_v<T, bool>, Boolean, T>;

template <class R>
constexpr bool isReturnedInMemory() {
  if constexpr (std::is_class_v<R>) {
    return sizeof(R) > 16;
  } else {
    return false;
  }
}

}  // namespace detail

// Sends one message, exactly typed: R and the arguments are what the method declares, where bool stands for
// BOOL and Object for id. A null receiver answers R{}. An NSException comes through as a foreign exception;
// see guarded.h. `send<Id>` answers a borrowed object.
template <class R = Id, class... Args>
R send(Receiver receiver, Selector selector, const Args&... args) {
  using Reply = detail::Wire<R>;
  using Method = Reply (*)(Id, Sel, decltype(detail::argument(args))...);
  if (receiver.id() == nullptr) {
    return R();
  }
  const Sel message = registered(selector);
  const auto method = reinterpret_cast<Method>(
      detail::messageFunction(receiver.id(), message, detail::isReturnedInMemory<R>()));
  if constexpr (std::is_same_v<R, bool>) {
    return method(receiver.id(), message, detail::argument(args)...) != 0;
  } else {
    return method(receiver.id(), message, detail::argument(args)...);
  }
}

// alloc and init.
Object make(ClassName name);

bool isKindOf(Id object, ClassName name);

// Whether the object has that method; for rows that are asked for.
bool respondsTo(Receiver object, Selector selector);

// Collects what is autoreleased on this thread until the end of the scope. Every thread of ours has one
// around each piece of work.
class AutoreleasePool {
 public:
  AutoreleasePool() : pool_(make("NSAutoreleasePool")) {}
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

 private:
  Object pool_;
};

}  // namespace karno::platform::objc
