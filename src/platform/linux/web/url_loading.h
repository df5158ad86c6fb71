#pragma once
#include <chrono>
#include <cstddef>

#include "platform/bundles.h"
#include "platform/url_loading.h"

namespace karno::platform {

// How long and how much one fetch may take. Foundation waits 60 seconds as well.
struct URLLimits {
  std::chrono::seconds connecting{60};
  std::chrono::seconds silence{60};
  std::chrono::seconds request{600};  // each request of a chain of redirects, all in all
  std::size_t bodyBytesMax = 16U << 20U;
  int redirectsMax = 10;
};

// As CFNetwork sends by itself: the bundle's name and version.
std::string userAgentOf(const Bundle& bundle);

// Fetches by libcurl, with the errors that Foundation would give. Nobody is redirected from https to http.
// Certificates are checked against the machine's /etc/ssl/cert.pem, a Mac's place for them, or against the
// system's authorities where the machine has none. Proxies are those of the environment.
class CurlURLLoading final : public URLLoading {
 public:
  explicit CurlURLLoading(const Bundles& bundles, URLLimits limits = {})
      : bundles_(bundles), limits_(limits) {}

  Result<std::string> contentsOfURL(const std::string& url) override;

 private:
  const Bundles& bundles_;
  const URLLimits limits_;
};

}  // namespace karno::platform
