#pragma once
#include <utility>

#include "platform/cocoa/runtime/objc.h"

// The few CoreFoundation functions that have no Objective-C form, declared here because the cross compiler
// brings no framework headers. Null is CoreFoundation's default allocator.
extern "C" {

using CFTypeRef = const void*;
using CFIndex = long;

struct CFRange {
  CFIndex location;
  CFIndex length;
};

void CFRelease(CFTypeRef object);

CFTypeRef CFPreferencesCopyAppValue(CFTypeRef key, CFTypeRef applicationID);
unsigned char CFPreferencesAppValueIsForced(CFTypeRef key, CFTypeRef applicationID);

CFTypeRef CFLocaleCopyCurrent();
CFTypeRef CFStringCreateMutableCopy(CFTypeRef allocator, CFIndex maxLength, CFTypeRef string);
void CFStringCapitalize(CFTypeRef mutableString, CFTypeRef locale);
void CFStringLowercase(CFTypeRef mutableString, CFTypeRef locale);
void CFStringUppercase(CFTypeRef mutableString, CFTypeRef locale);

CFTypeRef CFStringTokenizerCreate(CFTypeRef allocator, CFTypeRef string, CFRange range, unsigned long options,
                                  CFTypeRef locale);
unsigned long CFStringTokenizerAdvanceToNextToken(CFTypeRef tokenizer);
CFRange CFStringTokenizerGetCurrentTokenRange(CFTypeRef tokenizer);
}

namespace karno::platform {

// Owns one reference to what a Create or Copy function returned, or none. Strings, numbers, dates, data,
// arrays and dictionaries of CoreFoundation are the same objects as Foundation's.
class CFOwned {
 public:
  explicit CFOwned(CFTypeRef object) : object_(object) {}
  CFOwned(CFOwned&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  CFOwned& operator=(CFOwned&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  CFOwned(const CFOwned&) = delete;
  CFOwned& operator=(const CFOwned&) = delete;
  ~CFOwned() {
    if (object_ != nullptr) CFRelease(object_);
  }

  CFTypeRef get() const { return object_; }
  objc::Id object() const { return static_cast<objc::Id>(const_cast<void*>(object_)); }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  CFTypeRef object_;
};

}  // namespace karno::platform
