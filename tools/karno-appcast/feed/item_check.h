#pragma once
#include <optional>
#include <string>
#include <vector>

#include "karno-appcast/archives/published_files.h"
#include "platform/linux/updater/feed/appcast.h"

namespace karno::appcast {

// What an item is held against.
struct ItemStandard {
  std::optional<std::string>
      publicKey;  // that has to have signed it; absent: the one that its bundle carries
  std::optional<std::string> identifier;  // of the bundle; absent: any
  std::optional<std::string> archives;    // a folder that has the archives; absent: they are fetched
};

// All that is wrong with an item, a sentence each, as the updater and the installer would say it: its
// address, its archive's length, signature and contents, its notes.
std::vector<std::string> faultsOf(const platform::updates::FeedItem& item, const ItemStandard& standard,
                                  const Fetch& fetch);

}  // namespace karno::appcast
