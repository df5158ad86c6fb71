#include "karno-appcast/archives/info_plist.h"

#include <fmt/format.h>

#include "karno-appcast/failure.h"
#include "karno-appcast/feed/feed_texts.h"
#include "platform/property_lists/property_lists.h"

namespace karno::appcast {
namespace {

using platform::Value;

// Empty when there is no string of that key.
std::string textFor(std::string_view key, const Value::Dictionary& information) {
  const auto* const text = platform::entryOf<std::string>(information, key);
  if (text == nullptr) return {};
  if (!isTextForFeed(*text)) throw Failure(fmt::format("the {} of its Info.plist is no plain text", key));
  return *text;
}

}  // namespace

BundleInfo readInfoPlist(std::string_view bytes) {
  const auto list = platform::parsePropertyList(bytes);
  if (!list)
    throw Failure(fmt::format("its Info.plist is damaged ({})", list.error().localizedDescription()));
  const auto* const information = list.value().get<Value::Dictionary>();
  if (information == nullptr) throw Failure("its Info.plist is no property list with a dictionary");

  BundleInfo info{.name = textFor("CFBundleName", *information),
                  .version = textFor("CFBundleVersion", *information),
                  .shortVersion = textFor("CFBundleShortVersionString", *information),
                  .minimumSystem = textFor("LSMinimumSystemVersion", *information),
                  .publicKey = textFor("SUPublicEDKey", *information)};
  if (info.version.empty()) throw Failure("its Info.plist has no CFBundleVersion");
  return info;
}

}  // namespace karno::appcast
