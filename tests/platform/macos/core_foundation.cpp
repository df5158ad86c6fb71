#include "core_foundation.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <stdexcept>

#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::trial {
namespace {

CoreFoundation& foundation() { return CoreFoundation::current(); }

objc::Id objectOf(CFTypeRef object) { return static_cast<objc::Id>(const_cast<void*>(object)); }

std::string textOf(CFTypeRef string) {
  return string == nullptr ? "null" : fmt::format("\"{}\"", objc::text(objectOf(string)));
}

// Past the table of what the launcher sends, since this is no message of its own.
void setText(CFTypeRef mutableString, objc::Id text) {
  using SetString = void (*)(objc::Id, objc::Sel, objc::Id);
  const objc::Id object = objectOf(mutableString);
  const objc::Sel selector = sel_registerName("setString:");
  const IMP method = class_getMethodImplementation(object_getClass(object), selector);
  reinterpret_cast<SetString>(reinterpret_cast<void (*)()>(method))(object, selector, text);
}

// What the mutable copies of the tests become.
void change(const char* function, CFTypeRef mutableString, CFTypeRef locale) {
  foundation().record(function, fmt::format("{} by {}", textOf(mutableString), foundation().nameOf(locale)));
  setText(mutableString, objc::string(function).get());
}

}  // namespace

void CoreFoundation::record(const std::string& function, const std::string& arguments) {
  lines_.push_back(arguments.empty() ? function : function + " " + arguments);
  if (function == raisingFunction) throw std::runtime_error("raised by a stand-in");
}

CFTypeRef CoreFoundation::owned(const std::string& name) {
  const auto found = answers_.find(name);
  return owned(found == answers_.end() ? nullptr : found->second.get());
}

CFTypeRef CoreFoundation::owned(objc::Id object) {
  if (object == nullptr) return nullptr;
  ++ownedCount_;
  return objc::send(object, "retain");
}

void CoreFoundation::release(CFTypeRef object) {
  if (object == nullptr) {
    ADD_FAILURE() << "CFRelease() ends the process when it is given null";
    return;
  }
  --ownedCount_;
  objc::send<void>(objectOf(object), "release");
}

std::string CoreFoundation::nameOf(CFTypeRef object) const {
  for (const auto& [name, answer] : answers_) {
    if (object != nullptr && answer.get() == object) return name;
  }
  return object == nullptr ? "null" : "a stranger";
}

}  // namespace karno::platform::trial

using karno::platform::trial::change;
using karno::platform::trial::foundation;
using karno::platform::trial::objectOf;
using karno::platform::trial::setText;
using karno::platform::trial::textOf;

void CFRelease(CFTypeRef object) { foundation().release(object); }

CFTypeRef CFPreferencesCopyAppValue(CFTypeRef key, CFTypeRef applicationID) {
  foundation().record("CFPreferencesCopyAppValue", textOf(key) + " of " + textOf(applicationID));
  return foundation().owned("value");
}

unsigned char CFPreferencesAppValueIsForced(CFTypeRef key, CFTypeRef applicationID) {
  foundation().record("CFPreferencesAppValueIsForced", textOf(key) + " of " + textOf(applicationID));
  return foundation().isForced;
}

CFTypeRef CFLocaleCopyCurrent() {
  foundation().record("CFLocaleCopyCurrent", "");
  return foundation().owned("locale");
}

CFTypeRef CFStringCreateMutableCopy(CFTypeRef allocator, CFIndex maxLength, CFTypeRef string) {
  foundation().record("CFStringCreateMutableCopy",
                      fmt::format("{} {} {}", foundation().nameOf(allocator), maxLength, textOf(string)));
  const CFTypeRef copy = foundation().owned("mutable copy");
  if (copy != nullptr) {
    setText(copy, objectOf(string));
  }
  return copy;
}

void CFStringCapitalize(CFTypeRef mutableString, CFTypeRef locale) {
  change("CFStringCapitalize", mutableString, locale);
}

void CFStringLowercase(CFTypeRef mutableString, CFTypeRef locale) {
  change("CFStringLowercase", mutableString, locale);
}

void CFStringUppercase(CFTypeRef mutableString, CFTypeRef locale) {
  change("CFStringUppercase", mutableString, locale);
}

CFTypeRef CFStringTokenizerCreate(CFTypeRef allocator, CFTypeRef string, CFRange range, unsigned long options,
                                  CFTypeRef locale) {
  foundation().record(
      "CFStringTokenizerCreate",
      fmt::format("{} {} from {} length {} options {} by {}", foundation().nameOf(allocator), textOf(string),
                  range.location, range.length, options, foundation().nameOf(locale)));
  return foundation().owned("tokenizer");
}

unsigned long CFStringTokenizerAdvanceToNextToken(CFTypeRef tokenizer) {
  foundation().record("CFStringTokenizerAdvanceToNextToken", foundation().nameOf(tokenizer));
  return foundation().words.empty() ? 0 : 1;
}

CFRange CFStringTokenizerGetCurrentTokenRange(CFTypeRef tokenizer) {
  foundation().record("CFStringTokenizerGetCurrentTokenRange", foundation().nameOf(tokenizer));
  const CFRange word = foundation().words.front();
  foundation().words.erase(foundation().words.begin());
  return word;
}
