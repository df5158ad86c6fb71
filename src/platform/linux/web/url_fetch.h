#pragma once
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/error.h"

namespace karno::platform {

// How long and how much one fetch may take. Foundation waits 60 seconds as well.
struct URLLimits {
  std::chrono::seconds connecting{60};
  std::chrono::seconds silence{60};
  std::chrono::seconds request{600};  // all in all, redirects included
  std::uint64_t bodyBytesMax = 16U << 20U;
  int redirectsMax = 10;
};

// What a fetch brings, on the thread that fetches. An error that one of the two gives ends the fetch and is
// what it fails with.
class URLSink {
 public:
  virtual ~URLSink() = default;

  // The next bytes of the answer; those of redirects and failures are left out.
  virtual std::optional<Error> take(std::string_view bytes) = 0;

  // How far it is; a total of 0 is not known. Also called when nothing comes.
  virtual std::optional<Error> report(std::uint64_t /*received*/, std::uint64_t /*total*/) {
    return std::nullopt;
  }
};

// Fetches what is behind an http or https URL by libcurl, afresh. Blocks; any thread. Redirects are followed,
// from https to https only and never to another scheme. An answer that is no success is an error; errors are
// those that Foundation would give. Absent: all is there.
//
// Certificates are checked against the machine's /etc/ssl/cert.pem, a Mac's place for them, or against the
// system's authorities where the machine has none. Proxies are those of the environment.
std::optional<Error> fetchURL(const std::string& url, const std::string& userAgent, const URLLimits& limits,
                              URLSink& sink);

}  // namespace karno::platform
