#pragma once
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/updater/feed/appcast.h"

namespace karno::appcast {

// A launcher that looks at a feed.
struct Looker {
  std::string version;  // CFBundleVersion
  std::string system;   // in three parts
};

// What becomes of each item, in the order of the items.
struct Verdict {
  bool isOffered = false;
  std::string reason;  // why not; empty for the one that is offered
};

// By the updater's own choice among the items.
std::vector<Verdict> verdictsOf(const Looker& looker, const std::vector<platform::updates::FeedItem>& items);

}  // namespace karno::appcast
