#include <algorithm>
#include <ostream>
#include <pugixml.hpp>

#include "command_line/arguments.h"
#include "installer/bundle_facts.h"
#include "karno-appcast/archives/info_plist.h"
#include "karno-appcast/archives/published_files.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/feed/feed_names.h"
#include "karno-appcast/feed/feed_texts.h"
#include "karno-appcast/feed/item_check.h"
#include "karno-appcast/feed/launcher_eyes.h"
#include "karno-appcast/keys/base64.h"
#include "karno-appcast/keys/key_changes.h"
#include "karno-appcast/verbs.h"
#include "platform/posix/files/whole_file.h"
#include "platform/version_order.h"

namespace karno::appcast {
namespace {

using command_line::Arguments;
using command_line::UsageError;
using platform::updates::FeedItem;

constexpr std::size_t kPublicKeyBytes = 32;

// The launcher whose eyes look at the feed; what is absent is not known of it.
struct Launcher {
  std::optional<std::string> version;
  std::optional<std::string> publicKey;
  std::optional<std::string> identifier;
};

Launcher launcherIn(const std::string& bundle) {
  const auto facts = installer::readBundleFacts(bundle);
  if (!facts) throw Failure(bundle + ": " + facts.error().text);
  const auto file = platform::readWholeFile(bundle + "/Contents/Info.plist");
  if (!file) throw systemFailure("cannot read " + bundle, static_cast<int>(file.error().code()));
  const BundleInfo info = readInfoPlist(file.value().bytes);
  if (info.publicKey.empty()) throw Failure(bundle + " has no SUPublicEDKey and takes no update");
  return {.version = info.version, .publicKey = info.publicKey, .identifier = facts.value().identifier};
}

std::optional<Looker> lookerIn(const Arguments& arguments, const Launcher& launcher) {
  const auto version = arguments.value("--version-of-launcher");
  const auto system = arguments.value("--system");
  const auto looking = version ? version : launcher.version;
  if (looking && !system) throw UsageError("check needs --system for what a launcher would be offered");
  if (!looking && system) throw UsageError("--system goes with --against or --version-of-launcher");
  if (!looking) return std::nullopt;
  try {
    return Looker{.version = *looking, .system = threePartVersion(*system)};
  } catch (const Failure& failure) {
    throw UsageError(failure.what());
  }
}

std::optional<std::string> publicKeyIn(const Arguments& arguments) {
  auto key = arguments.value("--public-key");
  if (key && !bytesOfBase64(*key, kPublicKeyBytes))
    throw UsageError("--public-key needs a public key: base64 of 32 bytes");
  return key;
}

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

  // Of the first item with that version and address.
  std::string notesLinkOf(const FeedItem& wanted) {
    const FeedNames names(document_.child("rss"));
    for (const pugi::xml_node item : channel().children("item")) {
      const bool isSame = names.versionOf(item) == wanted.version &&
                          item.child("enclosure").attribute("url").value() == wanted.downloadURL;
      if (isSame) return item.child(names.of("releaseNotesLink").c_str()).text().get();
    }
    return {};
  }

 private:
  pugi::xml_node channel() const { return document_.child("rss").child("channel"); }

  pugi::xml_document document_;
};

class FeedCheck {
 public:
  FeedCheck(const Arguments& arguments, std::ostream& out)
      : publicKey_(publicKeyIn(arguments)), archives_(arguments.value("--archives")), out_(out) {
    if (const auto bundle = arguments.value("--against")) launcher_ = launcherIn(*bundle);
    looker_ = lookerIn(arguments, launcher_);
  }

  // How many things are wrong.
  std::size_t run(const std::string& place) {
    const std::string bytes = readFeed(place);
    const auto items = platform::updates::parseAppcast(bytes);
    if (!items) throw Failure(place + ": " + items.error().localizedDescription());
    FeedDocument document(bytes);
    const std::size_t passedOver = document.itemCount() - items.value().size();
    if (passedOver > 0)
      fault(std::to_string(passedOver) +
            " items that launchers pass over: no version, nothing behind them, or too long a text");
    const auto verdicts = looker_ ? verdictsOf(*looker_, items.value()) : std::vector<Verdict>();
    for (std::size_t at = 0; at < items.value().size(); ++at)
      report(items.value()[at], looker_ ? &verdicts[at] : nullptr, document);
    const bool isOffering =
        std::ranges::any_of(verdicts, [](const Verdict& verdict) { return verdict.isOffered; });
    if (looker_ && !isOffering) out_ << "Nothing is offered.\n";
    return faults_;
  }

 private:
  // The archive of what is not offered anyway need not be there.
  void report(const FeedItem& item, const Verdict* verdict, FeedDocument& document) {
    out_ << item.displayVersion << " (" << item.version << ")";
    if (verdict != nullptr) out_ << (verdict->isOffered ? ": offered" : ": not offered, " + verdict->reason);
    out_ << '\n';
    if (verdict != nullptr && !verdict->isOffered) return;
    const ItemStandard standard{.publicKey = keyFor(item, document),
                                .identifier = launcher_.identifier,
                                .archives = archives_,
                                .notesLink = document.notesLinkOf(item)};
    for (const std::string& each : faultsOf(item, standard)) fault(each);
  }

  // A launcher checks with its own key, whoever has signed.
  std::optional<std::string> keyFor(const FeedItem& item, const FeedDocument& document) const {
    if (publicKey_) return publicKey_;
    if (launcher_.publicKey) return launcher_.publicKey;
    return document.keyChanges().signerOf(item.version);
  }

  void fault(const std::string& text) {
    ++faults_;
    out_ << "  wrong: " << text << '\n';
  }

  const std::optional<std::string> publicKey_;
  const std::optional<std::string> archives_;
  std::ostream& out_;
  Launcher launcher_;
  std::optional<Looker> looker_;
  std::size_t faults_ = 0;
};

int check(const Arguments& arguments, std::ostream& out) {
  const std::string place = arguments.requiredWord();
  const std::size_t faults = FeedCheck(arguments, out).run(place);
  if (faults > 0)
    throw Failure(place + " has " + std::to_string(faults) + (faults == 1 ? " fault" : " faults"));
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb checkVerb(std::ostream& out) {
  return {
      .name = "check",
      .synopsis =
          "FEED [--against BUNDLE | --version-of-launcher VERSION] [--system VERSION]\n"
          "                           [--public-key KEY] [--archives FOLDER]",
      .summary = "read a published feed as a launcher would",
      .help =
          "Reads FEED, an https address or a file, with the launcher's own code, and fetches what it\n"
          "offers. Tells of each item whether a launcher would be offered it and why not, and of what it\n"
          "is offered, or of every item without a launcher, what is wrong: address, length, signature,\n"
          "what is in the archive, notes. Exits with 1 when anything is.\n"
          "\n"
          "  --against BUNDLE          the launcher: its version and its public key count\n"
          "  --version-of-launcher VERSION\n"
          "                            another CFBundleVersion than the bundle's\n"
          "  --system VERSION          the system that the launcher runs on\n"
          "  --public-key KEY          the key that has to have signed; by default the launcher's, or\n"
          "                            the one that the archive's own bundle carries\n"
          "  --archives FOLDER         take the archives from FOLDER instead of fetching them\n",
      .options = {"--against", "--version-of-launcher", "--system", "--public-key", "--archives"},
      .word = "FEED",
      .run = [&out](const auto& arguments) { return check(arguments, out); }};
}

}  // namespace karno::appcast
