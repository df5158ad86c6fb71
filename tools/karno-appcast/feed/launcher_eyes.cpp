#include "karno-appcast/feed/launcher_eyes.h"

#include <tuple>
#include <variant>

#include "platform/linux/updater/feed/item_choice.h"
#include "platform/system_version.h"
#include "platform/version_order.h"

namespace karno::appcast {
namespace {

using platform::updates::chooseItem;
using platform::updates::FeedItem;
using platform::updates::NothingToOffer;
using platform::updates::UpdateHost;

class GivenSystem final : public platform::SystemVersion {
 public:
  explicit GivenSystem(std::string version) : version_(std::move(version)) {}

  bool isAtLeast(int major, int minor, int patch) const override {
    const std::string wanted =
        std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
    return platform::compareVersions(version_, wanted) >= 0;
  }
  double appKitVersionNumber() const override { return 0; }

 private:
  const std::string version_;
};

// Absent when the item would be offered if there were no other.
std::optional<NothingToOffer> hindranceOf(const FeedItem& item, const UpdateHost& host) {
  const auto choice = chooseItem({item}, host);
  const auto* const reason = std::get_if<NothingToOffer>(&choice);
  return reason == nullptr ? std::nullopt : std::optional(*reason);
}

// An item that is nobody's business here: what it would take to make it ours.
std::string whyNoItem(const FeedItem& item, const UpdateHost& host) {
  FeedItem other = item;
  other.minimumUpdateVersion.clear();
  if (hindranceOf(other, host) != NothingToOffer::NoItem)
    return "it needs version " + item.minimumUpdateVersion + " to be installed first";
  other.channel.clear();
  if (!item.channel.empty() && hindranceOf(other, host) != NothingToOffer::NoItem)
    return "it is in the channel " + item.channel;
  if (!item.operatingSystem.empty()) return "it is for " + item.operatingSystem;
  return "it is for other launchers";
}

// `offered` is null when nothing is.
std::string reasonOf(const FeedItem& item, const UpdateHost& host, const FeedItem* offered) {
  const auto hindrance = hindranceOf(item, host);
  const bool isOutdone = offered != nullptr && platform::compareVersions(item.version, offered->version) <= 0;
  // Items for one system alone hide those for the other.
  if (!hindrance) return isOutdone ? "a newer one is offered" : "other items are for this system alone";
  switch (*hindrance) {
    case NothingToOffer::OnNewest:
      return "it is what is installed";
    case NothingToOffer::NewerThanFeed:
      return "it is older than what is installed";
    case NothingToOffer::SystemTooOld:
      return "it needs system " + item.minimumSystemVersion;
    case NothingToOffer::SystemTooNew:
      return "it is for systems up to " + item.maximumSystemVersion;
    default:
      return whyNoItem(item, host);
  }
}

// Items have no name of their own.
auto identityOf(const FeedItem& item) {
  return std::tie(item.version, item.downloadURL, item.informationURL, item.edSignature, item.channel,
                  item.minimumSystemVersion, item.maximumSystemVersion);
}

}  // namespace

std::vector<Verdict> verdictsOf(const Looker& looker, const std::vector<FeedItem>& items) {
  const GivenSystem system(looker.system);
  const UpdateHost host{
      .version = looker.version, .system = system, .skippedVersion = {}, .isUserAsking = true};
  const auto choice = chooseItem(items, host);
  const auto* const offered = std::get_if<FeedItem>(&choice);
  std::vector<Verdict> verdicts;
  bool isFound = false;  // a second one alike is not offered
  for (const FeedItem& item : items) {
    const bool isOffered = !isFound && offered != nullptr && identityOf(item) == identityOf(*offered);
    isFound = isFound || isOffered;
    verdicts.push_back({.isOffered = isOffered, .reason = isOffered ? "" : reasonOf(item, host, offered)});
  }
  return verdicts;
}

}  // namespace karno::appcast
