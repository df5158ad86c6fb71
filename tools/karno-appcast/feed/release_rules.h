#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "karno-appcast/archives/release_folder.h"
#include "karno-appcast/keys/ed25519.h"
#include "platform/linux/updater/feed/appcast.h"

// What a release must be before it is signed. Each throws a Failure that does not name the archive.
namespace karno::appcast {

// The key that the bundle carries, which its own updates have to fit, must be `wanted`.
void requireKey(const Release& release, const std::string& wanted, const PrivateKey& signer);

// Whom a release is offered to. Empty: any system, and everybody.
struct Audience {
  std::string minimumSystem;
  std::string maximumSystem;
  std::string channel;
};

// No item that the same machines could be offered may be as new as the release: else it would reach nobody
// of them.
void requireNewest(const std::string& version, const Audience& audience,
                   const std::vector<platform::updates::FeedItem>& items);

}  // namespace karno::appcast
