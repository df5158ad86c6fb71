#pragma once
#include <string>
#include <type_traits>

#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::trial {

// The type in the runtime's encoding, as far as the calling convention cares: a structure is its size in
// braces, and a pointer to anything but an object is "^".
template <class T>
std::string typeCode() {
  if constexpr (std::is_void_v<T>) {
    return "v";
  } else if constexpr (std::is_same_v<T, objc::Id>) {
    return "@";
  } else if constexpr (std::is_same_v<T, Class>) {
    return "#";
  } else if constexpr (std::is_same_v<T, objc::Sel>) {
    return ":";
  } else if constexpr (std::is_same_v<T, objc::Boolean>) {
    return "B";
  } else if constexpr (std::is_same_v<T, int>) {
    return "i";
  } else if constexpr (std::is_same_v<T, objc::Integer> || std::is_same_v<T, long long>) {
    return "q";
  } else if constexpr (std::is_same_v<T, objc::UInteger> || std::is_same_v<T, unsigned long long>) {
    return "Q";
  } else if constexpr (std::is_same_v<T, double>) {
    return "d";
  } else if constexpr (std::is_same_v<T, objc::Id*>) {
    return "^@";
  } else if constexpr (std::is_class_v<T>) {
    return "{" + std::to_string(sizeof(T)) + "}";
  } else {
    static_assert(std::is_pointer_v<T>, "no encoding is known for this type");
    return "^";
  }
}

// The same of a type encoding that the runtime has for a method. Throws std::invalid_argument for one that
// no method here should have.
std::string simplifiedEncoding(const std::string& encoding);

// Fails the running test unless the receiver has such a method with these types: the result, the receiver,
// the selector and then the arguments. Any thread.
void checkCall(objc::Id receiver, objc::Sel selector, const std::string& types);

}  // namespace karno::platform::trial
