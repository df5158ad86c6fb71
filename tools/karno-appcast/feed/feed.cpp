#include "karno-appcast/feed/feed.h"

#include <algorithm>
#include <pugixml.hpp>
#include <sstream>

#include "karno-appcast/archives/mapped_file.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/feed/feed_item.h"
#include "karno-appcast/feed/feed_names.h"
#include "karno-appcast/feed/feed_texts.h"
#include "karno-appcast/feed/release_rules.h"
#include "karno-appcast/keys/key_changes.h"
#include "platform/linux/updater/feed/appcast.h"
#include "platform/version_order.h"

namespace karno::appcast {
namespace {

using platform::compareVersions;
using platform::updates::FeedItem;
using pugi::xml_node;

bool isSameVersion(const std::string& one, const std::string& other) {
  return !one.empty() && compareVersions(one, other) == 0;
}

// Nothing that somebody wrote into a feed can be a reason to stop here: it is no signature then.
bool isSignedBy(const std::string& publicKey, Bytes bytes, const char* signature) {
  try {
    return isSignatureOf(bytes, signature, publicKey);
  } catch (const Failure&) {
    return false;
  }
}

// Fills documents that are new or hold an earlier feed.
class FeedWriter {
 public:
  FeedWriter(xml_node rss, xml_node channel, const PrivateKey& key, const FeedOptions& options)
      : names_(rss), channel_(channel), keys_(channel), key_(key), options_(options) {}

  // From the version of the release on, another key signs.
  void changeKey(const Release& last, const std::string& nextPublicKey) {
    keys_.add({.from = key_.publicKey(), .to = nextPublicKey, .version = last.version});
    try {
      requireKey(last, nextPublicKey, key_);
    } catch (const Failure& failure) {
      throw Failure(last.fileName + ": " + failure.what());
    }
  }

  void add(const Release& release, const std::vector<FeedItem>& published) {
    const MappedFile archive(release.path);
    const std::string url = downloadURL(options_.urlPrefix, release.fileName);
    xml_node item = unchangedItem(release, archive.bytes());
    const bool isUnchanged = !item.empty();
    if (isUnchanged) {
      removeItems([&](xml_node each) { return isAt(url, each) && !isOf(release, each); });
    } else {
      item = newItem(release, url, published);
      writeFacts(item, names_, release);
      writeMinimumUpdate(item, names_, keys_.lastBefore(release.version));
    }
    if (isWishedFor(release, isUnchanged)) {
      writeWishes(item, names_, options_.wishes);
      hasWrittenWishes_ = true;
    }
    writeNotes(item, names_, release);
    writeAddress(item, url);
    if (!isUnchanged)
      writeSignature(item, names_, {key_.signatureOf(archive.bytes()), archive.bytes().size()});
  }

  // What was asked for and did not come to pass would else go unnoticed.
  void requireThatWishesCameTrue(const std::vector<Release>& releases) const {
    const auto isThere = [&releases](const std::optional<std::string>& version) {
      return !version || std::ranges::any_of(releases, [&](const Release& release) {
        return isSameVersion(*version, release.version);
      });
    };
    if (!isThere(options_.replaced))
      throw Failure("no archive in the folder has version " + *options_.replaced);
    if (!isThere(options_.wishedFor))
      throw Failure("no archive in the folder has version " + *options_.wishedFor);
    if (options_.wishes != ItemWishes() && !hasWrittenWishes_)
      throw Failure("no release in the folder is new to the feed; say --for VERSION");
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
  static bool isAt(const std::string& url, xml_node item) {
    return url == item.child("enclosure").attribute("url").value();
  }

  bool isWishedFor(const Release& release, bool isUnchanged) const {
    return options_.wishedFor ? isSameVersion(*options_.wishedFor, release.version) : !isUnchanged;
  }

  bool isOf(const Release& release, xml_node item) const {
    return isSameVersion(names_.versionOf(item), release.version);
  }

  std::string signerOf(const Release& release) const {
    return keys_.signerOf(release.version).value_or(key_.publicKey());
  }

  // The item that offers the very same bytes; none where the archive is new or another.
  xml_node unchangedItem(const Release& release, Bytes bytes) const {
    return channel_.find_child([&](xml_node item) {
      const auto signature = item.child("enclosure").attribute(names_.of("edSignature").c_str());
      return std::string_view(item.name()) == "item" && isOf(release, item) &&
             isSignedBy(signerOf(release), bytes, signature.value());
    });
  }

  // One that is still to be filled, or that gets another archive.
  xml_node newItem(const Release& release, const std::string& url, const std::vector<FeedItem>& published) {
    if (signerOf(release) != key_.publicKey())
      throw Failure("another key signs its version " + release.version +
                    ": the keys of this feed have changed");
    requireKey(release, keys_.carriedBy(release.version, key_.publicKey()), key_);
    xml_node item = channel_.find_child(
        [&](xml_node each) { return std::string_view(each.name()) == "item" && isOf(release, each); });
    const bool mayBeReplaced = options_.replaced && isSameVersion(*options_.replaced, release.version);
    if (item && !mayBeReplaced)
      throw Failure("its version " + release.version +
                    " is published with another archive; raise the build number, or say --replace " +
                    release.version);
    removeItems([&](xml_node each) { return each != item && (isOf(release, each) || isAt(url, each)); });
    if (item) return item;
    if (!options_.allowsOlder) requireNewest(release.version, audienceOf(release), published);
    return channel_.append_child("item");
  }

  Audience audienceOf(const Release& release) const {
    const ItemWishes wishes = options_.wishedFor ? ItemWishes() : options_.wishes;
    return {.minimumSystem = wishes.minimumSystem.value_or(release.minimumSystem),
            .maximumSystem = wishes.maximumSystem.value_or(""),
            .channel = wishes.channel.value_or("")};
  }

  template <class Predicate>
  void removeItems(Predicate predicate) {
    std::vector<xml_node> old;
    for (const xml_node item : channel_.children("item")) {
      if (predicate(item)) old.push_back(item);
    }
    for (const xml_node& item : old) channel_.remove_child(item);
  }

  const FeedNames names_;
  xml_node channel_;
  KeyChanges keys_;
  const PrivateKey& key_;
  const FeedOptions& options_;
  bool hasWrittenWishes_ = false;
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

// As launchers read them.
std::vector<FeedItem> itemsIn(const std::string& feed) {
  if (feed.empty()) return {};
  const auto items = platform::updates::parseAppcast(feed);
  if (!items) throw Failure("the existing feed cannot be read: " + items.error().localizedDescription());
  return items.value();
}

const Release& newestOf(const std::vector<Release>& releases) {
  return *std::ranges::max_element(releases, [](const Release& one, const Release& other) {
    return compareVersions(one.version, other.version) < 0;
  });
}

std::string textOf(const pugi::xml_document& document) {
  std::ostringstream text;
  document.save(text, "  ", pugi::format_default, pugi::encoding_utf8);
  return text.str();
}

}  // namespace

std::string feedText(const std::vector<Release>& releases, const std::string& existing, const PrivateKey& key,
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
  FeedWriter writer(rss, channel, key, options);
  if (options.nextPublicKey) writer.changeKey(newestOf(releases), *options.nextPublicKey);
  const std::vector<FeedItem> published = itemsIn(existing);
  for (const Release& release : releases) {
    try {
      writer.add(release, published);
    } catch (const Failure& failure) {
      throw Failure(release.fileName + ": " + failure.what());
    }
  }
  writer.requireThatWishesCameTrue(releases);
  writer.sortItems();
  return textOf(document);
}

}  // namespace karno::appcast
