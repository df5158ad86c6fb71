#include "karno-appcast/feed/feed_item.h"

#include "karno-appcast/feed/feed_texts.h"

namespace karno::appcast {
namespace {

using pugi::xml_attribute;
using pugi::xml_node;

// In front of the notes and the enclosure, which come last in a new item.
xml_node childOf(xml_node item, const std::string& name) {
  if (const xml_node found = item.child(name.c_str())) return found;
  xml_node behind = item.child("description");
  if (!behind) behind = item.child("enclosure");
  return behind ? item.insert_child_before(name.c_str(), behind) : item.append_child(name.c_str());
}

void setText(xml_node item, const std::string& name, const std::string& text) {
  childOf(item, name).text().set(text.c_str());
}

xml_attribute attributeOf(xml_node node, const std::string& name) {
  const xml_attribute found = node.attribute(name.c_str());
  return found ? found : node.append_attribute(name.c_str());
}

xml_node enclosureOf(xml_node item) {
  const xml_node found = item.child("enclosure");
  return found ? found : item.append_child("enclosure");
}

}  // namespace

void writeFacts(xml_node item, const FeedNames& names, const Release& release) {
  setText(item, "title", release.applicationName + " " + release.shortVersion);
  setText(item, "pubDate", feedDate(release.publishedAt));
  setText(item, names.of("version"), release.version);
  setText(item, names.of("shortVersionString"), release.shortVersion);
  if (!release.minimumSystem.empty()) setText(item, names.of("minimumSystemVersion"), release.minimumSystem);
}

void writeWishes(xml_node item, const FeedNames& names, const ItemWishes& wishes) {
  const auto set = [&](const char* local, const std::optional<std::string>& text) {
    if (text) setText(item, names.of(local), *text);
  };
  set("minimumSystemVersion", wishes.minimumSystem);
  set("maximumSystemVersion", wishes.maximumSystem);
  set("channel", wishes.channel);
  set("releaseNotesLink", wishes.notesLink);
  if (wishes.rolloutIntervalInSeconds)
    setText(item, names.of("phasedRolloutInterval"), std::to_string(*wishes.rolloutIntervalInSeconds));
  if (wishes.isCritical) childOf(item, names.of("criticalUpdate"));
}

void writeMinimumUpdate(xml_node item, const FeedNames& names, const std::string& version) {
  if (!version.empty()) setText(item, names.of("minimumUpdateVersion"), version);
}

void writeNotes(xml_node item, const FeedNames& names, const Release& release) {
  if (release.notes.empty()) return;
  xml_node notes = childOf(item, "description");
  notes.remove_children();
  const std::string format = names.of("format");
  if (release.notesFormat == NotesFormat::PlainText) {
    attributeOf(notes, format) = "plain-text";
  } else {
    notes.remove_attribute(format.c_str());
  }
  notes.append_child(pugi::node_cdata).set_value(release.notes.c_str());
}

void writeAddress(xml_node item, const std::string& url) {
  attributeOf(enclosureOf(item), "url") = url.c_str();
}

void writeSignature(xml_node item, const FeedNames& names, const SignedBytes& bytes) {
  xml_node enclosure = enclosureOf(item);
  attributeOf(enclosure, "length") = static_cast<unsigned long long>(bytes.length);
  if (!enclosure.attribute("type")) enclosure.append_attribute("type") = "application/octet-stream";
  attributeOf(enclosure, names.of("edSignature")) = bytes.signature.c_str();
}

}  // namespace karno::appcast
