#pragma once
#include <cstdint>
#include <string>

#include "platform/cocoa/runtime/objc.h"
#include "platform/value.h"

// Objects that the launcher reads but never makes. The results live until the autorelease pool ends.
namespace karno::platform::trial {

objc::Id unsignedNumber(std::uint64_t number);

void removeAllObjects(objc::Id array);

objc::Id substring(objc::Id text, objc::Range units);

// An NSError; without an explanation the framework makes one up.
objc::Id error(const std::string& domain, objc::Integer code, const objc::Object& userInfo = objc::Object());
objc::Id explainedError(const std::string& domain, objc::Integer code, const std::string& explanation);

// What NSKeyedArchiver makes of an object.
std::string archive(const objc::Object& root);
std::string archive(const Value& root);

// What NSPropertyListSerialization makes of a value in the binary form.
std::string binaryList(const Value& value);

}  // namespace karno::platform::trial
