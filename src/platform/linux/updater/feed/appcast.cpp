#include "platform/linux/updater/feed/appcast.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <iterator>
#include <pugixml.hpp>

#include "platform/linux/updater/feed/feed_element.h"
#include "platform/linux/updater/update_errors.h"
#include "platform/text/one_line.h"

namespace karno::platform::updates {
namespace {

using pugi::xml_node;

// Older feeds have it as an attribute of the enclosure.
std::string textOrAttribute(const FeedElement& item, const FeedElement& enclosure, std::string_view local) {
  std::string found = item.childText(local);
  return found.empty() ? enclosure.attribute(local) : found;
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

NotesFormat formatOf(const FeedElement& notes) {
  const std::string format = notes.attribute("format");
  return format.empty() || format == "html" ? NotesFormat::HTML : NotesFormat::PlainText;
}

// Those without a language, else the first, are for everybody.
void readNotes(const FeedElement& item, FeedItem& read) {
  for (const xml_node node : item.node().children("description")) {
    const FeedElement notes(node, &item);
    std::string language = inOneLine(withoutBlanksAround(node.attribute("xml:lang").value()));
    if (language.empty() || read.notes.empty()) {
      read.notes = textOf(node);
      read.notesFormat = formatOf(notes);
    }
    if (!language.empty() && language.size() <= kFeedTextBytesMax)
      read.translatedNotes.push_back({std::move(language), textOf(node), formatOf(notes)});
  }
}

void readWhomItConcerns(const FeedElement& item, FeedItem& read) {
  const FeedElement critical(item.child("criticalUpdate"), &item);
  read.isCritical = !critical.node().empty();
  read.criticalBelow = critical.attribute("version");
  const FeedElement information(item.child("informationalUpdate"), &item);
  read.informationVersions = information.childTexts("version");
  read.informationBelow = information.childTexts("belowVersion");
  const bool isForSome = !read.informationVersions.empty() || !read.informationBelow.empty();
  read.isInformationOnly = read.downloadURL.empty() || (!information.node().empty() && !isForSome);
}

FeedItem itemOf(const FeedElement& item) {
  const FeedElement enclosure(item.node().child("enclosure"), &item);
  FeedItem read;
  if (const std::string title = textOf(item.node().child("title")); !title.empty())
    read.title = inOneLine(title);
  read.version = textOrAttribute(item, enclosure, "version");
  read.displayVersion = textOrAttribute(item, enclosure, "shortVersionString");
  if (read.displayVersion.empty()) read.displayVersion = read.version;
  read.downloadURL = withoutBlanksAround(enclosure.node().attribute("url").value());
  read.informationURL = pageAddress(textOf(item.node().child("link")));
  read.length = number(withoutBlanksAround(enclosure.node().attribute("length").value()));
  if (read.length == 0U) read.length.reset();
  read.edSignature = enclosure.attribute("edSignature");
  read.minimumSystemVersion = item.childText("minimumSystemVersion");
  read.maximumSystemVersion = item.childText("maximumSystemVersion");
  read.minimumUpdateVersion = item.childText("minimumUpdateVersion");
  read.operatingSystem = enclosure.attribute("os");
  read.channel = item.childText("channel");
  readNotes(item, read);
  read.notesURL = item.childText("releaseNotesLink");
  readWhomItConcerns(item, read);
  return read;
}

bool isOffer(const FeedItem& item) {
  return !item.version.empty() && !(item.downloadURL.empty() && item.informationURL.empty());
}

bool isWithinLimits(const FeedItem& item) {
  const std::array<std::string_view, 12> texts = {item.title ? *item.title : std::string_view(),
                                                  item.version,
                                                  item.displayVersion,
                                                  item.downloadURL,
                                                  item.informationURL,
                                                  item.edSignature,
                                                  item.minimumSystemVersion,
                                                  item.maximumSystemVersion,
                                                  item.minimumUpdateVersion,
                                                  item.operatingSystem,
                                                  item.channel,
                                                  item.criticalBelow};
  const auto areShort = [](const auto& all) {
    return std::all_of(all.begin(), all.end(),
                       [](std::string_view text) { return text.size() <= kFeedTextBytesMax; });
  };
  return areShort(texts) && areShort(item.informationVersions) && areShort(item.informationBelow);
}

// Ends the walk through a document when it has seen too much.
class LimitedWalk final : public pugi::xml_tree_walker {
 public:
  bool for_each(xml_node& node) override {
    if (node.type() == pugi::node_element && ++elements_ > kFeedElementsMax) return false;
    const auto attributes = node.attributes();
    attributes_ += static_cast<std::size_t>(std::distance(attributes.begin(), attributes.end()));
    return attributes_ <= kFeedAttributesMax;
  }

 private:
  std::size_t elements_ = 0;
  std::size_t attributes_ = 0;
};

Error unreadable(std::string_view reason) {
  return updateError(UpdateErrorCode::FeedParse, fmt::format("The feed could not be read: {}.", reason));
}

}  // namespace

Result<std::vector<FeedItem>> parseAppcast(std::string_view bytes) {
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_buffer(bytes.data(), bytes.size());
  if (!parsed) return unreadable(parsed.description());
  LimitedWalk walk;
  if (!document.traverse(walk)) return unreadable("it has too many elements or attributes");
  const FeedElement rss(document.child("rss"), nullptr);
  const FeedElement channel(rss.node().child("channel"), &rss);
  if (!channel.node()) return unreadable("it is no list of releases");

  std::vector<FeedItem> items;
  for (const xml_node node : channel.node().children("item")) {
    FeedItem item = itemOf(FeedElement(node, &channel));
    if (!isOffer(item) || !isWithinLimits(item)) continue;
    items.push_back(std::move(item));
    if (items.size() == kFeedItemsMax) break;
  }
  return items;
}

}  // namespace karno::platform::updates
