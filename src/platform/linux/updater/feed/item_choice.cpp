#include "platform/linux/updater/feed/item_choice.h"

#include <algorithm>
#include <limits>

#include "platform/version_order.h"

namespace karno::platform::updates {
namespace {

bool isOlder(const std::string& one, const std::string& other) { return compareVersions(one, other) < 0; }

// Releases for other systems and other channels are nobody's business here. A feed that knows this system
// serves it with the items for it alone; of one that does not, a Mac's items are taken, so that what a Mac
// lives through can be lived through here.
std::vector<const FeedItem*> thoseForUs(const std::vector<FeedItem>& items) {
  std::vector<const FeedItem*> linux;
  std::vector<const FeedItem*> mac;
  for (const FeedItem& item : items) {
    if (!item.channel.empty()) continue;
    if (item.operatingSystem == "linux") linux.push_back(&item);
    if (item.operatingSystem.empty() || item.operatingSystem == "macos") mac.push_back(&item);
  }
  return linux.empty() ? mac : linux;
}

bool isCriticalFor(const FeedItem& item, const UpdateHost& host) {
  return item.isCritical && (item.criticalBelow.empty() || isOlder(host.version, item.criticalBelow));
}

bool isInformationOnlyFor(const FeedItem& item, const UpdateHost& host) {
  const auto isSame = [&](const std::string& version) { return compareVersions(host.version, version) == 0; };
  const auto isBelow = [&](const std::string& version) { return isOlder(host.version, version); };
  return item.isInformationOnly || std::ranges::any_of(item.informationVersions, isSame) ||
         std::ranges::any_of(item.informationBelow, isBelow);
}

FeedItem asThisHostSeesIt(FeedItem item, const UpdateHost& host) {
  item.isCritical = isCriticalFor(item, host);
  item.isInformationOnly = isInformationOnlyFor(item, host);
  return item;
}

bool isSystemTooOld(const FeedItem& item, const UpdateHost& host) {
  const auto [major, minor, patch] = versionParts(item.minimumSystemVersion);
  return !item.minimumSystemVersion.empty() && !host.system.isAtLeast(major, minor, patch);
}

bool isSystemTooNew(const FeedItem& item, const UpdateHost& host) {
  const auto [major, minor, patch] = versionParts(item.maximumSystemVersion);
  return !item.maximumSystemVersion.empty() && patch != std::numeric_limits<int>::max() &&
         host.system.isAtLeast(major, minor, patch + 1);
}

bool isSkipped(const FeedItem& item, const UpdateHost& host) {
  return !host.isUserAsking && !isCriticalFor(item, host) && !host.skippedVersion.empty() &&
         !isOlder(host.skippedVersion, item.version);
}

bool canTakeTheStep(const FeedItem& item, const UpdateHost& host) {
  return item.minimumUpdateVersion.empty() || !isOlder(host.version, item.minimumUpdateVersion);
}

const FeedItem* newestOf(const std::vector<const FeedItem*>& items) {
  const auto newest = std::ranges::max_element(items, isOlder, &FeedItem::version);
  return newest == items.end() ? nullptr : *newest;
}

}  // namespace

std::variant<FeedItem, NothingToOffer> chooseItem(const std::vector<FeedItem>& items,
                                                  const UpdateHost& host) {
  const std::vector<const FeedItem*> ours = thoseForUs(items);
  const FeedItem* const newest = newestOf(ours);
  if (newest == nullptr) return NothingToOffer::NoItem;

  std::vector<const FeedItem*> newer = ours;
  std::erase_if(newer, [&](const FeedItem* item) { return !isOlder(host.version, item->version); });
  if (newer.empty())
    return isOlder(newest->version, host.version) ? NothingToOffer::NewerThanFeed : NothingToOffer::OnNewest;

  std::vector<const FeedItem*> possible = newer;
  std::erase_if(possible, [&](const FeedItem* item) {
    return isSystemTooOld(*item, host) || isSystemTooNew(*item, host) || !canTakeTheStep(*item, host);
  });
  const FeedItem* const best = newestOf(possible);
  if (best == nullptr) {
    const FeedItem* const wanted = newestOf(newer);
    if (isSystemTooOld(*wanted, host)) return NothingToOffer::SystemTooOld;
    return isSystemTooNew(*wanted, host) ? NothingToOffer::SystemTooNew : NothingToOffer::NoItem;
  }
  if (isSkipped(*best, host)) return NothingToOffer::Skipped;
  return asThisHostSeesIt(*best, host);
}

}  // namespace karno::platform::updates
