#pragma once
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/web/url_fetch.h"

namespace karno::appcast {

// Fetches what is behind an address into a sink, as platform::fetchURL() does.
using Fetch = std::function<std::optional<platform::Error>(
    const std::string& url, const platform::URLLimits& limits, platform::URLSink& sink)>;

// By the launcher's own network code.
std::optional<platform::Error> fetchFromTheWeb(const std::string& url, const platform::URLLimits& limits,
                                               platform::URLSink& sink);

// What launchers read of a feed.
inline constexpr std::size_t kFeedBytesMax = std::size_t{16} << 20U;

// A feed in a file or behind an address, which is fetched as a launcher does. Each of these throws a Failure.
std::string readFeed(const std::string& place, const Fetch& fetch);

// Fetches what is behind the address into a new file.
void fetchInto(const std::string& path, const std::string& url, const Fetch& fetch);

// Fetches a page and forgets it.
void fetchPage(const std::string& url, const Fetch& fetch);

}  // namespace karno::appcast
