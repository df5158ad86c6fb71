#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "karno-appcast/archives/release_folder.h"
#include "karno-appcast/keys/ed25519.h"

namespace karno::appcast {

// What a person wishes of an item beside what its bundle says. What is absent stays as it is.
struct ItemWishes {
  std::optional<std::string> minimumSystem;  // in three parts
  std::optional<std::string> maximumSystem;
  std::optional<std::string> channel;
  std::optional<std::string> notesLink;
  std::optional<std::uint64_t> rolloutIntervalInSeconds;  // from one seventh of the machines to the next
  bool isCritical = false;
  bool operator==(const ItemWishes&) const = default;
};

struct FeedOptions {
  std::string urlPrefix;
  std::optional<std::string> title;  // of the channel; absent: as it is, or the application's name
  ItemWishes wishes;
  std::optional<std::string> wishedFor;  // a version; absent: releases that are new to the feed or replaced
  std::optional<std::string> replaced;   // the published version that may get another archive
  bool allowsOlder = false;              // new releases below published ones
  std::optional<std::string> nextPublicKey;  // that the newest release of the folder hands over to
};

// The text of a feed (RSS 2.0) that offers the releases, newest version first. Items of `existing`, which is
// the text of an earlier feed or empty, stay as they are unless one of the releases has their version or
// their place on the server; those of an unchanged archive keep their signature and whatever people wrote
// into them. A Failure when `existing` is no feed, or when a release is not fit to be signed.
std::string feedText(const std::vector<Release>& releases, const std::string& existing, const PrivateKey& key,
                     const FeedOptions& options);

}  // namespace karno::appcast
