#include "platform/linux/updater/feed/feed_element.h"

#include <utility>

#include "platform/text/one_line.h"

namespace karno::platform::updates {
namespace {

using pugi::xml_attribute;
using pugi::xml_node;

constexpr std::string_view kNamespace = "http://www.andymatuschak.org/xml-namespaces/sparkle";
constexpr std::string_view kDeclaration = "xmlns";
constexpr std::string_view kBlanks = " \t\r\n";

struct QualifiedName {
  std::string_view prefix;
  std::string_view local;  // empty when there is no prefix
};

QualifiedName qualified(std::string_view name) {
  const std::size_t colon = name.find(':');
  if (colon == std::string_view::npos) return {};
  return {.prefix = name.substr(0, colon), .local = name.substr(colon + 1)};
}

}  // namespace

FeedElement::FeedElement(xml_node node, const FeedElement* parent) : node_(node), parent_(parent) {
  for (const xml_attribute attribute : node_.attributes()) {
    const auto [prefix, local] = qualified(attribute.name());
    if (prefix == kDeclaration) prefixes_.emplace(local, attribute.value() == kNamespace);
  }
}

bool FeedElement::isUpdatesPrefix(std::string_view prefix) const {
  for (const FeedElement* element = this; element != nullptr; element = element->parent_) {
    const auto declared = element->prefixes_.find(prefix);
    if (declared != element->prefixes_.end()) return declared->second;
  }
  return false;
}

xml_node FeedElement::child(std::string_view local) const {
  return node_.find_child([&](xml_node each) {
    const QualifiedName name = qualified(each.name());
    return name.local == local && FeedElement(each, this).isUpdatesPrefix(name.prefix);
  });
}

std::string FeedElement::childText(std::string_view local) const { return inOneLine(textOf(child(local))); }

std::vector<std::string> FeedElement::childTexts(std::string_view local) const {
  std::vector<std::string> texts;
  for (const xml_node each : node_.children()) {
    const QualifiedName name = qualified(each.name());
    if (name.local == local && FeedElement(each, this).isUpdatesPrefix(name.prefix))
      texts.push_back(inOneLine(textOf(each)));
  }
  return texts;
}

std::string FeedElement::attribute(std::string_view local) const {
  const xml_attribute found = node_.find_attribute([&](xml_attribute each) {
    const QualifiedName name = qualified(each.name());
    return name.local == local && isUpdatesPrefix(name.prefix);
  });
  return inOneLine(withoutBlanksAround(found.value()));
}

std::string withoutBlanksAround(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return std::string(text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1));
}

// A text may come in several pieces: a CDATA section cannot hold its own end.
std::string textOf(xml_node element) {
  std::string pieces;
  for (const xml_node piece : element.children()) {
    if (piece.type() == pugi::node_pcdata || piece.type() == pugi::node_cdata) pieces += piece.value();
  }
  return withoutBlanksAround(pieces);
}

}  // namespace karno::platform::updates
