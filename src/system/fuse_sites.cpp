#include "system/fuse_sites.h"

#include <string_view>

#include "platform/platform.h"

namespace karno {
namespace {

std::string httpsURLOfHost(std::string_view key, std::string_view publicHost) {
  const auto configured = platform::host().bundles.mainBundle().objectForInfoDictionaryKey(key);
  const std::string* host = configured ? configured->get<std::string>() : nullptr;
  return "https://" + (host != nullptr && !host->empty() ? *host : std::string(publicHost));
}

}  // namespace

std::string fuseDownloadSite() { return httpsURLOfHost("KarnoMacFUSESite", "macfuse.github.io"); }

std::string fuseLatestReleaseURL() {
  return httpsURLOfHost("KarnoReleasesHost", "api.github.com") + "/repos/macfuse/macfuse/releases/latest";
}

}  // namespace karno
