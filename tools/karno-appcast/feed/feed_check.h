#pragma once
#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>

#include "karno-appcast/archives/published_files.h"
#include "karno-appcast/feed/launcher_eyes.h"

namespace karno::appcast {

// Who looks at a feed and what its items are held against.
struct FeedStandard {
  std::optional<Looker> looker;           // absent: every item is looked into
  std::optional<std::string> publicKey;   // that launchers check with; absent: the feed or a bundle tells
  std::optional<std::string> identifier;  // of the bundle; absent: any
  std::optional<std::string> archives;    // a folder that has the archives; absent: they are fetched
};

// Reads a feed with the launcher's own code and fetches what it offers. Prints what becomes of each item and
// what is wrong, a line each, and gives how much is wrong. A Failure when launchers cannot read the feed.
std::size_t checkFeed(const std::string& bytes, const FeedStandard& standard, const Fetch& fetch,
                      std::ostream& out);

}  // namespace karno::appcast
