#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/error.h"

namespace karno::platform::updates {

// How the release notes of an item are written.
enum class NotesFormat { HTML, PlainText };

// Release notes in another language than those for everybody.
struct TranslatedNotes {
  std::string language;  // a tag such as "pt-BR"
  std::string notes;
  NotesFormat format = NotesFormat::HTML;
};

// One release that a feed offers. Its texts are lines (see text/one_line.h), but for the notes; the addresses
// are as the feed has them.
struct FeedItem {
  std::optional<std::string> title;
  std::string version;                  // compared with CFBundleVersion
  std::string displayVersion;           // shown; the version where the feed gives no other
  std::string downloadURL;              // empty: there is nothing to download, only a page to read
  std::string informationURL;           // http or https; empty: none
  std::optional<std::uint64_t> length;  // of the download, in bytes; a feed's 0 is no length
  std::string edSignature;              // base64
  std::string minimumSystemVersion;     // empty: any
  std::string maximumSystemVersion;
  std::string minimumUpdateVersion;  // hosts older than this cannot take the step
  std::string operatingSystem;       // empty: a Mac's
  std::string channel;               // empty: the default channel
  std::string notes;
  NotesFormat notesFormat = NotesFormat::HTML;
  std::vector<TranslatedNotes> translatedNotes;
  std::string notesURL;  // a page that a Mac shows in the place of the notes; empty: none
  bool isCritical = false;
  std::string criticalBelow;                     // then only for hosts older than this; empty: for all
  bool isInformationOnly = false;                // for all hosts
  std::vector<std::string> informationVersions;  // of hosts that it is information only for
  std::vector<std::string> informationBelow;     // and for all hosts older than one of these
};

inline constexpr std::size_t kFeedItemsMax = 1000;

// A thousand items come to some 15,000 and 10,000.
inline constexpr std::size_t kFeedElementsMax = 100'000;
inline constexpr std::size_t kFeedAttributesMax = 100'000;

// Of each text but the notes. Longer ones would fill a screen, and a line of the log.
inline constexpr std::size_t kFeedTextBytesMax = 4'000;

// Reads an RSS 2.0 appcast, in a time that grows as the feed does. Names with a prefix count by the namespace
// that the prefix stands for. Items without a version, with neither a download nor a page of the web, or with
// a text beyond the limit are left out, and those after the first thousand. An error when it is no XML or no
// feed, or has more elements or attributes than anybody needs. Any thread.
Result<std::vector<FeedItem>> parseAppcast(std::string_view bytes);

}  // namespace karno::platform::updates
