#pragma once
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/linux/updater/feed/appcast.h"
#include "platform/system_version.h"

namespace karno::platform::updates {

// What an item of a feed is judged by.
struct UpdateHost {
  std::string version;  // CFBundleVersion
  const SystemVersion& system;
  std::string skippedVersion;  // that the user wanted to hear no more of; empty: none
  bool isUserAsking = false;   // then a skipped version is offered again
};

// Why there is nothing to offer.
enum class NothingToOffer { NoItem, OnNewest, NewerThanFeed, SystemTooOld, SystemTooNew, Skipped };

// The newest item that this host can take, critical and information only as it is for this host, or why there
// is none.
std::variant<FeedItem, NothingToOffer> chooseItem(const std::vector<FeedItem>& items, const UpdateHost& host);

}  // namespace karno::platform::updates
