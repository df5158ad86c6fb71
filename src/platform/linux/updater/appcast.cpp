#include "platform/linux/updater/appcast.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <pugixml.hpp>

#include "platform/linux/updater/update_errors.h"
#include "platform/text/one_line.h"

namespace karno::platform::updates {
namespace {

using pugi::xml_attribute;
using pugi::xml_node;

constexpr std::string_view kNamespace = "http://www.andymatuschak.org/xml-namespaces/sparkle";
constexpr std::string_view kBlanks = " \t\r\n";

std::string trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return std::string(text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1));
}

// What the prefix stands for at this element.
std::string_view namespaceOf(std::string_view prefix, xml_node element) {
  const std::string declaration = "xmlns:" + std::string(prefix);
  for (xml_node node = element; node; node = node.parent()) {
    if (const xml_attribute found = node.attribute(declaration.c_str())) return found.value();
  }
  return {};
}

bool isOurs(std::string_view qualified, std::string_view local, xml_node element) {
  const std::size_t colon = qualified.find(':');
  return colon != std::string_view::npos && qualified.substr(colon + 1) == local &&
         namespaceOf(qualified.substr(0, colon), element) == kNamespace;
}

xml_node child(xml_node parent, std::string_view local) {
  return parent.find_child([local](xml_node node) { return isOurs(node.name(), local, node); });
}

// A text may come in several pieces: a CDATA section cannot hold its own end.
std::string text(xml_node node) {
  std::string pieces;
  for (const xml_node piece : node.children()) {
    if (piece.type() == pugi::node_pcdata || piece.type() == pugi::node_cdata) pieces += piece.value();
  }
  return trimmed(pieces);
}

std::string childText(xml_node parent, std::string_view local) {
  return inOneLine(text(child(parent, local)));
}

std::string attribute(xml_node node, std::string_view local) {
  return inOneLine(trimmed(
      node.find_attribute([&](xml_attribute each) { return isOurs(each.name(), local, node); }).value()));
}

// Older feeds have it as an attribute of the enclosure.
std::string textOrAttribute(xml_node item, xml_node enclosure, std::string_view local) {
  std::string found = childText(item, local);
  return found.empty() ? attribute(enclosure, local) : found;
}

std::optional<std::uint64_t> number(std::string_view digits) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool isWhole = error == std::errc() && end == digits.data() + digits.size() && !digits.empty();
  return isWhole ? std::optional(value) : std::nullopt;
}

// The feed is not signed, so it may have nothing opened but a page of the web.
std::string pageAddress(const std::string& link) {
  const auto beginsWith = [&link](std::string_view scheme) {
    return link.size() > scheme.size() &&
           std::equal(scheme.begin(), scheme.end(), link.begin(), [](char one, char other) {
             return one == std::tolower(static_cast<unsigned char>(other));
           });
  };
  return beginsWith("https://") || beginsWith("http://") ? link : std::string();
}

FeedItem itemOf(xml_node item) {
  const xml_node enclosure = item.child("enclosure");
  const xml_node notes = item.child("description");
  FeedItem read;
  if (const std::string title = text(item.child("title")); !title.empty()) read.title = inOneLine(title);
  read.version = textOrAttribute(item, enclosure, "version");
  read.displayVersion = textOrAttribute(item, enclosure, "shortVersionString");
  if (read.displayVersion.empty()) read.displayVersion = read.version;
  read.downloadURL = trimmed(enclosure.attribute("url").value());
  read.informationURL = pageAddress(text(item.child("link")));
  read.length = number(trimmed(enclosure.attribute("length").value()));
  read.edSignature = attribute(enclosure, "edSignature");
  read.minimumSystemVersion = childText(item, "minimumSystemVersion");
  read.maximumSystemVersion = childText(item, "maximumSystemVersion");
  read.minimumUpdateVersion = childText(item, "minimumUpdateVersion");
  read.operatingSystem = attribute(enclosure, "os");
  read.channel = childText(item, "channel");
  read.notes = text(notes);
  const std::string format = attribute(notes, "format");
  read.notesFormat = format.empty() || format == "html" ? NotesFormat::HTML : NotesFormat::PlainText;
  read.isCritical = !child(item, "criticalUpdate").empty();
  read.isInformationOnly = read.downloadURL.empty() || !child(item, "informationalUpdate").empty();
  return read;
}

}  // namespace

Result<std::vector<FeedItem>> parseAppcast(std::string_view bytes) {
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_buffer(bytes.data(), bytes.size());
  if (!parsed)
    return updateError(UpdateErrorCode::FeedParse,
                       fmt::format("The feed could not be read: {}.", parsed.description()));
  const xml_node channel = document.child("rss").child("channel");
  if (!channel)
    return updateError(UpdateErrorCode::FeedParse, "The feed could not be read: it is no list of releases.");

  std::vector<FeedItem> items;
  for (const xml_node node : channel.children("item")) {
    FeedItem item = itemOf(node);
    if (item.version.empty() || (item.downloadURL.empty() && item.informationURL.empty())) continue;
    items.push_back(std::move(item));
    if (items.size() == kFeedItemsMax) break;
  }
  return items;
}

}  // namespace karno::platform::updates
