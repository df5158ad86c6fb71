#include <string>
#include <string_view>

#include "fuzz_target.h"
#include "platform/linux/updater/feed/appcast.h"
#include "platform/linux/updater/feed/notes_text.h"
#include "platform/version_order.h"

namespace karno::fuzz {
namespace {

using namespace platform::updates;

// What is read is fit for use, and versions have one order whichever way they are compared.
void check(std::string_view bytes) {
  plainTextOfHTML(bytes);
  const auto items = parseAppcast(bytes);
  if (!items) {
    mustHold(items.error().code() == 1000, "what is no feed has the error for that");
    return;
  }
  mustHold(items.value().size() <= kFeedItemsMax, "items are bounded");
  for (const FeedItem& item : items.value()) {
    mustHold(!item.version.empty(), "an item has a version");
    mustHold(!item.downloadURL.empty() || item.isInformationOnly, "an item has something behind it");
    const FeedItem& first = items.value().front();
    const bool isOlder = platform::compareVersions(item.version, first.version) < 0;
    mustHold(isOlder == (platform::compareVersions(first.version, item.version) > 0), "one order");
  }
}

}  // namespace
}  // namespace karno::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  karno::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
