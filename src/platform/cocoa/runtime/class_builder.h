#pragma once
#include <cstddef>
#include <string>
#include <type_traits>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::objc {
namespace detail {

// The type encodings of this system; BOOL's follows from its C++ type.
template <class T>
constexpr const char* encodingOf() {
  if constexpr (std::is_void_v<T>) {
    return "v";
  } else if constexpr (std::is_same_v<T, Id>) {
    return "@";
  } else if constexpr (std::is_same_v<T, Sel>) {
    return ":";
  } else if constexpr (std::is_same_v<T, bool>) {
    return "B";
  } else if constexpr (std::is_same_v<T, signed char>) {
    return "c";
  } else if constexpr (std::is_same_v<T, unsigned char>) {
    return "C";
  } else if constexpr (std::is_same_v<T, int>) {
    return "i";
  } else if constexpr (std::is_same_v<T, Integer> || std::is_same_v<T, long long>) {
    return "q";
  } else if constexpr (std::is_same_v<T, UInteger> || std::is_same_v<T, unsigned long long>) {
    return "Q";
  } else if constexpr (std::is_same_v<T, double>) {
    return "d";
  } else if constexpr (std::is_same_v<T, Class>) {
    return "#";
  } else {
    static_assert(std::is_pointer_v<T>, "no encoding is known for this type");
    return "^v";
  }
}

void logExceptionOfMethod(Sel selector) noexcept;

// Stands between the runtime and a C++ function: no exception leaves it.
template <auto Function>
struct Trampoline;

template <class R, class Self, class... Args, R (*Function)(Self, Args...)>
struct Trampoline<Function> {
  static R call(Self self, Sel selector, Args... args) noexcept {
    try {
      return Function(self, args...);
    } catch (...) {
      logExceptionOfMethod(selector);
      return R();
    }
  }
  static std::string encoding() {
    return (std::string(encodingOf<R>()) + "@:" + ... + std::string(encodingOf<Args>()));
  }
};

}  // namespace detail

// Makes an Objective-C class out of C++ functions. A method is a function that takes the receiver first and
// then the arguments; what it throws is written to the console log, and the message answers zero.
class ClassBuilder {
 public:
  ClassBuilder(const char* name, Class superclass);

  template <auto Function>
  ClassBuilder& method(const char* selector) {
    using Call = detail::Trampoline<Function>;
    add(cls_, selector, reinterpret_cast<detail::Function>(&Call::call), Call::encoding());
    return *this;
  }

  template <auto Function>
  ClassBuilder& classMethod(const char* selector) {
    using Call = detail::Trampoline<Function>;
    add(metaclass(), selector, reinterpret_cast<detail::Function>(&Call::call), Call::encoding());
    return *this;
  }

  // Declares that the class conforms to the protocol, where the runtime knows one of that name.
  ClassBuilder& adopt(const char* protocol);

  // Gives each instance a slot for a pointer to its C++ side, see stateOf(). Null at first.
  ClassBuilder& state();

  // The finished class; it stays for the life of the process. A class of that name that is there already is
  // answered unchanged.
  Class registerClass();

 private:
  static void add(Class cls, const char* selector, detail::Function function, const std::string& encoding);
  Class metaclass() const;

  const char* name_;
  Class cls_;
};

// The selector of a method that a ClassBuilder adds, for those who are to send it: targets, observers.
Sel selectorOf(const char* method);

// The C++ side of an instance of a class with state(). Borrowed: whoever sets it clears it before it dies.
void* stateOf(Id object);
void setState(Id object, void* state);

}  // namespace karno::platform::objc
