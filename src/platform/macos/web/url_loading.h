#pragma once
#include "platform/url_loading.h"

namespace karno::platform {

// Fetches by NSData, uncached. The framework has its own time-outs and follows redirects; it sets no limit to
// how much it takes in, and there is no way to give this call one.
class FoundationURLLoading final : public URLLoading {
 public:
  Result<std::string> contentsOfURL(const std::string& url) override;
};

}  // namespace karno::platform
