#pragma once
#include <string>

#include "platform/error.h"

namespace karno::platform {

// The parts of an http or https URL that the launcher's network code looks at.
struct URLAddress {
  std::string scheme;  // in lower case
  std::string host;
  std::string lastPathComponent;  // decoded; "/" for a URL without a path

  bool isSecure() const { return scheme == "https"; }
};

// Errors are those of Foundation: a text that is no URL, or a scheme that is neither http nor https.
Result<URLAddress> addressOf(const std::string& url);

}  // namespace karno::platform
