#include "karno-appcast/feed/item_check.h"

#include "installer/archive/archive_file.h"
#include "installer/bundle_facts.h"
#include "karno-appcast/archives/bundle_archive.h"
#include "karno-appcast/archives/info_plist.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/workplace.h"
#include "platform/linux/updater/feed/update_address.h"
#include "platform/linux/web/url_address.h"
#include "platform/version_order.h"

namespace karno::appcast {
namespace {

using platform::updates::FeedItem;

class ItemCheck {
 public:
  ItemCheck(const FeedItem& item, const ItemStandard& standard, const Fetch& fetch)
      : item_(item), standard_(standard), fetch_(fetch) {}

  std::vector<std::string> run() && {
    if (!item_.downloadURL.empty()) attempt([this] { checkDownload(); });
    if (!item_.notesURL.empty()) attempt([this] { fetchPage(item_.notesURL, fetch_); });
    if (item_.notes.empty() && item_.notesURL.empty()) add("it has no notes");
    return std::move(faults_);
  }

 private:
  void add(std::string fault) { faults_.push_back(std::move(fault)); }

  // One fault does not hide the others.
  template <class Step>
  void attempt(const Step& step) {
    try {
      step();
    } catch (const Failure& failure) {
      add(failure.what());
    }
  }

  void checkDownload() {
    if (const auto refusal = platform::updates::refusalOfAddress(item_.downloadURL))
      return add(refusal->localizedDescription());
    if (!item_.length) add("it does not say how long its archive is");
    const std::string name = platform::addressOf(item_.downloadURL).value().lastPathComponent;
    const bool isPlainName = !name.empty() && name.find('/') == std::string::npos && name != "..";
    if (!isPlainName) return add("its address does not end in the name of an archive");
    if (standard_.archives) return checkArchive(*standard_.archives + "/" + name);
    const Workplace workplace;
    fetchInto(workplace.path() + "/" + name, item_.downloadURL, fetch_);
    checkArchive(workplace.path() + "/" + name);
  }

  void checkArchive(const std::string& path) {
    std::optional<std::string> key = standard_.publicKey;
    attempt([&] {
      const ArchivedBundle bundle = bundleInArchive(path);
      const BundleInfo info = readInfoPlist(bundle.infoPlist);
      if (!key && !info.publicKey.empty()) key = info.publicKey;
      checkBundle(bundle, info);
    });
    const auto archive = installer::ArchiveFile::open(path);
    if (!archive) return add("cannot read " + path + ": " + archive.error().text);
    if (!key) return add("nothing says which key has to have signed it");
    if (const auto failure = archive.value().check(item_.length, item_.edSignature, *key)) add(failure->text);
  }

  void checkBundle(const ArchivedBundle& bundle, const BundleInfo& info) {
    if (platform::compareVersions(info.version, item_.version) != 0)
      add("its archive holds version " + info.version);
    const auto facts = installer::parseBundleFacts(bundle.infoPlist);
    if (facts && standard_.identifier && facts.value().identifier != *standard_.identifier)
      add("its archive holds " + installer::oneLine(facts.value().identifier) + ", not " +
          installer::oneLine(*standard_.identifier));
  }

  const FeedItem& item_;
  const ItemStandard& standard_;
  const Fetch& fetch_;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> faultsOf(const FeedItem& item, const ItemStandard& standard, const Fetch& fetch) {
  return ItemCheck(item, standard, fetch).run();
}

}  // namespace karno::appcast
