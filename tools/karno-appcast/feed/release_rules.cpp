#include "karno-appcast/feed/release_rules.h"

#include "karno-appcast/failure.h"
#include "platform/version_order.h"

namespace karno::appcast {
namespace {

using platform::compareVersions;
using platform::updates::FeedItem;

constexpr std::string_view kKeyOfNobody = KARNO_PUBLIC_KEY_OF_NOBODY;

bool isNotAbove(const std::string& low, const std::string& high) {
  return low.empty() || high.empty() || compareVersions(low, high) <= 0;
}

bool couldBothBeOffered(const Audience& audience, const FeedItem& item) {
  const bool isForSomeMac = item.operatingSystem.empty() || item.operatingSystem == "macos";
  const bool isSeen = item.channel.empty() || item.channel == audience.channel;
  return isForSomeMac && isSeen && isNotAbove(audience.minimumSystem, item.maximumSystemVersion) &&
         isNotAbove(item.minimumSystemVersion, audience.maximumSystem);
}

}  // namespace

void requireKey(const Release& release, const std::string& wanted, const PrivateKey& signer) {
  if (release.publicKey.empty())
    throw Failure("its bundle has no SUPublicEDKey and would never take another update");
  if (release.publicKey == kKeyOfNobody)
    throw Failure(
        "its SUPublicEDKey is the key that nobody has the private half of; its bundle would never take "
        "another update");
  if (release.publicKey == signer.text())
    throw Failure("its SUPublicEDKey is what the file of the private key holds: that is the public one");
  if (release.publicKey == wanted) return;
  if (wanted != signer.publicKey())
    throw Failure("its SUPublicEDKey is not the new key, which the last release of the old one must carry");
  throw Failure(
      "its SUPublicEDKey is not that of the private key; its bundle would never take another update");
}

void requireNewest(const std::string& version, const Audience& audience, const std::vector<FeedItem>& items) {
  for (const FeedItem& item : items) {
    if (!couldBothBeOffered(audience, item) || compareVersions(version, item.version) > 0) continue;
    throw Failure("its version " + version + " is not above " + item.version +
                  ", which the same machines are offered already; raise the build number, or say --older");
  }
}

}  // namespace karno::appcast
