#pragma once
#include "platform/linux/updater/update_services.h"
#include "platform/linux/web/url_loading.h"

namespace karno::platform::updates {

class CurlDownloads final : public FileDownloads {
 public:
  explicit CurlDownloads(const Bundles& bundles) : bundles_(bundles) {}

  std::optional<Error> download(const std::string& url, const std::string& path, std::uint64_t bytesMax,
                                const Progress& progress) override;

 private:
  const Bundles& bundles_;
};

}  // namespace karno::platform::updates
