#pragma once
#include <map>
#include <string>
#include <vector>

// Stands in for a Mac's header of that name: what the C++ examples for clients take from it, under the names
// and with the types that the public headers give. It keeps what is posted.
namespace karno::test {

struct StandInString {
  std::string text;
};
struct StandInDictionary {
  std::map<std::string, std::string> entries;
};
struct StandInCentre;
struct StandInCallBacks {};

struct DistributedPost {
  std::string name;
  std::string object;
  std::map<std::string, std::string> userInfo;
  unsigned long options = 0;
  bool operator==(const DistributedPost&) const = default;
};

std::vector<DistributedPost>& distributedPosts();

// The dictionaries that have been made and not been released.
int liveDictionaries();

// The same of strings; the constant ones do not count.
int liveStrings();

}  // namespace karno::test

using CFIndex = long;
using CFOptionFlags = unsigned long;
using CFStringEncoding = unsigned int;
using CFTypeRef = const void*;
using CFStringRef = const karno::test::StandInString*;
using CFNotificationName = CFStringRef;
using CFDictionaryRef = const karno::test::StandInDictionary*;
using CFAllocatorRef = const void*;
using CFNotificationCenterRef = karno::test::StandInCentre*;
using CFDictionaryKeyCallBacks = karno::test::StandInCallBacks;
using CFDictionaryValueCallBacks = karno::test::StandInCallBacks;

inline constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;
inline constexpr CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
inline constexpr CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
inline constexpr CFOptionFlags kCFNotificationDeliverImmediately = 1UL << 0;
inline constexpr CFOptionFlags kCFNotificationPostToAllSessions = 1UL << 1;

CFStringRef CFSTR(const char* text);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex numValues, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks);
void CFRelease(CFTypeRef object);
CFNotificationCenterRef CFNotificationCenterGetDistributedCenter();
void CFNotificationCenterPostNotificationWithOptions(CFNotificationCenterRef center, CFNotificationName name,
                                                     const void* object, CFDictionaryRef userInfo,
                                                     CFOptionFlags options);
