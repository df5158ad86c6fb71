#include "karno-appcast/info_plist.h"

#include <pugixml.hpp>

#include "karno-appcast/failure.h"
#include "karno-appcast/feed_texts.h"

namespace karno::appcast {
namespace {

// The string behind the key in the outermost dictionary.
std::string textFor(const char* key, pugi::xml_node dictionary) {
  for (const pugi::xml_node each : dictionary.children("key")) {
    if (std::string_view(each.text().get()) != key) continue;
    const pugi::xml_node value = each.next_sibling();
    const std::string_view text = std::string_view(value.name()) == "string" ? value.text().get() : "";
    if (!isTextForFeed(text))
      throw Failure(std::string("the ") + key + " of its Info.plist is no plain text");
    return std::string(text);
  }
  return {};
}

}  // namespace

BundleInfo readInfoPlist(std::string_view bytes) {
  if (bytes.starts_with("bplist")) throw Failure("its Info.plist is binary; it must be XML");
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_buffer(bytes.data(), bytes.size());
  if (!parsed) throw Failure(std::string("its Info.plist cannot be read: ") + parsed.description());
  const pugi::xml_node dictionary = document.child("plist").child("dict");
  if (!dictionary) throw Failure("its Info.plist is no property list with a dictionary");

  BundleInfo info{.name = textFor("CFBundleName", dictionary),
                  .version = textFor("CFBundleVersion", dictionary),
                  .shortVersion = textFor("CFBundleShortVersionString", dictionary),
                  .minimumSystem = textFor("LSMinimumSystemVersion", dictionary)};
  if (info.version.empty()) throw Failure("its Info.plist has no CFBundleVersion");
  return info;
}

}  // namespace karno::appcast
