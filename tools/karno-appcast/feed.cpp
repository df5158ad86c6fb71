#include "karno-appcast/feed.h"

#include <algorithm>
#include <pugixml.hpp>
#include <sstream>

#include "karno-appcast/failure.h"
#include "karno-appcast/feed_names.h"
#include "karno-appcast/feed_texts.h"
#include "platform/version_order.h"

namespace karno::appcast {
namespace {

using platform::compareVersions;
using pugi::xml_node;

void addText(xml_node parent, const std::string& name, const std::string& text) {
  parent.append_child(name.c_str()).text().set(text.c_str());
}

// Fills documents that are new or hold an earlier feed.
class FeedWriter {
 public:
  FeedWriter(xml_node rss, xml_node channel, const FeedOptions& options)
      : names_(rss), channel_(channel), options_(options) {}

  void add(const Release& release) {
    const std::string url = downloadURL(options_.urlPrefix, release.fileName);
    removeItemsLike(release, url);
    xml_node item = channel_.append_child("item");
    addText(item, "title", release.applicationName + " " + release.shortVersion);
    addText(item, "pubDate", feedDate(release.publishedAt));
    addText(item, names_.of("version"), release.version);
    addText(item, names_.of("shortVersionString"), release.shortVersion);
    const std::string system = options_.minimumSystem.value_or(release.minimumSystem);
    if (!system.empty()) addText(item, names_.of("minimumSystemVersion"), system);
    addNotes(item, release);
    addEnclosure(item, release, url);
  }

  // Items with a version that cannot be read come last.
  void sortItems() {
    std::vector<xml_node> items(channel_.children("item").begin(), channel_.children("item").end());
    std::ranges::stable_sort(items, [this](const xml_node& one, const xml_node& other) {
      const std::string newer = names_.versionOf(one);
      const std::string older = names_.versionOf(other);
      if (newer.empty() || older.empty()) return !newer.empty() && older.empty();
      return compareVersions(newer, older) > 0;
    });
    for (const xml_node& item : items) channel_.append_move(item);
  }

 private:
  void removeItemsLike(const Release& release, const std::string& url) {
    std::vector<xml_node> old;
    for (const xml_node item : channel_.children("item")) {
      const std::string version = names_.versionOf(item);
      const bool isSameVersion = !version.empty() && compareVersions(version, release.version) == 0;
      if (isSameVersion || url == item.child("enclosure").attribute("url").value()) old.push_back(item);
    }
    for (const xml_node& item : old) channel_.remove_child(item);
  }

  void addNotes(xml_node item, const Release& release) const {
    if (release.notes.empty()) return;
    xml_node notes = item.append_child("description");
    if (release.notesFormat == NotesFormat::PlainText)
      notes.append_attribute(names_.of("format").c_str()) = "plain-text";
    notes.append_child(pugi::node_cdata).set_value(release.notes.c_str());
  }

  void addEnclosure(xml_node item, const Release& release, const std::string& url) const {
    xml_node enclosure = item.append_child("enclosure");
    enclosure.append_attribute("url") = url.c_str();
    enclosure.append_attribute("length") = static_cast<unsigned long long>(release.length);
    enclosure.append_attribute("type") = "application/octet-stream";
    enclosure.append_attribute(names_.of("edSignature").c_str()) = release.signature.c_str();
  }

  const FeedNames names_;
  xml_node channel_;
  const FeedOptions& options_;
};

void load(pugi::xml_document& document, const std::string& existing) {
  constexpr unsigned kKeepAll = pugi::parse_default | pugi::parse_comments | pugi::parse_pi;
  const pugi::xml_parse_result parsed = document.load_buffer(existing.data(), existing.size(), kKeepAll);
  if (!parsed) throw Failure(std::string("the existing feed cannot be read: ") + parsed.description());
  if (!document.child("rss").child("channel")) throw Failure("the existing feed is no list of releases");
}

void begin(pugi::xml_document& document) {
  xml_node rss = document.append_child("rss");
  rss.append_attribute("version") = "2.0";
  rss.append_child("channel");
}

void setTitle(xml_node channel, const std::vector<Release>& releases, const FeedOptions& options) {
  xml_node title = channel.child("title");
  if (title && !options.title) return;
  if (!title) title = channel.prepend_child("title");
  title.text().set(options.title.value_or(releases.front().applicationName).c_str());
}

std::string textOf(const pugi::xml_document& document) {
  std::ostringstream text;
  document.save(text, "  ", pugi::format_default, pugi::encoding_utf8);
  return text.str();
}

}  // namespace

std::string feedText(const std::vector<Release>& releases, const std::string& existing,
                     const FeedOptions& options) {
  pugi::xml_document document;
  if (existing.empty()) {
    begin(document);
  } else {
    load(document, existing);
  }
  const xml_node rss = document.child("rss");
  const xml_node channel = rss.child("channel");
  setTitle(channel, releases, options);
  FeedWriter writer(rss, channel, options);
  for (const Release& release : releases) writer.add(release);
  writer.sortItems();
  return textOf(document);
}

}  // namespace karno::appcast
