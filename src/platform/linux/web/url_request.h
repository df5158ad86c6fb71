#pragma once
#include <optional>
#include <string>

#include "platform/linux/web/url_address.h"
#include "platform/linux/web/url_loading.h"

namespace karno::platform {

// A server's answer to one request.
struct URLAnswer {
  long status = 0;
  std::string body;
  std::optional<std::string> redirectTarget;  // absolute
};

// Asks for the URL once, without following a redirect; waits for the whole answer.
Result<URLAnswer> requestURL(const std::string& url, const URLAddress& address, const std::string& userAgent,
                             const URLLimits& limits);

}  // namespace karno::platform
