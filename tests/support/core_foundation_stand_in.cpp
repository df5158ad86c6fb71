#include <list>
#include <memory>
#include <span>

#include "CoreFoundation/CoreFoundation.h"

namespace karno::test {
namespace {

struct World {
  std::list<StandInString> constants;
  std::list<StandInString> strings;
  std::list<StandInDictionary> dictionaries;
  std::vector<DistributedPost> posts;
};

World& world() {
  static World made;
  return made;
}

const std::string& textOf(const void* string) { return static_cast<CFStringRef>(string)->text; }

}  // namespace

std::vector<DistributedPost>& distributedPosts() { return world().posts; }

int liveDictionaries() { return static_cast<int>(world().dictionaries.size()); }

int liveStrings() { return static_cast<int>(world().strings.size()); }

}  // namespace karno::test

using karno::test::StandInString;
using karno::test::world;

CFStringRef CFSTR(const char* text) { return &world().constants.emplace_back(StandInString{text}); }

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding) {
  return &world().strings.emplace_back(StandInString{text});
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex numValues,
                                   const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*) {
  karno::test::StandInDictionary& made = world().dictionaries.emplace_back();
  const auto count = static_cast<std::size_t>(numValues);
  const std::span<const void*> all(values, count);
  for (const void* key : std::span<const void*>(keys, count)) {
    made.entries.emplace(karno::test::textOf(key), karno::test::textOf(all[made.entries.size()]));
  }
  return &made;
}

void CFRelease(CFTypeRef object) {
  const auto isIt = [object](const auto& made) { return &made == object; };
  world().dictionaries.remove_if(isIt);
  world().strings.remove_if(isIt);
}

CFNotificationCenterRef CFNotificationCenterGetDistributedCenter() { return nullptr; }

void CFNotificationCenterPostNotificationWithOptions(CFNotificationCenterRef, CFNotificationName name,
                                                     const void* object, CFDictionaryRef userInfo,
                                                     CFOptionFlags options) {
  world().posts.push_back({.name = name->text,
                           .object = karno::test::textOf(object),
                           .userInfo = userInfo->entries,
                           .options = options});
}
