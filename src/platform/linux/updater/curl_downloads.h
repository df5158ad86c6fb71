#pragma once
#include "platform/bundles.h"
#include "platform/linux/updater/update_services.h"
#include "platform/linux/web/url_loading.h"

namespace karno::platform::updates {

// A release may be large and a line slow.
inline constexpr URLLimits kDownloadLimits{.request = std::chrono::hours(12)};

// Downloads by libcurl, with the errors that Foundation would give.
class CurlDownloads final : public FileDownloads {
 public:
  explicit CurlDownloads(const Bundles& bundles, URLLimits limits = kDownloadLimits)
      : bundles_(bundles), limits_(limits) {}

  std::optional<Error> download(const std::string& url, const std::string& path, std::uint64_t bytesMax,
                                const Progress& progress) override;

 private:
  const Bundles& bundles_;
  const URLLimits limits_;
};

}  // namespace karno::platform::updates
