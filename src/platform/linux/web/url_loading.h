#pragma once
#include <functional>
#include <string>

#include "platform/bundles.h"
#include "platform/linux/web/url_fetch.h"
#include "platform/url_loading.h"

namespace karno::platform {

// As CFNetwork sends by itself: the bundle's name and version.
std::string userAgentOf(const Bundle& bundle);

class CurlURLLoading final : public URLLoading {
 public:
  explicit CurlURLLoading(const Bundles& bundles, URLLimits limits = {})
      : bundles_(bundles), limits_(limits) {}

  Result<std::string> contentsOfURL(const std::string& url) override;

  // The same, but ends soon after it is wanted no more, with ECANCELED.
  Result<std::string> contentsOfURL(const std::string& url, const std::function<bool()>& isWanted);

 private:
  const Bundles& bundles_;
  const URLLimits limits_;
};

}  // namespace karno::platform
