#include "karno-appcast/feed/feed_names.h"

#include <string_view>

#include "karno-appcast/failure.h"

namespace karno::appcast {
namespace {

constexpr const char* kNamespace = "http://www.andymatuschak.org/xml-namespaces/sparkle";
constexpr std::string_view kDeclaration = "xmlns:";
constexpr std::string_view kBlanks = " \t\r\n";

std::string trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return std::string(text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1));
}

}  // namespace

FeedNames::FeedNames(pugi::xml_node rss) {
  for (const pugi::xml_attribute attribute : rss.attributes()) {
    const std::string_view name = attribute.name();
    if (name.starts_with(kDeclaration) && std::string_view(attribute.value()) == kNamespace)
      prefix_ = name.substr(kDeclaration.size());
  }
  if (!prefix_.empty()) return;
  if (rss.attribute("xmlns:sparkle"))
    throw Failure("the existing feed uses the prefix sparkle for other names");
  rss.append_attribute("xmlns:sparkle") = kNamespace;
  prefix_ = "sparkle";
}

std::string FeedNames::versionOf(pugi::xml_node item) const {
  const std::string name = of("version");
  const std::string version = trimmed(item.child(name.c_str()).text().get());
  return version.empty() ? trimmed(item.child("enclosure").attribute(name.c_str()).value()) : version;
}

}  // namespace karno::appcast
