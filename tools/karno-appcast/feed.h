#pragma once
#include <optional>
#include <string>
#include <vector>

#include "karno-appcast/release_folder.h"

namespace karno::appcast {

struct FeedOptions {
  std::string urlPrefix;
  std::optional<std::string> title;          // of the channel; absent: as it is, or the application's name
  std::optional<std::string> minimumSystem;  // in three parts, in place of what the bundles say
};

// The text of a feed (RSS 2.0) that offers the releases, newest version first. Items of `existing`, which is
// the text of an earlier feed or empty, stay as they are unless one of the releases has their version or
// their place on the server. A Failure when `existing` is no feed.
std::string feedText(const std::vector<Release>& releases, const std::string& existing,
                     const FeedOptions& options);

}  // namespace karno::appcast
