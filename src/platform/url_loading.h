#pragma once
#include <string>

#include "platform/error.h"

namespace karno::platform {

// Fetches from the network. Safe from any thread.
class URLLoading {
 public:
  virtual ~URLLoading() = default;

  // The bytes behind an http or https URL, fetched afresh, redirects followed. Blocks until all is there. An
  // answer that is no success, such as 404, is an error. No request header is the caller's, no time-out
  // either.
  virtual Result<std::string> contentsOfURL(const std::string& url) = 0;
};

}  // namespace karno::platform
