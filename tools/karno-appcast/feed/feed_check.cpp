#include "karno-appcast/feed/feed_check.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <pugixml.hpp>
#include <vector>

#include "karno-appcast/failure.h"
#include "karno-appcast/feed/item_check.h"
#include "karno-appcast/keys/key_changes.h"
#include "platform/text/one_line.h"

namespace karno::appcast {
namespace {

using platform::updates::FeedItem;

// What the updater's reader does not tell of a feed.
class FeedDocument {
 public:
  explicit FeedDocument(const std::string& bytes) {
    // The reader has read it already.
    document_.load_buffer(bytes.data(), bytes.size());
  }

  std::size_t itemCount() const {
    const auto items = channel().children("item");
    return static_cast<std::size_t>(std::distance(items.begin(), items.end()));
  }

  KeyChanges keyChanges() const { return KeyChanges(channel()); }

 private:
  pugi::xml_node channel() const { return document_.child("rss").child("channel"); }

  pugi::xml_document document_;
};

class FeedCheck {
 public:
  FeedCheck(const FeedStandard& standard, const Fetch& fetch, std::ostream& out)
      : standard_(standard), fetch_(fetch), out_(out) {}

  std::size_t run(const std::string& bytes) && {
    const auto items = platform::updates::parseAppcast(bytes);
    if (!items) throw Failure(items.error().localizedDescription());
    const FeedDocument document(bytes);
    const KeyChanges keyChanges = document.keyChanges();
    const std::size_t passedOver = document.itemCount() - items.value().size();
    if (passedOver > 0)
      fault(std::to_string(passedOver) +
            " items that launchers pass over: no version, nothing behind them, too long a text, or past the "
            "first thousand");
    const auto& looker = standard_.looker;
    const auto verdicts = looker ? verdictsOf(*looker, items.value()) : std::vector<Verdict>();
    for (std::size_t at = 0; at < items.value().size(); ++at)
      report(items.value()[at], looker ? &verdicts[at] : nullptr, keyChanges);
    const bool isOffering =
        std::ranges::any_of(verdicts, [](const Verdict& verdict) { return verdict.isOffered; });
    if (looker && !isOffering) out_ << "Nothing is offered.\n";
    return faults_;
  }

 private:
  // The archive of what is not offered anyway need not be there.
  void report(const FeedItem& item, const Verdict* verdict, const KeyChanges& keyChanges) {
    out_ << item.displayVersion << " (" << item.version << ")";
    if (verdict != nullptr) out_ << (verdict->isOffered ? ": offered" : ": not offered, " + verdict->reason);
    out_ << '\n';
    if (verdict != nullptr && !verdict->isOffered) return;
    // A launcher checks with its own key, whoever has signed.
    const auto key = standard_.publicKey ? standard_.publicKey : keyChanges.signerOf(item.version);
    const ItemStandard itsStandard{
        .publicKey = key, .identifier = standard_.identifier, .archives = standard_.archives};
    for (const std::string& each : faultsOf(item, itsStandard, fetch_)) fault(each);
  }

  // Addresses, names and what an archive holds are texts of strangers.
  void fault(const std::string& text) {
    ++faults_;
    out_ << "  wrong: " << platform::inOneLine(text) << '\n';
  }

  const FeedStandard& standard_;
  const Fetch& fetch_;
  std::ostream& out_;
  std::size_t faults_ = 0;
};

}  // namespace

std::size_t checkFeed(const std::string& bytes, const FeedStandard& standard, const Fetch& fetch,
                      std::ostream& out) {
  return FeedCheck(standard, fetch, out).run(bytes);
}

}  // namespace karno::appcast
